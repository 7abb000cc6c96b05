// pxctl jmd-save: opens the current instance's JMD through the JMD service,
// as the console's editors do, and saves it, keeping the previous file as its
// ".JBK" backup.
#include "cli/control_session.h"
#include "config/jmd_service.h"

namespace px::cli {

int run_jmd_save(const Invocation& call) {
  if (!call.words.empty()) return usage_error("jmd-save", "pxctl [--instance NAME] jmd-save");
  ControlSession session(call, "jmd-save");
  if (!session.ready()) return kExitFailed;
  JmdService& service = jmd_service();
  bool opened = service.open(session.op()) != nullptr;
  bool saved = false;
  if (opened) {
    session.hand_over();  // the save is the action
    saved = service.save(session.console());
  }
  service.close();
  return saved ? kExitOk : kExitFailed;
}

}  // namespace px::cli
