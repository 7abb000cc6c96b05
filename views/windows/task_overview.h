// The task window's contents: while the console runs, one line per
// instance (title, state, files waiting) from the status view's listing,
// refreshed every QueueRefreshCycle seconds. The files are listed on a
// thread of their own, as the status view's are.
#pragma once

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
  // The task window's paint: white, then the lines under each other.
  void paint(tk::Window task) const;

  const std::vector<std::string>& lines() const { return lines_; }

 private:
  void refresh(tk::Window task);

  BackgroundListing listing_;
  std::vector<BlockPlan> plans_;
  std::vector<std::string> lines_;
  long timer_ = 0;
};

}  // namespace px::views
