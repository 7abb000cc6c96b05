// The modification times of the files of directories listed again and
// again (the status view's collector directories, refreshed every few
// seconds), kept exact by inotify: a time read once is used again until a
// change of that entry is reported (written, touched, created, deleted or
// renamed over), so that a refresh reads the time of the changed files only
// instead of one per file.
//
// Only directories whose changes inotify reports in full are cached: those
// of local file systems. On a network file system another machine's changes
// go unreported, so its directories are listed in full every time. A lost
// event (the queue overflowed) or a directory whose watch ended forgets
// what was known. Not seen: a file's time changed through a hard link of it
// in another directory, or by writes through a memory mapping while the
// writer keeps it open.
//
// Watching never changes or locks anything. One cache serves one listing at
// a time (it is not shared between threads at once).
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "common/unique_fd.h"

namespace px::views {

class ListingCache {
 public:
  ListingCache();

  // Starts a listing of the directory open as dir_fd: the changes reported
  // since the last listing are applied first. False when that directory's
  // changes cannot be watched (no inotify, or not a local file system): its
  // listing then reads every time.
  bool begin(int dir_fd);

  // The time of name in the directory of the last successful begin(), as
  // read before, while no change of it was reported since and it is still
  // the same file (inode); nullopt when it must be read.
  std::optional<int64_t> known_time(std::string_view name, ino_t inode) const;

  // Records the time just read for name (of that directory).
  void remember(std::string_view name, ino_t inode, int64_t modified_ns);

  // Times recorded since the cache was made: the files whose times had to
  // be read from the file system.
  uint64_t times_read() const { return times_read_; }

 private:
  struct Known {
    ino_t inode = 0;
    int64_t modified_ns = 0;
  };
  struct NameHash {
    using is_transparent = void;
    size_t operator()(std::string_view name) const { return std::hash<std::string_view>{}(name); }
  };
  using Times = std::unordered_map<std::string, Known, NameHash, std::equal_to<>>;
  struct Watched {
    dev_t device = 0;
    ino_t inode = 0;
    Times times;
  };

  // Reads every waiting event and forgets what they make stale.
  void apply_events();

  UniqueFd inotify_;
  std::map<int, Watched> watched_;  // by watch descriptor
  Times* current_ = nullptr;        // the times of the directory being listed
  uint64_t times_read_ = 0;
};

}  // namespace px::views
