#include "common/run_command.h"

#include <gtest/gtest.h>
#include <stdlib.h>

namespace px {
namespace {

TEST(RunCommandTest, StartMinimisedFlag) {
  EXPECT_EQ(start_minimised(), 1u);
  set_start_minimised(0);
  EXPECT_EQ(start_minimised(), 0u);
  set_start_minimised(1);
  EXPECT_EQ(start_minimised(), 1u);
}

TEST(RunCommandTest, MissingProgramFailsInBothModes) {
  EXPECT_EQ(launch("px-no-such-program-here arg"), kRunFailed);
  EXPECT_EQ(run_and_wait("px-no-such-program-here arg"), kRunFailed);
  EXPECT_EQ(run_and_wait("   "), kRunFailed);
}

TEST(RunCommandTest, WaitReturnsExitStatus) {
  EXPECT_EQ(run_and_wait("true"), 0);
  EXPECT_EQ(run_and_wait("sh -c 'exit 3'"), 3);
  EXPECT_EQ(run_and_wait("sh -c 'exit 127'"), 127);  // a real 127 is not a failed start
  EXPECT_EQ(run_and_wait("sh -c 'kill -9 $$'"), kRunFailed);
}

TEST(RunCommandTest, ChildSeesEnvironmentAndArguments) {
  setenv("PX_RUN_COMMAND_TEST", "7", 1);
  EXPECT_EQ(run_and_wait("sh -c 'exit $PX_RUN_COMMAND_TEST'"), 7);
  unsetenv("PX_RUN_COMMAND_TEST");
  // No shell expands the words: "$0" reaches sh literally as its $0.
  EXPECT_EQ(run_and_wait("sh -c '[ \"$0\" = \"a b\" ]' \"a b\""), 0);
}

TEST(RunCommandTest, LaunchedChildrenDoNotStealWaitedStatus) {
  EXPECT_EQ(launch("true"), 0);
  EXPECT_EQ(launch("sh -c 'exit 9'"), 0);
  usleep(100 * 1000);
  EXPECT_EQ(run_and_wait("sh -c 'exit 5'"), 5);
}

}  // namespace
}  // namespace px
