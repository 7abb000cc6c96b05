// Server control commands as operator actions: each runs through the gate of
// config/operator_action.h, so read-only mode refuses it (message 1700) and
// the audit log records it, whether it came from a menu or from pxctl.
#pragma once

#include <functional>
#include <string_view>

#include "control/control_context.h"

namespace px {

// Runs body on the context as the action named action (such as "pause") on
// the context's instance. Refused: kFailed, and body never runs. Otherwise
// body reports through the action's operator and its outcome ends the
// action.
Outcome run_gated(std::string_view action, const ControlContext& context,
                  const std::function<Outcome(const ControlContext&)>& body);

}  // namespace px
