#include "jmd/editors/record.h"

#include <span>

#include "jmd/jmd_schema.h"

namespace px::editors {

namespace {

const jmd::FieldDef* field_of(int slot, std::string_view column) {
  return jmd::find_field(jmd::table_schema(slot), column);
}

}  // namespace

Record blank_record(engine::Table& table) {
  return Record(static_cast<size_t>(std::max(0, table.record_size())), '\0');
}

Record blank_record(int slot) { return Record(jmd::table_schema(slot).record_size, '\0'); }

bool read_row(engine::Table& table, long row, Record& record) {
  return table.get_row(row, std::as_writable_bytes(std::span<char>(record)));
}

long add_record(engine::Table& table, const Record& record) {
  return table.add_row(std::as_bytes(std::span<const char>(record)));
}

bool update_record(engine::Table& table, long row, const Record& record) {
  return table.update_row(row, std::as_bytes(std::span<const char>(record)));
}

std::string get_text(int slot, const Record& record, std::string_view column) {
  const jmd::FieldDef* field = field_of(slot, column);
  return field ? jmd::field_text(record, *field) : std::string();
}

void set_text(int slot, Record& record, std::string_view column, std::string_view text) {
  const jmd::FieldDef* field = field_of(slot, column);
  if (field) jmd::set_field_text(record, *field, text);
}

int32_t get_number(int slot, const Record& record, std::string_view column) {
  const jmd::FieldDef* field = field_of(slot, column);
  return field ? jmd::int_field(record, *field) : 0;
}

void set_number(int slot, Record& record, std::string_view column, int32_t value) {
  const jmd::FieldDef* field = field_of(slot, column);
  if (field) jmd::set_int_field(record, *field, value);
}

char get_char(int slot, const Record& record, std::string_view column) {
  const jmd::FieldDef* field = field_of(slot, column);
  return field ? jmd::char_field(record, *field) : '\0';
}

void set_char(int slot, Record& record, std::string_view column, char value) {
  const jmd::FieldDef* field = field_of(slot, column);
  if (field) jmd::set_char_field(record, *field, value);
}

}  // namespace px::editors
