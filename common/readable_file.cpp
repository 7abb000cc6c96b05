#include "common/readable_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "common/file_util.h"

namespace px {

namespace {

bool is_regular(const struct stat& info) { return S_ISREG(info.st_mode); }

}  // namespace

UniqueFd open_for_reading(const std::string& path) {
  struct stat info;
  if (path.empty() || ::stat(path.c_str(), &info) != 0 || !is_regular(info)) return UniqueFd();
  UniqueFd file = open_file(path, O_RDONLY | O_NONBLOCK);
  if (!file.valid() || ::fstat(file.get(), &info) != 0 || !is_regular(info)) return UniqueFd();
  int flags = ::fcntl(file.get(), F_GETFL);
  if (flags < 0 || ::fcntl(file.get(), F_SETFL, flags & ~O_NONBLOCK) != 0) return UniqueFd();
  return file;
}

ReadStream open_stream_for_reading(const std::string& path) {
  UniqueFd file = open_for_reading(path);
  if (!file.valid()) return nullptr;
  ReadStream stream(::fdopen(file.get(), "r"));
  if (stream) file.release();
  return stream;
}

bool can_open_for_reading(const std::string& path) { return open_for_reading(path).valid(); }

std::optional<std::string> read_whole_file(const std::string& path, size_t max_size) {
  UniqueFd file = open_for_reading(path);
  if (!file.valid()) return std::nullopt;
  std::string contents;
  char buffer[16384];
  for (;;) {
    ssize_t count = ::read(file.get(), buffer, sizeof buffer);
    if (count == 0) return contents;
    if (count < 0) {
      if (errno == EINTR) continue;
      return std::nullopt;
    }
    if (static_cast<size_t>(count) > max_size - contents.size()) return std::nullopt;
    contents.append(buffer, static_cast<size_t>(count));
  }
}

}  // namespace px
