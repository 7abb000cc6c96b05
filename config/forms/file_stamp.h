// What a file looked like on disk at one moment: whether it was there, its
// modification time and its size. A form keeps the stamp of its file from
// when it loaded, so that a save can tell that someone else wrote the file
// in the meantime.
#pragma once

#include <cstdint>
#include <string>

namespace px::forms {

struct FileStamp {
  bool exists = false;
  std::int64_t modified_ns = 0;
  std::int64_t size = 0;
  std::uint64_t inode = 0;  // a file replaced by rename has a new one
  bool operator==(const FileStamp&) const = default;
};

FileStamp stamp_of(const std::string& path);

}  // namespace px::forms
