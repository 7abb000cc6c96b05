#include "views/log_source.h"

#include "common/ini_profile.h"
#include "config/settings.h"
#include "views/view_messages.h"

namespace px::views {

namespace {

constexpr size_t kDisplayNameSize = 256;

bool config_readable(const std::string& file, Operator& op) {
  if (file_readable(file)) return true;
  op.show(msg::kIniUnreadable, {display_path(file)});
  return false;
}

}  // namespace

std::optional<ProcessLogs> log_processes(const std::string& config_file, Operator& op) {
  if (!config_readable(config_file, op)) return std::nullopt;
  std::optional<std::vector<std::string>> keys = process_keys(config_file);
  if (!keys) {
    op.show(msg::kNoProcesses, {"Processes", display_path(config_file)});
    return std::nullopt;
  }
  ProcessLogs logs;
  logs.server_log = path_setting("Plexar", "LogFile", config_file);
  for (const std::string& section : *keys) {
    if (section == "PXEMIO") continue;
    std::string own = path_setting(section, "LogFile", config_file);
    std::string log = own.empty() ? logs.server_log : own;
    if (log.empty()) continue;
    std::string name = setting("Processes", section, "", kDisplayNameSize, config_file);
    logs.processes.push_back({section, name, log});
  }
  return logs;
}

LogOpening log_opening(const ProcessLogs& logs) {
  if (logs.processes.empty() && logs.server_log.empty()) return LogOpening::kNothing;
  if (logs.processes.size() == 1) return LogOpening::kOnly;
  return LogOpening::kChoice;
}

std::optional<std::string> process_log_file(const std::string& config_file,
                                            const std::string& section, Operator& op) {
  if (!config_readable(config_file, op)) return std::nullopt;
  std::string log = path_setting(section, "LogFile", config_file);
  if (log.empty()) log = path_setting("Plexar", "LogFile", config_file);
  if (log.empty()) {
    op.show(msg::kSettingMissing, {section, display_path(config_file), "LogFile"});
    return std::nullopt;
  }
  return log;
}

std::optional<std::string> agent_log_file(const std::string& config_file, Operator& op) {
  if (!config_readable(config_file, op)) return std::nullopt;
  std::string agent = path_setting("PXEMIO", "IniFileName", config_file);
  if (agent.empty()) {
    op.show(msg::kSettingMissing, {"PXEMIO", display_path(config_file), "IniFileName"});
    return std::nullopt;
  }
  std::string log = path_setting("Plexar", "LogFile", agent);
  if (log.empty()) {
    op.show(msg::kSettingMissing, {"Plexar", display_path(agent), "LogFile"});
    return std::nullopt;
  }
  return log;
}

}  // namespace px::views
