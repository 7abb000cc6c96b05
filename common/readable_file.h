// Opening files for reading, the one way the runtime does it.
//
// Only regular files are opened (after following symbolic links). A
// directory, a FIFO, a socket or a device such as /dev/zero counts as a file
// that cannot be opened: none of them can hold an INI file, a JMD, a job file
// or a list of arguments, and reading one would block for ever (a FIFO
// without a writer) or never end (/dev/zero). The file is checked before it
// is opened, so a device is never opened at all, and again on the open
// descriptor, so a file swapped in between is caught too. FIFOs are opened
// without blocking, so that check cannot hang either.
#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "common/unique_fd.h"

namespace px {

// The descriptor of path opened read-only, or an invalid one when path is
// not a regular file or cannot be opened.
UniqueFd open_for_reading(const std::string& path);

// Closes a stream of open_stream_for_reading.
struct StreamCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using ReadStream = std::unique_ptr<std::FILE, StreamCloser>;

// open_for_reading as a stdio stream; null when it cannot be opened.
ReadStream open_stream_for_reading(const std::string& path);

// True when open_for_reading would open path.
bool can_open_for_reading(const std::string& path);

// The whole contents of a regular file of at most max_size bytes; nullopt
// when it cannot be opened, a read fails or it holds more than max_size
// bytes (only max_size + 1 bytes are ever read).
std::optional<std::string> read_whole_file(const std::string& path, size_t max_size);

}  // namespace px
