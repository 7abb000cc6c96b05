#include "common/file_pattern.h"

#include <dirent.h>
#include <sys/stat.h>

#include <memory>

#include "common/file_util.h"
#include "common/text.h"

namespace px {

bool matches_file_pattern(std::string_view name, std::string_view pattern) {
  if (pattern == "*.*") return true;
  // Greedy matching with one backtrack point: the last "*" seen and the name
  // position it currently swallows up to.
  size_t n = 0, p = 0;
  size_t star = std::string_view::npos, resume = 0;
  while (n < name.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      resume = n;
    } else if (p < pattern.size() && (pattern[p] == '?' || to_lower(pattern[p]) == to_lower(name[n]))) {
      ++p;
      ++n;
    } else if (star != std::string_view::npos) {
      p = star + 1;
      n = ++resume;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

std::optional<std::vector<std::string>> list_directory(const std::string& directory,
                                                       std::string_view pattern) {
  std::unique_ptr<DIR, int (*)(DIR*)> dir(opendir(directory.c_str()), closedir);
  if (!dir) return std::nullopt;
  std::vector<std::string> names;
  while (const dirent* entry = readdir(dir.get())) {
    std::string_view name = entry->d_name;
    if (!matches_file_pattern(name, pattern)) continue;
    struct stat info {};
    std::string path = join_path(name, directory);
    if (stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) continue;
    names.emplace_back(name);
  }
  return names;
}

}  // namespace px
