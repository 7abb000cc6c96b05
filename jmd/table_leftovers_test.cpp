#include "jmd/table_leftovers.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/support/test_dir.h"

namespace px::jmd {
namespace {

// Writes name in dir and dates it an hour back.
std::string old_file(const TestDir& dir, std::string_view name) {
  std::string path = dir.write(name, "x");
  struct timespec times[2];
  times[0].tv_sec = times[1].tv_sec = ::time(nullptr) - 3600;
  times[0].tv_nsec = times[1].tv_nsec = 0;
  EXPECT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
  return path;
}

bool exists(const std::string& path) { return std::filesystem::exists(path); }

TEST(TableLeftovers, OnlyOldTableFilesNobodyHoldsOpenAreRemoved) {
  TestDir dir;
  std::string table = old_file(dir, "PXX1A2B.tmp");
  std::string index = old_file(dir, "PXX1A2B.i03");
  std::string held = old_file(dir, "PXXBEEF.tmp");
  std::string other_names[] = {old_file(dir, "PXXZZ.tmp"), old_file(dir, "PXX12.i3"),
                               old_file(dir, "PXX12.txt"), old_file(dir, "ABC12.tmp")};
  std::string fresh = dir.write("PXX99.tmp", "x");
  std::filesystem::create_directory(dir.file("PXXAB.tmp"));

  int fd = ::open(held.c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_GE(fd, 0);
  EXPECT_EQ(remove_orphaned_table_files(dir.path()), 2);
  ::close(fd);

  EXPECT_FALSE(exists(table));
  EXPECT_FALSE(exists(index));
  EXPECT_TRUE(exists(held));  // its owner still runs
  for (const std::string& path : other_names) EXPECT_TRUE(exists(path)) << path;
  EXPECT_TRUE(exists(fresh));  // may be between creation and unlinking
  EXPECT_TRUE(exists(dir.file("PXXAB.tmp")));
  EXPECT_EQ(remove_orphaned_table_files(dir.file("missing")), 0);
}

}  // namespace
}  // namespace px::jmd
