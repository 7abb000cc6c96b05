// Replays inputs through a fuzz target without libFuzzer: every file named,
// and every file inside each directory named, goes once through
// LLVMFuzzerTestOneInput. A target that finds a fault aborts, which fails the
// run. Fails too when no input was found, so a lost corpus does not pass.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

std::vector<std::filesystem::path> inputs_under(const std::filesystem::path& path) {
  std::vector<std::filesystem::path> files;
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path, error)) {
      if (entry.is_regular_file()) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
  } else if (std::filesystem::is_regular_file(path, error)) {
    files.push_back(path);
  }
  return files;
}

}  // namespace

int main(int argc, char** argv) {
  size_t replayed = 0;
  for (int i = 1; i < argc; ++i) {
    for (const std::filesystem::path& file : inputs_under(argv[i])) {
      std::ifstream in(file, std::ios::binary);
      std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
      if (!in.eof() && in.fail()) {
        std::fprintf(stderr, "cannot read %s\n", file.c_str());
        return 1;
      }
      std::fprintf(stderr, "replaying %s\n", file.c_str());
      LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
      ++replayed;
    }
  }
  if (replayed == 0) {
    std::fprintf(stderr, "no inputs found\n");
    return 1;
  }
  std::fprintf(stderr, "%zu inputs replayed\n", replayed);
  return 0;
}
