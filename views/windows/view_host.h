// What the monitoring windows need from the console that opens them: the
// toolkit, the operator that shows messages as boxes, the clock that tells
// when a view was last refreshed, the help layer that each window registers
// with on create and leaves on destroy, and whom to tell that a view window
// opened or went (the task window shows its overview only while none is
// open).
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "config/operator.h"
#include "control/clock.h"
#include "toolkit/toolkit.h"
#include "views/background_listing.h"

namespace px::views {

// The help topic of every monitoring window.
inline constexpr const char* kViewsHelpTopic = "views";

struct ViewHost {
  tk::Toolkit& toolkit;
  Operator& op;
  Clock& clock;
  // Attaches a help topic to a window; nothing when not set.
  std::function<void(tk::WindowId, const std::string&)> register_help;
  // Drops every help topic of a window; nothing when not set.
  std::function<void(tk::WindowId)> forget_help;
  // Told that a view window opened (true) or is being destroyed (false);
  // nothing when not set.
  std::function<void(tk::WindowId, bool)> view_open;
  // The listing cache the status view shares with the task window's
  // overview; the view keeps its own when not set.
  std::shared_ptr<SharedListingCache> listing_cache;

  void help_on(tk::Window w, const std::string& topic) const {
    if (register_help) register_help(w.id(), topic);
  }
  void help_off(tk::Window w) const {
    if (forget_help) forget_help(w.id());
  }
  // A view window's create and destroy: its help, and the word that it is
  // open or gone.
  void view_created(tk::Window w) const {
    help_on(w, kViewsHelpTopic);
    if (view_open) view_open(w.id(), true);
  }
  void view_destroyed(tk::Window w) const {
    help_off(w);
    if (view_open) view_open(w.id(), false);
  }
};

}  // namespace px::views
