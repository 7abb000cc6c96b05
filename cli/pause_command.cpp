// pxctl pause: asks a running server to pause through a control job.
#include "cli/control_session.h"
#include "control/control_commands.h"

namespace px::cli {

int run_pause(const Invocation& call) {
  return run_plain_control(call, "pxctl [--instance NAME] pause", &pause_server);
}

}  // namespace px::cli
