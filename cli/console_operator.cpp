#include "cli/console_operator.h"

#include <algorithm>
#include <cstdio>

#include "cli/cli.h"
#include "common/messages.h"
#include "common/text.h"
#include "config/message_numbers.h"
#include "control/printer_reload.h"

namespace px::cli {

namespace {

std::string read_answer() {
  std::string line;
  for (int c; (c = std::fgetc(stdin)) != EOF && c != '\n';) line.push_back(static_cast<char>(c));
  return std::string(trim(line));
}

}  // namespace

void ConsoleOperator::show(int n, const std::vector<std::string>& args) { report(n, args); }

size_t ConsoleOperator::ask(int n, const std::vector<std::string>& args,
                            const std::vector<int>& buttons) {
  report(n, args);
  if (buttons.empty()) return 0;
  std::vector<std::string> labels;
  for (size_t i = 0; i < buttons.size(); ++i) {
    labels.push_back(messages::message_label(buttons[i]));
    std::fprintf(stderr, "  %zu) %s\n", i + 1, labels.back().c_str());
  }
  std::fprintf(stderr, "? ");
  std::fflush(stderr);
  std::string answer = read_answer();
  for (size_t i = 0; i < labels.size() && !answer.empty(); ++i) {
    if (answer == std::to_string(i + 1) || istarts_with(labels[i], answer)) return i;
  }
  return buttons.size() - 1;
}

PrinterReloadChoice ConsoleOperator::choose_printer_reload(
    std::string_view, const std::vector<std::string>& printers) {
  // The named printers, taken in the order the list shows them, as a
  // selection in the list would be.
  std::vector<std::string> selected;
  if (!all_printers_) {
    for (const std::string& name : printers_) {
      bool listed = std::any_of(printers.begin(), printers.end(),
                                [&](const std::string& entry) { return trim(entry) == name; });
      if (!listed) {
        show(kMsgUnknownPrinter, {name});
        return {};
      }
    }
    for (const std::string& entry : printers) {
      if (std::find(printers_.begin(), printers_.end(), trim(entry)) != printers_.end()) {
        selected.push_back(entry);
      }
    }
  }
  if (!all_forms_) {
    if (int problem = form_problem(form_)) {
      show(problem);
      return {};
    }
  }
  return make_printer_reload_choice(all_printers_, selected, all_forms_, form_);
}

void ConsoleOperator::set_printer_request(bool all_printers, std::vector<std::string> printers,
                                          bool all_forms, std::string form) {
  all_printers_ = all_printers;
  printers_ = std::move(printers);
  all_forms_ = all_forms;
  form_ = std::move(form);
}

}  // namespace px::cli
