#include "control/gated_action.h"

#include "config/operator_action.h"

namespace px {

namespace {

ActionResult result_of(Outcome outcome) {
  switch (outcome) {
    case Outcome::kDone:
    case Outcome::kDeliveredNotWoken: return ActionResult::kDone;
    case Outcome::kCancelled: return ActionResult::kCancelled;
    case Outcome::kFailed: break;
  }
  return ActionResult::kFailed;
}

}  // namespace

Outcome run_gated(std::string_view action, const ControlContext& context,
                  const std::function<Outcome(const ControlContext&)>& body) {
  OperatorAction gate(context.op, std::string(action), context.instance.name);
  if (!gate.permitted()) return Outcome::kFailed;
  ControlContext inner{context.instance, gate.op(),     context.clock,
                       context.runner,   context.printers, context.times,
                       context.scratch_directory};
  Outcome outcome = body(inner);
  gate.finish(result_of(outcome));
  return outcome;
}

}  // namespace px
