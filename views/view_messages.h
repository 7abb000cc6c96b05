// The numbered messages of the monitoring views, and the two ways a view
// uses a message's text besides showing it: as a row of a list, and as a
// window title or caption.
#pragma once

#include <string>
#include <vector>

#include "common/messages.h"

namespace px::views {

namespace msg {
inline constexpr int kWindowNotOpened = 100;
inline constexpr int kDialogNotOpened = 101;
inline constexpr int kIniUnreadable = 144;         // @P1 configuration file
inline constexpr int kListNotCreated = 163;        // @P1 list name
inline constexpr int kSettingMissing = 167;        // @P1 section, @P2 file, @P3 key
inline constexpr int kDirectoryMissing = 168;      // @P1 directory
inline constexpr int kNoRejects = 169;
inline constexpr int kQueueCaption = 170;
inline constexpr int kStatusNotOpened = 173;       // @P1 status file
inline constexpr int kNoFiles = 174;
inline constexpr int kNoProcesses = 175;           // @P1 section, @P2 file
inline constexpr int kNoTextEdit = 176;
inline constexpr int kFileNotOpened = 177;         // @P1 file
inline constexpr int kTextFull = 178;
inline constexpr int kErrorDirectoryMissing = 184; // @P1 directory
inline constexpr int kEmptyStatus = 196;
inline constexpr int kRejectCaption = 197;
inline constexpr int kLogCaption = 198;
inline constexpr int kLogTitle = 252;
inline constexpr int kRejectTitle = 253;
inline constexpr int kServerRejectsTitle = 257;
inline constexpr int kAgentRejectsTitle = 258;
inline constexpr int kAgentQueueTitle = 259;
inline constexpr int kRejectsCaption = 260;
inline constexpr int kNotSet = 304;               // a setting the row needs is not set
// The project's own.
inline constexpr int kLogStartedAgain = 1400;      // @P1 log file
inline constexpr int kProcessNotListed = 1401;     // @P1 section, @P2 file
}  // namespace msg

// Message n as a row of a list: its text as the message file gives it (with
// its "[n]" number), with args as @P1, @P2, ...; nothing is logged.
std::string message_row(int n, const std::vector<std::string>& args = {});

// Message n as a title or caption: its text without the "[n]" number.
using messages::message_label;

}  // namespace px::views
