#include "config/operator.h"

#include "common/file_util.h"

namespace px {

std::string display_path(std::string_view path) {
  if (path.size() <= kDisplayPathLength) return std::string(path);
  std::string_view tail = path.substr(path.size() - kDisplayPathLength);
  for (size_t i = 2; i < tail.size(); ++i) {
    if (is_separator(tail[i])) return ".." + std::string(tail.substr(i));
  }
  return ".." + std::string(tail.substr(2));
}

}  // namespace px
