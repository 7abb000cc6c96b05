#include "config/forms/file_stamp.h"

#include <sys/stat.h>

namespace px::forms {

FileStamp stamp_of(const std::string& path) {
  struct stat info;
  if (path.empty() || ::stat(path.c_str(), &info) != 0) return {};
  return {true,
          static_cast<std::int64_t>(info.st_mtim.tv_sec) * 1000000000 + info.st_mtim.tv_nsec,
          static_cast<std::int64_t>(info.st_size), static_cast<std::uint64_t>(info.st_ino)};
}

}  // namespace px::forms
