// Fuzzes the command-line rebuild, indirect-file expansion and split. The
// input is split at NUL bytes into arguments; the first one is also written
// to a file that the line names with "@", and that file may name itself.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "common/command_line.h"

namespace {

const std::string& indirect_path() {
  static const std::string path = "/tmp/px_fuzz_indirect_" + std::to_string(getpid());
  return path;
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
  if (std::FILE* f = std::fopen(indirect_path().c_str(), "w")) {
    std::fwrite(args[1].data(), 1, args[1].size(), f);
    std::fclose(f);
  }
  if (size > 0 && bytes[0] % 2 == 0) args.push_back("@" + indirect_path());

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
