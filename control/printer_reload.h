// The Printer Reload choice: which logical printers and which form file a
// printer-reload control job names. Shared by the console's dialog and
// pxctl so both apply the same rules.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "config/operator.h"

namespace px {

// The longest form file name taken.
inline constexpr size_t kFormNameLength = 81;

// The printers as the choice lists them: each name left-aligned and cut or
// padded to nine characters.
std::vector<std::string> printer_choice_entries(const std::vector<std::string>& printers);

// 0 when form is acceptable, else the message that refuses it (256 for a
// form that is empty or begins with a blank).
int form_problem(std::string_view form);

// The choice made: all printers gives the single entry "*", else the
// selected entries; all forms gives "*", else the form text cut to 81
// characters. The outcome is OK; the caller checks the form first.
PrinterReloadChoice make_printer_reload_choice(bool all_printers,
                                               const std::vector<std::string>& selected,
                                               bool all_forms, std::string_view form);

}  // namespace px
