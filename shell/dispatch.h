// The task window's menu commands: each command id to the action that
// performs it. Ids whose windows come with the views, the editors and the
// configuration dialogs are not handled here; unknown ids are ignored.
//
//   1006 Select Instance   after the may-the-program-end check, dialog 102
//   1007 Configure         dialog 123 on the current instance
//   1008 Exit              after the may-the-program-end check, the end
//   1009 / 1011            start Nexa / the E-mail Agent
//   1035                   stop the E-mail Agent
//   1023 1024 1025 1026 1037   the control jobs Shut Down Server, Printer
//                          Reload, Job Table Reload, Resume and Pause Server
//   1031 About, 1039 the manual, 1040 the knowledge-base page, 1047 Save
//   1016 1017 1048 1019 1020 1021   the monitoring views: status and queue,
//                          Nexa Log, E-Mail Agent Log, the rejects of the
//                          server and the E-mail Agent, the agent's queue
#pragma once

#include "shell/console.h"

namespace px::shell {

// Performs the command of a menu-command event of the task window; true
// when the id is one handled here.
bool dispatch_command(Console& console, const tk::Event& event);

}  // namespace px::shell
