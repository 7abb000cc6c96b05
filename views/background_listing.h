// The status and queue view's listing on a thread of its own, so that a slow
// or hung network directory (or status file) never freezes the window: the
// window plans the rows on its own thread, hands the plan over, waits a
// moment, and otherwise picks the rows up later. A listing that never ends
// is left behind; its thread owns what it needs. The listings share a
// ListingCache, so that a refresh reads the times of changed files only;
// listings of different windows can share one too (the task window's
// overview and the status view list the same directories), so that the
// status view's first fill is a refresh.
#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "views/listing_cache.h"
#include "views/status_queue.h"

namespace px::views {

// A listing cache that several background listings share, one listing at
// a time. A listing that finds it in use lists without it rather than wait:
// one held up by a hung directory never holds up the others.
class SharedListingCache {
 public:
  // Calls list with the cache, or with nullptr while another listing uses it.
  template <typename List>
  auto use(List&& list) {
    std::unique_lock lock(mutex_, std::try_to_lock);
    return list(lock.owns_lock() ? &cache_ : nullptr);
  }

 private:
  std::mutex mutex_;
  ListingCache cache_;
};

class BackgroundListing {
 public:
  // The cache the listings use, made at the first listing unless shared.
  std::shared_ptr<SharedListingCache> cache();
  // Lists through cache from the next listing on.
  void share_cache(std::shared_ptr<SharedListingCache> cache) { cache_ = std::move(cache); }

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
  std::shared_ptr<SharedListingCache> cache_;
};

}  // namespace px::views
