// Reads the lines of a text file from a byte offset through one buffer.
// A line ends at "\n" (a "\r" before it is dropped too); a last line
// without one still counts. Lines are returned whole, however long.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/unique_fd.h"

namespace px::views {

class LineReader {
 public:
  // Opens path for reading at offset; ok() tells whether it opened (only a
  // regular file does).
  explicit LineReader(const std::string& path, uint64_t offset = 0);

  bool ok() const { return fd_.valid(); }
  // The next line without its line end; false at the end of the file.
  bool next(std::string& line);
  // Skips up to n lines; false when the file ended first.
  bool skip(int64_t n);
  // The offset of the next unread byte.
  uint64_t offset() const { return offset_ + pos_; }

 private:
  // Refills the buffer; false at the end of the file or on an error.
  bool fill();

  UniqueFd fd_;
  std::vector<char> buffer_;
  uint64_t offset_ = 0;  // file offset of buffer_[0]
  size_t pos_ = 0;
  size_t end_ = 0;
};

}  // namespace px::views
