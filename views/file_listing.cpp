#include "views/file_listing.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>

#include "common/file_pattern.h"
#include "common/text.h"

namespace px::views {

namespace {

using DirHandle = std::unique_ptr<DIR, int (*)(DIR*)>;

DirHandle open_directory(const std::string& directory) {
  return DirHandle(directory.empty() ? nullptr : opendir(directory.c_str()), closedir);
}

int64_t nanoseconds(const struct timespec& t) {
  return static_cast<int64_t>(t.tv_sec) * 1000000000 + t.tv_nsec;
}

// The time of a plain file of the directory open as dir_fd; nullopt for
// anything else. The directory entry's type and inode let the cache answer
// for regular files; a symbolic link is always followed afresh.
std::optional<int64_t> file_time(int dir_fd, const dirent& entry, ListingCache* cache) {
  const bool cacheable = cache != nullptr && entry.d_type == DT_REG;
  if (cacheable) {
    if (auto known = cache->known_time(entry.d_name, entry.d_ino)) return known;
  }
  struct stat info {};
  if (fstatat(dir_fd, entry.d_name, &info, 0) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
  int64_t modified = nanoseconds(info.st_mtim);
  if (cacheable) cache->remember(entry.d_name, entry.d_ino, modified);
  return modified;
}

}  // namespace

void FileListing::add(std::string_view name, int64_t modified_ns) {
  files_.push_back({names_.size(), name.size(), modified_ns});
  names_.append(name);
}

std::optional<std::vector<FileListing>> list_files(const std::string& directory,
                                                   std::span<const std::string_view> patterns,
                                                   ListingCache* cache) {
  DirHandle dir = open_directory(directory);
  if (!dir) return std::nullopt;
  const int dir_fd = dirfd(dir.get());
  if (cache != nullptr && !cache->begin(dir_fd)) cache = nullptr;
  std::vector<FileListing> listings(patterns.size());
  std::vector<bool> matched(patterns.size());
  while (const dirent* entry = readdir(dir.get())) {
    // The entry's type, where the file system gives it, spares a stat of
    // every subdirectory.
    if (entry->d_type == DT_DIR) continue;
    std::string_view name = entry->d_name;
    bool any = false;
    for (size_t k = 0; k < patterns.size(); ++k) {
      matched[k] = matches_file_pattern(name, patterns[k]);
      any = any || matched[k];
    }
    if (!any) continue;
    auto modified = file_time(dir_fd, *entry, cache);
    if (!modified) continue;
    for (size_t k = 0; k < patterns.size(); ++k) {
      if (matched[k]) listings[k].add(name, *modified);
    }
  }
  if (cache != nullptr) cache->end();
  return listings;
}

std::optional<FileListing> list_files(const std::string& directory, std::string_view pattern,
                                      ListingCache* cache) {
  auto listings = list_files(directory, std::span<const std::string_view>(&pattern, 1), cache);
  if (!listings) return std::nullopt;
  return std::move(listings->front());
}

bool directory_exists(const std::string& directory) { return open_directory(directory) != nullptr; }

namespace {

// Each name in listing order goes into place among those placed before it:
// a pinned one at the head (the first) or right after the first pinned one
// (the later ones), any other one before the first name placed after the
// first pinned one that is younger than it. Only two or more pinned names
// (in different case) give an order that differs from the stable sort.
void insert_by_age(const FileListing& listing, std::string_view pinned,
                   std::vector<std::string>& out) {
  std::vector<size_t> placed;
  size_t start = 0;
  for (size_t i = 0; i < listing.size(); ++i) {
    size_t slot = start;
    bool is_pinned = iequals(listing.name(i), pinned);
    while (!is_pinned && slot < placed.size() &&
           listing.modified_ns(placed[slot]) <= listing.modified_ns(i)) {
      ++slot;
    }
    placed.insert(placed.begin() + static_cast<std::ptrdiff_t>(slot), i);
    if (is_pinned) start = 1;
  }
  for (size_t at : placed) out.emplace_back(listing.name(at));
}

size_t count_pinned(const FileListing& listing, std::string_view pinned) {
  size_t count = 0;
  for (size_t i = 0; i < listing.size(); ++i) count += iequals(listing.name(i), pinned) ? 1 : 0;
  return count;
}

}  // namespace

void sort_by_age(const FileListing& listing, std::string_view pinned,
                 std::vector<std::string>& out) {
  if (count_pinned(listing, pinned) > 1) {
    out.reserve(out.size() + listing.size());
    insert_by_age(listing, pinned, out);
    return;
  }
  // Sorted as (time, position) pairs: small to move, and the position
  // keeps files of the same age in listing order without a stable sort.
  struct Key {
    int64_t modified_ns;
    size_t at;
    bool operator<(const Key& other) const {
      return modified_ns != other.modified_ns ? modified_ns < other.modified_ns : at < other.at;
    }
  };
  std::vector<Key> keys;
  keys.reserve(listing.size());
  out.reserve(out.size() + listing.size());
  for (size_t i = 0; i < listing.size(); ++i) {
    if (iequals(listing.name(i), pinned)) {
      out.emplace_back(listing.name(i));
    } else {
      keys.push_back({listing.modified_ns(i), i});
    }
  }
  std::sort(keys.begin(), keys.end());
  for (const Key& key : keys) out.emplace_back(listing.name(key.at));
}

}  // namespace px::views
