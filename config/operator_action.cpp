#include "config/operator_action.h"

#include "common/common_init.h"
#include "common/expand.h"
#include "common/ini_profile.h"
#include "common/messages.h"
#include "config/audit_log.h"

namespace px {

namespace {

constexpr size_t kSwitchSize = 16;

const char* result_word(ActionResult result) {
  switch (result) {
    case ActionResult::kDone: return "done";
    case ActionResult::kCancelled: return "cancelled";
    case ActionResult::kFailed: break;
  }
  return "failed";
}

}  // namespace

bool read_only_mode() {
  return read_only_option() || ini::is_yes(ini::get_string("Options", "ReadOnly", "", kSwitchSize));
}

std::string read_only_reason() { return expand(messages::message_text(msg::kReadOnlyReason)); }

OperatorAction::OperatorAction(Operator& op, std::string action, std::string instance,
                               FileSystem& files)
    : noting_(op), files_(files), action_(std::move(action)), instance_(std::move(instance)) {
  permitted_ = !read_only_mode();
  if (permitted_) return;
  noting_.show(msg::kReadOnlyRefused, {action_});
  record("refused");
  finished_ = true;
}

OperatorAction::~OperatorAction() { finish(ActionResult::kFailed); }

void OperatorAction::finish(ActionResult result) {
  if (finished_) return;
  finished_ = true;
  record(result_word(result));
}

void OperatorAction::record(const char* result) {
  AuditRecord entry = audit_record_now(instance_, action_, result, noting_.last);
  std::string file, error;
  if (!write_audit_record(entry, file, error, files_)) {
    noting_.target.show(msg::kAuditNotWritten, {action_, file, error});
  }
}

void OperatorAction::NotingOperator::show(int n, const std::vector<std::string>& args) {
  last = n;
  target.show(n, args);
}

size_t OperatorAction::NotingOperator::ask(int n, const std::vector<std::string>& args,
                                          const std::vector<int>& buttons) {
  last = n;
  return target.ask(n, args, buttons);
}

PrinterReloadChoice OperatorAction::NotingOperator::choose_printer_reload(
    std::string_view instance_title, const std::vector<std::string>& printers) {
  return target.choose_printer_reload(instance_title, printers);
}

}  // namespace px
