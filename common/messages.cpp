#include "common/messages.h"

#include <cstdio>
#include <cstdlib>

#include "common/expand.h"
#include "common/file_util.h"
#include "common/ini_profile.h"
#include "common/message_state.h"
#include "common/text.h"

namespace px::messages {

namespace {

constexpr size_t kNameLimit = 260;     // program, log, trace names and date format
constexpr size_t kSettingSize = 1024;  // settings read by init
constexpr size_t kMessageSize = 245;
constexpr int kVerbositySentinel = -32767;

// A setting from section Options, or from Plexar when Options has none.
std::string program_setting(std::string_view key) {
  std::string value = ini::get_string("Options", key, "", kSettingSize);
  if (value.empty()) value = ini::get_string("Plexar", key, "", kSettingSize);
  return value;
}

// Splits "<level> <text>" (after an optional leading "[...]" group) into the
// level and the text with the level's sign, digits and one blank removed.
CachedMessage parse_message(int n, std::string text) {
  size_t body = 0;
  if (!text.empty() && text[0] == '[') {
    size_t close = text.find(']');
    if (close != std::string::npos) body = close + 1;
  }
  // The trace-text message stands in for its text when the catalogue lacks
  // it, whether it is asked for as -400 or as 400.
  if ((n == -400 || n == 400) && std::string_view(text).substr(body).starts_with("30 ** Message Msg")) {
    text.replace(body, std::string::npos, "-10 @P1.");
  }
  CachedMessage message;
  message.level = parse_int(std::string_view(text).substr(body));
  size_t i = body;
  while (i < text.size() && is_space(text[i])) ++i;
  size_t digits_start = i;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
  while (i < text.size() && text[i] >= '0' && text[i] <= '9') ++i;
  if (i > digits_start) {
    if (i < text.size() && is_space(text[i])) ++i;
    text.erase(body, i - body);
  }
  message.text = std::move(text);
  return message;
}

void write_last_message(const std::string& line) {
  const std::string& name = state().last_message_file;
  if (name.empty()) return;
  write_output_file(name, line, false);
}

}  // namespace

MessageState& state() {
  static MessageState s;
  return s;
}

void init(std::string_view program_name) {
  MessageState& s = state();
  std::string kept_log = s.log_file;
  std::string kept_name = s.program_name;
  bool kept_fallback = s.quick_log_fallback;
  s = MessageState{};
  s.log_file = kept_log;
  s.quick_log_fallback = kept_fallback;
  s.program_name = kept_name.empty() ? cut_to_buffer(program_name, kNameLimit) : kept_name;

  if (s.log_file.empty()) s.log_file = cut_to_buffer(program_setting("LogFile"), kNameLimit);
  s.trace_file = cut_to_buffer(program_setting("TraceFile"), kNameLimit);
  s.verbosity = ini::get_int("Options", "Verbosity", kVerbositySentinel);
  if (s.verbosity == kVerbositySentinel) s.verbosity = ini::get_int("PLEXAR", "Verbosity", 0);
  s.date_format = cut_to_buffer(program_setting("MsgDateStampFormat"), kNameLimit);
}

void reset() { state() = MessageState{}; }

void set_verbosity(int level) { state().verbosity = level; }
int verbosity() { return state().verbosity; }
void set_log_file(std::string_view name) { state().log_file = cut_to_buffer(name, kNameLimit); }
const std::string& log_file() { return state().log_file; }
void set_trace_file(std::string_view name) {
  state().trace_file = cut_to_buffer(name, kNameLimit);
  state().trace_failed = false;
}
const std::string& trace_file() { return state().trace_file; }
void set_date_format(std::string_view pattern) {
  state().date_format = cut_to_buffer(pattern, kNameLimit);
}
const std::string& date_format() { return state().date_format; }
void set_program_name(std::string_view name) {
  state().program_name = cut_to_buffer(name, kNameLimit);
}
const std::string& program_name() { return state().program_name; }
void set_number_prefix(bool on) { state().number_prefix = on; }
bool number_prefix() { return state().number_prefix; }
void set_last_message_file(std::string_view name) { state().last_message_file = name; }
void set_shutting_down(bool on) { state().shutting_down = on; }
void set_quick_log_fallback(bool on) { state().quick_log_fallback = on; }

std::string message_text(int n) {
  MessageState& s = state();
  if (auto found = s.cache.find(n); found != s.cache.end()) {
    s.current_level = found->second.level;
    return found->second.text;
  }
  std::string number = std::to_string(std::labs(static_cast<long>(n)));
  std::string text = ini::get_string("Messages", "Msg" + number, "", kMessageSize);
  if (text.empty()) text = "30 ** Message Msg" + number + " not in .ini file **";
  if (s.number_prefix) text = "[" + std::to_string(n) + "]" + text;
  CachedMessage message = parse_message(n, std::move(text));
  s.current_level = message.level;
  return s.cache.emplace(n, std::move(message)).first->second.text;
}

int current_level() { return state().current_level; }

void emit(int n, std::string_view raw) {
  if (raw.empty()) return;
  MessageState& s = state();
  const int level = s.current_level;
  std::string text = expand(raw);
  std::string line = stamped_line(text) + "\n";
  if (level >= 0) write_last_message(line);
  if (level < kWorstLimit && level >= s.worst_level) {
    s.worst_level = level;
    s.worst_number = n;
    s.worst_text = text;
  }
  if (level >= s.verbosity && !write_log_line(line)) {
    std::string failure = message_text(kLogUnavailable);
    if (current_level() >= 0) write_last_message(stamped_line(expand(failure)) + "\n");
    s.current_level = level;
  }
}

void log_line(int level, std::string_view text) {
  if (level >= state().verbosity) write_log_line(stamped_line(text) + "\n");
}

std::string message_label(int n) {
  std::string text = message_text(n);
  const std::string number = "[" + std::to_string(n) + "]";
  if (text.starts_with(number)) text.erase(0, number.size());
  return text;
}

std::string show(int n) {
  std::string text = message_text(n);
  emit(n, text);
  return expand(text);
}

int worst_message(std::string& text) {
  text = state().worst_text;
  return state().worst_number;
}

int print_usage() {
  int count = 0;
  for (int i = 1;; ++i) {
    std::string line = ini::get_string("Usage", "Usage" + std::to_string(i), "\t", 1025);
    if (line == "\t") break;
    std::printf("%s\n", expand(line).c_str());
    ++count;
  }
  std::fflush(stdout);
  return count;
}

}  // namespace px::messages
