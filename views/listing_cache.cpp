#include "views/listing_cache.h"

#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/vfs.h>

#include "views/inotify_events.h"

namespace px::views {

namespace {

// Every change of an entry that can change its time or what it names.
constexpr uint32_t kEntryEvents =
    IN_MODIFY | IN_ATTRIB | IN_CLOSE_WRITE | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;

// Changed names a directory keeps, beyond the number of its known files,
// before it counts every name as changed instead.
constexpr size_t kChangedNamesKept = 4096;

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

void ListingCache::Files::add(uint64_t hash, std::string_view name, ino_t inode,
                              int64_t modified_ns) {
  files.push_back({hash, inode, modified_ns, names.size(), name.size()});
  names.append(name);
}

void ListingCache::take_events() {
  read_inotify_events(inotify_.get(), [this](const InotifyEvent& event) {
    if ((event.mask & IN_Q_OVERFLOW) != 0) {
      // Events were lost: nothing known can be trusted.
      for (auto& [wd, watched] : watched_) watched.all_changed = true;
      return;
    }
    auto watched = watched_.find(event.wd);
    if (watched == watched_.end()) return;
    if ((event.mask & IN_IGNORED) != 0) {
      // The watch ended (directory deleted, file system unmounted).
      watched_.erase(watched);
      return;
    }
    Watched& changed = watched->second;
    if (event.name.empty() || changed.all_changed) return;
    changed.changed.emplace(event.name);
    // A directory changing a lot and not listed meanwhile: past a bound,
    // every name counts as changed rather than each being kept.
    if (changed.changed.size() > kChangedNamesKept + changed.known.files.size()) {
      changed.all_changed = true;
      changed.changed.clear();
    }
  });
}

bool ListingCache::begin(int dir_fd) {
  current_ = nullptr;
  next_ = Files();
  cursor_ = 0;
  if (!inotify_.valid()) return false;
  take_events();
  struct stat info {};
  if (::fstat(dir_fd, &info) != 0 || !changes_all_reported(dir_fd)) return false;
  for (auto& [wd, watched] : watched_) {
    if (watched.device == info.st_dev && watched.inode == info.st_ino) {
      current_ = &watched;
      return true;
    }
  }
  // Watched through the open descriptor, so that the watch is on the
  // directory being listed even when its path names another one by now.
  std::string self = "/proc/self/fd/" + std::to_string(dir_fd);
  int wd = inotify_add_watch(inotify_.get(), self.c_str(), kEntryEvents | IN_ONLYDIR);
  if (wd < 0) return false;
  Watched& watched = watched_[wd];
  watched = Watched();
  watched.device = info.st_dev;
  watched.inode = info.st_ino;
  current_ = &watched;
  return true;
}

const ListingCache::Files::File* ListingCache::find(uint64_t hash, std::string_view name) {
  const Files& known = current_->known;
  auto matches = [&](size_t i) {
    return known.files[i].hash == hash && known.name(known.files[i]) == name;
  };
  if (cursor_ < known.files.size() && matches(cursor_)) return &known.files[cursor_++];
  const std::vector<uint32_t>& slots = current_->slots;
  if (slots.empty()) return nullptr;
  for (size_t slot = hash & (slots.size() - 1); slots[slot] != 0;
       slot = (slot + 1) & (slots.size() - 1)) {
    size_t i = slots[slot] - 1;
    if (matches(i)) {
      cursor_ = i + 1;
      return &known.files[i];
    }
  }
  return nullptr;
}

std::optional<int64_t> ListingCache::known_time(std::string_view name, ino_t inode) {
  if (current_ == nullptr || current_->all_changed) return std::nullopt;
  if (!current_->changed.empty() && current_->changed.contains(name)) return std::nullopt;
  const uint64_t hash = NameHash{}(name);
  const Files::File* file = find(hash, name);
  if (file == nullptr || file->inode != inode) return std::nullopt;
  const int64_t modified = file->modified_ns;
  next_.add(hash, name, inode, modified);
  return modified;
}

void ListingCache::remember(std::string_view name, ino_t inode, int64_t modified_ns) {
  ++times_read_;
  if (current_ != nullptr) next_.add(NameHash{}(name), name, inode, modified_ns);
}

void ListingCache::index(Watched& watched) {
  const size_t count = watched.known.files.size();
  size_t size = 16;
  while (size < 2 * count) size *= 2;
  watched.slots.assign(size, 0);
  for (size_t i = 0; i < count; ++i) {
    size_t slot = watched.known.files[i].hash & (size - 1);
    while (watched.slots[slot] != 0) slot = (slot + 1) & (size - 1);
    watched.slots[slot] = static_cast<uint32_t>(i + 1);
  }
}

void ListingCache::end() {
  if (current_ != nullptr) {
    current_->known = std::move(next_);
    current_->changed.clear();
    current_->all_changed = false;
    index(*current_);
  }
  current_ = nullptr;
  next_ = Files();
  cursor_ = 0;
}

}  // namespace px::views
