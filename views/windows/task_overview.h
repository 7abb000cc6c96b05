// The task window's contents: while no view window is open, one line per
// instance (title, state, files waiting) from the status view's listing,
// refreshed every QueueRefreshCycle seconds. The files are listed on a
// thread of their own, as the status view's are. While a view is open the
// task window is left blank and nothing is listed; when the last one goes,
// the lines come back as last listed and the same timer lists them again.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "toolkit/toolkit.h"
#include "views/background_listing.h"

namespace px::views {

class TaskOverview {
 public:
  // Lists the instances once and starts the refresh timer on task.
  void start(tk::Window task);
  // The task window's timer event; true when it was the overview's.
  bool on_timer(tk::Window task, const tk::Event& event);
  // The task window's paint: white, then the lines under each other while
  // no view is open.
  void paint(tk::Window task) const;
  // A view window opened (open true) or is going.
  void view_open(tk::Window task, tk::WindowId view, bool open);

  // The cache of the overview's listings, for the status view to share.
  std::shared_ptr<SharedListingCache> listing_cache() { return listing_.cache(); }

  bool shown() const { return views_.empty(); }
  const std::vector<std::string>& lines() const { return lines_; }

 private:
  void refresh(tk::Window task);

  BackgroundListing listing_;
  std::vector<BlockPlan> plans_;
  std::vector<std::string> lines_;
  std::set<tk::WindowId> views_;  // the view windows open
  long timer_ = 0;
};

}  // namespace px::views
