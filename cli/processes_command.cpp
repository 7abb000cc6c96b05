// pxctl processes: the rows of the Configure dialog of the instance: the
// text of message 211 (the console's own instance list) first, then each
// process's display name without its group word, in the order of section
// Processes. An instance on another node lists only the first row.
#include <cstdio>

#include "cli/cli.h"
#include "cli/control_session.h"
#include "common/messages.h"
#include "config/forms/process_list.h"
#include "control/node.h"

namespace px::cli {

int run_processes(const Invocation& call) {
  if (!call.words.empty()) return usage_error("processes", "pxctl [--instance NAME] processes");
  ControlSession session(call);
  if (!session.ready()) return kExitFailed;
  bool other_node = (location(session.instance().name) & kLocationOtherNode) != 0;
  forms::ProcessListing listing =
      forms::list_processes(session.instance().config_file, other_node, session.op());
  if (listing.closes) return kExitFailed;
  std::printf("%s\n", messages::message_label(forms::kMsgInstanceListRow).c_str());
  for (const forms::Process& process : listing.processes) {
    std::printf("%s\n", process.name.c_str());
  }
  return listing.opened ? kExitOk : kExitFailed;
}

}  // namespace px::cli
