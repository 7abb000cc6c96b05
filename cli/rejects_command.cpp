// pxctl rejects [--email]: the rows of the server's (or the E-mail Agent's)
// rejects window. A problem that would close the window is shown as its
// numbered message, exit status 1.
#include "cli/control_session.h"
#include "views/file_lists.h"

namespace px::cli {

int run_rejects(const Invocation& call) {
  bool email = call.words.size() == 1 && call.words[0] == "--email";
  if (!call.words.empty() && !email) {
    return usage_error("rejects", "pxctl [--instance NAME] rejects [--email]");
  }
  ControlSession session(call);
  if (!session.ready()) return kExitFailed;
  auto list = views::rejects(session.instance().config_file, email, session.op());
  if (!list) return kExitFailed;
  print_lines(list->rows);
  return kExitOk;
}

}  // namespace px::cli
