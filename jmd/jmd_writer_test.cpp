#include "jmd/jmd_writer.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "common/ini_profile.h"
#include "jmd/jmd_reader.h"
#include "jmd/recording_reporter.h"
#include "tests/support/test_dir.h"

namespace px::jmd {
namespace {

std::vector<char> record_of(int slot, std::vector<std::string_view> values) {
  const TableSchema& schema = table_schema(slot);
  std::vector<char> record(schema.record_size, '\0');
  for (size_t i = 0; i < values.size(); ++i) set_field_text(record, schema.fields[i + 1], values[i]);
  return record;
}

TEST(JmdWriterTest, ValuesAreMarkedQuotedOrWrittenAsTheyStand) {
  const TableSchema& job = table_schema(kJobTable);
  std::vector<char> record = record_of(
      kJobTable, {"FORM1", "", "say \"hi\"", "tab\there", "-7", "", "T1", "Y", "N", "\"", "a b"});
  // A string with a TAB is written as it stands; a quote as a flag is
  // doubled.
  EXPECT_EQ(record_line(job, record),
            "!f FORM1 * \"say \"\"hi\"\"\" tab\there -7 * T1 Y N \"\" \"a b\"\n");

  std::vector<char> memory = record_of(kMemoryTable, {"M1", "2048", ""});
  EXPECT_EQ(record_line(table_schema(kMemoryTable), memory), "!m M1 2048 *\n");
  std::string fields;
  append_fields(fields, table_schema(kMemoryTable), memory);
  EXPECT_EQ(fields, " M1 2048 *");
}

// The longest line a record can make: every string field filled to its
// whole width (no NUL) with quotes and one blank, the quotes written doubled
// inside quotes.
TEST(JmdWriterTest, FieldsOfWholeWidthAllQuotes) {
  const TableSchema& task = table_schema(kTaskTable);
  std::vector<char> record(task.record_size, '\0');
  std::string expected(task.line_key);
  for (size_t i = 1; i < task.fields.size(); ++i) {
    const FieldDef& field = task.fields[i];
    std::fill_n(record.begin() + static_cast<long>(field.position), field.width - 1, '"');
    record[field.position + field.width - 1] = ' ';
    expected += " \"" + std::string(2 * (field.width - 1), '"') + " \"";
  }
  EXPECT_EQ(record_line(task, record), expected + "\n");
  EXPECT_GT(expected.size(), 2800u);
}

TEST(JmdWriterTest, WrittenLinesReadBackToTheSameRecord) {
  const TableSchema& task = table_schema(kTaskTable);
  std::vector<char> record =
      record_of(kTaskTable, {"T1", "Cls", "name with \"quotes\" inside", "\"lead", "plain"});
  // Strings of quotes alone, and quotes at either end.
  std::vector<char> quotes = record_of(kTaskTable, {"\"", "\"\"", "\"\" x", "x\"", "\"x\""});
  for (const std::vector<char>& written : {record, quotes}) {
    std::string line = record_line(task, written);
    Tokenizer tokens(std::string_view(line).substr(task.line_key.size()));
    std::vector<char> back(task.record_size, '\0');
    RecordingReporter reporter;
    parse_record_fields(tokens, task, back, reporter);
    back[0] = '\0';  // the reader marks Deleted
    EXPECT_EQ(back, written) << line;
  }
}

// Every flag character a record can hold reads back as itself: a quote or a
// blank written as it stands would open a quoted token or vanish as a
// separator, and every later field of the line would shift.
TEST(JmdWriterTest, EveryFlagCharacterReadsBackAsItself) {
  const TableSchema& job = table_schema(kJobTable);
  const FieldDef* in_file = find_field(job, "InFile");
  ASSERT_NE(in_file, nullptr);
  for (int code = 1; code < 256; ++code) {
    char flag = static_cast<char>(code);
    if (flag == '\n') continue;  // ends the line: no field carries it
    std::vector<char> record =
        record_of(kJobTable, {"FORM1", "P1", "m.mdf", "", "3", "T", "T1", "", "N", "C", "a b"});
    set_char_field(record, *in_file, flag);
    std::string line = record_line(job, record);
    Tokenizer tokens(std::string_view(line).substr(job.line_key.size(),
                                                   line.size() - job.line_key.size() - 1));
    std::vector<char> back(job.record_size, '\0');
    RecordingReporter reporter;
    parse_record_fields(tokens, job, back, reporter);
    EXPECT_EQ(char_field(back, *in_file), flag) << "character " << code << ": " << line;
    EXPECT_EQ(string_field(back, *find_field(job, "Comment")), "a b") << "character " << code;
  }
}

TEST(JmdWriterTest, TitleLinesStopAtTheFirstEmptyKey) {
  TestDir dir;
  ini::set_file(dir.write("titles.ini",
                          "[Titles]\n!f1=# Jobs\n!f2=# Form Printer\n!f4=# never\n"
                          "!P1=# Printers\n!m1=\n!m2=# never\n"));
  EXPECT_EQ(title_lines(table_schema(kJobTable)),
            (std::vector<std::string>{"# Jobs", "# Form Printer"}));
  EXPECT_EQ(title_lines(table_schema(kPrinterTable)), std::vector<std::string>{"# Printers"});
  EXPECT_TRUE(title_lines(table_schema(kMemoryTable)).empty());
  EXPECT_TRUE(title_lines(table_schema(kTaskTable)).empty());
  ini::flush_cache();
}

}  // namespace
}  // namespace px::jmd
