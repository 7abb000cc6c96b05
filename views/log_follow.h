// Following a log as it grows: after each poll, the lines added since the
// last one. A log that was truncated or replaced (rotated) is followed
// again from its first line, and the poll says so.
//
// A last line without its line end (still being written, or a log that
// simply ends so) counts as shown when the follow starts, as the views show
// it when they open. Later, such a line is handed out once it has stayed
// the same for a whole poll; when its line end or more text arrives, only
// what was not handed out yet follows (nothing when only the line end
// came), so no line is given twice.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "views/log_index.h"

namespace px::views {

class LogFollower {
 public:
  // Follows index's log from after its last line; the index must have been
  // built.
  explicit LogFollower(LogIndex& index);

  // The lines before the follow starts: the last count of them, an
  // unfinished last line included.
  std::vector<std::string> last_lines(int64_t count) const;

  struct Poll {
    std::vector<std::string> lines;  // lines added, in order
    bool restarted = false;          // truncated or replaced: lines are from its head
  };
  // Updates the index and gives the new lines, at most max_lines finished
  // ones (the rest come with the next polls). nullopt when the log does not
  // open now (during a rotation, say); the follow goes on from where it was.
  std::optional<Poll> poll(int64_t max_lines = 10000);

 private:
  // The unfinished last line, when there is one.
  std::optional<std::string> unfinished_line() const;

  LogIndex& index_;
  int64_t shown_;                  // finished lines handed out so far
  bool unfinished_shown_ = false;  // line shown_ was handed out unfinished,
  size_t unfinished_size_ = 0;     // this much of it
  uint64_t polled_size_ = 0;       // bytes indexed at the previous look
};

}  // namespace px::views
