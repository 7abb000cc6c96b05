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
  EXPECT_EQ(record_line(job, record),
            "!f FORM1 * \"say \"\"hi\"\"\" tab\there -7 * T1 Y N \" \"a b\"\n");

  std::vector<char> memory = record_of(kMemoryTable, {"M1", "2048", ""});
  EXPECT_EQ(record_line(table_schema(kMemoryTable), memory), "!m M1 2048 *\n");
  std::string fields;
  append_fields(fields, table_schema(kMemoryTable), memory);
  EXPECT_EQ(fields, " M1 2048 *");
}

// The longest line a record can make: every string field filled to its
// whole width (no NUL) with quotes, each written doubled inside quotes.
TEST(JmdWriterTest, FieldsOfWholeWidthAllQuotes) {
  const TableSchema& task = table_schema(kTaskTable);
  std::vector<char> record(task.record_size, '\0');
  std::string expected(task.line_key);
  for (size_t i = 1; i < task.fields.size(); ++i) {
    const FieldDef& field = task.fields[i];
    std::fill_n(record.begin() + static_cast<long>(field.position), field.width, '"');
    expected += " \"" + std::string(2 * field.width, '"') + "\"";
  }
  EXPECT_EQ(record_line(task, record), expected + "\n");
  EXPECT_GT(expected.size(), 2800u);
}

TEST(JmdWriterTest, WrittenLinesReadBackToTheSameRecord) {
  const TableSchema& task = table_schema(kTaskTable);
  std::vector<char> record =
      record_of(kTaskTable, {"T1", "Cls", "name with \"quotes\" inside", "\"lead", "plain"});
  std::string line = record_line(task, record);
  Tokenizer tokens(std::string_view(line).substr(task.line_key.size()));
  std::vector<char> back(task.record_size, '\0');
  RecordingReporter reporter;
  parse_record_fields(tokens, task, back, reporter);
  back[0] = '\0';  // the reader marks Deleted
  EXPECT_EQ(back, record);
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
