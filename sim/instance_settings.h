// What the simulator needs to know about one instance, read from the
// installation's INI files.
//
// The console's INI file names the install file (key Install of section
// Plexar); the install file's section Configuration maps each instance name
// to its configuration file, which is also the server's INI file. Directory
// settings go through the directory map of the instance (sections
// "Directories-<instance>" and "Special-<instance>" of the install file).
//
//   configuration file     section    key            use
//   ------------------     -------    ---            ---
//                          Plexar     StatusFile     first line: server state
//                          Plexar     LogFile        server log (optional)
//                          Options    PauseTime      seconds between scans (5)
//                          Options    FileSpec       transaction files ("*.DAT";
//                                                    text before the first ";")
//                          Options    BackupFiles    keep collected files
//                          Options    JMDFileName    named in reload lines
//                          Paths      DataPath       collector directory
//                          Paths      ControlPath    control jobs (else DataPath)
//                          Paths      ErrorPath      rejected files
//                          Paths      BackupPath     collected files kept
//                          Messages   Msg310, Msg315 not running, paused texts
//                          PXEMIO     IniFileName    the E-mail Agent's INI file
//   E-mail Agent INI       Plexar     StatusFile, LogFile
//                          Paths      DataPath, ErrorPath
//                          Options    CycleTime (15), Seconds ("No": minutes)
//                          Messages   Msg105         the agent's running status
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace px::sim {

struct ServerSettings {
  std::string instance;
  std::string config_file;
  std::string status_file;
  std::string log_file;       // empty: the server keeps no log
  std::string data_path;
  std::string control_path;   // ControlPath when that directory exists, else DataPath
  std::string error_path;
  std::string backup_path;    // empty: collected files are deleted
  bool backup_files = false;
  std::string file_pattern;      // one pattern
  int pause_seconds = 5;
  std::string jmd_file;
  std::string not_running_text;  // message 310 after its first word
  std::string paused_text;       // message 315 after its first word
};

struct AgentSettings {
  std::string ini_file;
  std::string status_file;
  std::string log_file;
  std::string data_path;
  std::string error_path;
  int cycle_seconds = 15 * 60;
  std::string status_text;  // the whole value of message 105 of the agent's INI file
};

struct InstanceSettings {
  ServerSettings server;
  std::optional<AgentSettings> agent;  // none when the instance has no E-mail Agent
};

// Why settings could not be read: a numbered message and its arguments.
struct SettingsProblem {
  int message = 0;
  std::vector<std::string> args;
};

// The install file named by the default INI file; empty when not named.
std::string install_file();

// The instance names of the install file, in order.
std::vector<std::string> installed_instances();

// Reads the settings of an installed instance. On failure returns nullopt and
// fills problem. A missing or incomplete E-mail Agent is not a failure: the
// instance is served without it and agent_problem says why (message 0 when
// the instance simply has none).
std::optional<InstanceSettings> load_instance(std::string_view instance, SettingsProblem& problem,
                                              SettingsProblem& agent_problem);

// The same for a configuration file given directly.
std::optional<InstanceSettings> load_instance_file(std::string_view instance,
                                                   const std::string& config_file,
                                                   SettingsProblem& problem,
                                                   SettingsProblem& agent_problem);

// The text of a status message value after its first word ("10 Nexa is
// paused" gives "Nexa is paused").
std::string text_after_first_word(std::string_view value);

}  // namespace px::sim
