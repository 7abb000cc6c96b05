#include "common/file_pattern.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>

#include "tests/support/test_dir.h"

namespace px {
namespace {

TEST(FilePattern, MatchesWithoutRegardToCase) {
  EXPECT_TRUE(matches_file_pattern("a.dat", "*.DAT"));
  EXPECT_TRUE(matches_file_pattern("PXCTRL07.MSG", "px*.msg"));
  EXPECT_TRUE(matches_file_pattern("StopServ.Msg", "stopserv.msg"));
  EXPECT_FALSE(matches_file_pattern("a.dat.old", "*.DAT"));
  EXPECT_FALSE(matches_file_pattern("xpx1.msg", "px*.msg"));
}

TEST(FilePattern, StarAndQuestionMark) {
  EXPECT_TRUE(matches_file_pattern("px.msg", "px*.msg"));      // "*" may match nothing
  EXPECT_TRUE(matches_file_pattern("a.b.c.dat", "*.dat"));     // backtracks past early dots
  EXPECT_TRUE(matches_file_pattern("ab", "a?"));
  EXPECT_FALSE(matches_file_pattern("a", "a?"));
  EXPECT_TRUE(matches_file_pattern("DA1", "DA*"));
  EXPECT_TRUE(matches_file_pattern("anything", "*"));
  EXPECT_FALSE(matches_file_pattern("", "?"));
  EXPECT_TRUE(matches_file_pattern("abcbc", "*bc"));
}

TEST(FilePattern, StarDotStarMatchesNamesWithoutDot) {
  EXPECT_TRUE(matches_file_pattern("README", "*.*"));
  EXPECT_TRUE(matches_file_pattern("a.b", "*.*"));
  EXPECT_FALSE(matches_file_pattern("README", "*.?*"));
}

TEST(FilePattern, ListsOnlyMatchingPlainFiles) {
  TestDir dir;
  dir.write("a.dat", "x");
  dir.write("B.DAT", "x");
  dir.write("c.txt", "x");
  ASSERT_EQ(mkdir(dir.file("d.dat").c_str(), 0755), 0);
  auto names = list_directory(dir.path(), "*.Dat");
  ASSERT_TRUE(names);
  std::sort(names->begin(), names->end());
  EXPECT_EQ(*names, (std::vector<std::string>{"B.DAT", "a.dat"}));
  EXPECT_FALSE(list_directory(dir.file("missing"), "*.*"));
}

}  // namespace
}  // namespace px
