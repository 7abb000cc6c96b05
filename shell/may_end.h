// The may-the-program-end check, and Save: the JMD's unsaved edits are
// never dropped without the operator's word.
#pragma once

#include "shell/console.h"

namespace px::shell {

// With unsaved JMD edits asks message 291 with the buttons 249 (save), 250
// (drop the edits) and 140 (cancel). Cancel, or a save that fails (its
// message was shown and the edits are kept), answers no. Otherwise, and
// after saving or dropping, the JMD is unloaded with its modified mark
// cleared, its editor windows are closed, and the answer is yes.
bool may_program_end(Console& console);

// Saves the open JMD (nothing to do when none is open).
void save_database(Console& console);

}  // namespace px::shell
