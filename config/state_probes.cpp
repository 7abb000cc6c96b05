#include "config/state_probes.h"

#include <cstdio>
#include <memory>

#include "common/readable_file.h"
#include "config/message_numbers.h"
#include "config/settings.h"

namespace px {

namespace {

constexpr size_t kMessageSize = 512;
constexpr int kNotRunningText = 310;
constexpr int kPausedText = 315;
constexpr int kAgentTexts[] = {105, 132, 133};

std::string message_value(int n, const std::string& file) {
  return setting("Messages", "Msg" + std::to_string(n), "", kMessageSize, file);
}

// A message value without its first word (the level) and the blanks after it.
std::string text_after_first_word(const std::string& value) {
  size_t end = value.find_first_of(" \t\r\n");
  if (end == std::string::npos) return {};
  size_t start = value.find_first_not_of(" \t", end);
  return start == std::string::npos ? std::string() : value.substr(start);
}

// The first line of an open file, at most kStatusLineLength characters.
std::string first_line(std::FILE* f) {
  std::string line(kStatusLineLength + 1, '\0');
  if (std::fgets(line.data(), static_cast<int>(line.size()), f) == nullptr) return {};
  line.resize(std::char_traits<char>::length(line.data()));
  return line;
}

bool is_word_break(char c) { return c == ' ' || c == '\n' || c == '\r'; }

// The line after its first three words and the blanks that follow them.
std::string_view after_three_words(std::string_view line) {
  size_t i = 0;
  for (int word = 0; word < 3; ++word) {
    while (i < line.size() && is_word_break(line[i])) ++i;
    while (i < line.size() && !is_word_break(line[i])) ++i;
  }
  while (i < line.size() && is_word_break(line[i])) ++i;
  return line.substr(i);
}

}  // namespace

ServerState server_state(const std::string& config_file, Operator& op) {
  std::string status_file = path_setting("Plexar", "StatusFile", config_file);
  if (status_file.empty()) {
    op.show(msg::kSettingMissing, {"Plexar", display_path(config_file), "StatusFile"});
    return ServerState::kUnknown;
  }
  if (!path_exists(status_file)) return ServerState::kNotRunning;
  ReadStream f = open_stream_for_reading(status_file);
  if (!f) {
    op.show(msg::kFileNotOpened, {display_path(status_file)});
    return ServerState::kUnknown;
  }
  return state_of_status_line(first_line(f.get()), config_file);
}

ServerState state_of_status_line(std::string_view line, const std::string& config_file) {
  std::string not_running = text_after_first_word(message_value(kNotRunningText, config_file));
  if (line.find(not_running) != std::string_view::npos) return ServerState::kNotRunning;
  std::string paused = text_after_first_word(message_value(kPausedText, config_file));
  if (line.find(paused) != std::string_view::npos) return ServerState::kPaused;
  return ServerState::kRunning;
}

const char* server_state_name(ServerState state) {
  switch (state) {
    case ServerState::kNotRunning:
      return "not running";
    case ServerState::kPaused:
      return "paused";
    case ServerState::kRunning:
      return "running";
    case ServerState::kUnknown:
      break;
  }
  return "unknown";
}

bool email_status_line_matches(std::string_view line, const std::string& config_file) {
  std::string agent_ini = path_setting("PXEMIO", "IniFileName", config_file);
  if (agent_ini.empty()) return false;
  std::string_view rest = after_three_words(line);
  for (int n : kAgentTexts) {
    std::string text = message_value(n, agent_ini);
    if (rest.substr(0, text.size()) == text) return true;
  }
  return false;
}

bool email_status_file_present(const std::string& config_file, Operator& op) {
  std::string agent_ini = path_setting("PXEMIO", "IniFileName", config_file);
  if (agent_ini.empty()) {
    op.show(msg::kSettingMissing, {"PXEMIO", display_path(config_file), "IniFileName"});
    return true;
  }
  std::string status_file = path_setting("Plexar", "StatusFile", agent_ini);
  if (status_file.empty()) {
    op.show(msg::kSettingMissing, {"Plexar", display_path(agent_ini), "StatusFile"});
    return true;
  }
  return path_exists(status_file);
}

}  // namespace px
