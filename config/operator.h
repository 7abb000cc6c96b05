// The operator: the one small interface through which every operation below
// the windows reports to the person at the console.
//
// Operations never draw anything. They show numbered messages (their texts
// come from the message catalogue; code passes only numbers and arguments),
// ask questions with buttons, and ask for the few choices an operation
// needs. The GUI shows message boxes, pxctl prints on standard error, tests
// record what was shown. Paths given as message arguments are shortened for
// display with display_path first.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace px {

// The longest path a message shows.
inline constexpr size_t kDisplayPathLength = 30;

// A path shortened for display: a path of up to 30 characters is kept; a
// longer one becomes ".." and its tail from the first separator that
// follows the first two of its last 30 characters. When that part of the tail
// holds no separator, ".." and the last 28 characters are shown.
std::string display_path(std::string_view path);

// Outcomes of a dialog-like choice.
inline constexpr int kChoiceOk = 1;
inline constexpr int kChoiceCancelled = 2;

// What a Printer Reload is to name: the chosen logical printers ("*" alone
// for all) and the form file ("*" for all forms).
struct PrinterReloadChoice {
  std::vector<std::string> printers;
  std::string form;
  int outcome = kChoiceCancelled;
};

class Operator {
 public:
  virtual ~Operator() = default;

  // Shows numbered message n with args as @P1, @P2, ...
  virtual void show(int n, const std::vector<std::string>& args = {}) = 0;

  // Asks message n with args; buttons are the message numbers of the button
  // labels, first to last. Returns the index of the chosen button; the last
  // button is the one that cancels.
  virtual size_t ask(int n, const std::vector<std::string>& args,
                     const std::vector<int>& buttons) = 0;

  // The Printer Reload choice for the instance titled instance_title, from
  // the listed printers (the entries as listed, in order). An operator that
  // refuses an entry shows its message and answers cancelled.
  virtual PrinterReloadChoice choose_printer_reload(std::string_view instance_title,
                                                    const std::vector<std::string>& printers) = 0;
};

}  // namespace px
