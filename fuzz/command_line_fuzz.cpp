// Fuzzes the command-line rebuild, indirect-file expansion and split. The
// input is split at NUL bytes into arguments; the first one is also written
// to a file that the line names with "@", and that file may name itself.
//
// The file lives in memory and has no name (memfd_create): the line names it
// through /proc/self/fd, so no run, not even a crashed one, leaves it behind,
// and rewriting it for every input costs no disk write.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "common/command_line.h"

namespace {

class UnnamedFile {
 public:
  UnnamedFile() {
    fd_ = memfd_create("px_fuzz_at", MFD_CLOEXEC);
    if (fd_ < 0) abort();
    path_ = "/proc/self/fd/" + std::to_string(fd_);
  }
  ~UnnamedFile() { close(fd_); }

  void write(const std::string& text) const {
    if (ftruncate(fd_, 0) != 0) abort();
    if (!text.empty() && pwrite(fd_, text.data(), text.size(), 0) != static_cast<ssize_t>(text.size())) {
      abort();
    }
  }
  const std::string& path() const { return path_; }

 private:
  int fd_ = -1;
  std::string path_;
};

const UnnamedFile& indirect_file() {
  static const UnnamedFile file;
  return file;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  std::string data(reinterpret_cast<const char*>(bytes), size);
  std::vector<std::string> args{"prog"};
  size_t start = 0;
  for (size_t i = 0; i <= data.size(); ++i) {
    if (i == data.size() || data[i] == '\0') {
      args.push_back(data.substr(start, i - start));
      start = i + 1;
    }
  }
  indirect_file().write(args[1]);
  if (size > 0 && bytes[0] % 2 == 0) args.push_back("@" + indirect_file().path());

  std::string line = px::rebuild_command_line(args);
  if (px::expand_indirect_files(line) == 0) {
    std::vector<std::string> split = px::split_arguments(line);
    // Arguments without quotes or blank-like bytes survive the round trip.
    (void)split;
  }
  std::vector<std::string> one{data};
  (void)px::split_arguments(px::rebuild_command_line(one));
  return 0;
}
