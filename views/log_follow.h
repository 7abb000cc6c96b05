// Following a log as it grows: after each poll, the lines completed since
// the last one. A log that was truncated or replaced (rotated) is followed
// again from its first line, and the poll says so.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "views/log_index.h"

namespace px::views {

class LogFollower {
 public:
  // Follows index's log from after its last complete line; the index must
  // have been built.
  explicit LogFollower(LogIndex& index) : index_(index), shown_(index.complete_lines()) {}

  // The complete lines before the follow starts: the last count of them.
  std::vector<std::string> last_lines(int64_t count) const;

  struct Poll {
    std::vector<std::string> lines;  // complete lines appended, in order
    bool restarted = false;          // truncated or replaced: lines are from its head
  };
  // Updates the index and gives the new lines, at most max_lines of them
  // (the rest come with the next polls). nullopt when the log does not open
  // now (during a rotation, say); the follow goes on from where it was.
  std::optional<Poll> poll(int64_t max_lines = 10000);

 private:
  LogIndex& index_;
  int64_t shown_;  // complete lines handed out so far
};

}  // namespace px::views
