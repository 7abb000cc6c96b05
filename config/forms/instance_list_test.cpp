#include "config/forms/instance_list.h"

#include <gtest/gtest.h>

#include "common/ini_profile.h"
#include "tests/support/test_dir.h"

namespace px::forms {
namespace {

class InstanceListTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ini::set_file(dir_.write("pxcntrl.ini", "[Plexar]\nInstall=" + dir_.file("install.ini") + "\n"));
    north_ = dir_.write("north.ini", "; north\n[Plexar]\nWindowTitle=North\nNode=here\n");
    south_ = dir_.write("south.ini", "[Plexar]\nWindowTitle=South\n");
    dir_.write("install.ini", "; the install file\n[Configuration]\nnorth=" + north_ +
                                  "\nsouth=" + south_ + "\nbare=\n\n[Directories-north]\n/a=/b\n");
    list_.load();
  }
  void TearDown() override { ini::flush_cache(); }

  TestDir dir_;
  std::string north_;
  std::string south_;
  InstanceList list_;
};

TEST_F(InstanceListTest, LoadsEveryInstanceWithABlankTitleWithoutConfiguration) {
  ASSERT_EQ(list_.rows().size(), 3u);
  EXPECT_EQ(list_.rows()[2].name, "bare");
  EXPECT_EQ(list_.rows()[2].window_title, " ");
  EXPECT_EQ(list_.find("SOUTH"), 1);
}

TEST_F(InstanceListTest, MakeDefaultMovesTheRowToTheTopAndApplyWritesListOrder) {
  list_.make_default(0);
  EXPECT_EQ(list_.rows()[0].name, "north");
  list_.make_default(1);
  EXPECT_EQ(list_.rows()[0].name, "south");
  EXPECT_EQ(list_.rows()[1].name, "north");
  Instance south = list_.rows()[0];
  south.window_title = "South office";
  list_.replace(0, south);
  ASSERT_TRUE(list_.apply());
  EXPECT_EQ(dir_.read("install.ini"),
            "; the install file\n[Configuration]\nsouth=" + south_ + "\nnorth=" + north_ +
                "\nbare=\n\n[Directories-north]\n/a=/b\n");
  EXPECT_EQ(dir_.read("south.ini"), "[Plexar]\nWindowTitle=South office\n");
  EXPECT_EQ(dir_.read("north.ini"), "; north\n[Plexar]\nWindowTitle=North\nNode=here\n");
}

TEST_F(InstanceListTest, AddAndRemoveRows) {
  std::string west = dir_.file("west.ini");
  list_.add({"west", "West", west});
  list_.remove(static_cast<std::size_t>(list_.find("bare")));
  ASSERT_TRUE(list_.apply());
  InstanceList again;
  again.load();
  ASSERT_EQ(again.rows().size(), 3u);
  EXPECT_EQ(again.rows()[2].name, "west");
  EXPECT_EQ(again.rows()[2].window_title, "West");
  EXPECT_EQ(again.find("bare"), -1);
}

TEST_F(InstanceListTest, OkKeepsEveryInstanceEvenPastTheEnumeratorsLimits) {
  // 100 names of 20 characters overflow the enumerator's 1,024-character
  // room, and one name is longer than the 73 characters it delivers.
  std::string install = "[Configuration]\n";
  for (int i = 0; i < 100; ++i) install += "instance-number-" + std::to_string(1000 + i) + "=/c\n";
  std::string long_name(90, 'n');
  install += long_name + "=" + north_ + "\n";
  dir_.write("install.ini", install);
  list_.load();
  ASSERT_EQ(list_.rows().size(), 101u);
  EXPECT_EQ(list_.rows().back().name, long_name);
  EXPECT_EQ(list_.rows().back().window_title, "North");
  list_.add({"west", "West", dir_.file("west.ini")});
  ASSERT_TRUE(list_.apply());
  EXPECT_EQ(dir_.read("install.ini"), install + "west=" + dir_.file("west.ini") + "\n");
}

TEST_F(InstanceListTest, AValueNoFileWouldGiveBackIsFoundBeforeAnyFileIsWritten) {
  EXPECT_FALSE(list_.unsavable_value().has_value());
  Instance north = list_.rows()[0];
  north.window_title = "North ";  // the reader would drop the blank
  list_.replace(0, north);
  EXPECT_EQ(list_.unsavable_value(), "WindowTitle");
  north.window_title = "North";
  north.config_file = "/tmp/a\tb";
  list_.replace(0, north);
  EXPECT_EQ(list_.unsavable_value(), "north");
  // A row without a configuration file gets no title: its title is no matter.
  list_.replace(0, {"north", "North ", ""});
  EXPECT_FALSE(list_.unsavable_value().has_value());
}

TEST_F(InstanceListTest, NoticesAnotherWriter) {
  EXPECT_FALSE(list_.changed_on_disk());
  dir_.write("install.ini", "[Configuration]\nother=x\n");
  EXPECT_TRUE(list_.changed_on_disk());
}

TEST_F(InstanceListTest, UsableNames) {
  EXPECT_TRUE(InstanceList::usable_name("east-2"));
  for (const char* bad : {"", "a=b", "[x", ";x", " x", "x ", "a\nb"}) {
    EXPECT_FALSE(InstanceList::usable_name(bad)) << bad;
  }
}

}  // namespace
}  // namespace px::forms
