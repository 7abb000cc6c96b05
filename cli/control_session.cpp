#include "cli/control_session.h"

#include "config/instances.h"
#include "config/jmd_printers.h"
#include "config/jmd_service.h"

namespace px::cli {

namespace {

// The instance a command means, for its audit record before it is selected:
// the one asked for, or the default (the first of the install file).
std::string meant_instance(const Invocation& call) {
  if (!call.instance.empty()) return call.instance;
  InstanceEnumerator instances;
  Instance first;
  if (!instances.begin()) return {};
  bool found = instances.next(first);
  instances.end();
  return found ? first.name : std::string();
}

}  // namespace

ControlSession::ControlSession(const Invocation& call, std::string action) {
  if (!action.empty()) {
    pending_.emplace(op_, std::move(action), meant_instance(call));
    if (!pending_->permitted()) return;
  }
  if (!call.instance.empty()) {
    ready_ = select_instance(call.instance, op());
    return;
  }
  ready_ = select_default_instance(op()) > 0 && current_instance().config_file.size() >= 2;
}

Operator& ControlSession::op() { return pending_ ? pending_->op() : op_; }

void ControlSession::hand_over() {
  if (pending_) pending_->hand_over();
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
  ControlSession session(call, call.command);
  if (!session.ready()) return kExitFailed;
  session.hand_over();
  return exit_status(run(session.context()));
}

}  // namespace px::cli
