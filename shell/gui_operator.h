// The console's operator: numbered messages as message boxes (caption
// message 183), questions as question boxes whose buttons are labelled with
// messages, and the Printer Reload choice through the "Reload Printer"
// dialog (131).
//
// A message of level 20 or more (a warning or an error) is an error box with
// the exclamation icon; a lower one is a note with the information icon.
// Every message shown is also logged as its level and Verbosity say.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "config/operator.h"
#include "toolkit/toolkit.h"

namespace px::shell {

// Messages from this level up are shown as errors.
inline constexpr int kErrorLevel = 20;

class GuiOperator : public Operator {
 public:
  explicit GuiOperator(tk::Toolkit& toolkit) : tk_(toolkit) {}

  void show(int n, const std::vector<std::string>& args = {}) override;
  // Two or three buttons; the answer is the index of the one pressed
  // (Escape presses the last).
  size_t ask(int n, const std::vector<std::string>& args, const std::vector<int>& buttons) override;
  PrinterReloadChoice choose_printer_reload(std::string_view instance_title,
                                            const std::vector<std::string>& printers) override;

 private:
  tk::Toolkit& tk_;
};

}  // namespace px::shell
