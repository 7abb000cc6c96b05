#include "jmd/table_leftovers.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace px::jmd {

namespace {

// A file younger than this may be between its creation and its unlinking.
constexpr time_t kSettleSeconds = 10;

using Directory = std::unique_ptr<DIR, int (*)(DIR*)>;

Directory open_directory(const std::string& path) { return {::opendir(path.c_str()), ::closedir}; }

bool is_hex(char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f'); }
bool is_digit(char c) { return c >= '0' && c <= '9'; }

// "PXX" + hex digits + ".tmp" or ".i" + two digits.
bool is_table_file_name(std::string_view name) {
  if (!name.starts_with("PXX")) return false;
  size_t dot = name.rfind('.');
  if (dot == std::string_view::npos || dot <= 3) return false;
  for (size_t i = 3; i < dot; ++i) {
    if (!is_hex(name[i])) return false;
  }
  std::string_view ext = name.substr(dot);
  if (ext == ".tmp") return true;
  return ext.size() == 4 && ext[1] == 'i' && is_digit(ext[2]) && is_digit(ext[3]);
}

using FileId = std::pair<dev_t, ino_t>;

// Drops from files every one that a descriptor of a process in /proc refers to.
void drop_open_files(std::vector<std::pair<FileId, std::string>>& files) {
  Directory proc = open_directory("/proc");
  if (!proc) {
    files.clear();  // without /proc nothing can be shown to be orphaned
    return;
  }
  while (const dirent* process = ::readdir(proc.get())) {
    if (files.empty()) return;
    if (!is_digit(process->d_name[0])) continue;
    std::string fd_dir = std::string("/proc/") + process->d_name + "/fd";
    Directory fds = open_directory(fd_dir);
    if (!fds) continue;  // ended meanwhile, or another user's: it cannot open our 0600 files
    while (const dirent* fd = ::readdir(fds.get())) {
      if (!is_digit(fd->d_name[0])) continue;
      struct stat target;
      if (::stat((fd_dir + "/" + fd->d_name).c_str(), &target) != 0) continue;
      std::erase_if(files, [&](const auto& file) {
        return file.first == FileId{target.st_dev, target.st_ino};
      });
    }
  }
}

}  // namespace

int remove_orphaned_table_files(const std::string& directory) {
  Directory dir = open_directory(directory);
  if (!dir) return 0;
  const time_t settled = std::time(nullptr) - kSettleSeconds;
  std::vector<std::pair<FileId, std::string>> candidates;
  while (const dirent* entry = ::readdir(dir.get())) {
    if (!is_table_file_name(entry->d_name)) continue;
    struct stat info;
    if (::fstatat(::dirfd(dir.get()), entry->d_name, &info, AT_SYMLINK_NOFOLLOW) != 0) continue;
    if (!S_ISREG(info.st_mode) || info.st_uid != ::geteuid() || info.st_mtime > settled) continue;
    candidates.push_back({{info.st_dev, info.st_ino}, entry->d_name});
  }
  if (candidates.empty()) return 0;
  drop_open_files(candidates);
  int removed = 0;
  for (const auto& file : candidates) {
    if (::unlinkat(::dirfd(dir.get()), file.second.c_str(), 0) == 0) ++removed;
  }
  return removed;
}

}  // namespace px::jmd
