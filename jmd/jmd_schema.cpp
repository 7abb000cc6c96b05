#include "jmd/jmd_schema.h"

#include <algorithm>
#include <cstring>

#include "common/text.h"

namespace px::jmd {

namespace {

constexpr size_t kIntAlign = 4;

constexpr bool is_integer(int type) { return type == kTypeInteger || type == kTypeLong; }

constexpr FieldDef text(std::string_view name, size_t width, int flags = 0) {
  return FieldDef{name, 0, width, kTypeText, flags, false};
}
constexpr FieldDef character(std::string_view name) {
  return FieldDef{name, 0, 1, kTypeCharacter, 0, false};
}
constexpr FieldDef long_integer(std::string_view name) {
  return FieldDef{name, 0, 4, kTypeLong, 0, false};
}
constexpr FieldDef integer(std::string_view name) {
  return FieldDef{name, 0, 4, kTypeInteger, 0, true};
}

// Fills in the positions the way a C compiler lays out a plain structure of
// these members: in order, integers on 4-byte boundaries.
template <size_t N>
constexpr std::array<FieldDef, N> laid_out(std::array<FieldDef, N> fields) {
  size_t offset = 0;
  for (FieldDef& field : fields) {
    if (is_integer(field.type)) offset = (offset + kIntAlign - 1) / kIntAlign * kIntAlign;
    field.position = offset;
    offset += field.width;
  }
  return fields;
}

// The structure's size: the end of its last field, rounded up to the
// strictest alignment among its fields.
template <size_t N>
constexpr size_t record_size(const std::array<FieldDef, N>& fields) {
  size_t end = fields[N - 1].position + fields[N - 1].width;
  bool aligned = std::any_of(fields.begin(), fields.end(),
                             [](const FieldDef& f) { return is_integer(f.type); });
  return aligned ? (end + kIntAlign - 1) / kIntAlign * kIntAlign : end;
}

constexpr auto kJobFields = laid_out(std::array<FieldDef, 12>{
    character("Deleted"), text("FormName", 52), text("PrinterName", 10), text("MDFName", 82),
    text("PreambleName", 82), long_integer("MacroNum"), character("LoadFlag"), text("TaskId", 10),
    character("InFile"), character("OutFile"), character("OnErrorFlag"), text("Comment", 82)});

constexpr auto kPrinterFields = laid_out(std::array<FieldDef, 7>{
    character("Deleted"), text("PrinterName", 10, kFlagUnique), text("PrinterId", 9),
    text("PhysicalDev", 52), text("PrintDirectorParms", 128), long_integer("Priority"),
    text("Comment", 82)});

constexpr auto kTaskFields = laid_out(std::array<FieldDef, 6>{
    character("Deleted"), text("TaskId", 10, kFlagUnique), text("WindowsClass", 32),
    text("TaskName", 256), text("TaskParms", 1024), text("Comment", 82)});

constexpr auto kMemoryFields = laid_out(std::array<FieldDef, 4>{
    character("Deleted"), text("PrinterId", 9, kFlagUnique), integer("Amount"),
    text("Comment", 82)});

static_assert(record_size(kJobFields) == 328);
static_assert(record_size(kPrinterFields) == 288);
static_assert(record_size(kTaskFields) == 1405);
static_assert(record_size(kMemoryFields) == 100);
static_assert(kJobFields[5].position == 228 && kMemoryFields[2].position == 12);

const std::array<TableSchema, kTableCount> kSchemas = {{
    {"job", "!f", 'f', record_size(kJobFields), kJobFields, 12, "FormName", ""},
    // Comment is the seventh field of the record but not a column.
    {"printer", "!p", 'p', record_size(kPrinterFields), kPrinterFields, 6, "PrinterName",
     "PrinterName"},
    {"task", "!x", 'x', record_size(kTaskFields), kTaskFields, 6, "TaskId", "TaskId"},
    {"memory", "!m", 'm', record_size(kMemoryFields), kMemoryFields, 4, "PrinterId",
     "PrinterId"},
}};

}  // namespace

const TableSchema& table_schema(int slot) { return kSchemas.at(static_cast<size_t>(slot)); }

int slot_for_letter(char letter) {
  char lowered = to_lower(letter);
  for (int slot = 0; slot < kTableCount; ++slot) {
    if (kSchemas[static_cast<size_t>(slot)].letter == lowered) return slot;
  }
  return -1;
}

const FieldDef* find_field(const TableSchema& schema, std::string_view name) {
  for (const FieldDef& field : schema.fields) {
    if (field.name == name) return &field;
  }
  return nullptr;
}

std::string_view string_field(std::span<const char> record, const FieldDef& field) {
  const char* start = record.data() + field.position;
  const void* nul = std::memchr(start, '\0', field.width);
  size_t length = nul ? static_cast<size_t>(static_cast<const char*>(nul) - start) : field.width;
  return std::string_view(start, length);
}

char char_field(std::span<const char> record, const FieldDef& field) {
  return record[field.position];
}

int32_t int_field(std::span<const char> record, const FieldDef& field) {
  int32_t value;
  std::memcpy(&value, record.data() + field.position, sizeof value);
  return value;
}

bool set_string_field(std::span<char> record, const FieldDef& field, std::string_view text) {
  size_t room = field.width - 1;
  size_t length = std::min(text.size(), room);
  char* start = record.data() + field.position;
  std::memcpy(start, text.data(), length);
  std::memset(start + length, 0, field.width - length);
  return text.size() > room;
}

void set_char_field(std::span<char> record, const FieldDef& field, char value) {
  record[field.position] = value;
}

void set_int_field(std::span<char> record, const FieldDef& field, int32_t value) {
  std::memcpy(record.data() + field.position, &value, sizeof value);
}

std::string field_text(std::span<const char> record, const FieldDef& field) {
  switch (field.type) {
    case kTypeCharacter: {
      char c = char_field(record, field);
      return c == '\0' ? std::string() : std::string(1, c);
    }
    case kTypeInteger:
    case kTypeLong:
      return std::to_string(int_field(record, field));
    default:
      return std::string(string_field(record, field));
  }
}

bool set_field_text(std::span<char> record, const FieldDef& field, std::string_view text) {
  switch (field.type) {
    case kTypeCharacter:
      set_char_field(record, field, text.empty() ? '\0' : text[0]);
      return false;
    case kTypeInteger:
    case kTypeLong:
      set_int_field(record, field, parse_int(text));
      return false;
    default:
      return set_string_field(record, field, text);
  }
}

}  // namespace px::jmd
