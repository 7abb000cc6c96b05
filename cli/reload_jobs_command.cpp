// pxctl reload-jobs: asks the server to reload its job table through a
// control job.
#include "cli/control_session.h"
#include "control/control_commands.h"

namespace px::cli {

int run_reload_jobs(const Invocation& call) {
  return run_plain_control(call, "pxctl [--instance NAME] reload-jobs", &job_table_reload);
}

}  // namespace px::cli
