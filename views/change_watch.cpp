#include "views/change_watch.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <cstring>

#include "common/file_util.h"

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
  alignas(inotify_event) char buffer[16384];
  for (;;) {
    ssize_t n = ::read(fd_.get(), buffer, sizeof buffer);
    if (n <= 0) break;
    for (ssize_t at = 0; at < n;) {
      inotify_event event;
      std::memcpy(&event, buffer + at, sizeof event);
      std::string name = event.len > 0 ? std::string(buffer + at + sizeof event) : std::string();
      at += static_cast<ssize_t>(sizeof event + event.len);
      auto target = targets_.find(event.wd);
      if (target == targets_.end()) continue;
      if (target->second.whole || (event.mask & IN_Q_OVERFLOW) != 0 ||
          target->second.names.count(name) > 0 || (event.mask & (IN_DELETE_SELF | IN_MOVE_SELF))) {
        any = true;
      }
    }
  }
  return any;
}

}  // namespace px::views
