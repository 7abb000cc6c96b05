// What the rejects windows and the E-mail Agent queue window list. Each is
// filled once when it opens; a problem is shown to the operator as a
// numbered message and the window closes (nullopt here).
//
// Settings read:
//   configuration file  PXEMIO  IniFileName  the E-mail Agent's INI file
//   configuration file  Paths   ErrorPath    the server's rejects
//   agent's INI file    Paths   DataPath     the agent's queue
//   agent's INI file    Paths   ErrorPath    the agent's rejects
// Paths go through the current instance's directory map.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "config/operator.h"

namespace px::views {

struct FileList {
  std::string directory;          // where the listed files are
  std::vector<std::string> rows;  // the file names, or the one "nothing" row
  bool has_files = false;         // false: rows holds only message 174 or 169
  int caption = 0;                // message for the caption when has_files
};

// The E-mail Agent's INI file named by the configuration (expanded), after
// checking that both files open; shows 144 or 167 and gives nullopt if not.
std::optional<std::string> agent_ini_file(const std::string& config_file, Operator& op);

// The E-mail Agent's queue: "stopread.msg" first when it is there, then the
// "*.dat" files oldest first; message 174 as the only row when empty.
// Problems: 144, 167, 168.
std::optional<FileList> email_queue(const std::string& config_file, Operator& op);

// The server's (email false) or the E-mail Agent's rejects: every file of
// ErrorPath in directory order; message 169 as the only row when empty.
// Problems: 144, 167, 184.
std::optional<FileList> rejects(const std::string& config_file, bool email, Operator& op);

// The error directory the rejects of the server or the E-mail Agent are
// in; shows 144 or 167 and gives nullopt when it cannot be told.
std::optional<std::string> error_directory(const std::string& config_file, bool email,
                                           Operator& op);

}  // namespace px::views
