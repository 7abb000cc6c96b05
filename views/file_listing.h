// Directory listings for the monitoring views: the plain files of a
// directory that match a pattern, each with its modification time, and the
// order "oldest first" in which the status and queue views show them.
//
// A listing reads the directory once, whatever the number of patterns, and
// the time of each matching file with one stat relative to the open
// directory, spread over a few threads in a big directory; through a
// ListingCache, only the times of files changed since the last listing are
// read.
//
// Views only read: nothing here creates, changes or locks a file.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "views/listing_cache.h"

namespace px::views {

// Files in the order the file system returned them, with their times. The
// names share one buffer rather than taking an allocation each.
class FileListing {
 public:
  size_t size() const { return files_.size(); }
  bool empty() const { return files_.empty(); }
  std::string_view name(size_t i) const {
    return std::string_view(names_).substr(files_[i].name_at, files_[i].name_size);
  }
  // Modification time in nanoseconds since 1970.
  int64_t modified_ns(size_t i) const { return files_[i].modified_ns; }

  void add(std::string_view name, int64_t modified_ns);
  // Makes room for files whose names take name_bytes in all.
  void reserve(size_t files, size_t name_bytes);

 private:
  struct File {
    size_t name_at = 0;
    size_t name_size = 0;
    int64_t modified_ns = 0;
  };
  std::string names_;
  std::vector<File> files_;
};

// The plain files of directory (directories and other entries skipped) whose
// names match pattern (common/file_pattern.h rules: no case, "*.*" is every
// name), in the order the file system returns them; nullopt when the
// directory cannot be read. cache, when given, spares reading the times of
// unchanged files.
std::optional<FileListing> list_files(const std::string& directory, std::string_view pattern,
                                      ListingCache* cache = nullptr);

// The same for several patterns in one read of the directory: listing k
// holds the files that match patterns[k] (a file may be in more than one).
// Past a few thousand times to read, they are read on up to threads threads
// (0: one a processor core, at most 4; 1: only the calling one); the
// listings are the same whatever the number.
std::optional<std::vector<FileListing>> list_files(const std::string& directory,
                                                   std::span<const std::string_view> patterns,
                                                   ListingCache* cache = nullptr,
                                                   unsigned threads = 0);

// True when directory can be searched for entries, which is how the views
// tell an existing collector or error directory.
bool directory_exists(const std::string& directory);

// Appends the names of listing to out, oldest first. Files of the same age
// keep the listing's order. A name equal to pinned (without regard to case)
// comes first: a shut-down request stays at the head of its group however
// old the other files are. A second such name (another case of it) is put
// right after the first, and the files listed after it that are older than
// it go before it: names are placed one by one in listing order, as the
// server's console always has.
void sort_by_age(const FileListing& listing, std::string_view pinned,
                 std::vector<std::string>& out);

// The shut-down request that the status view pins to the head of the
// control jobs, and the E-mail Agent's stop request.
inline constexpr std::string_view kServerStopFile = "stopserv.msg";
inline constexpr std::string_view kAgentStopFile = "stopread.msg";

}  // namespace px::views
