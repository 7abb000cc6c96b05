// The pool of open tables: open, close, flush, find column, and the handle.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>

#include "common/file_util.h"
#include "jmd/engine/report.h"
#include "jmd/engine/table_internal.h"

namespace px::engine {

namespace {

const ColumnDef kBlankColumn{};

// Bytes a value of the type takes in a record at least.
uint32_t type_size(int32_t type) {
  switch (type) {
    case kTypeShort: case kTypeUnsignedShort: return 2;
    case kTypeChar: case kTypeUnsignedChar: return 1;
    case kTypeDouble: return 8;
    case kTypeInt: case kTypeUnsigned: case kTypeLong: case kTypeUnsignedLong: case kTypeFloat:
      return 4;
    default: return 0;
  }
}

// Every column must lie inside the record and be as wide as its type.
bool columns_fit(std::span<const ColumnDef> columns, int record_size) {
  return std::all_of(columns.begin(), columns.end(), [&](const ColumnDef& c) {
    int64_t end = static_cast<int64_t>(c.position) + c.width;
    return c.position >= 0 && c.name != nullptr && c.width >= type_size(c.type) &&
           end <= record_size;
  });
}

void release_table(TableState& t) {
  for (int c = 0; c < static_cast<int>(t.indexes.size()); ++c) close_index(t, c);
  if (t.records) {
    // A created table's file goes with it: its header is not needed.
    if (!(t.records->mode() & kVListCreate)) store_header(t);
    t.records->close();
  }
  t = TableState{};
}

// Opens the record file and the indexes built at open; false leaves the
// slot free again.
bool open_table(TableState& t, std::string_view name, int record_size, int mode,
                std::span<const ColumnDef> columns) {
  t.name = std::string(name);
  t.serial = ++engine().next_serial;
  t.record_size = record_size;
  t.columns = columns;
  t.mode = mode;
  t.records = VList::open(name, record_size, mode, kRecordCacheParameter);
  if (!t.records) {
    report_message(kMsgBadArgument, {t.name});
    t = TableState{};
    return false;
  }
  try {
    size_t record_bytes = static_cast<size_t>(record_size);
    t.header.assign(record_bytes, std::byte{0});
    t.work_a.assign(record_bytes, std::byte{0});
    t.work_b.assign(record_bytes, std::byte{0});
    t.indexes.resize(columns.size() + 1);
    t.comparators.resize(columns.size() + 1);
    t.values.resize(columns.size() + 1);
    t.values_kept.resize(columns.size() + 1);
  } catch (const std::bad_alloc&) {
    report_message(kMsgOutOfMemory, {t.name});
    release_table(t);
    return false;
  }
  if (t.records->record_count() > 0) {
    int32_t rows = -1;
    if (t.records->get(0, t.header)) std::memcpy(&rows, t.header.data(), 4);
    if (rows < 0 || rows >= t.records->record_count()) {
      report_message(kMsgBadArgument, {t.name});
      release_table(t);
      return false;
    }
    t.row_count = rows;
  } else if (!(mode & kOpenReadOnly) || (mode & kOpenCreate)) {
    // A new table starts with its header record, so row 0 can be read.
    if (!t.records->put(0, t.header)) {
      report_message(kMsgBadArgument, {t.name});
      release_table(t);
      return false;
    }
  }
  for (int c = 0; c < t.column_count(); ++c) {
    if ((t.column(c).flags & kIndexAtOpen) && !add_index_traced(t, c, mode)) {
      release_table(t);
      return false;
    }
  }
  return true;
}

}  // namespace

EngineState& engine() {
  static EngineState state;
  return state;
}

TableState* table_at(int slot, uint32_t serial) {
  if (slot < 0 || slot >= kTablePoolSize) return nullptr;
  TableState& t = engine().table(slot);
  return !t.name.empty() && t.serial == serial ? &t : nullptr;
}

const ColumnDef& TableState::column(int c) const {
  return c >= 0 && c < column_count() ? columns[static_cast<size_t>(c)] : kBlankColumn;
}

void set_engine_directory(std::string_view directory) { engine().directory = std::string(directory); }

const std::string& engine_directory() { return engine().directory; }

Table Table::open(std::string_view name, int record_size, int mode,
                  std::span<const ColumnDef> columns) {
  open_trace_if_configured();
  EngineState& e = engine();
  std::string full = !e.directory.empty() && !is_absolute(name) ? join_path(name, e.directory)
                                                                : std::string(name);
  Table table;
  if (record_size < 4 || !columns_fit(columns, record_size)) {
    report_message(kMsgBadArgument, {full});
  } else {
    auto free_slot = std::find_if(e.tables.begin(), e.tables.end(),
                                  [](const TableState& t) { return t.name.empty(); });
    if (free_slot == e.tables.end()) {
      report_message(kMsgOutOfMemory, {full});
    } else if (open_table(*free_slot, full, record_size, mode, columns)) {
      table = Table(static_cast<int>(free_slot - e.tables.begin()), free_slot->serial);
    }
  }
  if (tracing()) {
    trace_printf("TableOpen %s %u %d %d %d\n", full.c_str(), static_cast<unsigned>(record_size),
                 mode, static_cast<int>(columns.size()), table ? 1 : 0);
    for (size_t c = 0; table && c < columns.size(); ++c) {
      const ColumnDef& d = columns[c];
      trace_printf("ColumnDef %d %s %d %u %d %d\n", static_cast<int>(c), d.name, d.position,
                   d.width, d.type, d.flags);
    }
    trace_flush();
  }
  return table;
}

Table::~Table() {
  if (slot_ >= 0) close();
}

Table::Table(Table&& other) noexcept : slot_(other.slot_), serial_(other.serial_) {
  other.slot_ = -1;
}

Table& Table::operator=(Table&& other) noexcept {
  if (this != &other) {
    if (slot_ >= 0) close();
    slot_ = other.slot_;
    serial_ = other.serial_;
    other.slot_ = -1;
  }
  return *this;
}

bool Table::close() {
  TableState* t = table_at(slot_, serial_);
  slot_ = -1;
  if (t == nullptr) {
    trace_printf("TableClose (NULL) 1\n");
    trace_flush();
    return true;
  }
  std::string name = t->name;
  release_table(*t);
  trace_printf("TableClose %s 1\n", name.c_str());
  trace_flush();
  return true;
}

bool Table::flush() {
  TableState* t = table_at(slot_, serial_);
  if (t == nullptr) return false;
  bool ok = store_header(*t);
  if (!t->records->flush()) ok = false;
  for (auto& index : t->indexes) {
    if (index && !index->flush()) ok = false;
  }
  if (ok) t->dirty = false;
  trace_printf("Flush %s %d\n", t->name.c_str(), ok ? 1 : 0);
  trace_flush();
  return ok;
}

int Table::find_column(std::string_view name) const {
  const TableState* t = table_at(slot_, serial_);
  if (t == nullptr) return -1;
  for (int c = 0; c < t->column_count(); ++c) {
    if (name == t->column(c).name) return c;
  }
  return -1;
}

long Table::row_count() const {
  const TableState* t = table_at(slot_, serial_);
  return t ? t->row_count : 0;
}

int Table::record_size() const {
  const TableState* t = table_at(slot_, serial_);
  return t ? t->record_size : 0;
}

int Table::column_count() const {
  const TableState* t = table_at(slot_, serial_);
  return t ? t->column_count() : 0;
}

bool Table::dirty() const {
  const TableState* t = table_at(slot_, serial_);
  return t && t->dirty;
}

uint64_t Table::change_count() const {
  const TableState* t = table_at(slot_, serial_);
  return t ? t->changes : 0;
}

bool Table::has_index(int column) const {
  const TableState* t = table_at(slot_, serial_);
  return t && t->valid_index_column(column) && t->index(column) != nullptr;
}

const std::string& Table::name() const {
  static const std::string none;
  const TableState* t = table_at(slot_, serial_);
  return t ? t->name : none;
}

std::string Table::index_file_name(int column) const {
  const TableState* t = table_at(slot_, serial_);
  return t ? index_name(*t, column) : std::string();
}

std::string index_name(const TableState& t, int column) {
  char ext[16];
  std::snprintf(ext, sizeof ext, ".i%02d", column);
  return strip_extension(t.name) + ext;
}

}  // namespace px::engine
