// pxctl status: every row of the status and queue view, one per line: each
// instance's block in install-file order.
#include "cli/cli.h"
#include "cli/console_operator.h"
#include "config/instances.h"
#include "views/status_queue.h"

namespace px::cli {

int run_status(const Invocation& call) {
  if (!call.words.empty()) return usage_error("status", "pxctl status");
  ConsoleOperator op;
  // The view lists every instance; the chosen one is only the profile
  // engine's active instance again afterwards, as in the console.
  if (!call.instance.empty() ? !select_instance(call.instance, op) : select_default_instance(op) == 0) {
    return kExitFailed;
  }
  print_lines(views::status_queue_rows());
  return kExitOk;
}

}  // namespace px::cli
