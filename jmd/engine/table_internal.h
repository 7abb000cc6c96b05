// The table engine's process-wide state and the pieces its source files share
// (internal; table.h is the interface).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "jmd/engine/btree.h"
#include "jmd/engine/table.h"
#include "jmd/engine/vlist.h"

namespace px::engine {

inline constexpr int kTablePoolSize = 10;
inline constexpr int kQueryPoolSize = 20;
inline constexpr int kRecordCacheParameter = 4;

struct TableState;

// Copies of one column's values, row by row, so that comparisons never read
// records. Kept for indexed columns whose comparison needs the full value
// (types 10 to 15), in the form compare_canonical() takes: texts cut at their
// NUL and zero-filled to the width, lowered for the case-insensitive types.
//
// Texts (types 11 to 14) are kept compactly: the first kPrefixWidth bytes of
// every value in one array, and the whole value only of those that run on
// past them. Most comparisons are settled by the first bytes, so an index
// build over many rows touches little memory.
//
// All the value caches of the process together reserve at most
// kValueCopyBudget bytes (table.h). A cache that would go over it gives up:
// it frees its copies, serves no value from then on, and comparisons read
// the records instead.
class ValueCache {
 public:
  static constexpr uint32_t kPrefixWidth = 16;

  void reset(const ColumnDef& column);
  bool active() const { return width_ > 0; }
  // Whether the cache gave up (over the budget, or out of memory).
  bool failed() const { return failed_; }
  // Stores the value as it lies in a record; gives up when the copy would
  // go over the budget or memory runs out.
  void store(long row, const std::byte* value);
  // Makes room for rows 0 to rows at once (a hint: nothing when the budget
  // or memory is short, store() then grows as it goes).
  void reserve(long rows);
  // The stored value of row, whole; a text kept only by its first bytes is
  // put together in scratch. nullptr when the cache is not active or does
  // not reach that row.
  const std::byte* value(long row, std::vector<std::byte>& scratch) const;
  // Bytes of each value kept in the array of first bytes; 0 when there is
  // none (the cache is not active or the type is not a text).
  uint32_t prefix_width() const { return prefix_width_; }
  // The first prefix_width() bytes of row's value; nullptr when there are
  // none or the cache does not reach that row.
  const std::byte* prefix(long row) const {
    size_t at = static_cast<size_t>(row) * prefix_width_;
    return prefix_width_ > 0 && !failed_ && at + prefix_width_ <= prefixes_.size()
               ? prefixes_.data() + at
               : nullptr;
  }
  void clear() { *this = ValueCache(); }

 private:
  // The bytes a cache has reserved, counted against the budget; given back
  // when the cache is cleared or destroyed.
  class Charge {
   public:
    Charge() = default;
    Charge(Charge&& other) noexcept;
    Charge& operator=(Charge&& other) noexcept;
    ~Charge();
    // Changes the charge to bytes; false (unchanged) when that would go
    // over the budget.
    bool set(size_t bytes);
    // The most bytes this charge may grow to within the budget.
    size_t most() const;

   private:
    size_t bytes_ = 0;
  };
  static constexpr uint32_t kNoWhole = UINT32_MAX;
  // Whether the value fitted (false: over the budget); may throw
  // std::bad_alloc.
  bool store_value(long row, const std::byte* value);
  // Reserves room for n elements of v within the budget; false when over it.
  template <class T>
  bool room(std::vector<T>& v, size_t n);
  size_t held() const;
  void give_up();
  const ColumnDef* column_ = nullptr;
  uint32_t width_ = 0;
  uint32_t prefix_width_ = 0;
  std::vector<std::byte> bytes_;     // whole values: every row's, or (texts)
                                     // those that run on past the first bytes
  std::vector<std::byte> prefixes_;  // texts: the first bytes of every row's value
  std::vector<uint32_t> whole_at_;   // texts: the row's place in bytes_, or
                                     // kNoWhole (a place is kept for good)
  bool failed_ = false;              // gave up: serves no value
  Charge charge_;
};

// The index comparison of one column of one table: entries are (key, row);
// row 0 stands for the bound value set in the comparison context.
class IndexCompare : public BTreeComparator {
 public:
  // The table's columns and value caches are in place (they are sized when
  // the table opens and stay so while it is open).
  IndexCompare(TableState& table, int column);
  int compare(const BTreeEntry& a, const BTreeEntry& b) override;
  // The current-comparison context: the value that row 0 stands for (as it
  // lies in a record).
  void set_bound(const std::byte* value);
  // Compares only values, without the row-number tie-break.
  int compare_values(const BTreeEntry& a, const BTreeEntry& b);

 private:
  const std::byte* value_of(const ColumnDef& column, int32_t row,
                            std::vector<std::byte>& canonical);
  const std::byte* prefix_of(const ColumnDef& column, int32_t row,
                             std::vector<std::byte>& canonical);
  int value_order(const ColumnDef& column, const BTreeEntry& a, const BTreeEntry& b);
  TableState& table_;
  const ColumnDef& column_def_;
  const ValueCache& values_;
  std::vector<std::byte> bound_;  // canonical; empty when none is set
  std::vector<std::byte> canonical_a_;
  std::vector<std::byte> canonical_b_;
};

struct TableState {
  std::string name;  // empty: the slot is free
  uint32_t serial = 0;
  int record_size = 0;
  long row_count = 0;
  std::unique_ptr<VList> records;
  std::span<const ColumnDef> columns;
  // One per column and one more: index add accepts the column count itself.
  std::vector<std::unique_ptr<BTree>> indexes;
  std::vector<std::unique_ptr<IndexCompare>> comparators;
  std::vector<ValueCache> values;
  // Columns whose value cache is kept with or without an index (keep_values).
  std::vector<bool> values_kept;
  std::vector<std::byte> header;
  // The header record holds a row count the file does not have yet: rows
  // are added without rewriting it each time, and it is written before
  // record 0 is read, on flush and on close.
  bool header_pending = false;
  std::vector<std::byte> work_a;
  std::vector<std::byte> work_b;
  bool dirty = false;
  uint64_t changes = 0;  // rows added or rewritten, index entries changed
  int mode = 0;

  int column_count() const { return static_cast<int>(columns.size()); }
  // The definition of column c; a blank one for c == column_count().
  const ColumnDef& column(int c) const;
  bool valid_index_column(int c) const { return c >= 0 && c <= column_count(); }
  // The index, comparator, value cache and kept-values mark of column c
  // (0 to column_count()).
  std::unique_ptr<BTree>& index(int c) { return indexes[slot(c)]; }
  const std::unique_ptr<BTree>& index(int c) const { return indexes[slot(c)]; }
  std::unique_ptr<IndexCompare>& comparator(int c) { return comparators[slot(c)]; }
  ValueCache& value_cache(int c) { return values[slot(c)]; }
  std::vector<bool>::reference keeps_values(int c) { return values_kept[slot(c)]; }

 private:
  static size_t slot(int c) { return static_cast<size_t>(c); }
};

struct QueryState {
  bool in_use = false;
  int table_slot = -1;
  uint32_t table_serial = 0;
  int column = 0;
  BTreeCursor cursor;
  int32_t key = 0;
  std::vector<std::byte> bound;  // width bytes; empty without a bound value
  bool exact = false;
  int next = -1;  // the next query of a join chain
};

struct EngineState {
  std::array<TableState, kTablePoolSize> tables;
  std::array<QueryState, kQueryPoolSize> queries;
  uint32_t next_serial = 0;
  std::string directory;

  // The table of a slot and the query of a handle (both within their pool).
  TableState& table(int slot) { return tables[static_cast<size_t>(slot)]; }
  QueryState& query(int q) { return queries[static_cast<size_t>(q)]; }
};

EngineState& engine();
// The open table of a handle's slot and serial; nullptr when it is gone.
TableState* table_at(int slot, uint32_t serial);

// ---- keys and values (index_compare.cpp) ----

// -1, 0 or 1 as a is below, equal to or above b.
template <class T>
int order(T a, T b) {
  return a < b ? -1 : (b < a ? 1 : 0);
}
// Orders two index keys of a column type (unsigned for the unsigned and the
// hashed types, as floats for the floating-point ones); kCompareError for an
// unknown type.
int compare_keys(int32_t type, int32_t a, int32_t b);
// Whether a type is compared by full value after equal keys.
bool compares_values(int32_t type);
// Compares two values of a column by its type; kCompareError for a bad type.
int compare_column_values(const ColumnDef& column, const std::byte* a, const std::byte* b);
// Writes the canonical form of a value (column.width bytes) to out.
void make_canonical(const ColumnDef& column, const std::byte* value, std::byte* out);
// Compares two canonical values of a column whose keys are equal.
int compare_canonical(const ColumnDef& column, const std::byte* a, const std::byte* b);

// ---- rows and indexes (table_rows.cpp) ----

// The key of column c of a record; false for an unknown type.
bool record_key(const TableState& t, int c, const std::byte* record, int32_t& key);
// Adds / removes row's entry in column c's index, the record given. Reports
// -370 on a duplicate, -357 when an entry cannot be removed.
bool insert_row_entry(TableState& t, long row, int c, const std::byte* record);
// How insert_entry places an entry: by a search, or (BTree::append) at the
// end when it orders after every entry, checked with one comparison or
// known by the caller.
enum class Placing { kSearch, kInOrder, kAfterAll };
// Inserts (key, row) into column c's index, reporting as insert_row_entry.
bool insert_entry(TableState& t, int c, int32_t key, long row, Placing placing);
bool delete_row_entry(TableState& t, long row, int c, const std::byte* record);
bool open_index(TableState& t, int c, int mode);
// Index add with its trace line "IndexAdd ...".
bool add_index_traced(TableState& t, int c, int mode);
// The index file of column c: the table name with its extension replaced.
std::string index_name(const TableState& t, int c);
void close_index(TableState& t, int c);
bool read_record(TableState& t, long row, std::vector<std::byte>& buffer);
// Writes the header record when its row count is pending; false (reported)
// when it cannot be written.
bool store_header(TableState& t);

// ---- index add in key order (index_build.cpp) ----

enum class OrderedBuild {
  kBuilt,     // every row is in the index
  kFailed,    // an insertion failed and was reported; the index is partial
  kNotTried,  // nothing inserted: the row-order build is to be used
};
// Fills column c's new, empty index from every row by inserting the entries
// in index order. Leaves to the row-order build what it cannot do the same:
// types without a strict order, duplicates in a unique column, unreadable
// rows and a lack of memory.
OrderedBuild add_index_in_key_order(TableState& t, int c);
// The most entries sorted at once: kSortRunEntries unless set (tests set
// fewer to build in several runs).
size_t sort_run_entries();
void set_sort_run_entries(size_t entries);

// ---- trace (table_trace.cpp) ----

// Opens the trace file from GDBTraceFile when none is open.
void open_trace_if_configured();
bool tracing();
// Suspends the trace (nested operations of a row add); counts nesting.
class TraceSuspension {
 public:
  TraceSuspension();
  ~TraceSuspension();
  TraceSuspension(const TraceSuspension&) = delete;
  TraceSuspension& operator=(const TraceSuspension&) = delete;
};
// printf-style text to the trace; nothing when there is none.
void trace_printf(const char* format, ...) __attribute__((format(printf, 1, 2)));
// A value of column as the trace shows it.
void trace_value(const ColumnDef& column, const std::byte* value);
// "Column %s <value>\n" for every column of a record.
void trace_columns(const TableState& t, const std::byte* record);
// Ends an operation's trace output: flushes the file.
void trace_flush();

}  // namespace px::engine
