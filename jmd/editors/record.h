// One row's bytes, and reading, writing and naming its fields by column name.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jmd/engine/table.h"

namespace px::editors {

using Record = std::vector<char>;

// A record of the table's size, all zero.
Record blank_record(engine::Table& table);
// A record of a JMD table slot's size, all zero.
Record blank_record(int slot);

bool read_row(engine::Table& table, long row, Record& record);
// Appends record; the new row number, 0 when refused.
long add_record(engine::Table& table, const Record& record);
bool update_record(engine::Table& table, long row, const Record& record);

// Field access by column name on a record of a JMD table slot. Unknown
// columns read as empty and are not written.
std::string get_text(int slot, const Record& record, std::string_view column);
void set_text(int slot, Record& record, std::string_view column, std::string_view text);
int32_t get_number(int slot, const Record& record, std::string_view column);
void set_number(int slot, Record& record, std::string_view column, int32_t value);
char get_char(int slot, const Record& record, std::string_view column);
void set_char(int slot, Record& record, std::string_view column, char value);

}  // namespace px::editors
