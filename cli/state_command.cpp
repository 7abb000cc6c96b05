// pxctl state: prints the server's state number, a TAB and its name
// ("unknown", "not running", "paused", "running").
#include <cstdio>

#include "cli/control_session.h"
#include "config/state_probes.h"

namespace px::cli {

int run_state(const Invocation& call) {
  if (!call.words.empty()) return usage_error("state", "pxctl [--instance NAME] state");
  ControlSession session(call);
  if (!session.ready()) return kExitFailed;
  ServerState state = server_state(session.instance().config_file, session.op());
  std::printf("%d\t%s\n", static_cast<int>(state), server_state_name(state));
  return state == ServerState::kUnknown ? kExitFailed : kExitOk;
}

}  // namespace px::cli
