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

}  // namespace

std::optional<std::vector<ListedFile>> list_files(const std::string& directory,
                                                  std::string_view pattern) {
  DirHandle dir = open_directory(directory);
  if (!dir) return std::nullopt;
  const int dir_fd = dirfd(dir.get());
  std::vector<ListedFile> files;
  while (const dirent* entry = readdir(dir.get())) {
    // The entry's type, where the file system gives it, spares a stat of
    // every subdirectory; the time needs one stat per listed file anyway.
    if (entry->d_type == DT_DIR) continue;
    std::string_view name = entry->d_name;
    if (!matches_file_pattern(name, pattern)) continue;
    struct stat info {};
    if (fstatat(dir_fd, entry->d_name, &info, 0) != 0 || !S_ISREG(info.st_mode)) continue;
    files.push_back({std::string(name), nanoseconds(info.st_mtim)});
  }
  return files;
}

bool directory_exists(const std::string& directory) {
  return open_directory(directory) != nullptr;
}

namespace {

// Each name in listing order goes into place among those placed before it:
// a pinned one at the head (the first) or right after the first pinned one
// (the later ones), any other one before the first name placed after the
// first pinned one that is younger than it. Only two or more pinned names
// (in different case) give an order that differs from the stable sort.
void insert_by_age(std::vector<ListedFile>& listing, std::string_view pinned,
                   std::vector<std::string>& out) {
  std::vector<int64_t> times;
  std::vector<std::string> names;
  size_t start = 0;
  for (ListedFile& f : listing) {
    size_t slot = start;
    bool is_pinned = iequals(f.name, pinned);
    while (!is_pinned && slot < times.size() && times[slot] <= f.modified_ns) ++slot;
    times.insert(times.begin() + static_cast<std::ptrdiff_t>(slot), f.modified_ns);
    names.insert(names.begin() + static_cast<std::ptrdiff_t>(slot), std::move(f.name));
    if (is_pinned) start = 1;
  }
  for (std::string& name : names) out.push_back(std::move(name));
}

}  // namespace

void sort_by_age(std::vector<ListedFile> listing, std::string_view pinned,
                 std::vector<std::string>& out) {
  auto is_pinned = [pinned](const ListedFile& f) { return iequals(f.name, pinned); };
  if (std::count_if(listing.begin(), listing.end(), is_pinned) > 1) {
    insert_by_age(listing, pinned, out);
    return;
  }
  auto rest = std::stable_partition(listing.begin(), listing.end(), is_pinned);
  std::stable_sort(rest, listing.end(), [](const ListedFile& a, const ListedFile& b) {
    return a.modified_ns < b.modified_ns;
  });
  out.reserve(out.size() + listing.size());
  for (ListedFile& f : listing) out.push_back(std::move(f.name));
}

}  // namespace px::views
