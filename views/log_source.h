// Which log the log view shows: the server's, one of its processes', or the
// E-mail Agent's, read from the current instance's configuration file.
//
// Settings read (paths through the directory map; a value shorter than 2
// characters counts as missing):
//   configuration file  Processes  <section>=<display name>, one per process
//   configuration file  <section>  LogFile      the process's own log
//   configuration file  Plexar     LogFile      the server's log
//   configuration file  PXEMIO     IniFileName  the E-mail Agent's INI file
//   agent's INI file    Plexar     LogFile      the E-mail Agent's log
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "config/operator.h"

namespace px::views {

struct LogProcess {
  std::string section;  // key in Processes: the process's section
  std::string name;     // its display name
  std::string log;      // its own LogFile, else the server's
};

struct ProcessLogs {
  std::vector<LogProcess> processes;  // in Processes order, PXEMIO left out
  std::string server_log;             // LogFile of Plexar; empty when not set
};

// The processes with a log: those with their own LogFile, and, when the
// server's LogFile is set, the others with that. Only the processes whose
// keys fit in the first 1024 characters of the key list are looked at. Shows 144 (configuration
// does not open) or 175 (no Processes section) and gives nullopt.
std::optional<ProcessLogs> log_processes(const std::string& config_file, Operator& op);

// What opening the server's log does with the processes found.
enum class LogOpening {
  kNothing,  // no process has a log and the server's LogFile is not set
  kOnly,     // exactly one process has a log: it opens at once
  kChoice,   // the operator chooses among the processes; the list is empty
             // when Processes names the E-mail Agent only
};
LogOpening log_opening(const ProcessLogs& logs);

// The log of the process in section: its own LogFile, else the server's.
// Shows 144 or 167 (section, file, "LogFile") and gives nullopt.
std::optional<std::string> process_log_file(const std::string& config_file,
                                            const std::string& section, Operator& op);

// The E-mail Agent's log. Shows 144 or 167 and gives nullopt.
std::optional<std::string> agent_log_file(const std::string& config_file, Operator& op);

}  // namespace px::views
