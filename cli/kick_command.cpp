// pxctl kick [--email]: sends the control signal to the server, or to its
// E-mail Agent, so it looks at its control directory at once.
#include "cli/control_session.h"
#include "config/operator_action.h"
#include "control/signals.h"

namespace px::cli {

int run_kick(const Invocation& call) {
  bool email = call.words.size() == 1 && call.words[0] == "--email";
  if (!call.words.empty() && !email) {
    return usage_error("kick", "pxctl [--instance NAME] kick [--email]");
  }
  ControlSession session(call, email ? "kick --email" : "kick");
  if (!session.ready()) return kExitFailed;
  session.hand_over();
  OperatorAction gate(session.console(), email ? "kick --email" : "kick", session.instance().name);
  if (!gate.permitted()) return kExitFailed;
  if (!kick(session.instance().name, email, gate.op())) return kExitFailed;
  gate.finish(ActionResult::kDone);
  return kExitOk;
}

}  // namespace px::cli
