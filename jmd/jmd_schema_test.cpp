#include "jmd/jmd_schema.h"

#include <gtest/gtest.h>

#include <vector>

namespace px::jmd {
namespace {

TEST(JmdSchemaTest, RecordLayoutsMatchTheFileFormat) {
  struct Expected {
    int slot;
    size_t fields;
    size_t columns;
    std::string_view last;
    size_t last_position;
  };
  // The record sizes are fixed at compile time; what is checked here is how
  // the schemas built from them read.
  for (const Expected& e : {Expected{kJobTable, 12, 12, "Comment", 246},
                            Expected{kPrinterTable, 7, 6, "Comment", 204},
                            Expected{kTaskTable, 6, 6, "Comment", 1323},
                            Expected{kMemoryTable, 4, 4, "Comment", 16}}) {
    const TableSchema& s = table_schema(e.slot);
    SCOPED_TRACE(std::string(s.name));
    EXPECT_EQ(s.fields.size(), e.fields);
    EXPECT_EQ(s.column_count, e.columns);
    EXPECT_EQ(s.fields.back().name, e.last);
    EXPECT_EQ(s.fields.back().position, e.last_position);
    EXPECT_EQ(s.fields[0].name, "Deleted");
    EXPECT_EQ(s.fields[0].type, kTypeCharacter);
    // Every field lies inside the record, after the one before it.
    for (size_t i = 1; i < s.fields.size(); ++i) {
      EXPECT_GE(s.fields[i].position, s.fields[i - 1].position + s.fields[i - 1].width);
      EXPECT_LE(s.fields[i].position + s.fields[i].width, s.record_size);
    }
  }
  const TableSchema& job = table_schema(kJobTable);
  EXPECT_EQ(find_field(job, "MacroNum")->type, kTypeLong);
  EXPECT_EQ(find_field(job, "OnErrorFlag")->position, 245u);
  EXPECT_EQ(find_field(table_schema(kMemoryTable), "Amount")->type, kTypeInteger);
  EXPECT_EQ(find_field(table_schema(kPrinterTable), "PrinterName")->flags, kFlagUnique);
  EXPECT_EQ(find_field(job, "FormName")->flags, 0);  // jobs repeat a form name per step
  EXPECT_EQ(find_field(job, "Nothing"), nullptr);
}

TEST(JmdSchemaTest, LettersAndSortColumns) {
  EXPECT_EQ(slot_for_letter('f'), kJobTable);
  EXPECT_EQ(slot_for_letter('F'), kJobTable);
  EXPECT_EQ(slot_for_letter('P'), kPrinterTable);
  EXPECT_EQ(slot_for_letter('x'), kTaskTable);
  EXPECT_EQ(slot_for_letter('m'), kMemoryTable);
  EXPECT_EQ(slot_for_letter('q'), -1);
  EXPECT_EQ(table_schema(kJobTable).sort_column, "FormName");
  EXPECT_EQ(table_schema(kPrinterTable).sort_column, "PrinterName");
  EXPECT_EQ(table_schema(kTaskTable).sort_column, "TaskId");
  EXPECT_EQ(table_schema(kMemoryTable).sort_column, "PrinterId");
}

TEST(JmdSchemaTest, FieldValuesRoundTripThroughTheRecord) {
  const TableSchema& printer = table_schema(kPrinterTable);
  std::vector<char> record(printer.record_size, 'Z');
  const FieldDef& name = *find_field(printer, "PrinterName");
  EXPECT_FALSE(set_field_text(record, name, "LASER"));
  EXPECT_EQ(string_field(record, name), "LASER");
  EXPECT_EQ(record[name.position + name.width - 1], '\0');  // rest of the field zeroed
  EXPECT_EQ(record[name.position + name.width], 'Z');       // the next field untouched

  EXPECT_TRUE(set_field_text(record, name, "0123456789AB"));
  EXPECT_EQ(string_field(record, name), "012345678");

  const FieldDef& priority = *find_field(printer, "Priority");
  set_field_text(record, priority, "  -42xyz");
  EXPECT_EQ(int_field(record, priority), -42);
  EXPECT_EQ(field_text(record, priority), "-42");
  set_field_text(record, priority, "99999999999");
  EXPECT_EQ(int_field(record, priority), 2147483647);
  set_field_text(record, priority, "abc");
  EXPECT_EQ(int_field(record, priority), 0);

  const FieldDef& deleted = printer.fields[0];
  set_field_text(record, deleted, "Yes");
  EXPECT_EQ(char_field(record, deleted), 'Y');
  set_field_text(record, deleted, "");
  EXPECT_EQ(char_field(record, deleted), '\0');
  EXPECT_EQ(field_text(record, deleted), "");
}

}  // namespace
}  // namespace px::jmd
