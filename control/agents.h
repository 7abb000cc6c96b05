// Starting the server and the E-mail Agent, and stopping the E-mail Agent.
//
// Default branch: a stopped server is started by sending its instance name
// to the launcher, the E-mail Agent by sending "NAME\PxEmio" (see
// signals.h). Classic branch: an instance with remote access is started by a
// datagram to its node; any other is started here, from its ExePath
// directory (section Paths for the server, Pxemio for the agent), as
// "pxserver -aii<configuration file>" or "pxemio -aii<agent INI file>".
//
// The E-mail Agent is stopped by the empty file "stopread.msg" in the
// DataPath of its own INI file, followed by its control signal.
//
// Each is an operator action (gated_action.h): refused in read-only mode and
// recorded in the audit log as "start", "start-email" or "stop-email".
#pragma once

#include <string>

#include "common/file_system.h"
#include "control/control_context.h"

namespace px {

inline constexpr const char* kEmailStopFileName = "stopread.msg";

// Starts a server that is not running; a paused or running one shows 235.
Outcome start_server(const ControlContext& context);

// Starts the E-mail Agent unless its status file says it runs (236).
Outcome start_email_agent(const ControlContext& context);

// Asks a running E-mail Agent to stop (231); one not running shows 237.
Outcome stop_email_agent(const ControlContext& context);

// Puts the empty stop file in the agent's data directory in one crash-safe
// step (common/file_replace.h), replacing one the agent has not taken yet.
// On failure shows the failed step's message, then 177, and answers false;
// nothing is left in the directory. The file steps go through files.
bool write_email_stop_file(const std::string& data_directory, Operator& op,
                           FileSystem& files = system_file_system());

}  // namespace px
