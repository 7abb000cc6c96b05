#include "views/background_listing.h"

#include <thread>

namespace px::views {

std::shared_ptr<SharedListingCache> BackgroundListing::cache() {
  if (!cache_) cache_ = std::make_shared<SharedListingCache>();
  return cache_;
}

bool BackgroundListing::start(std::vector<BlockPlan> plans) {
  if (busy()) return false;
  state_ = std::make_shared<State>();
  std::thread([state = state_, cache = cache(), plans = std::move(plans)] {
    std::vector<ListedBlock> blocks =
        cache->use([&](ListingCache* known) { return list_blocks(plans, known); });
    std::lock_guard lock(state->mutex);
    state->blocks = std::move(blocks);
    state->done = true;
    state->finished.notify_all();
  }).detach();
  return true;
}

std::optional<std::vector<ListedBlock>> BackgroundListing::take(std::chrono::milliseconds wait) {
  if (!state_) return std::nullopt;
  std::unique_lock lock(state_->mutex);
  if (!state_->finished.wait_for(lock, wait, [this] { return state_->done; })) return std::nullopt;
  std::vector<ListedBlock> blocks = std::move(state_->blocks);
  lock.unlock();
  state_.reset();
  return blocks;
}

}  // namespace px::views
