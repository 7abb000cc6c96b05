// What pxctl's server-control commands share: the instance they act on (the
// default one, or --instance NAME), the operator that prints their messages,
// and the real clock, program runner and JMD printer list (through the JMD
// service, as the Printer Reload dialog reads it).
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/cli.h"
#include "cli/console_operator.h"
#include "config/operator_action.h"
#include "control/control_context.h"

namespace px::cli {

class ControlSession {
 public:
  // Makes the command's instance current; ready() tells whether that worked
  // (the reason was reported when it did not).
  //
  // A command that changes something names its operator action (such as
  // "pause"), whose gate (config/operator_action.h) then opens first: read-
  // only mode refuses the command before anything else is looked at, and a
  // command that fails before the library call that opens the action's own
  // gate (an instance without a configuration file, a JMD that does not
  // open, a process that cannot be configured here) is recorded in the audit
  // log as failed, with its message. The command calls hand_over() just
  // before that library call, or on a usage error.
  explicit ControlSession(const Invocation& call, std::string action = {});

  bool ready() const { return ready_; }
  // Reports through the pending action while there is one.
  Operator& op();
  // The operator pxctl prints with, which also holds the Printer Reload choice.
  ConsoleOperator& console() { return op_; }
  const Instance& instance() const;
  ControlContext context();
  // Ends the pending action without a record (OperatorAction::hand_over).
  void hand_over();

 private:
  ConsoleOperator op_;
  std::optional<OperatorAction> pending_;
  SystemClock clock_;
  SystemProgramRunner runner_;
  bool ready_ = false;
};

// The exit status of a finished control command: 0 also when the job was
// written and only the wake-up failed (the warning is on stderr).
int exit_status(Outcome outcome);

// Runs a command that takes no words through the library call run, with
// synopsis for a usage error; the command word names the action.
int run_plain_control(const Invocation& call, const char* synopsis,
                      Outcome (*run)(const ControlContext&));

}  // namespace px::cli
