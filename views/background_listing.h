// The status and queue view's listing on a thread of its own, so that a slow
// or hung network directory (or status file) never freezes the window: the
// window plans the rows on its own thread, hands the plan over, waits a
// moment, and otherwise picks the rows up later. A listing that never ends
// is left behind; its thread owns what it needs. The listings share a
// ListingCache, so that a refresh reads the times of changed files only.
#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "views/status_queue.h"

namespace px::views {

class BackgroundListing {
 public:
  // True while a listing that was started has not been taken.
  bool busy() const { return state_ != nullptr; }

  // Starts listing plans (one listing at a time: false, and nothing
  // started, while one is busy).
  bool start(std::vector<BlockPlan> plans);

  // The listed blocks once the listing has finished, waiting for it at most
  // wait; nullopt while it still runs (or when none was started).
  std::optional<std::vector<ListedBlock>> take(std::chrono::milliseconds wait = {});

 private:
  struct State {
    std::mutex mutex;
    std::condition_variable finished;
    bool done = false;
    std::vector<ListedBlock> blocks;
  };
  std::shared_ptr<State> state_;
  // The times of the listed directories' files, kept from listing to
  // listing; shared with the thread of the listing under way.
  std::shared_ptr<ListingCache> cache_;
};

}  // namespace px::views
