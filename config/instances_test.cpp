#include "config/instances.h"

#include <gtest/gtest.h>

#include "common/directory_map.h"
#include "common/ini_profile.h"
#include "config/message_numbers.h"
#include "config/recording_operator.h"
#include "tests/support/test_dir.h"

namespace px {
namespace {

class InstancesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    console_ = dir_.write("pxcntrl.ini", "[Plexar]\nInstall=" + dir_.file("install.ini") + "\n");
    ini::set_file(console_);
  }
  void TearDown() override { ini::flush_cache(); }

  TestDir dir_;
  std::string console_;
  RecordingOperator op_;
};

TEST_F(InstancesTest, EnumeratesInInstallFileOrder) {
  std::string south = dir_.write("south.ini", "[Plexar]\nWindowTitle=South office\n");
  std::string north = dir_.write("north.ini", "[plexar]\nwindowtitle = North office\n");
  dir_.write("install.ini", "[Configuration]\nsouth=" + south + "\nnorth=" + north +
                                "\nbare=\n[Directories-south]\n/in=/srv/in\n");
  InstanceEnumerator instances;
  ASSERT_TRUE(instances.begin());
  std::vector<std::string> lines;
  for (Instance entry; instances.next(entry);) {
    lines.push_back(entry.name + "|" + entry.window_title + "|" + entry.config_file);
  }
  instances.end();
  EXPECT_EQ(lines, (std::vector<std::string>{"south|South office|" + south,
                                             "north|North office|" + north, "bare| |"}));

  // The first is the default; it becomes the profile engine's active instance.
  EXPECT_EQ(select_default_instance(op_), 3);
  EXPECT_EQ(current_instance().name, "south");
  EXPECT_EQ(current_instance().window_title, "South office");
  EXPECT_EQ(map_directory("/in/a.dat"), "/srv/in/a.dat");
  EXPECT_TRUE(op_.shown().empty());

  EXPECT_TRUE(select_instance("north", op_));
  EXPECT_EQ(current_instance().config_file, north);
  EXPECT_EQ(map_directory("/in/a.dat"), "/in/a.dat");
}

TEST_F(InstancesTest, MissingInstancesAndConfigurationsAreReported) {
  dir_.write("install.ini", "[Plexar]\nNode=alpha\n");
  InstanceEnumerator instances;
  EXPECT_FALSE(instances.begin());
  EXPECT_EQ(select_default_instance(op_), 0);
  EXPECT_EQ(op_.last(), msg::kNoInstance);

  op_.clear();
  EXPECT_FALSE(select_instance("east", op_));
  ASSERT_EQ(op_.shown().size(), 1u);
  EXPECT_EQ(op_.shown()[0],
            (ShownMessage{msg::kInstanceWithoutConfig, {"east", display_path(console_)}}));

  // A default instance without a configuration file is still selected.
  ini::drop_file(dir_.file("install.ini"));
  dir_.write("install.ini", "[Configuration]\nwest=\n");
  op_.clear();
  EXPECT_EQ(select_default_instance(op_), 1);
  EXPECT_EQ(current_instance().name, "west");
  EXPECT_EQ(op_.numbers(), std::vector<int>{msg::kInstanceWithoutConfig});
}

TEST_F(InstancesTest, LongNamesAreCutWhenEnumerated) {
  std::string long_name(80, 'n');
  std::string config = dir_.write("n.ini", "[Plexar]\nWindowTitle=N\n");
  dir_.write("install.ini", "[Configuration]\n" + long_name.substr(0, 73) + "=" + config + "\n" +
                                long_name + "=" + config + "\n");
  InstanceEnumerator instances;
  ASSERT_TRUE(instances.begin());
  Instance entry;
  ASSERT_TRUE(instances.next(entry));
  ASSERT_TRUE(instances.next(entry));
  // The cut name finds the first key's configuration.
  EXPECT_EQ(entry.name, long_name.substr(0, 73));
  EXPECT_EQ(entry.config_file, config);
  EXPECT_FALSE(instances.next(entry));
}

}  // namespace
}  // namespace px
