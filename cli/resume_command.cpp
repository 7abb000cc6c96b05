// pxctl resume: asks a paused server to resume through a control job.
#include "cli/control_session.h"
#include "control/control_commands.h"

namespace px::cli {

int run_resume(const Invocation& call) {
  return run_plain_control(call, "pxctl [--instance NAME] resume", &resume_server);
}

}  // namespace px::cli
