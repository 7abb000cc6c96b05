#include "config/operator_action.h"

#include <gtest/gtest.h>

#include "common/common_init.h"
#include "common/ini_profile.h"
#include "common/messages.h"
#include "config/recording_operator.h"
#include "tests/support/test_dir.h"

namespace px {
namespace {

class OperatorActionTest : public ::testing::Test {
 protected:
  void SetUp() override { use_options(""); }
  void TearDown() override {
    std::vector<std::string> args{"prog"};
    common_init(args);  // forgets -aro
    ini::set_file("");
    ini::flush_cache();
    messages::reset();
  }
  // The console's INI file with these lines in section Options.
  void use_options(const std::string& lines) {
    ini_ = dir_.write("pxcntrl.ini", "[Options]\n" + lines +
                                         "[Messages]\nMsg1701=10 Read-only here.\n");
    ini::flush_cache();
    ini::set_file(ini_);
  }
  TestDir dir_;
  std::string ini_;
  RecordingOperator op_;
};

TEST_F(OperatorActionTest, ReadOnlyComesFromTheIniFileOrTheOption) {
  EXPECT_FALSE(read_only_mode());
  // The rule of every Yes/No switch: a value beginning with "y" or "Y".
  for (const char* yes : {"Yes", "YES", "y", "yes please"}) {
    use_options(std::string("ReadOnly=") + yes + "\n");
    EXPECT_TRUE(read_only_mode()) << yes;
  }
  for (const char* no : {"No", "", "true", "on", "1"}) {
    use_options(std::string("ReadOnly=") + no + "\n");
    EXPECT_FALSE(read_only_mode()) << no;
  }
  std::vector<std::string> args{"prog", "-aii" + ini_, "-aro"};
  ASSERT_EQ(common_init(args), 0);
  EXPECT_TRUE(read_only_mode());
  EXPECT_EQ(read_only_reason(), "[1701]Read-only here.");
}

TEST_F(OperatorActionTest, RefusedActionShowsWhyAndIsNeverPermitted) {
  use_options("ReadOnly=Yes\n");
  OperatorAction action(op_, "ini set a.ini S K", "north");
  EXPECT_FALSE(action.permitted());
  EXPECT_EQ(op_.shown(), (std::vector<ShownMessage>{{msg::kReadOnlyRefused, {"ini set a.ini S K"}}}));
  EXPECT_EQ(action.last_message(), msg::kReadOnlyRefused);
}

TEST_F(OperatorActionTest, PermittedActionPassesMessagesOnAndNotesTheLast) {
  OperatorAction action(op_, "pause", "north");
  ASSERT_TRUE(action.permitted());
  EXPECT_EQ(action.last_message(), 0);
  action.op().show(234, {"x"});
  op_.answer_next(0);
  EXPECT_EQ(action.op().ask(291, {}, {249, 250, 140}), 0u);
  EXPECT_EQ(op_.numbers(), (std::vector<int>{234, 291}));
  EXPECT_EQ(action.last_message(), 291);
}

}  // namespace
}  // namespace px
