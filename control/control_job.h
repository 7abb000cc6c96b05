// Control jobs: the small text files that tell a running server what to do.
//
// File format. A control job is a text file with LF line ends, dropped into
// the server's control directory (ControlPath of section Paths in the
// instance's configuration file when that directory exists, else DataPath,
// both mapped through the directory map) under the first free name of
// pxctrl00.msg .. pxctrl99.msg, or as stopserv.msg for a shutdown. Its lines
// come from the template section PXCNTRLJOB (of the instance's configuration
// file, else of the console's INI file): one line per key, in the order the
// keys stand, the key names themselves never written. A value that is
// exactly (case-sensitively) one of these words is replaced:
//   !CommandString   the command: "Printer Reload", "Job Table Reload",
//                    "Shut Down Server", "Pause Server", "Resume Server"
//   !LogicalPrinter  Printer Reload: each chosen printer on its own line, or
//                    the one line "*" when the choice ends in "*"; other
//                    commands: no line at all
//   !MDFFileName     Printer Reload: the chosen form file; others: no line
//   !SystemDate      the local date of the command, "%y%m%d"
//   !SystemTime      the local time of the command, "%H:%M:%S"
//   !RequestorID     "PXCNTRL"
// Any other value is written as it stands. Date and time are taken once per
// command. A sensible template begins with "^job PXCNTRLJOB", so the server's
// job-file reader sees a job header.
//
// Writing. The job is first written to a scratch file in the current
// directory, pxcntrl.$$$ (stopserv.$$$ for a shutdown), which is always
// removed afterwards. Its text is then published under the target name at
// once and whole (a synced temporary beside it linked to the name, as
// common/file_replace.h does), and only when no file of that name exists: a numbered name
// taken meanwhile by someone else makes the next free number used, an
// existing stopserv.msg stops a shutdown. No failure leaves a partial file.
#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/file_system.h"
#include "config/operator.h"

namespace px {

enum class ControlCommand { kPrinterReload, kJobTableReload, kShutDown, kPause, kResume };

inline constexpr const char* kTemplateSection = "PXCNTRLJOB";
inline constexpr const char* kShutdownFileName = "stopserv.msg";
inline constexpr int kControlFileCount = 100;

// "Printer Reload", "Job Table Reload", ...
const char* command_text(ControlCommand command);

// The template's values in key order: from the configuration file, or from
// the console's INI file when the configuration file's section has less than
// two characters of keys. nullopt when neither has one.
std::optional<std::vector<std::string>> read_template(const std::string& config_file);

// The job's text from the template values. choice is used by Printer Reload
// only.
std::string control_job_text(const std::vector<std::string>& template_values,
                             ControlCommand command, const PrinterReloadChoice& choice,
                             const std::tm& moment);

// The control directory of the configuration file, with a separator at its
// end. Shows 167 (no DataPath) or 302 (DataPath is no directory) and answers
// nullopt.
std::optional<std::string> control_directory(const std::string& config_file, Operator& op);

// "pxctrl%02d.msg" for n.
std::string control_file_name(int n);

// The first n from first whose control file in directory cannot be opened;
// nullopt when all are taken.
std::optional<int> first_free_control_file(const std::string& directory, int first = 0);

// Writes text through the scratch file in scratch_directory (empty: the
// current directory) and publishes it in directory under target (a
// shutdown), or under the first free numbered name from *number on (the
// number used is stored back). Shows 147, 149, 155 or 158 and answers false
// on failure. The file steps go through files.
bool write_control_job(std::string_view text, const std::string& directory, ControlCommand command,
                       int* number, const std::string& scratch_directory, Operator& op,
                       FileSystem& files = system_file_system());

}  // namespace px
