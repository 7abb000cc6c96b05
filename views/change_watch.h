// Tells when files or directories have changed, so a view can refresh at
// once instead of waiting for its timer: an inotify instance watching a set
// of paths, polled without blocking.
//
// A directory counts as changed when an entry is created, deleted, moved in
// or out, written or touched; a file path is watched through its directory
// (so a file replaced by a rename is still seen) and counts as changed when
// an entry of that name does. Watching never changes or locks anything.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "common/unique_fd.h"

namespace px::views {

class ChangeWatch {
 public:
  ChangeWatch();

  // False when the system gives no inotify instance (changed() then never
  // answers yes, and the view refreshes on its timer only).
  bool ok() const { return fd_.valid(); }

  // Watches exactly these directories and files from now on.
  void watch(const std::vector<std::string>& directories, const std::vector<std::string>& files);

  // True when anything watched changed since the last call; reads every
  // waiting event.
  bool changed();

 private:
  struct Target {
    bool whole = false;          // any entry of the directory counts
    std::set<std::string, std::less<>> names;  // else only these entries
  };
  UniqueFd fd_;
  std::map<int, Target> targets_;  // by watch descriptor
};

}  // namespace px::views
