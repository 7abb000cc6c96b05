// Probes that tell what state the server and its E-mail Agent are in, by
// comparing the first line of a status file with numbered status texts.
//
// Settings read (a value shorter than 2 characters counts as missing; paths
// go through the directory map):
//   configuration file  Plexar    StatusFile    the server's status file
//   configuration file  Messages  Msg310        "<level> <text>": not running
//   configuration file  Messages  Msg315        "<level> <text>": paused
//   configuration file  PXEMIO    IniFileName   the E-mail Agent's INI file
//   agent's INI file    Plexar    StatusFile    the agent's status file
//   agent's INI file    Messages  Msg105, Msg132, Msg133   agent status texts
#pragma once

#include <string>
#include <string_view>

#include "config/operator.h"

namespace px {

enum class ServerState : int {
  kUnknown = 0,     // the state could not be read (a message was shown)
  kNotRunning = 1,  // no status file, or it says message 310's text
  kPaused = 2,      // the status line holds message 315's text
  kRunning = 3,     // any other status line
};

// The longest status line compared.
inline constexpr size_t kStatusLineLength = 1024;

// The server's state from the first line of its status file: not running
// when the file does not exist or the line holds the text of message 310
// (the value after its first word), paused when it holds that of 315, else
// running. A missing StatusFile shows 167 and an unreadable file 177; both
// give kUnknown.
ServerState server_state(const std::string& config_file, Operator& op);

// The state a status file's first line tells, by the rule above: not
// running when it holds message 310's text, paused when it holds 315's, else
// running. Reads only the configuration's messages.
ServerState state_of_status_line(std::string_view line, const std::string& config_file);

// The word pxctl prints for a state: "unknown", "not running", "paused" or
// "running".
const char* server_state_name(ServerState state);

// Whether one line of the E-mail Agent's status file reports one of its
// status messages: after the line's first three words, the rest must begin
// with the whole value of Msg105, Msg132 or Msg133 of the agent's INI file
// (compared over that value's length, case-sensitively). No when the
// configuration names no agent INI file.
bool email_status_line_matches(std::string_view line, const std::string& config_file);

// Whether the E-mail Agent's status file exists, which is how the console
// tells that the agent is running. A missing IniFileName or StatusFile shows
// 167 and answers yes.
bool email_status_file_present(const std::string& config_file, Operator& op);

}  // namespace px
