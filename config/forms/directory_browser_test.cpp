#include "config/forms/directory_browser.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/test_dir.h"

namespace px::forms {
namespace {

constexpr std::string_view kMounts =
    "overlay / overlay rw 0 0\n"
    "proc /proc proc rw 0 0\n"
    "tmpfs /tmp tmpfs rw 0 0\n"
    "/dev/sdb1 /srv/data ext4 rw 0 0\n"
    "server:/export /mnt/share nfs4 rw 0 0\n"
    "/dev/sr0 /media/cdrom iso9660 ro 0 0\n"
    "//host/Public\\040Docs /mnt/public\\040docs cifs rw 0 0\n"
    "none /mnt/lost 9p rw 0 0\n"
    "/dev/sda2 /home xfs rw 0 0\n";

TEST(MountTable, RootFirstThenDisksAndNetworkByMountPoint) {
  std::vector<Drive> drives = drives_from_mount_table(kMounts);
  std::vector<std::string> rows;
  for (const Drive& d : drives) rows.push_back((d.listed ? "" : "-") + d.row);
  EXPECT_EQ(rows, (std::vector<std::string>{"/", "/home", "-/mnt/lost  none",
                                            "/mnt/public docs  //host/Public Docs",
                                            "/mnt/share  server:/export", "/srv/data"}));
  EXPECT_EQ(drives_from_mount_table("").front().row, "/");
}

class BrowserTest : public ::testing::Test {
 protected:
  BrowserTest() {
    for (const char* sub : {"data/b", "data/A", "data/c", "share/x"}) {
      std::filesystem::create_directories(dir_.file(sub));
    }
    dir_.write("data/file.txt", "not a directory");
    drives_ = {{"/", "/", true},
               {dir_.file("lost"), dir_.file("lost") + "  none", false},
               {dir_.file("share"), dir_.file("share") + "  server:/share", true}};
  }
  TestDir dir_;
  std::vector<Drive> drives_;
};

TEST_F(BrowserTest, ListsSubDirectoriesSortedWithTheParent) {
  DirectoryBrowser browser(drives_, dir_.file("data"), "/");
  EXPECT_EQ(browser.directory(), dir_.file("data"));
  EXPECT_EQ(browser.entries(), (std::vector<std::string>{"..", "A", "b", "c"}));
  EXPECT_EQ(browser.drive_row(), 0);
  ASSERT_TRUE(browser.enter("b"));
  EXPECT_EQ(browser.directory(), dir_.file("data/b"));
  ASSERT_TRUE(browser.enter(".."));
  EXPECT_EQ(browser.directory(), dir_.file("data"));
  EXPECT_FALSE(browser.enter("missing"));
  EXPECT_EQ(browser.directory(), dir_.file("data"));
}

TEST_F(BrowserTest, StartingPlacesAndDrives) {
  // A start on a drive letter that does not exist, or no directory: the current one.
  EXPECT_EQ(DirectoryBrowser(drives_, "q:", dir_.file("data")).directory(), dir_.file("data"));
  EXPECT_EQ(DirectoryBrowser(drives_, dir_.file("gone"), dir_.file("data")).directory(),
            dir_.file("data"));
  EXPECT_EQ(DirectoryBrowser(drives_, "c:" + dir_.file("data/c"), "/").directory(),
            dir_.file("data/c"));
  EXPECT_EQ(DirectoryBrowser(drives_, "b", dir_.file("data")).directory(), dir_.file("data/b"));

  DirectoryBrowser browser(drives_, dir_.file("share/x"), "/");
  EXPECT_EQ(browser.drive_rows(),
            (std::vector<std::string>{"/", dir_.file("share") + "  server:/share"}));
  EXPECT_EQ(browser.drive_row(), 2);  // one row late after the left-out drive, as ever
  ASSERT_TRUE(browser.choose_drive(0));
  EXPECT_EQ(browser.directory(), "/");
  EXPECT_EQ(browser.entries().front() == "..", false);
  ASSERT_TRUE(browser.choose_drive(1));
  EXPECT_EQ(browser.directory(), dir_.file("share"));
}

}  // namespace
}  // namespace px::forms
