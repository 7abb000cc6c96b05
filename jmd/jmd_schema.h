// The Job Management Database (JMD): its four tables, their record layouts and
// column definitions, and the conversion between a record's bytes and its
// field values.
//
// The JMD text file
// -----------------
// A text file of lines ended by LF (CR LF is accepted when reading). A line
// holds at most 1405 characters before its newline; the reader takes lines
// in pieces of at most 1405 characters (a 1406-byte line buffer), so a longer
// line is read as two or more lines. A NUL character ends a line's text: the
// rest of that line is ignored.
//
//   line 1    "# Plexar Job Management Database (JMD) file", compared over its
//             own length; whatever follows on that line is ignored.
//   others    A line whose first token is "!" followed by a table letter
//             (f, p, x, m in either case) is a record line of that table:
//             the line key, then one token per field in record order
//             without Deleted. Every other line is skipped without a word.
//
//   !f FormName PrinterName MDFName PreambleName MacroNum LoadFlag TaskId
//      InFile OutFile OnErrorFlag Comment
//   !p PrinterName PrinterId PhysicalDev PrintDirectorParms Priority Comment
//   !x TaskId WindowsClass TaskName TaskParms Comment
//   !m PrinterId Amount Comment
//
// Tokens are separated by white space (blank, TAB, LF, VT, FF, CR). A double
// quote switches quoting on and off; inside quotes white space belongs to
// the token; two double quotes in a row are one literal quote and switch
// nothing; quote characters are not stored. A token is cut to its field's
// width less one (the cut value is reported with message -361); a missing
// token is an empty value; integers are read as atol reads them; a character
// field takes the first character of its token (NUL for none).
//
// Written, each field follows exactly one blank: "*" for an empty string or a
// NUL character (and read back as "*": the empty value is not restored), a
// string holding a blank or a double quote inside double quotes with its
// quotes doubled (but a string of quotes alone just doubled: "" is read as
// one quote even where a token starts), any other string as it stands (a TAB
// too, which the reader then takes for a separator: the editors never store
// one), a character as it stands unless it is white space (inside quotes) or
// a quote (doubled), integers in decimal.
//
// The file written is the header line; then per table (job, printer, task,
// managed memory) its title lines (keys "!f1", "!f2", ... of section Titles
// of the INI file in use, up to the first empty one) and its records, sorted
// by the table's sort column; nothing else.
//
// Records
// -------
// Fixed-size records of NUL-terminated character arrays (widths include the
// terminator), single characters and 32-bit signed integers in machine
// order, laid out in field order with integers on 4-byte boundaries; the
// size is rounded up to a multiple of 4 when the record holds an integer.
//
//   job 328:     Deleted 0/1, FormName 1/52, PrinterName 53/10, MDFName 63/82,
//                PreambleName 145/82, MacroNum 228/4, LoadFlag 232/1,
//                TaskId 233/10, InFile 243/1, OutFile 244/1,
//                OnErrorFlag 245/1, Comment 246/82
//   printer 288: Deleted 0/1, PrinterName 1/10, PrinterId 11/9,
//                PhysicalDev 20/52, PrintDirectorParms 72/128, Priority 200/4,
//                Comment 204/82 (carried in the record and in the file, but
//                not declared to the table engine)
//   task 1405:   Deleted 0/1, TaskId 1/10, WindowsClass 11/32, TaskName 43/256,
//                TaskParms 299/1024, Comment 1323/82
//   memory 100:  Deleted 0/1, PrinterId 1/9, Amount 12/4, Comment 16/82
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace px::jmd {

// Table slots of the JMD handle, always in this order.
inline constexpr int kJobTable = 0;
inline constexpr int kPrinterTable = 1;
inline constexpr int kTaskTable = 2;
inline constexpr int kMemoryTable = 3;
inline constexpr int kTableCount = 4;

// Column type codes of the table engine that the JMD uses.
inline constexpr int kTypeInteger = 1;     // 32-bit signed integer
inline constexpr int kTypeLong = 3;        // long, 32-bit signed
inline constexpr int kTypeCharacter = 7;   // single signed character
inline constexpr int kTypeText = 14;       // string, case-insensitive, not hashed

// Column flag: unique key.
inline constexpr int kFlagUnique = 2;

// Every loaded record is marked with this Deleted value.
inline constexpr char kNotDeleted = 'F';

// The file's first line.
inline constexpr std::string_view kHeader = "# Plexar Job Management Database (JMD) file";
// Characters of one line the reader takes at a time.
inline constexpr size_t kLineLimit = 1405;
// The mark written for an empty value.
inline constexpr std::string_view kEmptyMark = "*";

// One field of a record. Integers are 4 bytes whether long or int.
struct FieldDef {
  std::string_view name;
  size_t position = 0;
  size_t width = 0;
  int type = 0;
  int flags = 0;
  // Written with " %ld" rather than " %d" (the managed memory Amount); the
  // text is the same decimal number either way.
  bool written_as_long = false;
};

struct TableSchema {
  std::string_view name;          // "job", "printer", "task", "memory"
  std::string_view line_key;      // "!f", "!p", "!x", "!m"
  char letter = 0;                // 'f', 'p', 'x', 'm': also the temporary name prefix
  size_t record_size = 0;
  std::span<const FieldDef> fields;  // every field of the record, Deleted first
  size_t column_count = 0;        // fields declared to the engine (the first ones)
  std::string_view sort_column;   // written in this column's order
  std::string_view unique_column; // empty for the job table
};

// The schema of one table slot (0..3).
const TableSchema& table_schema(int slot);

// The slot whose line key letter (either case) is letter; -1 for none.
int slot_for_letter(char letter);

// The field of schema named name (exact), or nullptr.
const FieldDef* find_field(const TableSchema& schema, std::string_view name);

// Field values of a record. Strings stop at their first NUL and never run
// past their width.
std::string_view string_field(std::span<const char> record, const FieldDef& field);
char char_field(std::span<const char> record, const FieldDef& field);
int32_t int_field(std::span<const char> record, const FieldDef& field);

// Stores text into a string field, cut to width - 1 characters, and zeroes
// the rest of the field. Returns true when the text had to be cut.
bool set_string_field(std::span<char> record, const FieldDef& field, std::string_view text);
void set_char_field(std::span<char> record, const FieldDef& field, char value);
void set_int_field(std::span<char> record, const FieldDef& field, int32_t value);

// The field's value as text: a string as stored, a character as itself (empty
// for NUL), an integer in decimal.
std::string field_text(std::span<const char> record, const FieldDef& field);

// Stores a value given as text the way the reader converts a token: a string
// is cut (true returned when it was), a character takes the first character
// (NUL when empty), an integer is converted as atol does.
bool set_field_text(std::span<char> record, const FieldDef& field, std::string_view text);

}  // namespace px::jmd
