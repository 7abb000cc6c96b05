// pxctl queue --email: the rows of the E-mail Agent queue window (its
// caption is not printed). A problem that would close the window is shown
// as its numbered message, exit status 1.
#include "cli/control_session.h"
#include "views/file_lists.h"

namespace px::cli {

int run_queue(const Invocation& call) {
  if (call.words.size() != 1 || call.words[0] != "--email") {
    return usage_error("queue", "pxctl [--instance NAME] queue --email");
  }
  ControlSession session(call);
  if (!session.ready()) return kExitFailed;
  auto queue = views::email_queue(session.instance().config_file, session.op());
  if (!queue) return kExitFailed;
  print_lines(queue->rows);
  return kExitOk;
}

}  // namespace px::cli
