// SIGTERM, SIGINT and SIGHUP ask the simulator to stop. They are blocked
// except while the event loop waits in ppoll, so a stop request can never
// slip in between checking the flag and starting to wait.
#pragma once

#include <signal.h>

namespace px::sim {

// Installs the handlers and blocks the signals; returns the mask to wait with.
sigset_t install_stop_signals();

// The signal that asked to stop, or 0.
int stop_signal();

}  // namespace px::sim
