// "Configure Nexa and Agents" (dialog 123): the processes of the current
// instance, with row 0 (message 211) standing for the console's own list of
// instances. "Edit File..." or a double click closes it and opens the
// chosen row's editor: the instance configuration dialog for row 0, else
// the process's EditCfgRtn command (run and waited for with the task
// window disabled; 187 when it cannot be run) or its built-in dialog
// (server, E-mail Agent, Print Agent); 207 when that dialog cannot be
// opened. An instance on another node lists only row 0.
#pragma once

#include "config/dialogs/config_context.h"
#include "config/instances.h"

namespace px::dialogs {

// False when the dialog itself could not be opened (101 was shown).
bool run_configure_dialog(const ConfigContext& context, const Instance& instance, bool other_node);

}  // namespace px::dialogs
