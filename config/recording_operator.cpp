#include "config/recording_operator.h"

namespace px {

void RecordingOperator::show(int n, const std::vector<std::string>& args) {
  shown_.push_back({n, args});
}

size_t RecordingOperator::ask(int n, const std::vector<std::string>& args,
                              const std::vector<int>& buttons) {
  shown_.push_back({n, args});
  if (!answers_.empty()) {
    size_t answer = answers_.front();
    answers_.pop_front();
    return answer;
  }
  return buttons.empty() ? 0 : buttons.size() - 1;
}

PrinterReloadChoice RecordingOperator::choose_printer_reload(
    std::string_view instance_title, const std::vector<std::string>& printers) {
  offered_title_ = std::string(instance_title);
  offered_ = printers;
  if (while_choosing_) while_choosing_();
  return choice_;
}

std::vector<int> RecordingOperator::numbers() const {
  std::vector<int> result;
  for (const ShownMessage& m : shown_) result.push_back(m.number);
  return result;
}

}  // namespace px
