// What every control command works with: the instance it acts on, the
// operator it reports to, and the few services behind interfaces (clock,
// program runner, the JMD's printers) that tests replace.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "config/instances.h"
#include "config/operator.h"
#include "control/clock.h"
#include "control/program_runner.h"
#include "control/signals.h"

namespace px {

// The logical printer names of the instance's JMD in table order; nullopt
// when the JMD cannot be opened (the source shows its own messages).
using PrinterSource = std::function<std::optional<std::vector<std::string>>()>;

struct ControlContext {
  const Instance& instance;
  Operator& op;
  Clock& clock;
  ProgramRunner& runner;
  PrinterSource printers;
  SignalTimes times;
  // Where the scratch copy of a control job is written; empty for the
  // current directory.
  std::string scratch_directory;
};

// How a command ended. kFailed means a message told the operator why.
enum class Outcome {
  kDone,
  kFailed,
  kCancelled,  // the operator cancelled a choice; nothing was written
  // The job (or stop file) was written, so the server takes it at its next
  // scan; only waking it at once failed, and a message said so. Sending it
  // again would act twice.
  kDeliveredNotWoken,
};

}  // namespace px
