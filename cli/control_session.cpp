#include "cli/control_session.h"

#include "config/instances.h"
#include "config/jmd_printers.h"
#include "config/jmd_service.h"

namespace px::cli {

ControlSession::ControlSession(const Invocation& call) {
  if (!call.instance.empty()) {
    ready_ = select_instance(call.instance, op_);
    return;
  }
  ready_ = select_default_instance(op_) > 0 && current_instance().config_file.size() >= 2;
}

const Instance& ControlSession::instance() const { return current_instance(); }

ControlContext ControlSession::context() {
  PrinterSource printers = [this] { return jmd_printer_names(jmd_service(), op_); };
  return ControlContext{current_instance(), op_, clock_, runner_, printers, {}, {}};
}

int exit_status(Outcome outcome) {
  return outcome == Outcome::kDone || outcome == Outcome::kDeliveredNotWoken ? kExitOk
                                                                             : kExitFailed;
}

int run_plain_control(const Invocation& call, const char* synopsis,
                      Outcome (*run)(const ControlContext&)) {
  if (!call.words.empty()) return usage_error(call.command, synopsis);
  ControlSession session(call);
  if (!session.ready()) return kExitFailed;
  return exit_status(run(session.context()));
}

}  // namespace px::cli
