#include "views/log_follow.h"

#include <algorithm>

namespace px::views {

std::vector<std::string> LogFollower::last_lines(int64_t count) const {
  int64_t first = std::max<int64_t>(0, shown_ - count);
  return index_.read_lines(first, shown_ - first).value_or(std::vector<std::string>{});
}

std::optional<LogFollower::Poll> LogFollower::poll(int64_t max_lines) {
  Poll poll;
  switch (index_.update()) {
    case LogIndex::Change::kFailed:
      return std::nullopt;
    case LogIndex::Change::kRestarted:
      poll.restarted = true;
      shown_ = 0;
      break;
    case LogIndex::Change::kNone:
    case LogIndex::Change::kGrew:
      break;
  }
  int64_t count = std::min(index_.complete_lines() - shown_, max_lines);
  if (count <= 0) return poll;
  auto lines = index_.read_lines(shown_, count);
  if (!lines) return std::nullopt;
  shown_ += static_cast<int64_t>(lines->size());
  poll.lines = std::move(*lines);
  return poll;
}

}  // namespace px::views
