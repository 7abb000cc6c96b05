// Index add in key order.
//
// Inserting a table's rows into a new index in row order sends every
// insertion down a random path of the tree, and on a large table most of its
// comparisons reach values the processor no longer has in its caches. Here
// the entries are first sorted in one compact array that holds each entry's
// key and the first bytes of its value, and then inserted in that order: each
// insertion then follows the tree's rightmost path, whose values are the ones
// just inserted.
//
// The tree places every entry by its own comparison, whatever the order of
// insertion, so the index holds the same entries in the same order as the
// row-order build gives (a duplicate in a unique column is refused the same
// way); only the fill of its nodes differs. The sort is therefore free to
// break ties its own way (texts equal in their first bytes go by row); it
// must only be a strict order, which is why floating-point columns (NaN) and
// columns with their own compare function are left to the row-order build.
#include <algorithm>
#include <cstring>
#include <new>

#include "jmd/engine/table_internal.h"

namespace px::engine {

namespace {

// Rows read ahead of the scan: the reads cross into the next pages of the
// file before they are needed.
constexpr long kReadAhead = 16;

// One index entry as sorted: the first value bytes as two big-endian words
// (zero-filled past the value's kept first bytes), key and row.
struct SortEntry {
  uint64_t head_high = 0;
  uint64_t head_low = 0;
  int32_t key = 0;
  int32_t row = 0;
};

uint64_t big_endian_word(const std::byte* bytes, size_t count) {
  unsigned char word[8] = {};
  std::memcpy(word, bytes, count);
  uint64_t value = 0;
  for (unsigned char b : word) value = (value << 8) | b;
  return value;
}

bool sortable_type(int32_t type) {
  return (type >= kTypeInt && type <= kTypeUnsignedChar) ||
         (type >= kTypeString && type <= kTypeTextNoCase);
}

class EntryOrder {
 public:
  EntryOrder(const TableState& t, int c)
      : values_(t.values[c]),
        type_(t.column(c).type),
        unique_(t.column(c).flags & kUniqueKey),
        width_(t.column(c).width) {}

  // The entry of row with the given key, its first value bytes taken from
  // the value cache (which holds the row's value already).
  SortEntry entry(int32_t key, long row) const {
    SortEntry e;
    e.key = key;
    e.row = static_cast<int32_t>(row);
    uint32_t width = values_.prefix_width();
    if (const std::byte* head = width > 0 ? values_.prefix(row) : nullptr) {
      e.head_high = big_endian_word(head, std::min<uint32_t>(width, 8));
      if (width > 8) e.head_low = big_endian_word(head + 8, width - 8);
    }
    return e;
  }

  // Negative, zero or positive: keys as the column type orders them, then
  // the first value bytes, then rows.
  int compare(const SortEntry& a, const SortEntry& b) const {
    int r = compare_keys(type_, a.key, b.key);
    if (r == 0) r = order(a.head_high, b.head_high);
    if (r == 0) r = order(a.head_low, b.head_low);
    if (r == 0) r = order(a.row, b.row);
    return r;
  }

  // Whether the index orders entry after previous, the entry sorted before
  // it, for certain and without a look at the values: a higher key or
  // first bytes, or (the index not unique) the same whole value in a later
  // row.
  bool known_after(const SortEntry& previous, const SortEntry& entry) const {
    int r = compare(entry, previous);
    if (r <= 0) return false;
    bool same_start = entry.key == previous.key && entry.head_high == previous.head_high &&
                      entry.head_low == previous.head_low;
    return !same_start || (!unique_ && whole_in_head(entry));
  }

 private:
  // Whether the first bytes hold the whole value (a canonical text is
  // zero-filled after its end); true for a column without values.
  bool whole_in_head(const SortEntry& e) const {
    uint32_t width = values_.prefix_width();
    return width == 0 || width == width_ || (e.head_low & 0xff) == 0;
  }

  const ValueCache& values_;
  int32_t type_;
  bool unique_;
  uint32_t width_;
};

}  // namespace

OrderedBuild add_index_in_key_order(TableState& t, int c) {
  const ColumnDef& column = t.column(c);
  if (!sortable_type(column.type) || t.row_count < 2) return OrderedBuild::kNotTried;
  if (compares_values(column.type) && !t.values[c].active()) return OrderedBuild::kNotTried;
  std::vector<SortEntry> entries;
  try {
    entries.reserve(static_cast<size_t>(t.row_count));
  } catch (const std::bad_alloc&) {
    return OrderedBuild::kNotTried;
  }
  EntryOrder entry_order(t, c);
  bool from_kept_values = t.values_kept[c];
  std::vector<std::byte> record;
  bool hashed = column.type == kTypeString || column.type == kTypeStringNoCase;
  for (long row = 1; row <= t.row_count; ++row) {
    int32_t key = 0;
    if (from_kept_values) {
      // The key of a canonical value is the key of the value itself; the
      // texts that are not hashed all have the key 0.
      const std::byte* value = t.values[c].value(row, record);
      if (value == nullptr) return OrderedBuild::kNotTried;
      if (hashed) key = *index_key(column.type, value, column.width);
    } else {
      t.records->prefetch(row + kReadAhead);
      if (!read_record(t, row, record) || !record_key(t, c, record.data(), key)) {
        return OrderedBuild::kNotTried;
      }
      if (t.values[c].active()) t.values[c].store(row, record.data() + column.position);
    }
    entries.push_back(entry_order.entry(key, row));
  }
  auto less = [&](const SortEntry& a, const SortEntry& b) { return entry_order.compare(a, b) < 0; };
  std::sort(entries.begin(), entries.end(), less);
  for (size_t i = 0; i < entries.size(); ++i) {
    const SortEntry& e = entries[i];
    Placing placing = i > 0 && entry_order.known_after(entries[i - 1], e) ? Placing::kAfterAll
                                                                           : Placing::kInOrder;
    if (!insert_entry(t, c, e.key, e.row, placing)) return OrderedBuild::kFailed;
  }
  return OrderedBuild::kBuilt;
}

}  // namespace px::engine
