#include "views/line_reader.h"

#include <unistd.h>

#include <cstring>

#include "common/readable_file.h"

namespace px::views {

namespace {
constexpr size_t kBufferSize = size_t{32} * 1024;
}

// Only a regular file opens (common/readable_file.h): a directory, a FIFO
// without a writer or a device is a file that does not open, never one that
// reads as empty, blocks or never ends.
LineReader::LineReader(const std::string& path, uint64_t offset)
    : fd_(open_for_reading(path)), buffer_(kBufferSize), offset_(offset) {}

bool LineReader::fill() {
  offset_ += end_;
  pos_ = end_ = 0;
  if (!fd_.valid()) return false;
  for (;;) {
    ssize_t n = ::pread(fd_.get(), buffer_.data(), buffer_.size(), static_cast<off_t>(offset_));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    end_ = static_cast<size_t>(n);
    return true;
  }
}

bool LineReader::next(std::string& line) {
  line.clear();
  bool any = false;
  for (;;) {
    if (pos_ == end_ && !fill()) break;
    any = true;
    const char* start = buffer_.data() + pos_;
    const void* found = std::memchr(start, '\n', end_ - pos_);
    if (found == nullptr) {
      line.append(start, end_ - pos_);
      pos_ = end_;
      continue;
    }
    size_t length = static_cast<size_t>(static_cast<const char*>(found) - start);
    line.append(start, length);
    pos_ += length + 1;
    if (line.ends_with('\r')) line.pop_back();
    return true;
  }
  if (line.ends_with('\r')) line.pop_back();
  return any;
}

bool LineReader::skip(int64_t n) {
  while (n > 0) {
    if (pos_ == end_ && !fill()) return false;
    const char* start = buffer_.data() + pos_;
    const void* found = std::memchr(start, '\n', end_ - pos_);
    if (found == nullptr) {
      pos_ = end_;
      continue;
    }
    pos_ += static_cast<size_t>(static_cast<const char*>(found) - start) + 1;
    --n;
  }
  return true;
}

}  // namespace px::views
