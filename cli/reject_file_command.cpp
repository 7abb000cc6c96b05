// pxctl reject-file [--email] NAME: the lines of the rejected file NAME in
// the server's (or the E-mail Agent's) error directory, as the rejected-file
// view shows them (unwrapped).
#include <optional>
#include <string>

#include "cli/control_session.h"
#include "common/file_util.h"
#include "views/file_lists.h"
#include "views/log_text.h"

namespace px::cli {

int run_reject_file(const Invocation& call) {
  // --email may stand before or after NAME; NAME is a file name, never an
  // option, so "reject-file --email" lacks its NAME.
  bool email = false;
  std::optional<std::string> name;
  bool usage_ok = true;
  for (const std::string& word : call.words) {
    if (word == "--email" && !email) {
      email = true;
    } else if (word.empty() || word.starts_with("--") || name) {
      usage_ok = false;
    } else {
      name = word;
    }
  }
  if (!usage_ok || !name) {
    return usage_error("reject-file", "pxctl [--instance NAME] reject-file [--email] NAME");
  }
  ControlSession session(call);
  if (!session.ready()) return kExitFailed;
  auto directory = views::error_directory(session.instance().config_file, email, session.op());
  if (!directory) return kExitFailed;
  auto lines = views::file_lines(join_path(*name, *directory), session.op());
  if (!lines) return kExitFailed;
  print_lines(*lines);
  return kExitOk;
}

}  // namespace px::cli
