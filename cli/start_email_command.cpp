// pxctl start-email: starts the instance's E-mail Agent when it is not
// running.
#include "cli/control_session.h"
#include "control/agents.h"

namespace px::cli {

int run_start_email(const Invocation& call) {
  return run_plain_control(call, "pxctl [--instance NAME] start-email", &start_email_agent);
}

}  // namespace px::cli
