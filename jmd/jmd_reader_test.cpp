#include "jmd/jmd_reader.h"

#include <gtest/gtest.h>

#include <utility>

#include "jmd/recording_reporter.h"
#include "tests/support/test_dir.h"

namespace px::jmd {
namespace {

using Entry = RecordingReporter::Entry;

std::vector<std::string> all_lines(std::string_view text) {
  LineSource source(text);
  std::vector<std::string> lines;
  std::string_view line;
  while (source.next(line)) lines.emplace_back(line);
  return lines;
}

std::vector<std::string> all_tokens(std::string_view line, size_t limit = 100) {
  Tokenizer tokens(line);
  std::vector<std::string> found;
  std::string_view token;
  bool cut = false;
  while (tokens.next(token, limit, cut)) found.emplace_back(token);
  return found;
}

// Parses one record line (its text after the line key) into a fresh record.
std::vector<char> parse(int slot, std::string_view fields, Reporter& reporter) {
  std::vector<char> record(table_schema(slot).record_size, '\0');
  Tokenizer tokens(fields);
  parse_record_fields(tokens, table_schema(slot), record, reporter);
  return record;
}

std::string text_of(int slot, const std::vector<char>& record, std::string_view field) {
  return field_text(record, *find_field(table_schema(slot), field));
}

TEST(JmdReaderTest, LinesComeInPiecesOfTheLineBuffer) {
  EXPECT_EQ(all_lines("a\r\nb\n\nc"), (std::vector<std::string>{"a", "b", "", "c"}));
  EXPECT_EQ(all_lines(std::string("ab\0cd\nef\n", 9)), (std::vector<std::string>{"ab", "ef"}));
  EXPECT_TRUE(all_lines("").empty());

  // 1405 characters fit a piece; the newline behind them comes as an empty line.
  std::string full(kLineLimit, 'x');
  EXPECT_EQ(all_lines(full + "\nz\n"), (std::vector<std::string>{full, "", "z"}));
  std::string longer(kLineLimit + 3, 'y');
  EXPECT_EQ(all_lines(longer + "\n"),
            (std::vector<std::string>{std::string(kLineLimit, 'y'), "yyy"}));
  // CR LF counts as one newline, so 1404 characters and CR LF are one piece.
  std::string almost(kLineLimit - 1, 'w');
  EXPECT_EQ(all_lines(almost + "\r\nz"), (std::vector<std::string>{almost, "z"}));
}

TEST(JmdReaderTest, FileSourceReadsAcrossItsBuffer) {
  TestDir dir;
  std::string text;
  for (int i = 0; i < 120000; ++i) text += "line " + std::to_string(i) + "\n";
  std::FILE* file = std::fopen(dir.write("big.txt", text).c_str(), "r");
  ASSERT_NE(file, nullptr);
  LineSource source(file);
  std::string_view line;
  int count = 0;
  bool in_order = true;
  while (source.next(line)) in_order = in_order && line == "line " + std::to_string(count++);
  std::fclose(file);
  EXPECT_EQ(count, 120000);
  EXPECT_TRUE(in_order);
}

TEST(JmdReaderTest, TokensFollowTheQuoteRules) {
  EXPECT_EQ(all_tokens("  a\tb\v c \f"), (std::vector<std::string>{"a", "b", "c"}));
  EXPECT_EQ(all_tokens(R"(T1 "" "a ""b"" c")"), (std::vector<std::string>{"T1", "\"", "a \"b\" c"}));
  EXPECT_EQ(all_tokens(R"(x"y z"w "open to end)"),
            (std::vector<std::string>{"xy zw", "open to end"}));
  EXPECT_EQ(all_tokens(R"("""x" """")"), (std::vector<std::string>{"\"x", "\"\""}));

  Tokenizer tokens("abcdef next");
  std::string_view token;
  bool cut = false;
  EXPECT_TRUE(tokens.next(token, 3, cut));
  EXPECT_EQ(token, "abc");
  EXPECT_TRUE(cut);
  EXPECT_TRUE(tokens.next(token, 3, cut));
  EXPECT_EQ(token, "nex");
  EXPECT_FALSE(tokens.next(token, 3, cut));
  EXPECT_EQ(token, "");
}

// Tokens are looked through sixteen characters at a time: every character
// value, at every place of a long token, splits it exactly when it is white
// space, and a quote there still starts quoting.
TEST(JmdReaderTest, EveryCharacterAtEveryPlaceOfALongToken) {
  const std::string blanks = " \t\n\v\f\r";
  for (int value = 1; value < 256; ++value) {
    char c = static_cast<char>(value);
    if (c == '"') continue;
    for (size_t place : {size_t{0}, size_t{5}, size_t{15}, size_t{16}, size_t{17}, size_t{31},
                         size_t{32}, size_t{40}}) {
      std::string head(place, 'h');
      std::string tail(20, 't');
      std::string token = head;
      token += c;
      token += tail;
      std::vector<std::string> expected;
      if (blanks.find(c) != std::string::npos) {
        if (!head.empty()) expected.push_back(head);
        expected.push_back(tail);
      } else {
        expected.push_back(token);
      }
      EXPECT_EQ(all_tokens(token), expected) << "character " << value << " at " << place;
    }
  }
  std::string before(20, 'b');
  EXPECT_EQ(all_tokens(before + "\"in side\"" + std::string(18, 'a') + " x"),
            (std::vector<std::string>{before + "in side" + std::string(18, 'a'), "x"}));
  EXPECT_EQ(all_tokens(std::string(33, 'q') + "\r"), (std::vector<std::string>{std::string(33, 'q')}));
}

TEST(JmdReaderTest, RecordFieldsFromTokens) {
  RecordingReporter reporter;
  std::vector<char> job = parse(kJobTable, " MYFORM", reporter);
  EXPECT_EQ(text_of(kJobTable, job, "Deleted"), "F");
  EXPECT_EQ(text_of(kJobTable, job, "FormName"), "MYFORM");
  for (std::string_view empty : {"PrinterName", "MDFName", "Comment", "LoadFlag", "OnErrorFlag"}) {
    EXPECT_EQ(text_of(kJobTable, job, empty), "") << empty;
  }
  EXPECT_EQ(text_of(kJobTable, job, "MacroNum"), "0");

  std::vector<char> task = parse(kTaskTable, R"(T1 "" "a ""b"" c" * "")", reporter);
  EXPECT_EQ(text_of(kTaskTable, task, "WindowsClass"), "\"");
  EXPECT_EQ(text_of(kTaskTable, task, "TaskName"), "a \"b\" c");
  EXPECT_EQ(text_of(kTaskTable, task, "TaskParms"), "*");  // "*" stays "*"

  // The printer's Comment is read although it is no column.
  std::vector<char> printer = parse(kPrinterTable, "P1 ID1 /dev/lp0 * 7x \"near door\"", reporter);
  EXPECT_EQ(text_of(kPrinterTable, printer, "Priority"), "7");
  EXPECT_EQ(text_of(kPrinterTable, printer, "Comment"), "near door");

  std::vector<char> memory = parse(kMemoryTable, "P1 -12 ok", reporter);
  EXPECT_EQ(text_of(kMemoryTable, memory, "Amount"), "-12");
  EXPECT_TRUE(reporter.entries.empty());
}

TEST(JmdReaderTest, LongValuesAreCutAndReported) {
  RecordingReporter reporter;
  std::vector<char> printer = parse(kPrinterTable, "PRINTER-TOO-LONG ID 12345678901", reporter);
  EXPECT_EQ(text_of(kPrinterTable, printer, "PrinterName"), "PRINTER-T");
  EXPECT_EQ(text_of(kPrinterTable, printer, "PrinterId"), "ID");
  // Integers are taken whole, however long.
  std::vector<char> again = parse(kPrinterTable, "P ID D X 00000000000000000000000042", reporter);
  EXPECT_EQ(text_of(kPrinterTable, again, "Priority"), "42");
  EXPECT_EQ(reporter.entries, (std::vector<Entry>{{kMsgValueCut, {"PRINTER-T"}}}));
}

TEST(JmdReaderTest, WholeFileWithSkippedLinesAndBothKeyCases) {
  std::string text = std::string(kHeader) + " written by hand\n" +
                     "!f1 is not a title here\n"  // "!f1" starts with "!f": a job
                     "# Form Printer MDF\n"
                     "\n"
                     "!q Q1 skipped\n"
                     "! f lone bang\n"
                     "plain text\n"
                     "!F FORM2 P2\n"
                     "  !p P1 ID1\n"
                     "!Xtra T1\n";
  LineSource source(text);
  RecordingReporter reporter;
  std::vector<std::pair<int, std::string>> added;
  bool ok = read_jmd(source, "/in/pxjmd.jmd", reporter, [&](int slot, std::span<const char> r) {
    added.emplace_back(slot, std::string(string_field(r, table_schema(slot).fields[1])));
    return true;
  });
  EXPECT_TRUE(ok);
  EXPECT_EQ(added, (std::vector<std::pair<int, std::string>>{
                       {kJobTable, "is"}, {kJobTable, "FORM2"}, {kPrinterTable, "P1"},
                       {kTaskTable, "T1"}}));
  EXPECT_EQ(reporter.traces(), std::vector<std::string>{"jmd.c: jmd file opened and verified"});
}

TEST(JmdReaderTest, BadHeaderAndRefusedRecord) {
  auto accept = [](int, std::span<const char>) { return true; };
  for (const std::string& text : {std::string(), std::string("# Plexar Job Management Database\n!f A\n"),
                           "\n" + std::string(kHeader)}) {
    LineSource source(text);
    RecordingReporter reporter;
    EXPECT_FALSE(read_jmd(source, "x.jmd", reporter, accept));
    EXPECT_EQ(reporter.entries, (std::vector<Entry>{{kMsgBadHeader, {"x.jmd"}}}));
  }

  std::string text = std::string(kHeader) + "\n!m M1 64 a\n!m m1 128 b\n!f never\n";
  LineSource source(text);
  RecordingReporter reporter;
  int calls = 0;
  EXPECT_FALSE(read_jmd(source, "x.jmd", reporter, [&](int, std::span<const char>) {
    return ++calls == 1;
  }));
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(reporter.messages(), (std::vector<Entry>{{kMsgRecordRefused, {"!m m1 128"}}}));

  std::vector<char> job(table_schema(kJobTable).record_size, '\0');
  Tokenizer tokens("F1 P1 \"my mdf\" * 5");
  parse_record_fields(tokens, table_schema(kJobTable), job, reporter);
  EXPECT_EQ(refused_record_text(kJobTable, job), "!f F1 P1 my mdf *");
}

}  // namespace
}  // namespace px::jmd
