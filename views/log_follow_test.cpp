#include "views/log_follow.h"

#include <gtest/gtest.h>

#include <fstream>

#include "tests/support/test_dir.h"

namespace px::views {
namespace {

TEST(LogFollowTest, HandsOutLinesOnceAndStartsAgainAfterTruncation) {
  TestDir dir;
  std::string path = dir.write("f.log", "a\nb\nc\npartial");
  LogIndex index(path);
  ASSERT_TRUE(index.build());
  LogFollower follower(index);
  // The unfinished last line is shown as the follow starts...
  EXPECT_EQ(follower.last_lines(2), (std::vector<std::string>{"c", "partial"}));
  EXPECT_TRUE(follower.poll()->lines.empty());

  // ... so when it ends, only its rest follows.
  std::ofstream(path, std::ios::app) << " done\nd\ne";
  auto grown = follower.poll();
  ASSERT_TRUE(grown);
  EXPECT_FALSE(grown->restarted);
  EXPECT_EQ(grown->lines, (std::vector<std::string>{" done", "d"}));
  // An unfinished line that stays as it was for a poll is handed out; its
  // line end alone gives nothing more.
  EXPECT_EQ(follower.poll()->lines, std::vector<std::string>{"e"});
  EXPECT_TRUE(follower.poll()->lines.empty());
  std::ofstream(path, std::ios::app) << "\nf\ng\n";
  EXPECT_TRUE(follower.poll(1)->lines.empty());  // at most one a poll: "e" ended
  EXPECT_EQ(follower.poll(1)->lines, std::vector<std::string>{"f"});
  EXPECT_EQ(follower.poll()->lines, (std::vector<std::string>{"g"}));

  dir.write("f.log", "new\n");
  auto restarted = follower.poll();
  ASSERT_TRUE(restarted);
  EXPECT_TRUE(restarted->restarted);
  EXPECT_EQ(restarted->lines, std::vector<std::string>{"new"});

  std::remove(path.c_str());
  EXPECT_FALSE(follower.poll());
}

TEST(LogFollowTest, AFollowOfAFinishedLogGivesOnlyWhatIsAppended) {
  TestDir dir;
  std::string path = dir.write("g.log", "one\ntwo\n");
  LogIndex index(path);
  ASSERT_TRUE(index.build());
  LogFollower follower(index);
  EXPECT_EQ(follower.last_lines(30), (std::vector<std::string>{"one", "two"}));
  EXPECT_TRUE(follower.poll()->lines.empty());
  std::ofstream(path, std::ios::app) << "three\nfo";
  EXPECT_EQ(follower.poll()->lines, std::vector<std::string>{"three"});
  std::ofstream(path, std::ios::app) << "ur\n";  // ended before it was handed out
  EXPECT_EQ(follower.poll()->lines, std::vector<std::string>{"four"});
  EXPECT_TRUE(follower.poll()->lines.empty());
}

}  // namespace
}  // namespace px::views
