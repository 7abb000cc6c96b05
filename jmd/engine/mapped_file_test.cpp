#include "jmd/engine/mapped_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "tests/support/test_dir.h"

namespace px::engine {
namespace {

constexpr int64_t kKiB = 1024;
constexpr int64_t kMiB = int64_t{1} << 20;

// An open file descriptor, closed at the end of the scope.
class Fd {
 public:
  explicit Fd(int fd) : fd_(fd) {}
  ~Fd() {
    if (fd_ >= 0) close(fd_);
  }
  int get() const { return fd_; }

 private:
  int fd_;
};

void write_pattern(int fd, int64_t offset, size_t n, char seed) {
  std::string bytes(n, '\0');
  for (size_t i = 0; i < n; ++i) bytes[i] = static_cast<char>(static_cast<size_t>(seed) + i % 251);
  ASSERT_EQ(pwrite(fd, bytes.data(), n, offset), static_cast<ssize_t>(n));
}

bool has_pattern(const std::vector<std::byte>& out, char seed) {
  for (size_t i = 0; i < out.size(); ++i) {
    if (out[i] != static_cast<std::byte>(static_cast<char>(static_cast<size_t>(seed) + i % 251))) return false;
  }
  return true;
}

TEST(MappedFile, SeesWritesAndMapsAgainWhenTheFileOutgrowsIt) {
  TestDir dir;
  Fd fd(open(dir.file("grow.bin").c_str(), O_RDWR | O_CREAT, 0666));
  ASSERT_GE(fd.get(), 0);
  write_pattern(fd.get(), 0, 8192, 'a');
  MappedFile map;
  std::vector<std::byte> out(512);
  ASSERT_EQ(map.copy(fd.get(), 512, out.data(), out.size(), 8192), MappedFile::Copy::kDone);
  std::vector<std::byte> expected(512);
  for (size_t i = 0; i < 512; ++i) expected[i] = static_cast<std::byte>('a' + (512 + i) % 251);
  EXPECT_EQ(out, expected);
  // The mapping reaches past the file, so the file can grow into it.
  size_t first = map.length();
  EXPECT_GE(first, static_cast<size_t>(kMiB));

  // A write after the mapping was made is seen through it.
  write_pattern(fd.get(), 1024, 512, 'q');
  ASSERT_EQ(map.copy(fd.get(), 1024, out.data(), out.size(), 8192), MappedFile::Copy::kDone);
  EXPECT_TRUE(has_pattern(out, 'q'));
  write_pattern(fd.get(), 100 * kKiB, 512, 'r');  // still inside the first mapping
  ASSERT_EQ(map.copy(fd.get(), 100 * kKiB, out.data(), out.size(), 101 * kKiB),
            MappedFile::Copy::kDone);
  EXPECT_TRUE(has_pattern(out, 'r'));
  EXPECT_EQ(map.length(), first);

  // Beyond the mapping: mapped again, larger.
  int64_t far = 3 * kMiB + 512;
  write_pattern(fd.get(), far, 512, 'z');
  ASSERT_EQ(map.copy(fd.get(), far, out.data(), out.size(), far + 512), MappedFile::Copy::kDone);
  EXPECT_TRUE(has_pattern(out, 'z'));
  EXPECT_GE(map.length(), static_cast<size_t>(far + 512));
  map.unmap();
  EXPECT_EQ(map.length(), 0u);
}

TEST(MappedFile, BytesTheFileLostAreGoneAndTheGuardHoldsForTheNextOnes) {
  TestDir dir;
  Fd fd(open(dir.file("cut.bin").c_str(), O_RDWR | O_CREAT, 0666));
  ASSERT_GE(fd.get(), 0);
  write_pattern(fd.get(), 0, size_t{64} * 1024, 'c');
  MappedFile map;
  std::vector<std::byte> out(512);
  ASSERT_EQ(map.copy(fd.get(), 0, out.data(), out.size(), 64 * kKiB), MappedFile::Copy::kDone);
  // Someone else cuts the file to one page.
  ASSERT_EQ(ftruncate(fd.get(), 4096), 0);
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(map.copy(fd.get(), 32 * kKiB, out.data(), out.size(), 64 * kKiB),
              MappedFile::Copy::kGone)
        << round;
    ASSERT_EQ(map.copy(fd.get(), 512, out.data(), out.size(), 64 * kKiB),
              MappedFile::Copy::kDone);
  }
}

TEST(MappedFile, AFileThatCannotBeMappedIsLeftToBeRead) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  Fd read_end(ends[0]);
  Fd write_end(ends[1]);
  MappedFile map;
  std::vector<std::byte> out(512);
  EXPECT_EQ(map.copy(read_end.get(), 0, out.data(), out.size(), 4096),
            MappedFile::Copy::kUnavailable);
  EXPECT_EQ(map.copy(read_end.get(), 512, out.data(), out.size(), 4096),
            MappedFile::Copy::kUnavailable);
  EXPECT_EQ(map.length(), 0u);
}

TEST(MappedFileDeathTest, ABusErrorOutsideACopyStillEndsTheProcess) {
  TestDir dir;
  std::string path = dir.file("elsewhere.bin");
  EXPECT_DEATH(
      {
        int fd = open(path.c_str(), O_RDWR | O_CREAT, 0666);
        write_pattern(fd, 0, 8192, 'e');
        MappedFile guarded;  // puts the guard in place
        std::vector<std::byte> out(512);
        if (guarded.copy(fd, 0, out.data(), out.size(), 8192) != MappedFile::Copy::kDone) {
          _exit(0);
        }
        auto* other = static_cast<volatile char*>(
            mmap(nullptr, 8192, PROT_READ, MAP_SHARED, fd, 0));
        if (ftruncate(fd, 0) != 0) _exit(0);
        char c = other[4096];  // a fault that no guarded copy expects
        (void)c;
        _exit(0);
      },
      "");
}

}  // namespace
}  // namespace px::engine
