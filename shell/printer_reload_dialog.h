// "Reload Printer for %s" (dialog 131): the operator chooses which logical
// printers and which form file a Printer Reload control job names.
//
// The printers come listed (each padded to nine characters) in a list that
// allows several selected rows; the first is selected and the list has the
// focus. "Select all printers" (check box 9) disables the list while it is
// checked, "Select all forms" (check box 10) the form file name (edit 6, up
// to 81 characters). OK with a form that is empty or begins with a blank
// shows message 256, puts the focus on the form and keeps the dialog open.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "config/operator.h"
#include "toolkit/toolkit.h"

namespace px::shell {

// Runs the dialog modally for the instance titled instance_title. OK gives
// the choice with outcome kChoiceOk; Cancel, closing, or a dialog that
// cannot be opened (message 101) give outcome kChoiceCancelled.
PrinterReloadChoice run_printer_reload_dialog(tk::Toolkit& toolkit, Operator& op,
                                              std::string_view instance_title,
                                              const std::vector<std::string>& printers);

}  // namespace px::shell
