#include "views/log_follow.h"

#include <algorithm>

namespace px::views {

LogFollower::LogFollower(LogIndex& index)
    : index_(index), shown_(index.complete_lines()), polled_size_(index.indexed_size()) {
  if (auto line = unfinished_line()) {
    unfinished_shown_ = true;
    unfinished_size_ = line->size();
  }
}

std::optional<std::string> LogFollower::unfinished_line() const {
  if (index_.line_count() == index_.complete_lines()) return std::nullopt;
  auto lines = index_.read_lines(index_.complete_lines(), 1);
  if (!lines || lines->empty()) return std::nullopt;
  return std::move(lines->front());
}

std::vector<std::string> LogFollower::last_lines(int64_t count) const {
  int64_t end = shown_ + (unfinished_shown_ ? 1 : 0);
  int64_t first = std::max<int64_t>(0, end - count);
  return index_.read_lines(first, end - first).value_or(std::vector<std::string>{});
}

std::optional<LogFollower::Poll> LogFollower::poll(int64_t max_lines) {
  Poll poll;
  switch (index_.update()) {
    case LogIndex::Change::kFailed:
      return std::nullopt;
    case LogIndex::Change::kRestarted:
      poll.restarted = true;
      shown_ = 0;
      unfinished_shown_ = false;
      unfinished_size_ = 0;
      polled_size_ = 0;
      break;
    case LogIndex::Change::kNone:
    case LogIndex::Change::kGrew:
      break;
  }
  int64_t count = std::min(index_.complete_lines() - shown_, max_lines);
  if (count > 0) {
    auto lines = index_.read_lines(shown_, count);
    if (!lines) return std::nullopt;
    shown_ += static_cast<int64_t>(lines->size());
    if (unfinished_shown_ && !lines->empty()) {
      // The line handed out unfinished has ended: only its rest follows.
      std::string& first = lines->front();
      first.erase(0, std::min(unfinished_size_, first.size()));
      if (first.empty()) lines->erase(lines->begin());
      unfinished_shown_ = false;
      unfinished_size_ = 0;
    }
    poll.lines = std::move(*lines);
  }
  // An unfinished last line that stayed as it was since the previous look.
  const uint64_t size = index_.indexed_size();
  if (shown_ == index_.complete_lines() && size == polled_size_) {
    auto line = unfinished_line();
    if (line && (!unfinished_shown_ || line->size() > unfinished_size_)) {
      poll.lines.push_back(line->substr(unfinished_shown_ ? unfinished_size_ : 0));
      unfinished_shown_ = true;
      unfinished_size_ = line->size();
    }
  }
  polled_size_ = size;
  return poll;
}

}  // namespace px::views
