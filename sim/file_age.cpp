#include "sim/file_age.h"

#include <sys/stat.h>

#include <algorithm>
#include <utility>

#include "common/file_util.h"

namespace px::sim {

std::vector<std::string> oldest_first(const std::string& directory, std::vector<std::string> names) {
  std::vector<std::pair<long long, std::string>> aged;
  for (std::string& name : names) {
    struct stat info {};
    long long nanoseconds = 0;
    if (stat(join_path(name, directory).c_str(), &info) == 0) {
      nanoseconds = static_cast<long long>(info.st_mtim.tv_sec) * 1000000000LL + info.st_mtim.tv_nsec;
    }
    aged.emplace_back(nanoseconds, std::move(name));
  }
  std::sort(aged.begin(), aged.end());
  names.clear();
  for (auto& entry : aged) names.push_back(std::move(entry.second));
  return names;
}

}  // namespace px::sim
