// pxctl start: starts the server of the instance when it is not running.
#include "cli/control_session.h"
#include "control/agents.h"

namespace px::cli {

int run_start(const Invocation& call) {
  return run_plain_control(call, "pxctl [--instance NAME] start", &start_server);
}

}  // namespace px::cli
