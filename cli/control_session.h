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
#include "control/control_context.h"

namespace px::cli {

class ControlSession {
 public:
  // Makes the command's instance current; ready() tells whether that worked
  // (the reason was reported when it did not).
  explicit ControlSession(const Invocation& call);

  bool ready() const { return ready_; }
  ConsoleOperator& op() { return op_; }
  const Instance& instance() const;
  ControlContext context();

 private:
  ConsoleOperator op_;
  SystemClock clock_;
  SystemProgramRunner runner_;
  bool ready_ = false;
};

// The exit status of a finished control command: 0 also when the job was
// written and only the wake-up failed (the warning is on stderr).
int exit_status(Outcome outcome);

// Runs a command that takes no words through the library call run, with
// synopsis for a usage error.
int run_plain_control(const Invocation& call, const char* synopsis,
                      Outcome (*run)(const ControlContext&));

}  // namespace px::cli
