// pxctl shutdown: asks the server to shut down through stopserv.msg.
#include "cli/control_session.h"
#include "control/control_commands.h"

namespace px::cli {

int run_shutdown(const Invocation& call) {
  return run_plain_control(call, "pxctl [--instance NAME] shutdown", &shut_down_server);
}

}  // namespace px::cli
