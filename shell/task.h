// The task window's handler and the program's start: the current instance
// is chosen on create, menu commands go to the dispatcher, and closing or
// quitting passes the may-the-program-end check, so unsaved database edits
// are never dropped silently.
//
//   0 create    help hook; the current instance (the first in the install
//               file; 164 when there is none, 165 when it has no
//               configuration file); title, menu state, the E-mail Agent
//               rule, "Select Instance" disabled with fewer than two
//               instances; Edit items; the instances' overview and its
//               timer; the splash when SplashTime >= 1
//   1 destroy   the help file and its queue are released
//   5 close     the may-the-program-end check, then the end
//   13 command  the dispatcher
//   16 timer    the instances' overview is listed again (not while a view
//               window is open)
//   4 paint     white; while no view window is open, the overview: one
//               line per instance (title, state, files waiting)
//   17 quit     a plain quit ends at once; a query allows the quit when the
//               may-the-program-end check does
//   19 user     nothing
#pragma once

#include <string>
#include <vector>

#include "shell/console.h"

namespace px::shell {

// Start-up selection of the current instance; command is the menu item
// disabled when fewer than two instances are configured. Returns how many
// instances there are.
int select_instance_at_start(Console& console, tk::Window task, int command);

// The task window's event handler.
void handle_task_event(Console& console, const tk::Event& event);

// What the program hands the toolkit: menu bar 1010 when the E-mail Agent
// is enabled (PXEMIO in section Options nonzero), else 1000, and the task
// handler on console.
tk::Application console_application(Console& console);

// The program: runs the common start-up on args (a failure is shown and
// gives 1), then the console on toolkit until its task window ends (0).
int run_console(tk::Toolkit& toolkit, std::vector<std::string> args);

}  // namespace px::shell
