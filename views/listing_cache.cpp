#include "views/listing_cache.h"

#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cstring>

namespace px::views {

namespace {

// Every change of an entry that can change its time or what it names.
constexpr uint32_t kEntryEvents =
    IN_MODIFY | IN_ATTRIB | IN_CLOSE_WRITE | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;

// File systems changed only through this machine's kernel, which therefore
// reports every change: ext2/3/4, XFS, Btrfs, F2FS, ZFS, tmpfs, overlay.
bool changes_all_reported(int dir_fd) {
  struct statfs info {};
  if (::fstatfs(dir_fd, &info) != 0) return false;
  switch (static_cast<uint64_t>(info.f_type)) {
    case 0xEF53:      // ext2, ext3, ext4
    case 0x58465342:  // XFS
    case 0x9123683E:  // Btrfs
    case 0xF2F52010:  // F2FS
    case 0x2FC12FC1:  // ZFS
    case 0x01021994:  // tmpfs
    case 0x794C7630:  // overlay
      return true;
    default:
      return false;
  }
}

}  // namespace

ListingCache::ListingCache() : inotify_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}

void ListingCache::apply_events() {
  alignas(inotify_event) char buffer[16384];
  for (;;) {
    ssize_t n = ::read(inotify_.get(), buffer, sizeof buffer);
    if (n <= 0) return;
    for (ssize_t at = 0; at < n;) {
      inotify_event event;
      std::memcpy(&event, buffer + at, sizeof event);
      const char* name = buffer + at + sizeof event;
      at += static_cast<ssize_t>(sizeof event + event.len);
      if ((event.mask & IN_Q_OVERFLOW) != 0) {
        // Events were lost: nothing known can be trusted.
        for (auto& [wd, watched] : watched_) watched.times.clear();
        continue;
      }
      auto watched = watched_.find(event.wd);
      if (watched == watched_.end()) continue;
      if ((event.mask & IN_IGNORED) != 0) {
        // The watch ended (directory deleted, file system unmounted).
        watched_.erase(watched);
        continue;
      }
      if (event.len == 0) continue;
      auto known = watched->second.times.find(std::string_view(name, ::strnlen(name, event.len)));
      if (known != watched->second.times.end()) watched->second.times.erase(known);
    }
  }
}

bool ListingCache::begin(int dir_fd) {
  current_ = nullptr;
  if (!inotify_.valid()) return false;
  apply_events();
  struct stat info {};
  if (::fstat(dir_fd, &info) != 0 || !changes_all_reported(dir_fd)) return false;
  for (auto& [wd, watched] : watched_) {
    if (watched.device == info.st_dev && watched.inode == info.st_ino) {
      current_ = &watched.times;
      return true;
    }
  }
  // Watched through the open descriptor, so that the watch is on the
  // directory being listed even when its path names another one by now.
  std::string self = "/proc/self/fd/" + std::to_string(dir_fd);
  int wd = inotify_add_watch(inotify_.get(), self.c_str(), kEntryEvents | IN_ONLYDIR);
  if (wd < 0) return false;
  Watched& watched = watched_[wd];
  watched.device = info.st_dev;
  watched.inode = info.st_ino;
  watched.times.clear();
  current_ = &watched.times;
  return true;
}

std::optional<int64_t> ListingCache::known_time(std::string_view name, ino_t inode) const {
  if (current_ == nullptr) return std::nullopt;
  auto known = current_->find(name);
  if (known == current_->end() || known->second.inode != inode) return std::nullopt;
  return known->second.modified_ns;
}

void ListingCache::remember(std::string_view name, ino_t inode, int64_t modified_ns) {
  ++times_read_;
  if (current_ != nullptr) (*current_)[std::string(name)] = Known{inode, modified_ns};
}

}  // namespace px::views
