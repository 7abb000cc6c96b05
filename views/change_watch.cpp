#include "views/change_watch.h"

#include <sys/inotify.h>

#include "common/file_util.h"
#include "views/inotify_events.h"

namespace px::views {

namespace {

constexpr uint32_t kEntryEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO |
                                  IN_CLOSE_WRITE | IN_MODIFY | IN_ATTRIB | IN_DELETE_SELF |
                                  IN_MOVE_SELF;

}  // namespace

ChangeWatch::ChangeWatch() : fd_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}

void ChangeWatch::watch(const std::vector<std::string>& directories,
                        const std::vector<std::string>& files) {
  if (!ok()) return;
  for (const auto& [wd, target] : targets_) inotify_rm_watch(fd_.get(), wd);
  targets_.clear();
  auto add = [this](const std::string& directory) -> Target* {
    std::string path = directory.empty() ? "." : directory;
    int wd = inotify_add_watch(fd_.get(), path.c_str(), kEntryEvents | IN_ONLYDIR);
    return wd < 0 ? nullptr : &targets_[wd];
  };
  for (const std::string& directory : directories) {
    if (Target* target = add(strip_separators(directory))) target->whole = true;
  }
  for (const std::string& file : files) {
    if (Target* target = add(strip_separators(directory_part(file)))) {
      target->names.insert(file_part(file));
    }
  }
}

bool ChangeWatch::changed() {
  if (!ok()) return false;
  bool any = false;
  read_inotify_events(fd_.get(), [this, &any](const InotifyEvent& event) {
    auto target = targets_.find(event.wd);
    if (target == targets_.end()) return;
    if (target->second.whole || (event.mask & IN_Q_OVERFLOW) != 0 ||
        target->second.names.count(event.name) > 0 ||
        (event.mask & (IN_DELETE_SELF | IN_MOVE_SELF)) != 0) {
      any = true;
    }
  });
  return any;
}

}  // namespace px::views
