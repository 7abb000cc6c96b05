#include "views/log_find.h"

#include <gtest/gtest.h>

#include "tests/support/test_dir.h"

namespace px::views {
namespace {

TEST(LogFindTest, FindsTheNextAndPreviousLineWithoutRegardToCase) {
  TestDir dir;
  std::string text;
  for (int i = 0; i < 1000; ++i) {
    text += (i == 5 || i == 250 || i == 777 ? "ERROR in line " : "ok line ") + std::to_string(i) + "\n";
  }
  LogIndex index(dir.write("f.log", text));
  ASSERT_TRUE(index.build());
  using D = FindDirection;
  EXPECT_EQ(find_line(index, "error", 0, D::kForward), 5);
  EXPECT_EQ(find_line(index, "error", 6, D::kForward), 250);
  EXPECT_EQ(find_line(index, "Error", 250, D::kForward), 250);  // from the line itself
  EXPECT_EQ(find_line(index, "ERROR", 778, D::kForward), std::nullopt);
  EXPECT_EQ(find_line(index, "error", 999, D::kBackward), 777);
  EXPECT_EQ(find_line(index, "error", 776, D::kBackward), 250);
  EXPECT_EQ(find_line(index, "error", 249, D::kBackward), 5);
  EXPECT_EQ(find_line(index, "error", 4, D::kBackward), std::nullopt);
  EXPECT_EQ(find_line(index, "line 999", 5000, D::kBackward), 999);  // from clamped to the end
  EXPECT_EQ(find_line(index, "", 0, D::kForward), std::nullopt);
}

}  // namespace
}  // namespace px::views
