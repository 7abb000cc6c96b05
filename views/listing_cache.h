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
#include <unordered_set>
#include <vector>

#include "common/unique_fd.h"

namespace px::views {

class ListingCache {
 public:
  ListingCache();

  // Starts a listing of the directory open as dir_fd: the changes reported
  // since the last listing are taken in first. False when that directory's
  // changes cannot be watched (no inotify, or not a local file system): its
  // listing then reads every time.
  bool begin(int dir_fd);

  // The time of name in the directory of the last successful begin(), as
  // read before, while no change of it was reported since and it is still
  // the same file (inode); nullopt when it must be read. A time given is
  // kept for the next listing.
  std::optional<int64_t> known_time(std::string_view name, ino_t inode);

  // Records the time just read for name, for the next listing.
  void remember(std::string_view name, ino_t inode, int64_t modified_ns);

  // Ends the listing: the files it gave or recorded a time for are what the
  // next listing of that directory starts from.
  void end();

  // Times recorded since the cache was made: the files whose times had to
  // be read from the file system.
  uint64_t times_read() const { return times_read_; }

 private:
  // The files of one listing in its order, names in one buffer. Listed again,
  // a directory gives mostly the same files in the same order, so a file is
  // looked for where the one before it was found, then by its hash.
  struct Files {
    struct File {
      uint64_t hash = 0;
      ino_t inode = 0;
      int64_t modified_ns = 0;
      size_t name_at = 0;
      size_t name_size = 0;
    };
    std::string names;
    std::vector<File> files;

    std::string_view name(const File& file) const {
      return std::string_view(names).substr(file.name_at, file.name_size);
    }
    void add(uint64_t hash, std::string_view name, ino_t inode, int64_t modified_ns);
  };
  struct NameHash {
    using is_transparent = void;
    size_t operator()(std::string_view name) const { return std::hash<std::string_view>{}(name); }
  };
  struct Watched {
    dev_t device = 0;
    ino_t inode = 0;
    Files known;                  // the last listing's files
    std::vector<uint32_t> slots;  // open addressing by hash: index in known + 1, or 0
    // Names reported changed since the last listing; all of them when
    // events were lost.
    std::unordered_set<std::string, NameHash, std::equal_to<>> changed;
    bool all_changed = false;
  };

  // Reads every waiting event and notes what they make stale.
  void take_events();
  // The file of the last listing with that name and hash, if any.
  const Files::File* find(uint64_t hash, std::string_view name);
  // Makes the open-addressing slots for the files in known.
  static void index(Watched& watched);

  UniqueFd inotify_;
  std::map<int, Watched> watched_;  // by watch descriptor
  Watched* current_ = nullptr;      // the directory being listed
  Files next_;                      // its files as this listing finds them
  size_t cursor_ = 0;               // in current_->known: after the last file found
  uint64_t times_read_ = 0;
};

}  // namespace px::views
