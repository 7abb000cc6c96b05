#include "views/background_listing.h"

#include <thread>

namespace px::views {

bool BackgroundListing::start(std::vector<BlockPlan> plans) {
  if (busy()) return false;
  state_ = std::make_shared<State>();
  std::thread([state = state_, plans = std::move(plans)] {
    std::vector<std::string> rows = list_status_queue(plans);
    std::lock_guard lock(state->mutex);
    state->rows = std::move(rows);
    state->done = true;
    state->finished.notify_all();
  }).detach();
  return true;
}

std::optional<std::vector<std::string>> BackgroundListing::take(std::chrono::milliseconds wait) {
  if (!state_) return std::nullopt;
  std::unique_lock lock(state_->mutex);
  if (!state_->finished.wait_for(lock, wait, [this] { return state_->done; })) return std::nullopt;
  std::vector<std::string> rows = std::move(state_->rows);
  lock.unlock();
  state_.reset();
  return rows;
}

}  // namespace px::views
