#include "common/ini_syntax.h"

#include <gtest/gtest.h>

namespace px {
namespace {

const Delimiters kDefault;

std::optional<std::string> value_of(std::string_view text, std::string_view section,
                                    std::string_view key, size_t size = 1024) {
  return find_value(text, section, key, size, kDefault);
}

std::string rewrite(std::string_view text, std::string_view section,
                    std::optional<std::string_view> key, std::optional<std::string_view> value) {
  return rewrite_text(text, IniChange{section, key, value}, kDefault);
}

TEST(IniLookup, ValueCleaning) {
  const char* text =
      "[S]\n"
      "quoted = \"a b\"  \n"
      "mixed='a b\"\n"
      "lone=\"\n"
      "remark=value\tremark here\n"
      "leadtab=\t  spaced  \n"
      "empty=\n"
      "bare\n"
      "crlf=windows\r\n";
  EXPECT_EQ(value_of(text, "S", "quoted"), "a b");
  EXPECT_EQ(value_of(text, "S", "mixed"), "'a b\"");
  EXPECT_EQ(value_of(text, "S", "lone"), "\"");
  EXPECT_EQ(value_of(text, "S", "remark"), "value");
  EXPECT_EQ(value_of(text, "S", "leadtab"), "spaced");
  EXPECT_EQ(value_of(text, "S", "empty"), "");
  EXPECT_EQ(value_of(text, "S", "bare"), "");
  EXPECT_EQ(value_of(text, "S", "crlf"), "windows");
  EXPECT_EQ(value_of(text, "S", "missing"), std::nullopt);
}

TEST(IniLookup, CutHappensBeforeQuotesAreRemoved) {
  // Cut to 4 characters the value is "\"abc", which no longer ends in a quote.
  EXPECT_EQ(value_of("[S]\nk=\"abcdef\"\n", "S", "k", 5), "\"abc");
  EXPECT_EQ(value_of("[S]\nk=\"ab\"\n", "S", "k", 5), "ab");
}

TEST(IniLookup, SectionsAndKeys) {
  const char* text =
      "k=before any section\n"
      " [Indented]\n"
      "k=not a section\n"
      "[OPTIONS]\n"
      "  Key  = first\n"
      "key=second\n"
      ";key=commented\n"
      "[Next]\n"
      "other=1\n"
      "[options]\n"
      "late=never seen\n";
  EXPECT_EQ(value_of(text, "options", "KEY"), "first");
  EXPECT_EQ(value_of(text, "options", "late"), std::nullopt);
  EXPECT_EQ(value_of(text, "Indented", "k"), std::nullopt);
  EXPECT_EQ(value_of(text, "Next", "other"), "1");
  KeyList keys = find_keys(text, "Options", 1024, kDefault);
  EXPECT_EQ(keys.keys, (std::vector<std::string>{"Key", "key"}));
  EXPECT_EQ(keys.used, 8);
}

TEST(IniLookup, KeyListOverflow) {
  const char* text = "[S]\nabc=1\ndef=2\n";
  EXPECT_FALSE(find_keys(text, "S", 9, kDefault).overflow);  // "abc\0def\0" + final NUL
  KeyList small = find_keys(text, "S", 8, kDefault);
  EXPECT_TRUE(small.overflow);
  EXPECT_EQ(small.used, -1);
}

TEST(IniLookup, LongLinesComeInPieces) {
  std::string text = "[S]\n" + std::string(511, 'x') + "k=tail\n";
  // The 511 x's are one line; "k=tail" is the next piece and reads as a key.
  EXPECT_EQ(value_of(text, "S", "k"), "tail");
  std::string long_line(600, 'a');
  LineReader reader(long_line, kMaxLineLength);
  std::string_view line;
  ASSERT_TRUE(reader.next(line));
  EXPECT_EQ(line.size(), 511u);
  ASSERT_TRUE(reader.next(line));
  EXPECT_EQ(line.size(), 89u);
  EXPECT_FALSE(reader.next(line));
}

TEST(IniLookup, ChangedDelimitersAreUsed) {
  Delimiters d;
  d.section_open = '<';
  d.section_close = '>';
  d.separator = ':';
  EXPECT_EQ(find_value("<S>\nk: v\n", "S", "k", 100, d), "v");
}

TEST(IniRewrite, ReplacesFirstOfDuplicatesAndCopiesTheRest) {
  EXPECT_EQ(rewrite("[A]\nk=1\nk=2\n[B]\nk=3\n", "a", "K", "9"), "[A]\nK=9\nk=2\n[B]\nk=3\n");
}

TEST(IniRewrite, AddsAtEndOfSectionAheadOfBlankLines) {
  EXPECT_EQ(rewrite("[A]\nx=1\n\n\n[B]\ny=2\n", "A", "k", "v"),
            "[A]\nx=1\nk=v\n\n\n[B]\ny=2\n");
  EXPECT_EQ(rewrite("[A]\nx=1\n\n", "A", "k", "v"), "[A]\nx=1\nk=v\n\n");
}

TEST(IniRewrite, NewSectionGoesAtEndAndTrailingBlanksGo) {
  EXPECT_EQ(rewrite("[A]\nx=1\n\n\n", "B", "k", "v"), "[A]\nx=1\n\n[B]\nk=v\n");
  // Deleting from a section that is not there changes only the trailing blanks.
  EXPECT_EQ(rewrite("[A]\nx=1\n\n", "B", "k", std::nullopt), "[A]\nx=1\n");
}

TEST(IniRewrite, DeleteKeyAndEmptySection) {
  EXPECT_EQ(rewrite("[A]\nk=1\nj=2\n", "A", "k", std::nullopt), "[A]\nj=2\n");
  EXPECT_EQ(rewrite("[A]\nk=1\n\nj=2\n[B]\nk=1\n", "A", std::nullopt, std::nullopt),
            "[A]\n\n[B]\nk=1\n");
  // A missing key leaves the section as it was.
  EXPECT_EQ(rewrite("[A]\nk=1\n", "A", "z", std::nullopt), "[A]\nk=1\n");
}

TEST(IniRewrite, KeysAreMatchedUntrimmed) {
  // "k =1" has the key "k " on the writer's path, so "k" is added instead.
  EXPECT_EQ(rewrite("[A]\nk =1\n", "A", "k", "2"), "[A]\nk =1\nk=2\n");
}

// The writer reads 255 characters at a time; "k=" and 253 characters fill
// the first piece, so what follows them starts the next one.
std::string past_first_piece(std::string_view key, std::string_view rest) {
  std::string line(key);
  line += '=';
  line.append(255 - line.size(), 'v');
  return line + std::string(rest);
}

TEST(IniRewrite, LongLinesOfOtherKeysAreCopiedWholeAndNeverMatched) {
  std::string line(600, 'z');
  std::string text = "[A]\n" + line + "\nk=1\n";
  EXPECT_EQ(rewrite(text, "A", "k", "2"), "[A]\n" + line + "\nk=2\n");

  // The rest of another key's line is not a key, a header or an empty line.
  std::string same_key = past_first_piece("o", "k=trap");
  EXPECT_EQ(rewrite("[A]\n" + same_key + "\n", "A", "k", "v"),
            "[A]\n" + same_key + "\nk=v\n");
  std::string header = past_first_piece("o", "[A]");
  EXPECT_EQ(rewrite("[B]\n" + header + "\nk=1\n", "A", "k", "v"),
            "[B]\n" + header + "\nk=1\n\n[A]\nk=v\n");
  EXPECT_EQ(rewrite("[A]\n" + header + "\nk=1\n", "A", "k", "v"),
            "[A]\n" + header + "\nk=v\n");
  for (std::string_view end : {"\n", "\r\n"}) {
    // The line end alone in the second piece: the entry added at the end of
    // the section must not join the line.
    std::string full(256 - end.size(), 'a');
    EXPECT_EQ(rewrite("[A]\n" + full + std::string(end) + "[B]\n", "A", "k", "v"),
              "[A]\n" + full + std::string(end) + "k=v\n[B]\n");
  }
}

TEST(IniRewrite, TheChangedKeysLongLineGoesWhole) {
  std::string tails[] = {"k=" + std::string(398, 'w'), past_first_piece("k", "k=tail"),
                         past_first_piece("k", "[B]x=1"), past_first_piece("k", "\r")};
  for (const std::string& long_line : tails) {
    std::string text = "[A]\n" + long_line + "\nj=2\n[B]\nk=3\n";
    SCOPED_TRACE(long_line.substr(250));
    EXPECT_EQ(rewrite(text, "A", "k", "short"), "[A]\nk=short\nj=2\n[B]\nk=3\n");
    std::string other(300, 'o');
    EXPECT_EQ(rewrite(text, "A", "k", other), "[A]\nk=" + other + "\nj=2\n[B]\nk=3\n");
    EXPECT_EQ(rewrite(text, "A", "k", std::nullopt), "[A]\nj=2\n[B]\nk=3\n");
    EXPECT_EQ(rewrite(text, "A", std::nullopt, std::nullopt), "[A]\n[B]\nk=3\n");
  }
}

TEST(IniRewrite, CrLfFilesKeepTheirOtherLines) {
  EXPECT_EQ(rewrite("[A]\r\nk=1\r\nj=2\r\n", "A", "k", "3"), "[A]\r\nk=3\nj=2\r\n");
  // A key without a separator is matched without its carriage return, so the
  // reader sees the value written.
  std::string set = rewrite("[A]\r\nflag\r\n[B]\r\n", "A", "flag", "on");
  EXPECT_EQ(set, "[A]\r\nflag=on\n[B]\r\n");
  EXPECT_EQ(value_of(set, "A", "flag"), "on");
  EXPECT_EQ(rewrite("[A\r\nk=1\r\n", "A", "k", "2"), "[A\r\nk=2\n");
  // A line of only a carriage return and a line feed is an empty line: new
  // entries go ahead of it, and emptying a section keeps it.
  EXPECT_EQ(rewrite("[A]\r\nx=1\r\n\r\n[B]\r\n", "A", "k", "v"),
            "[A]\r\nx=1\r\nk=v\n\r\n[B]\r\n");
  EXPECT_EQ(rewrite("[A]\r\nx=1\r\n\r\n[B]\r\n", "A", std::nullopt, std::nullopt),
            "[A]\r\n\r\n[B]\r\n");
  EXPECT_EQ(rewrite("[A]\r\nx=1\r\n\r\n", "B", "k", "v"), "[A]\r\nx=1\r\n\n[B]\nk=v\n");
}

TEST(IniRewrite, LastLineWithoutLineEndIsEndedBeforeAnAddedLine) {
  EXPECT_EQ(rewrite("[A]\nx=1", "A", "k", "v"), "[A]\nx=1\nk=v\n");
  EXPECT_EQ(rewrite("[A]\nx=1", "B", "k", "v"), "[A]\nx=1\n\n[B]\nk=v\n");
}

TEST(IniWritable, OnlyWhatReadsBackIsWritten) {
  auto part = [](std::string_view section, std::optional<std::string_view> key,
                 std::optional<std::string_view> value) {
    return unwritable_part(IniChange{section, key, value}, kDefault);
  };
  EXPECT_EQ(part("S", "k", "v"), Unwritable::kNone);
  EXPECT_EQ(part(" odd section ", ";note", "'  quoted blanks  '"), Unwritable::kNone);
  EXPECT_EQ(part("S", "k", ""), Unwritable::kNone);
  EXPECT_EQ(part("S", std::nullopt, std::nullopt), Unwritable::kNone);

  using Texts = std::initializer_list<std::string_view>;
  for (std::string_view section : Texts{"", "A]B", "A\nB", "A\r", std::string_view("A\0B", 3)}) {
    EXPECT_EQ(part(section, "k", "v"), Unwritable::kSection) << section;
  }
  EXPECT_EQ(part(std::string(253, 's'), "k", "v"), Unwritable::kNone);
  EXPECT_EQ(part(std::string(254, 's'), "k", "v"), Unwritable::kSection);

  for (std::string_view key : {"", "a=b", "a\nb", "[k", " k", "k ", "k\t"}) {
    EXPECT_EQ(part("S", key, "v"), Unwritable::kKey) << key;
    EXPECT_EQ(part("S", key, std::nullopt), Unwritable::kKey) << key;
  }

  for (std::string_view value :
       Texts{"a\n[Evil]\nX=1", "a\rb", "a\tb", " v", "v ", std::string_view("a\0b", 3)}) {
    EXPECT_EQ(part("S", "k", value), Unwritable::kValue) << value;
  }
  // Key, "=" and value fill the reader's 511-character line at most.
  EXPECT_EQ(part("S", "k", std::string(509, 'v')), Unwritable::kNone);
  EXPECT_EQ(part("S", "k", std::string(510, 'v')), Unwritable::kValue);
  EXPECT_EQ(part("S", std::string(254, 'k'), std::string(256, 'v')), Unwritable::kNone);
  EXPECT_EQ(part("S", std::string(254, 'k'), std::string(257, 'v')), Unwritable::kValue);
}

// Every change unwritable_part accepts reads back as written and can be
// rewritten without leaving anything behind.
TEST(IniWritable, AcceptedChangesRoundTrip) {
  std::string longest(509, 'v');
  std::string tail_like = std::string(253, 'v') + "[S]j=9";
  for (std::string_view value :
       std::initializer_list<std::string_view>{"x", longest, tail_like, "a=b ; c"}) {
    std::string text = rewrite("[S]\nk=old\nj=2\n", "S", "k", value);
    EXPECT_EQ(find_value(text, "S", "k", 1024, kDefault), std::string(value));
    EXPECT_EQ(find_value(text, "S", "j", 1024, kDefault), "2");
    EXPECT_EQ(rewrite(text, "S", "k", "y"), "[S]\nk=y\nj=2\n");
  }
}

TEST(IniRewrite, NewFileText) {
  EXPECT_EQ(new_file_text(IniChange{"S", "k", "v"}, kDefault), "[S]\nk=v\n");
  EXPECT_EQ(new_file_text(IniChange{"S", "k", std::nullopt}, kDefault), "[S]\n");
}

}  // namespace
}  // namespace px
