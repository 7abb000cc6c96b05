#include "views/log_index.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>

#include "tests/support/test_dir.h"

namespace px::views {
namespace {

std::string numbered_lines(int from, int to) {
  std::string text;
  for (int i = from; i < to; ++i) text += "line " + std::to_string(i) + "\n";
  return text;
}

void append(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::app | std::ios::binary) << text;
}

TEST(LogIndexTest, CountsLinesAndNotesEveryHundredthLine) {
  TestDir dir;
  std::string text = numbered_lines(0, 250) + "last without a line feed";
  std::string path = dir.write("a.log", text);
  LogIndex index(path);
  ASSERT_TRUE(index.build());
  EXPECT_EQ(index.line_count(), 251);
  ASSERT_EQ(index.checkpoints().size(), 3u);
  EXPECT_EQ(index.checkpoints()[0], 0u);
  EXPECT_EQ(index.checkpoints()[1], text.find("line 100\n"));
  EXPECT_EQ(index.checkpoints()[2], text.find("line 200\n"));

  EXPECT_EQ(*index.read_lines(99, 3),
            (std::vector<std::string>{"line 99", "line 100", "line 101"}));
  EXPECT_EQ(*index.read_lines(248, 30),
            (std::vector<std::string>{"line 248", "line 249", "last without a line feed"}));
  EXPECT_TRUE(index.read_lines(251, 30)->empty());
  EXPECT_FALSE(index.open_at_line(252));
}

TEST(LogIndexTest, EdgesOfTheCount) {
  TestDir dir;
  LogIndex empty(dir.write("empty.log", ""));
  ASSERT_TRUE(empty.build());
  EXPECT_EQ(empty.line_count(), 0);
  EXPECT_TRUE(empty.checkpoints().empty());

  LogIndex hundred(dir.write("hundred.log", numbered_lines(0, 100)));
  ASSERT_TRUE(hundred.build());
  EXPECT_EQ(hundred.line_count(), 100);
  EXPECT_EQ(hundred.checkpoints().size(), 1u);  // line 100 does not exist yet

  // A long line is one line, read back whole; CR LF ends are dropped.
  std::string long_line(5000, 'x');
  LogIndex mixed(dir.write("mixed.log", "a\r\n" + long_line + "\nb\n"));
  ASSERT_TRUE(mixed.build());
  EXPECT_EQ(mixed.line_count(), 3);
  EXPECT_EQ(*mixed.read_lines(0, 30), (std::vector<std::string>{"a", long_line, "b"}));

  LogIndex missing(dir.file("missing.log"));
  EXPECT_FALSE(missing.build());
  EXPECT_FALSE(missing.open_at_line(0));
}

TEST(LogIndexTest, GrowthIsIndexedFromWhereTheIndexEnded) {
  TestDir dir;
  std::string path = dir.write("grow.log", numbered_lines(0, 150) + "half");
  LogIndex index(path);
  ASSERT_TRUE(index.build());
  EXPECT_EQ(index.update(), LogIndex::Change::kNone);
  EXPECT_EQ(index.line_count(), 151);

  append(path, " done\n" + numbered_lines(151, 420));
  EXPECT_EQ(index.update(), LogIndex::Change::kGrew);
  EXPECT_EQ(index.line_count(), 420);
  EXPECT_EQ(*index.read_lines(150, 2), (std::vector<std::string>{"half done", "line 151"}));
  EXPECT_EQ(*index.read_lines(400, 1), (std::vector<std::string>{"line 400"}));

  // The same checkpoints as indexing the whole file at once.
  LogIndex fresh(path);
  ASSERT_TRUE(fresh.build());
  EXPECT_EQ(std::vector<uint64_t>(index.checkpoints().begin(), index.checkpoints().end()),
            std::vector<uint64_t>(fresh.checkpoints().begin(), fresh.checkpoints().end()));
}

// Appends of every size, cut anywhere (inside a line, right after a line
// feed, across a checkpoint), leave the index as one built at the end would.
TEST(LogIndexTest, ManySmallAppendsIndexLikeOneBuild) {
  TestDir dir;
  std::string text;
  for (int i = 0; i < 3000; ++i) {
    text += std::string(static_cast<size_t>(i % 170), static_cast<char>('a' + i % 26)) + "\n";
  }
  text += "tail";
  std::string path = dir.write("steps.log", "");
  LogIndex index(path);
  ASSERT_TRUE(index.build());
  for (size_t at = 0, step = 1; at < text.size(); at += step, step = step * 7 % 9001 + 1) {
    append(path, text.substr(at, step));
    ASSERT_EQ(index.update(), LogIndex::Change::kGrew);
  }
  LogIndex fresh(path);
  ASSERT_TRUE(fresh.build());
  EXPECT_EQ(index.line_count(), 3001);
  EXPECT_EQ(index.complete_lines(), 3000);
  EXPECT_EQ(std::vector<uint64_t>(index.checkpoints().begin(), index.checkpoints().end()),
            std::vector<uint64_t>(fresh.checkpoints().begin(), fresh.checkpoints().end()));
  EXPECT_EQ(*index.read_lines(2999, 5), (std::vector<std::string>{std::string(109, 'j'), "tail"}));

  // Rewritten in place to the same size: its first bytes tell.
  std::string same_size = text;
  same_size[1] = 'B';
  dir.write("steps.log", same_size);
  EXPECT_EQ(index.update(), LogIndex::Change::kRestarted);
  EXPECT_EQ(index.line_count(), 3001);
}

TEST(LogIndexTest, TruncationAndReplacementStartTheIndexAgain) {
  TestDir dir;
  std::string path = dir.write("rot.log", numbered_lines(0, 300));
  LogIndex index(path);
  ASSERT_TRUE(index.build());

  // Rotated by copy and truncate, then written again past the old size.
  dir.write("rot.log", numbered_lines(1000, 1400));
  EXPECT_EQ(index.update(), LogIndex::Change::kRestarted);
  EXPECT_EQ(index.line_count(), 400);
  EXPECT_EQ(*index.read_lines(0, 1), (std::vector<std::string>{"line 1000"}));

  // Truncated to less.
  dir.write("rot.log", numbered_lines(5, 7));
  EXPECT_EQ(index.update(), LogIndex::Change::kRestarted);
  EXPECT_EQ(index.line_count(), 2);

  // Replaced by another file (renamed over it).
  std::string other = dir.write("new.log", numbered_lines(0, 2) + numbered_lines(7, 9));
  ASSERT_EQ(std::rename(other.c_str(), path.c_str()), 0);
  EXPECT_EQ(index.update(), LogIndex::Change::kRestarted);
  EXPECT_EQ(index.line_count(), 4);

  ::unlink(path.c_str());
  EXPECT_EQ(index.update(), LogIndex::Change::kFailed);
  EXPECT_EQ(index.line_count(), 4);
}

// Offsets past 4 GiB: a sparse file whose lines begin beyond that point.
TEST(LogIndexTest, PagesCorrectlyBeyondFourGibibytes) {
  TestDir dir;
  std::string path = dir.file("huge.log");
  {
    std::FILE* f = std::fopen(path.c_str(), "wb");
    ASSERT_NE(f, nullptr);
    std::fputs("head\n", f);
    ASSERT_EQ(::ftruncate(fileno(f), (int64_t{1} << 32) + 100), 0);
    std::fseek(f, 0, SEEK_END);
    std::fputs(("\n" + numbered_lines(0, 250)).c_str(), f);
    std::fclose(f);
  }
  LogIndex index(path);
  ASSERT_TRUE(index.build());
  EXPECT_EQ(index.line_count(), 252);
  EXPECT_GT(index.checkpoints()[2], uint64_t{1} << 32);
  EXPECT_EQ(*index.read_lines(201, 2), (std::vector<std::string>{"line 199", "line 200"}));
}

}  // namespace
}  // namespace px::views
