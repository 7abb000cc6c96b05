#include "common/command_line.h"

#include <gtest/gtest.h>

#include "tests/support/test_dir.h"

namespace px {
namespace {

using Args = std::vector<std::string>;

Args round_trip(const Args& args) { return split_arguments(rebuild_command_line(args)); }

TEST(CommandLine, RebuildAndSplitKeepArguments) {
  EXPECT_EQ(round_trip({"prog", "a b", "c"}), (Args{"prog", "a b", "c"}));
  EXPECT_EQ(round_trip({"prog", "tab\there", "x"}), (Args{"prog", "tab\there", "x"}));
  EXPECT_EQ(rebuild_command_line({"prog", "a b"}), "prog \"a b\" ");
}

TEST(CommandLine, LoneProgramPathStaysWhole) {
  EXPECT_EQ(round_trip({"/opt/Px Dir/pxctl"}), (Args{"/opt/Px Dir/pxctl"}));
  EXPECT_EQ(round_trip({"/opt/Px Dir/pxcntrl.exe -x"}), (Args{"/opt/Px Dir/pxcntrl.exe -x"}));
  EXPECT_EQ(round_trip({"pxctl"}), (Args{"pxctl"}));
}

TEST(CommandLine, SplitQuoteRules) {
  EXPECT_EQ(split_arguments("  a   b\t c\n"), (Args{"a", "b", "c"}));
  // Doubled quotes collapse first, so they still quote.
  EXPECT_EQ(split_arguments("say \"\"hi there\"\" x"), (Args{"say", "hi there", "x"}));
  // A quote inside a word opens a run; its closing quote ends the argument.
  EXPECT_EQ(split_arguments("ab\"c d\"ef g"), (Args{"abc d", "ef", "g"}));
  EXPECT_EQ(split_arguments("x 'open to end"), (Args{"x", "open to end"}));
  EXPECT_EQ(split_arguments("it''s me"), (Args{"its me"}));
  EXPECT_TRUE(split_arguments("").empty());
}

TEST(CommandLine, IndirectFiles) {
  TestDir dir;
  std::string inner = dir.write("inner.txt", "x\ty\n");
  std::string outer = dir.write("outer.txt", "-allout @" + inner + "\r\nz\n");
  std::string line = "prog @" + outer + " tail";
  ASSERT_EQ(expand_indirect_files(line), 0);
  // Every TAB/CR/LF but a file's last character becomes a blank.
  EXPECT_EQ(line, "prog -allout x y\n  z\n tail");
  EXPECT_EQ(split_arguments(line), (Args{"prog", "-allout", "x", "y", "z", "tail"}));
}

TEST(CommandLine, IndirectFileMustStartAWord) {
  TestDir dir;
  std::string file = dir.write("f.txt", "expanded");
  std::string line = "prog mail@host @" + file;
  ASSERT_EQ(expand_indirect_files(line), 0);
  EXPECT_EQ(line, "prog mail@host @" + file);  // the first "@" decides
  line = "@" + file + " x";
  ASSERT_EQ(expand_indirect_files(line), 0);
  EXPECT_EQ(line, "expanded x");
}

TEST(CommandLine, IndirectFileFailures) {
  TestDir dir;
  std::string line = "prog @" + dir.file("missing.txt");
  std::string before = line;
  EXPECT_EQ(expand_indirect_files(line), kIndirectFileFailed);
  std::string self = dir.file("self.txt");
  dir.write("self.txt", "again @" + self);
  line = "prog @" + self;
  EXPECT_EQ(expand_indirect_files(line), kIndirectFileFailed);
}

}  // namespace
}  // namespace px
