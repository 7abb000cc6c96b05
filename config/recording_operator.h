// An operator for tests: it records every message shown and answers
// questions and choices from a script set up by the test.
#pragma once

#include <deque>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "config/operator.h"

namespace px {

struct ShownMessage {
  int number = 0;
  std::vector<std::string> args;
  bool operator==(const ShownMessage&) const = default;
};

// How test failures print a shown message: [n] arg, arg, ...
inline void PrintTo(const ShownMessage& m, std::ostream* out) {
  *out << "[" << m.number << "]";
  for (const std::string& arg : m.args) *out << " " << arg;
}

class RecordingOperator : public Operator {
 public:
  void show(int n, const std::vector<std::string>& args = {}) override;
  // Answers with the next scripted answer, else with the last button.
  size_t ask(int n, const std::vector<std::string>& args, const std::vector<int>& buttons) override;
  // Records the offered list and answers with the scripted choice (cancelled
  // when none was scripted).
  PrinterReloadChoice choose_printer_reload(std::string_view instance_title,
                                            const std::vector<std::string>& printers) override;

  // Script.
  void answer_next(size_t button) { answers_.push_back(button); }
  void set_printer_choice(PrinterReloadChoice choice) { choice_ = std::move(choice); }
  // Runs while the Printer Reload choice is asked, as other programs might
  // act while the operator decides.
  void while_choosing(std::function<void()> action) { while_choosing_ = std::move(action); }

  // Record.
  const std::vector<ShownMessage>& shown() const { return shown_; }
  // The numbers shown, in order.
  std::vector<int> numbers() const;
  // The number of the last message shown; 0 when none was.
  int last() const { return shown_.empty() ? 0 : shown_.back().number; }
  const std::vector<std::string>& offered_printers() const { return offered_; }
  const std::string& offered_title() const { return offered_title_; }
  void clear() { shown_.clear(); }

 private:
  std::vector<ShownMessage> shown_;
  std::deque<size_t> answers_;
  PrinterReloadChoice choice_;
  std::function<void()> while_choosing_;
  std::vector<std::string> offered_;
  std::string offered_title_;
};

}  // namespace px
