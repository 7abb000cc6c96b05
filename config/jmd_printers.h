// The logical printers that a Printer Reload offers: the printer names of
// the current instance's JMD, in the order of the printer table.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "config/jmd_service.h"
#include "config/operator.h"

namespace px {

// Opens the JMD through service for the list and closes it again when it was
// not open before (a JMD the editors hold stays open, with its edits).
// nullopt when it cannot be opened (the service has shown why) or its
// printer table cannot be read.
std::optional<std::vector<std::string>> jmd_printer_names(JmdService& service, Operator& op);

}  // namespace px
