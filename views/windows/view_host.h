// What the monitoring windows need from the console that opens them: the
// toolkit, the operator that shows messages as boxes, the clock that tells
// when a view was last refreshed, and the help layer that each window
// registers with on create and leaves on destroy.
#pragma once

#include <functional>
#include <string>

#include "config/operator.h"
#include "control/clock.h"
#include "toolkit/toolkit.h"

namespace px::views {

struct ViewHost {
  tk::Toolkit& toolkit;
  Operator& op;
  Clock& clock;
  // Attaches a help topic to a window; nothing when not set.
  std::function<void(tk::WindowId, const std::string&)> register_help;
  // Drops every help topic of a window; nothing when not set.
  std::function<void(tk::WindowId)> forget_help;

  void help_on(tk::Window w, const std::string& topic) const {
    if (register_help) register_help(w.id(), topic);
  }
  void help_off(tk::Window w) const {
    if (forget_help) forget_help(w.id());
  }
};

// The help topic of every monitoring window.
inline constexpr const char* kViewsHelpTopic = "views";

}  // namespace px::views
