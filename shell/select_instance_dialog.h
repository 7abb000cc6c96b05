// "Select Instance of Nexa" (dialog 102): lists the window title of every
// instance in install-file order with the current one selected. OK or a
// double click makes the chosen instance current: the task window's title,
// message 165 when it has no configuration file, and the menu state follow.
// With no instance configured it shows message 166 and closes at once.
#pragma once

#include "shell/console.h"

namespace px::shell {

// Runs the dialog modally; message 101 when it cannot be opened.
void run_select_instance_dialog(Console& console);

}  // namespace px::shell
