// A private scratch file for fuzz targets that must hand their input to code
// that reads files: written fresh for every input, removed with its
// directory at exit. The directory is made in memory (/dev/shm) where the
// system has one: on a disk file system, cutting a file with data back to
// nothing starts the write-back of its blocks, and every input paid for a
// disk write that way.
#pragma once

#include <stdlib.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

namespace px::fuzz {

class ScratchFile {
 public:
  explicit ScratchFile(const char* name) {
    std::string dir = (scratch_root() / "pxfuzz.XXXXXX").string();
    if (mkdtemp(dir.data()) == nullptr) abort();
    dir_ = dir;
    path_ = dir_ + "/" + name;
  }
  ~ScratchFile() {
    std::error_code ignored;
    std::filesystem::remove_all(dir_, ignored);
  }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  // Replaces the file's contents with the input.
  const std::string& write(const uint8_t* data, size_t size) const {
    write_file(path_, data, size);
    return path_;
  }
  // Writes the input as another file of the same directory; its path.
  std::string write_beside(std::string_view name, const uint8_t* data, size_t size) const {
    std::string path = dir_ + "/" + std::string(name);
    write_file(path, data, size);
    return path;
  }
  const std::string& path() const { return path_; }
  const std::string& directory() const { return dir_; }

 private:
  static std::filesystem::path scratch_root() {
    std::error_code error;
    if (std::filesystem::is_directory("/dev/shm", error) && access("/dev/shm", W_OK | X_OK) == 0) {
      return "/dev/shm";
    }
    return std::filesystem::temp_directory_path();
  }
  static void write_file(const std::string& path, const uint8_t* data, size_t size) {
    std::FILE* f = std::fopen(path.c_str(), "wb");
    if (f == nullptr) abort();
    if (size > 0 && std::fwrite(data, 1, size, f) != size) abort();
    std::fclose(f);
  }

  std::string dir_;
  std::string path_;
};

}  // namespace px::fuzz
