// Rows and indexes: row add, get and update, index add and drop, and the
// entries of single rows.
#include <algorithm>
#include <cstring>
#include <new>

#include "jmd/engine/report.h"
#include "jmd/engine/table_internal.h"

namespace px::engine {

namespace {

// Stores a written record's values in every value cache.
void remember_values(TableState& t, long row, const std::byte* record) {
  for (int c = 0; c < static_cast<int>(t.values.size()); ++c) {
    if (t.value_cache(c).active()) t.value_cache(c).store(row, record + t.column(c).position);
  }
}

bool fail(const TableState& t) {
  report_message(kMsgBadArgument, {t.name});
  return false;
}

bool add_index(TableState& t, int c, int mode) {
  if (!t.valid_index_column(c) || t.index(c)) return fail(t);
  if (!open_index(t, c, mode)) return fail(t);
  if (t.value_cache(c).active()) t.value_cache(c).reserve(t.row_count);
  switch (add_index_in_key_order(t, c)) {
    case OrderedBuild::kBuilt:
      return true;
    case OrderedBuild::kFailed:
      close_index(t, c);
      return false;
    case OrderedBuild::kNotTried:
      break;
  }
  std::vector<std::byte> record;
  for (long row = 1; row <= t.row_count; ++row) {
    if (!read_record(t, row, record)) {
      close_index(t, c);
      return fail(t);
    }
    if (!insert_row_entry(t, row, c, record.data())) {
      close_index(t, c);
      return false;
    }
  }
  return true;
}

// Adds the index of every unique column that has none yet.
bool add_unique_indexes(TableState& t) {
  for (int c = 0; c < t.column_count(); ++c) {
    if ((t.column(c).flags & kUniqueKey) && !t.index(c) && !add_index(t, c, kOpenNew)) {
      return false;
    }
  }
  return true;
}

long append_row(TableState& t, std::span<const std::byte> record, int mode) {
  if (mode != kAddAppend) return 0;
  if (record.size() < static_cast<size_t>(t.record_size)) return fail(t);
  long row = t.row_count + 1;
  if (!t.records->grow(t.row_count + 2)) return fail(t);
  if (!add_unique_indexes(t)) return 0;
  if (!t.records->put(row, record)) return fail(t);
  remember_values(t, row, record.data());
  for (int c = 0; c < static_cast<int>(t.indexes.size()); ++c) {
    if (t.index(c) && !insert_row_entry(t, row, c, record.data())) {
      for (int d = 0; d < c; ++d) {
        if (t.index(d)) delete_row_entry(t, row, d, record.data());
      }
      return 0;
    }
  }
  t.row_count = row;
  int32_t count = static_cast<int32_t>(row);
  std::memcpy(t.header.data(), &count, 4);
  t.header_pending = true;
  t.dirty = true;
  return row;
}

// Puts a row whose update was refused back as it was: its old record, and
// its entries in the indexes it was taken out of. False when that fails too
// (reported); the row then stays out of those indexes.
bool restore_row(TableState& t, long row, const std::vector<std::byte>& old,
                 const std::vector<int>& changed) {
  if (!t.records->put(row, old)) return fail(t);
  remember_values(t, row, old.data());
  bool ok = true;
  for (int c : changed) {
    if (!insert_row_entry(t, row, c, old.data())) ok = false;
  }
  return ok;
}

bool replace_row(TableState& t, long row, std::span<const std::byte> record) {
  if (record.size() < static_cast<size_t>(t.record_size) || row < 1 || row > t.row_count) {
    return fail(t);
  }
  std::vector<std::byte> old;
  if (!read_record(t, row, old)) return false;
  if (!add_unique_indexes(t)) return false;
  std::vector<int> changed;
  for (int c = 0; c < static_cast<int>(t.indexes.size()); ++c) {
    if (!t.index(c)) continue;
    const ColumnDef& column = t.column(c);
    int r = compare_column_values(column, old.data() + column.position,
                                  record.data() + column.position);
    if (r == 0) continue;
    if (r == kCompareError || !delete_row_entry(t, row, c, old.data())) return false;
    changed.push_back(c);
  }
  if (!t.records->put(row, record)) {
    fail(t);
    restore_row(t, row, old, changed);
    return false;
  }
  remember_values(t, row, record.data());
  t.dirty = true;
  for (size_t i = 0; i < changed.size(); ++i) {
    if (!insert_row_entry(t, row, changed[i], record.data())) {
      for (size_t j = 0; j < i; ++j) delete_row_entry(t, row, changed[j], record.data());
      restore_row(t, row, old, changed);
      return false;
    }
  }
  return true;
}

}  // namespace

bool read_record(TableState& t, long row, std::vector<std::byte>& buffer) {
  if (buffer.size() < static_cast<size_t>(t.record_size)) buffer.resize(static_cast<size_t>(t.record_size));
  return (row != 0 || store_header(t)) && t.records->get(row, buffer);
}

bool store_header(TableState& t) {
  if (!t.header_pending) return true;
  if (!t.records->put(0, t.header)) return fail(t);
  t.header_pending = false;
  return true;
}

bool record_key(const TableState& t, int c, const std::byte* record, int32_t& key) {
  const ColumnDef& column = t.column(c);
  std::optional<int32_t> k = index_key(column.type, record + column.position, column.width);
  if (!k) return false;
  key = *k;
  return true;
}

bool open_index(TableState& t, int c, int mode) {
  try {
    t.comparator(c) = std::make_unique<IndexCompare>(t, c);
  } catch (const std::bad_alloc&) {
    report_message(kMsgOutOfMemory, {t.name});
    return false;
  }
  t.index(c) = BTree::open(index_name(t, c), mode | kOpenCreate, *t.comparator(c));
  if (!t.index(c)) {
    t.comparator(c).reset();
    return false;
  }
  const ColumnDef& column = t.column(c);
  if (compares_values(column.type) && column.width > 0 && !t.keeps_values(c)) {
    t.value_cache(c).reset(column);
  }
  return true;
}

void close_index(TableState& t, int c) {
  if (t.index(c)) t.index(c)->close();
  t.index(c).reset();
  t.comparator(c).reset();
  if (!t.keeps_values(c)) t.value_cache(c).clear();
}

bool insert_row_entry(TableState& t, long row, int c, const std::byte* record) {
  if (!t.index(c)) return true;
  int32_t key = 0;
  if (!record_key(t, c, record, key)) return fail(t);
  if (t.value_cache(c).active()) t.value_cache(c).store(row, record + t.column(c).position);
  return insert_entry(t, c, key, row, Placing::kSearch);
}

bool insert_entry(TableState& t, int c, int32_t key, long row, Placing placing) {
  BTree& index = *t.index(c);
  int32_t row32 = static_cast<int32_t>(row);
  BTree::Insert inserted = placing == Placing::kSearch
                               ? index.insert(key, row32)
                               : index.append(key, row32, placing == Placing::kAfterAll);
  switch (inserted) {
    case BTree::Insert::kInserted:
      return true;
    case BTree::Insert::kDuplicate:
      report_message(kMsgDuplicateKey, {t.name, t.column(c).name});
      return false;
    case BTree::Insert::kFailed:
      break;
  }
  return fail(t);
}

bool delete_row_entry(TableState& t, long row, int c, const std::byte* record) {
  if (!t.index(c)) return true;
  int32_t key = 0;
  if (!record_key(t, c, record, key) || !t.index(c)->remove(key, static_cast<int32_t>(row))) {
    return fail(t);
  }
  return true;
}

bool add_index_traced(TableState& t, int c, int mode) {
  bool ok = add_index(t, c, mode);
  trace_printf("IndexAdd %s %s %d %d\n", t.name.c_str(), t.column(c).name, mode, ok ? 1 : 0);
  trace_flush();
  return ok;
}

long Table::add_row(std::span<const std::byte> record, int mode) {
  TableState* t = table_at(slot_, serial_);
  if (t == nullptr) return 0;
  long row = 0;
  {
    TraceSuspension quiet;
    row = append_row(*t, record, mode);
  }
  if (row != 0) ++t->changes;
  if (tracing()) {
    trace_printf("RowAdd %s %d %ld\n", t->name.c_str(), mode, row);
    if (record.size() >= static_cast<size_t>(t->record_size)) trace_columns(*t, record.data());
    trace_flush();
  }
  return row;
}

bool Table::get_row(long row, std::span<std::byte> out) {
  TableState* t = table_at(slot_, serial_);
  if (t == nullptr) return false;
  bool ok = false;
  if (row > t->row_count) {
    ok = false;
  } else if (out.size() < static_cast<size_t>(t->record_size) ||
             (row == 0 && !store_header(*t)) || !t->records->get(row, out)) {
    fail(*t);
  } else {
    ok = true;
  }
  if (tracing()) {
    trace_printf("RowGet %s %ld %d\n", t->name.c_str(), row, ok ? 1 : 0);
    if (ok) trace_columns(*t, out.data());
    trace_flush();
  }
  return ok;
}

bool Table::read_value(long row, int column, std::span<std::byte> out) {
  TableState* t = table_at(slot_, serial_);
  if (t == nullptr || row < 1 || row > t->row_count) return false;
  if (column < 0 || column >= t->column_count()) return false;
  const ColumnDef& def = t->column(column);
  if (out.size() < def.width) return false;
  // Only case-sensitive texts are kept as they lie in the record; the other
  // types' copies are in a comparison form.
  bool copy_is_value = def.type == kTypeString || def.type == kTypeText;
  if (copy_is_value && t->value_cache(column).active()) {
    const std::byte* value = t->value_cache(column).value(row, t->work_b);
    if (value != nullptr) {
      std::memcpy(out.data(), value, def.width);
      return true;
    }
  }
  if (!read_record(*t, row, t->work_b)) return false;
  std::memcpy(out.data(), t->work_b.data() + def.position, def.width);
  if (def.type >= kTypeString && def.type <= kTypeTextNoCase) {
    // A text's bytes past its NUL are nothing to its value.
    size_t length = strnlen(reinterpret_cast<const char*>(out.data()), def.width);
    std::fill(out.begin() + static_cast<std::ptrdiff_t>(length), out.begin() + def.width,
              std::byte{0});
  }
  return true;
}

void Table::prefetch_row(long row) const {
  const TableState* t = table_at(slot_, serial_);
  if (t != nullptr && row >= 1 && row <= t->row_count) t->records->prefetch(row);
}

bool Table::update_row(long row, std::span<const std::byte> record) {
  TableState* t = table_at(slot_, serial_);
  if (t == nullptr) return false;
  bool ok = replace_row(*t, row, record);
  ++t->changes;  // a refused update may have touched the record too
  if (tracing()) {
    trace_printf("RowUpdate %s %ld %d\n", t->name.c_str(), row, ok ? 1 : 0);
    if (record.size() >= static_cast<size_t>(t->record_size)) trace_columns(*t, record.data());
    trace_flush();
  }
  return ok;
}

bool Table::add_index(int column, int mode) {
  TableState* t = table_at(slot_, serial_);
  return t != nullptr && add_index_traced(*t, column, mode);
}

bool Table::keep_values(int column) {
  TableState* t = table_at(slot_, serial_);
  if (t == nullptr || column < 0 || column >= t->column_count()) return false;
  if (t->keeps_values(column)) return true;
  const ColumnDef& def = t->column(column);
  if (!compares_values(def.type) || def.width == 0) return false;
  if (!t->value_cache(column).active()) {
    // No index keeps them yet: the present rows' values are read once.
    t->value_cache(column).reset(def);
    t->value_cache(column).reserve(t->row_count);
    std::vector<std::byte> record;
    for (long row = 1; row <= t->row_count; ++row) {
      if (!read_record(*t, row, record)) {
        t->value_cache(column).clear();
        return false;
      }
      t->value_cache(column).store(row, record.data() + def.position);
    }
  }
  t->keeps_values(column) = true;
  return true;
}

bool Table::drop_index(int column) {
  TableState* t = table_at(slot_, serial_);
  if (t == nullptr) return false;
  bool ok = t->valid_index_column(column) && t->index(column);
  if (ok) {
    close_index(*t, column);
  } else {
    fail(*t);
  }
  trace_printf("IndexDrop %s %s %d\n", t->name.c_str(), t->column(column).name, ok ? 1 : 0);
  trace_flush();
  return ok;
}

namespace {

// Index row insert and delete: checks, reads the row and changes one entry.
bool change_row_entry(TableState& t, long row, int c, bool insert) {
  if (!t.valid_index_column(c) || row < 1 || row > t.row_count) return fail(t);
  if (!t.index(c)) return true;
  std::vector<std::byte> record;
  if (!read_record(t, row, record)) return fail(t);
  return insert ? insert_row_entry(t, row, c, record.data())
                : delete_row_entry(t, row, c, record.data());
}

}  // namespace

bool Table::insert_index_row(long row, int column) {
  TableState* t = table_at(slot_, serial_);
  if (t == nullptr) return false;
  bool ok = change_row_entry(*t, row, column, true);
  if (ok) ++t->changes;
  trace_printf("IndexRowInsert %s %ld %s %d\n", t->name.c_str(), row, t->column(column).name,
               ok ? 1 : 0);
  trace_flush();
  return ok;
}

bool Table::delete_index_row(long row, int column) {
  TableState* t = table_at(slot_, serial_);
  if (t == nullptr) return false;
  bool ok = change_row_entry(*t, row, column, false);
  if (ok) ++t->changes;
  trace_printf("IndexRowDelete %s %ld %s %d\n", t->name.c_str(), row, t->column(column).name,
               ok ? 1 : 0);
  trace_flush();
  return ok;
}

}  // namespace px::engine
