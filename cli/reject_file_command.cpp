// pxctl reject-file [--email] NAME: the lines of the rejected file NAME in
// the server's (or the E-mail Agent's) error directory, as the rejected-file
// view shows them (unwrapped).
#include "cli/control_session.h"
#include "common/file_util.h"
#include "views/file_lists.h"
#include "views/log_text.h"

namespace px::cli {

int run_reject_file(const Invocation& call) {
  const std::vector<std::string>& w = call.words;
  bool email = w.size() == 2 && w[0] == "--email";
  if (w.empty() || w.size() > 2 || (w.size() == 2 && !email) || w.back().empty()) {
    return usage_error("reject-file", "pxctl [--instance NAME] reject-file [--email] NAME");
  }
  ControlSession session(call);
  if (!session.ready()) return kExitFailed;
  auto directory = views::error_directory(session.instance().config_file, email, session.op());
  if (!directory) return kExitFailed;
  auto lines = views::file_lines(join_path(w.back(), *directory), session.op());
  if (!lines) return kExitFailed;
  print_lines(*lines);
  return kExitOk;
}

}  // namespace px::cli
