// pxctl's operator: numbered messages go to standard error as "[n]text" and
// to the log; questions are answered from standard input; the Printer Reload
// choice is the one given on the command line.
#pragma once

#include <string>
#include <vector>

#include "config/operator.h"

namespace px::cli {

class ConsoleOperator : public Operator {
 public:
  void show(int n, const std::vector<std::string>& args = {}) override;
  // Prints the question and the numbered buttons on standard error and reads
  // one line: a button's number, or the start of its label. End of input
  // chooses the last button.
  size_t ask(int n, const std::vector<std::string>& args, const std::vector<int>& buttons) override;
  // Answers with the choice set from the command line after checking it as
  // the dialog does: each named printer must be listed (else 903), the form
  // must be acceptable (else 256); a refused choice is cancelled. The named
  // printers are answered in list order, as the dialog's selection is.
  PrinterReloadChoice choose_printer_reload(std::string_view instance_title,
                                            const std::vector<std::string>& printers) override;

  // The Printer Reload choice as given: all printers or the named ones, all
  // forms or the named form.
  void set_printer_request(bool all_printers, std::vector<std::string> printers, bool all_forms,
                           std::string form);

 private:
  bool all_printers_ = false;
  std::vector<std::string> printers_;
  bool all_forms_ = false;
  std::string form_;
};

}  // namespace px::cli
