// The processes of an instance and the editor each one opens: the model of
// "Configure Nexa and Agents" (dialog 123) and of `pxctl processes` and
// `pxctl config`.
//
// Section Processes of the instance's configuration file has one key per
// process (PXSERVER, PXEMIO, PXMERGE, ...) whose value is its display name;
// lists show the name without a leading group word ("Plexar " or "Ortane
// Relay ", any case). Each process's own section gives its INI file
// (IniFileName; the server's is the configuration file itself) and may give
// EditCfgRtn, a command that edits that file instead of the built-in form.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "config/operator.h"

namespace px::forms {

// Messages of the process list.
inline constexpr int kMsgProcessesMissing = 175;   // @P1 "Processes", @P2 file
inline constexpr int kMsgEditorNotRun = 187;       // @P1 command
inline constexpr int kMsgConfigureTitle = 204;
inline constexpr int kMsgEditFileButton = 205;
inline constexpr int kMsgEditorNotOpened = 207;
inline constexpr int kMsgInstanceListRow = 211;    // row 0: the console's instance list
inline constexpr int kMsgNothingSelected = 214;
inline constexpr int kMsgConfigNotOpened = 218;    // @P1 file
inline constexpr int kMsgSettingMissing = 167;     // @P1 section, @P2 file, @P3 key

struct Process {
  std::string key;   // the key in section Processes
  std::string name;  // its display name without the group word
};

struct ProcessListing {
  bool closes = false;              // no Processes section: 175 was shown
  bool opened = true;               // false: the file did not open (218 shown)
  std::vector<Process> processes;   // the rows after row 0
};

// The display name without its group word.
std::string without_group_word(std::string_view name);

// The configure dialog's rows after row 0. A file that does not open shows
// 218 and lists none; an instance on another node lists none; a file
// without processes shows 175 and the dialog closes. A key list longer than
// its room (process_keys) lists the processes that fit.
ProcessListing list_processes(const std::string& config_file, bool other_node, Operator& op);

// The key of the process whose listed name equals row exactly.
std::optional<std::string> key_for_row(const ProcessListing& listing, std::string_view row);

// The key of a listed process that matches word without regard to case, as
// the file spells it: only the processes the configure dialog offers.
std::optional<std::string> find_process_key(const ProcessListing& listing, std::string_view word);

// The INI file of process key: the configuration file for PXSERVER (any
// case), else IniFileName of section key mapped through the directory map;
// 167 and nothing when that has fewer than 2 characters.
std::optional<std::string> process_ini_file(const std::string& config_file, const std::string& key,
                                            Operator& op);

enum class EditorKind { kCommand, kServer, kEmail, kPrint };

struct ProcessEditor {
  EditorKind kind = EditorKind::kCommand;
  std::string key;
  std::string ini_file;
  std::string command;  // kCommand: EditCfgRtn with the INI file filled in
};

// What editing process key opens: its EditCfgRtn command when set, else the
// built-in form by the key compared exactly. 167 and nothing for a missing
// IniFileName or for a key without a built-in form.
std::optional<ProcessEditor> process_editor(const std::string& config_file, const std::string& key,
                                            Operator& op);

}  // namespace px::forms
