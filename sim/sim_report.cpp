#include "sim/sim_report.h"

#include <ctime>

#include "common/expand.h"
#include "common/file_replace.h"
#include "common/file_util.h"
#include "common/messages.h"

namespace px::sim {

std::string message_line(int n, const std::vector<std::string>& args) {
  set_message_arguments(args);
  return expand(messages::message_text(n));
}

std::string message_body(int n, const std::vector<std::string>& args) {
  std::string text = messages::message_text(n);
  if (!text.empty() && text[0] == '[') {
    size_t close = text.find(']');
    if (close != std::string::npos) text.erase(0, close + 1);
  }
  set_message_arguments(args);
  return expand(text);
}

void report(int n, const std::vector<std::string>& args) {
  set_message_arguments(args);
  messages::show(n);
}

std::string stamped(std::string_view program, std::string_view text) {
  std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char stamp[32];
  size_t n = std::strftime(stamp, sizeof stamp, "%y%m%d %H:%M:%S", &local);
  std::string line(stamp, n);
  line.append(" ").append(program).append(": ").append(text);
  return line;
}

bool write_status_line(const std::string& path, std::string_view program, std::string_view text) {
  // Rewritten on every change of state; a power cut may cost the last one.
  ReplaceOptions options;
  options.durable = false;
  std::string line = stamped(program, text) + "\n";
  return static_cast<bool>(replace_file(path, line, system_file_system(), options));
}

bool append_log_line(const std::string& path, std::string_view program, std::string_view text) {
  if (path.empty()) return true;
  return write_output_file(path, stamped(program, text) + "\n", true);
}

}  // namespace px::sim
