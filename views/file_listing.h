// Directory listings for the monitoring views: the plain files of a
// directory that match a pattern, each with its modification time, and the
// order "oldest first" in which the status and queue views show them.
//
// Views only read: nothing here creates, changes or locks a file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace px::views {

struct ListedFile {
  std::string name;
  int64_t modified_ns = 0;  // modification time in nanoseconds since 1970
};

// The plain files of directory (directories and other entries skipped) whose
// names match pattern (common/file_pattern.h rules: no case, "*.*" is every
// name), in the order the file system returns them; nullopt when the
// directory cannot be read.
std::optional<std::vector<ListedFile>> list_files(const std::string& directory,
                                                  std::string_view pattern);

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
void sort_by_age(std::vector<ListedFile> listing, std::string_view pinned,
                 std::vector<std::string>& out);

// The shut-down request that the status view pins to the head of the
// control jobs, and the E-mail Agent's stop request.
inline constexpr std::string_view kServerStopFile = "stopserv.msg";
inline constexpr std::string_view kAgentStopFile = "stopread.msg";

}  // namespace px::views
