#include "control/printer_reload.h"

#include <cstdio>

#include "common/text.h"
#include "config/message_numbers.h"

namespace px {

std::vector<std::string> printer_choice_entries(const std::vector<std::string>& printers) {
  std::vector<std::string> entries;
  entries.reserve(printers.size());
  for (const std::string& name : printers) {
    char entry[16];
    std::snprintf(entry, sizeof entry, "%-9.9s", name.c_str());
    entries.emplace_back(entry);
  }
  return entries;
}

int form_problem(std::string_view form) {
  return form.empty() || form[0] == ' ' ? msg::kFormRequired : 0;
}

PrinterReloadChoice make_printer_reload_choice(bool all_printers,
                                               const std::vector<std::string>& selected,
                                               bool all_forms, std::string_view form) {
  PrinterReloadChoice choice;
  choice.printers = all_printers ? std::vector<std::string>{"*"} : selected;
  choice.form = all_forms ? std::string("*") : cut_to_buffer(form, kFormNameLength + 1);
  choice.outcome = kChoiceOk;
  return choice;
}

}  // namespace px
