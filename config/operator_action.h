// The one gate of every operator action that changes a file or signals the
// server: control jobs, starts and stops, signals, JMD saves, INI saves and
// changes to the instance list, from the console and from pxctl alike.
//
// An action opens an OperatorAction first and goes on only when it is
// permitted:
//
//   OperatorAction action(op, "pause", instance.name);
//   if (!action.permitted()) return Outcome::kFailed;
//   ... the work, reporting through action.op() ...
//   action.finish(ActionResult::kDone);
//
// Read-only mode refuses every action here: ReadOnly=Yes (any value that
// begins with "y" or "Y", as every Yes/No switch) in section Options of the
// console's INI file, or the common option -aro. The operator is shown
// message 1700 with the action's name and nothing is done; views and show
// commands, which open no OperatorAction, work as usual.
//
// Every action is recorded in the operator audit log (audit_log.h) when it
// ends: refused at once, otherwise at finish() (or, unfinished, at the end
// of its scope as failed), with the number of the last message shown
// through op().
#pragma once

#include <string>
#include <vector>

#include "common/file_system.h"
#include "config/operator.h"

namespace px {

namespace msg {
inline constexpr int kReadOnlyRefused = 1700;  // @P1 the action
inline constexpr int kReadOnlyReason = 1701;   // the tooltip of a disabled item
}  // namespace msg

// True when the console only looks: ReadOnly in section Options of the
// console's INI file says yes, or -aro was given.
bool read_only_mode();

// Why an item is disabled in read-only mode (message 1701, expanded), for
// the tooltip of a menu item or button.
std::string read_only_reason();

// How a permitted action ended.
enum class ActionResult {
  kDone,
  kFailed,     // a message told the operator why
  kCancelled,  // the operator cancelled it; nothing was changed
};

class OperatorAction {
 public:
  // Starts the action named action (a pxctl-like name such as "pause" or
  // "ini set FILE SECTION KEY") on instance (empty for none); in read-only
  // mode it is refused at once with message 1700 through op.
  // The audit record's file steps go through files (tests fail them).
  OperatorAction(Operator& op, std::string action, std::string instance,
                 FileSystem& files = system_file_system());
  // A permitted action that was never finished counts as failed.
  ~OperatorAction();
  OperatorAction(const OperatorAction&) = delete;
  OperatorAction& operator=(const OperatorAction&) = delete;

  bool permitted() const { return permitted_; }
  // The operator to report through: it passes everything on to the one
  // given and notes the number of the last message shown.
  Operator& op() { return noting_; }
  // The number of the last message shown through op(), 0 when none.
  int last_message() const { return noting_.last; }
  // Ends the action; later calls change nothing.
  void finish(ActionResult result);
  // Ends a permitted action without a record: it goes on under a gate of
  // its own further in (a library call that opens one), or it turned out
  // to be no action at all (a usage error).
  void hand_over() { finished_ = true; }

 private:
  // Writes the audit record (audit_log.h); a file that cannot be written is
  // reported with 1702, which does not count as the action's message.
  void record(const char* result);

  struct NotingOperator : Operator {
    explicit NotingOperator(Operator& to) : target(to) {}
    void show(int n, const std::vector<std::string>& args) override;
    size_t ask(int n, const std::vector<std::string>& args, const std::vector<int>& buttons) override;
    PrinterReloadChoice choose_printer_reload(std::string_view instance_title,
                                              const std::vector<std::string>& printers) override;
    Operator& target;
    int last = 0;
  };

  NotingOperator noting_;
  FileSystem& files_;
  std::string action_;
  std::string instance_;
  bool permitted_ = false;
  bool finished_ = false;
};

}  // namespace px
