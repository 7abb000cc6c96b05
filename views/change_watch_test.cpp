#include "views/change_watch.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <fstream>

#include "tests/support/test_dir.h"

namespace px::views {
namespace {

TEST(ChangeWatchTest, SeesDirectoryEntriesAndNamedFilesOnly) {
  TestDir dir;
  ::mkdir(dir.file("queue").c_str(), 0755);
  dir.write("status.sts", "running\n");
  dir.write("other.txt", "x");
  ChangeWatch watch;
  ASSERT_TRUE(watch.ok());
  watch.watch({dir.file("queue")}, {dir.file("status.sts")});
  EXPECT_FALSE(watch.changed());

  dir.write("queue/A.DAT", "^job X\n");
  EXPECT_TRUE(watch.changed());
  EXPECT_FALSE(watch.changed());  // read once

  dir.write("other.txt", "y");  // beside the status file, not it
  EXPECT_FALSE(watch.changed());
  dir.write("status.sts", "paused\n");
  EXPECT_TRUE(watch.changed());

  // Replaced by a rename, as careful writers do.
  dir.write("new.sts", "stopped\n");
  ASSERT_EQ(std::rename(dir.file("new.sts").c_str(), dir.file("status.sts").c_str()), 0);
  EXPECT_TRUE(watch.changed());

  std::remove(dir.file("queue/A.DAT").c_str());
  EXPECT_TRUE(watch.changed());

  watch.watch({}, {});
  dir.write("queue/B.DAT", "^job X\n");
  EXPECT_FALSE(watch.changed());
}

}  // namespace
}  // namespace px::views
