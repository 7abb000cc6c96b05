// pxctl location: prints the instance's location word (1 reachable by
// datagram, 2 startable here, 4 on another node, 8 remote access).
#include <cstdio>

#include "cli/control_session.h"
#include "control/node.h"

namespace px::cli {

int run_location(const Invocation& call) {
  if (!call.words.empty()) return usage_error("location", "pxctl [--instance NAME] location");
  ControlSession session(call);
  if (!session.ready()) return kExitFailed;
  std::printf("%u\n", location(session.instance().name));
  return kExitOk;
}

}  // namespace px::cli
