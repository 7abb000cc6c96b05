// Index add in key order.
//
// Inserting a table's rows into a new index in row order sends every
// insertion down a random path of the tree, and on a large table most of its
// comparisons reach values the processor no longer has in its caches. Here
// the entries are first sorted in one compact array that holds each entry's
// key and the first bytes of its value, and then inserted in that order: each
// insertion then follows the tree's rightmost path, whose values are the ones
// just inserted. The array holds at most kSortRunEntries entries: a larger
// table is sorted and inserted in runs of that many rows.
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

#include "jmd/engine/report.h"
#include "jmd/engine/table_internal.h"

namespace px::engine {

namespace {

size_t g_sort_run_entries = kSortRunEntries;

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
      : column_(t.column(c)),
        unique_(column_.flags & kUniqueKey),
        head_width_(column_.type >= kTypeString && column_.type <= kTypeTextNoCase
                        ? std::min(column_.width, ValueCache::kPrefixWidth)
                        : 0) {
    head_column_ = column_;
    head_column_.width = head_width_;
  }

  // The entry of row with the given key and the first bytes of its
  // canonical value (nullptr for a column without values).
  SortEntry entry(int32_t key, long row, const std::byte* head) const {
    SortEntry e;
    e.key = key;
    e.row = static_cast<int32_t>(row);
    if (head != nullptr && head_width_ > 0) {
      e.head_high = big_endian_word(head, std::min<uint32_t>(head_width_, 8));
      if (head_width_ > 8) e.head_low = big_endian_word(head + 8, head_width_ - 8);
    }
    return e;
  }

  // The first bytes of a value as it lies in a record, made canonical in
  // scratch; nullptr for a column without values.
  const std::byte* head_of(const std::byte* value, std::vector<std::byte>& scratch) const {
    if (head_width_ == 0) return nullptr;
    scratch.resize(head_width_);
    make_canonical(head_column_, value, scratch.data());
    return scratch.data();
  }

  // Negative, zero or positive: keys as the column type orders them, then
  // the first value bytes, then rows.
  int compare(const SortEntry& a, const SortEntry& b) const {
    int r = compare_keys(column_.type, a.key, b.key);
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
    return head_width_ == 0 || head_width_ == column_.width || (e.head_low & 0xff) == 0;
  }

  const ColumnDef& column_;
  ColumnDef head_column_;
  bool unique_;
  uint32_t head_width_;
};

}  // namespace

size_t sort_run_entries() { return g_sort_run_entries; }

void set_sort_run_entries(size_t entries) { g_sort_run_entries = std::max<size_t>(entries, 1); }

OrderedBuild add_index_in_key_order(TableState& t, int c) {
  const ColumnDef& column = t.column(c);
  if (!sortable_type(column.type) || t.row_count < 2) return OrderedBuild::kNotTried;
  std::vector<SortEntry> entries;
  try {
    entries.reserve(std::min(static_cast<size_t>(t.row_count), g_sort_run_entries));
  } catch (const std::bad_alloc&) {
    return OrderedBuild::kNotTried;
  }
  EntryOrder entry_order(t, c);
  ValueCache& values = t.values[c];
  // Values kept for every row already (and not given up) spare the pass
  // over the records.
  bool from_kept_values = t.values_kept[c] && !values.failed();
  std::vector<std::byte> record;
  std::vector<std::byte> head;
  bool hashed = column.type == kTypeString || column.type == kTypeStringNoCase;
  // A row that cannot be had: before anything is inserted the row-order
  // build is left to try (and report); later the index is partial.
  auto stop = [&t](long first_row) {
    if (first_row == 1) return OrderedBuild::kNotTried;
    report_message(kMsgBadArgument, {t.name});
    return OrderedBuild::kFailed;
  };
  // The rows in runs of at most kSortRunEntries, each sorted and inserted in
  // order. The first run goes in at the end of the tree; a later one meets
  // the entries of the runs before it, and its entries are placed by a
  // search, still in order, so that each goes into the leaf where the one
  // before it went or one further on.
  const long run = static_cast<long>(g_sort_run_entries);
  for (long first = 1; first <= t.row_count; first += run) {
    long last = std::min(t.row_count, first + run - 1);
    entries.clear();
    for (long row = first; row <= last; ++row) {
      int32_t key = 0;
      const std::byte* start = nullptr;
      if (from_kept_values) {
        // The key of a canonical value is the key of the value itself; the
        // texts that are not hashed all have the key 0.
        const std::byte* value = hashed ? values.value(row, record) : values.prefix(row);
        if (value == nullptr) return stop(first);
        if (hashed) key = *index_key(column.type, value, column.width);
        start = values.prefix(row);
      } else {
        t.records->prefetch(row + kReadAhead);
        if (!read_record(t, row, record) || !record_key(t, c, record.data(), key)) {
          return stop(first);
        }
        const std::byte* value = record.data() + column.position;
        if (values.active()) values.store(row, value);
        start = entry_order.head_of(value, head);
      }
      entries.push_back(entry_order.entry(key, row, start));
    }
    auto less = [&](const SortEntry& a, const SortEntry& b) {
      return entry_order.compare(a, b) < 0;
    };
    std::sort(entries.begin(), entries.end(), less);
    for (size_t i = 0; i < entries.size(); ++i) {
      const SortEntry& e = entries[i];
      Placing placing = first > 1 ? Placing::kSearch
                        : i > 0 && entry_order.known_after(entries[i - 1], e) ? Placing::kAfterAll
                                                                               : Placing::kInOrder;
      if (!insert_entry(t, c, e.key, e.row, placing)) return OrderedBuild::kFailed;
    }
  }
  return OrderedBuild::kBuilt;
}

}  // namespace px::engine
