// pxctl stop-email: asks the instance's E-mail Agent to stop (stopread.msg
// and its control signal).
#include "cli/control_session.h"
#include "control/agents.h"

namespace px::cli {

int run_stop_email(const Invocation& call) {
  return run_plain_control(call, "pxctl [--instance NAME] stop-email", &stop_email_agent);
}

}  // namespace px::cli
