#include "sim/instance_settings.h"

#include "common/directory_map.h"
#include "common/file_util.h"
#include "common/ini_profile.h"
#include "common/text.h"
#include "sim/sim_report.h"

namespace px::sim {

namespace {

constexpr size_t kPathSize = 261;
constexpr size_t kMessageSize = 512;
constexpr int kDefaultCycleTime = 15;

// A setting; values shorter than two characters count as missing.
std::string setting(std::string_view section, std::string_view key, const std::string& file) {
  std::string value = ini::get_string(section, key, "", kPathSize, file);
  return value.size() < 2 ? std::string() : value;
}

// Reads a required setting into out; false (with problem filled) when absent.
bool require(std::string_view section, std::string_view key, const std::string& file,
             std::string& out, int message, std::string_view instance, SettingsProblem& problem) {
  out = setting(section, key, file);
  if (!out.empty()) return true;
  problem = {message, {std::string(instance), file, std::string(key), std::string(section)}};
  return false;
}

// Reads message n of file, whole or (after_level) without its first word.
bool require_message(int n, bool after_level, const std::string& file, std::string& out,
                     int message, std::string_view instance, SettingsProblem& problem) {
  std::string key = "Msg" + std::to_string(n);
  out = ini::get_string("Messages", key, "", kMessageSize, file);
  if (after_level) out = text_after_first_word(out);
  if (!out.empty()) return true;
  problem = {message, {std::string(instance), file, key, "Messages"}};
  return false;
}

bool require_path(std::string_view section, std::string_view key, const std::string& file,
                  std::string& out, int message, std::string_view instance,
                  SettingsProblem& problem) {
  if (!require(section, key, file, out, message, instance, problem)) return false;
  out = map_directory(out);
  return true;
}

std::optional<AgentSettings> load_agent(std::string_view instance, const std::string& config,
                                        SettingsProblem& problem) {
  std::string ini_file = setting("PXEMIO", "IniFileName", config);
  if (ini_file.empty()) return std::nullopt;
  AgentSettings agent;
  agent.ini_file = map_directory(ini_file);
  ini::drop_file(agent.ini_file);
  const std::string& ini = agent.ini_file;
  const int kMissing = kMsgAgentSettingMissing;
  if (!require_path("Plexar", "StatusFile", ini, agent.status_file, kMissing, instance, problem) ||
      !require_path("Paths", "DataPath", ini, agent.data_path, kMissing, instance, problem) ||
      !require_path("Paths", "ErrorPath", ini, agent.error_path, kMissing, instance, problem) ||
      !require_message(105, false, ini, agent.status_text, kMissing, instance, problem)) {
    return std::nullopt;
  }
  std::string log = setting("Plexar", "LogFile", ini);
  if (!log.empty()) agent.log_file = map_directory(log);
  int cycle = ini::get_int("Options", "CycleTime", kDefaultCycleTime, ini);
  if (cycle < 1) cycle = 1;
  bool seconds = ini::is_yes(ini::get_string("Options", "Seconds", "No", 8, ini));
  agent.cycle_seconds = seconds ? cycle : cycle * 60;
  return agent;
}

}  // namespace

std::string text_after_first_word(std::string_view value) {
  value = trim_left(value);
  size_t end = value.find_first_of(" \t\r\n");
  if (end == std::string_view::npos) return std::string();
  return std::string(trim(value.substr(end)));
}

std::string install_file() { return ini::get_string("Plexar", "Install", "", 256); }

std::vector<std::string> installed_instances() {
  std::string install = install_file();
  if (install.empty()) return {};
  return ini::get_key_array("Configuration", install);
}

std::optional<InstanceSettings> load_instance(std::string_view instance, SettingsProblem& problem,
                                              SettingsProblem& agent_problem) {
  std::string install = install_file();
  std::string config;
  if (!install.empty()) {
    ini::drop_file(install);
    config = setting("Configuration", instance, install);
  }
  if (config.empty()) {
    problem = {kMsgNotInstalled, {std::string(instance), install}};
    return std::nullopt;
  }
  return load_instance_file(instance, config, problem, agent_problem);
}

std::optional<InstanceSettings> load_instance_file(std::string_view instance,
                                                   const std::string& config_file,
                                                   SettingsProblem& problem,
                                                   SettingsProblem& agent_problem) {
  load_directory_map(instance);
  ini::drop_file(config_file);
  InstanceSettings settings;
  ServerSettings& s = settings.server;
  s.instance = std::string(instance);
  s.config_file = config_file;
  const std::string& ini = config_file;
  const int kMissing = kMsgSettingMissing;
  if (!require_path("Plexar", "StatusFile", ini, s.status_file, kMissing, instance, problem) ||
      !require_path("Paths", "DataPath", ini, s.data_path, kMissing, instance, problem) ||
      !require_path("Paths", "ErrorPath", ini, s.error_path, kMissing, instance, problem) ||
      !require_message(310, true, ini, s.not_running_text, kMissing, instance, problem) ||
      !require_message(315, true, ini, s.paused_text, kMissing, instance, problem)) {
    return std::nullopt;
  }
  std::string control = setting("Paths", "ControlPath", ini);
  if (!control.empty()) control = map_directory(control);
  s.control_path = !control.empty() && is_directory(control) ? control : s.data_path;

  std::string log = setting("Plexar", "LogFile", ini);
  if (!log.empty()) s.log_file = map_directory(log);
  std::string backup = setting("Paths", "BackupPath", ini);
  if (!backup.empty()) s.backup_path = map_directory(backup);
  s.backup_files = ini::is_yes(ini::get_string("Options", "BackupFiles", "No", 8, ini));
  std::string patterns = ini::get_string("Options", "FileSpec", "*.DAT", kPathSize, ini);
  s.file_pattern = std::string(trim(std::string_view(patterns).substr(0, patterns.find(';'))));
  if (s.file_pattern.empty()) s.file_pattern = "*.DAT";
  s.pause_seconds = ini::get_int("Options", "PauseTime", 5, ini);
  if (s.pause_seconds < 1) s.pause_seconds = 1;
  std::string jmd = setting("Options", "JMDFileName", ini);
  if (!jmd.empty()) s.jmd_file = map_directory(jmd);

  agent_problem = {};
  settings.agent = load_agent(instance, ini, agent_problem);
  return settings;
}

}  // namespace px::sim
