// The five operator commands that reach a running server through a control
// job: Printer Reload, Job Table Reload, Shut Down Server, Pause Server and
// Resume Server. Each checks the instance's configuration file (144) and the
// server's state, writes the job (see control_job.h), wakes the server with
// its control signal and shows its success message.
//
// State rules: Printer Reload, Job Table Reload and Shut Down need a paused
// or running server; Pause needs a running one (paused: 239); Resume needs a
// paused one (running: 238); a server that is not running gives 234. An
// unknown state stops the command after the probe's own message.
//
// Each is an operator action (gated_action.h), named by its pxctl command:
// refused in read-only mode before anything is read, recorded in the audit
// log when it has run.
#pragma once

#include "control/control_context.h"
#include "control/control_job.h"

namespace px {

Outcome printer_reload(const ControlContext& context);
Outcome job_table_reload(const ControlContext& context);
Outcome shut_down_server(const ControlContext& context);
Outcome pause_server(const ControlContext& context);
Outcome resume_server(const ControlContext& context);

// The command behind each of the five entry points.
Outcome run_control_command(ControlCommand command, const ControlContext& context);

}  // namespace px
