#include "views/log_follow.h"

#include <gtest/gtest.h>

#include <fstream>

#include "tests/support/test_dir.h"

namespace px::views {
namespace {

TEST(LogFollowTest, HandsOutCompleteLinesOnceAndStartsAgainAfterTruncation) {
  TestDir dir;
  std::string path = dir.write("f.log", "a\nb\nc\npartial");
  LogIndex index(path);
  ASSERT_TRUE(index.build());
  LogFollower follower(index);
  EXPECT_EQ(follower.last_lines(2), (std::vector<std::string>{"b", "c"}));
  EXPECT_TRUE(follower.poll()->lines.empty());

  std::ofstream(path, std::ios::app) << " done\nd\ne";
  auto grown = follower.poll();
  ASSERT_TRUE(grown);
  EXPECT_FALSE(grown->restarted);
  EXPECT_EQ(grown->lines, (std::vector<std::string>{"partial done", "d"}));

  std::ofstream(path, std::ios::app) << "\nf\ng\n";
  EXPECT_EQ(follower.poll(1)->lines, std::vector<std::string>{"e"});  // at most one a poll
  EXPECT_EQ(follower.poll()->lines, (std::vector<std::string>{"f", "g"}));

  dir.write("f.log", "new\n");
  auto restarted = follower.poll();
  ASSERT_TRUE(restarted);
  EXPECT_TRUE(restarted->restarted);
  EXPECT_EQ(restarted->lines, std::vector<std::string>{"new"});

  std::remove(path.c_str());
  EXPECT_FALSE(follower.poll());
}

}  // namespace
}  // namespace px::views
