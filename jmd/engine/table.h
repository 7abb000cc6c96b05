// The table engine: tables of fixed-size records (a VList each) with optional
// per-column B-tree indexes (one index file per indexed column), and queries
// over those indexes.
//
// Record 0 of a table's file is the header record; its first 32-bit word is
// the row count. The file's copy is brought up to date when row 0 is read,
// on flush and on close (of a table whose file stays), not with every row
// added. Rows are numbered from 1 in order of addition and are never
// removed or renumbered; a row is deleted by removing it from the index of
// column 1, so no query over that column returns it again.
//
// Index files are named after the table with its extension replaced by
// "i%02d" and the column number (table /tmp/PXX1A.tmp, column 3:
// /tmp/PXX1A.i03). They are always created new. A created table's file and
// every index file have no name in the directory while open (vlist.h), so a
// killed process leaves nothing behind.
//
// The engine's state is process-wide: a pool of 10 open tables, a pool of 20
// queries, the trace file, the directory for relative table names and the
// comparison context. It is used from one thread only.
//
// Failures are reported by message number (-357 bad argument or a record that
// could not be read or written, -370 duplicate key in a unique index, -385 out
// of memory) and the operation returns 0 / false / an empty handle.
//
// Memory: an open table holds its records in its file, read and written
// through the record store's block cache (vlist.h), and its indexes in their
// files, through the B-tree node cache (btree.h); both have a fixed size. The
// copies of column values that index comparisons and keep_values() use are
// bounded by kValueCopyBudget bytes for all tables together: a copy that
// would go over it is dropped, and comparisons over that column read the
// records from then on (slower, not wrong). An index add sorts its entries in
// runs of at most kSortRunEntries entries (24 bytes each, and a second array
// as large to sort them through), kept in an unnamed temporary file beside
// the table and merged. Beyond that, a table holds
// three record buffers and its handles, whatever its row count. So the
// program's own (anonymous) memory for all tables stays below about 60 MiB
// (32 MiB of value copies, a 24 MiB sort run, 4 MiB of nodes, the 100,000-byte
// block cache) plus those buffers. The resident size the kernel reports also
// counts the table files' pages read through their mappings (mapped_file.h):
// page cache, not the program's memory, and about the size of the files read.
//
// Trace: when key GDBTraceFile in section Debug of the default INI file names
// a file at the first table open, every operation writes its line(s) there
// after it has finished, flushed at once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace px::engine {

// Column type codes.
enum ColumnType : int32_t {
  kTypeInt = 1,            // 32-bit signed
  kTypeUnsigned = 2,       // 32-bit unsigned
  kTypeLong = 3,           // 32-bit signed
  kTypeUnsignedLong = 4,   // 32-bit unsigned
  kTypeShort = 5,          // 16-bit signed
  kTypeUnsignedShort = 6,  // 16-bit unsigned
  kTypeChar = 7,           // signed 8-bit
  kTypeUnsignedChar = 8,   // unsigned 8-bit
  kTypeFloat = 9,          // 32-bit float
  kTypeDouble = 10,        // 64-bit double
  kTypeString = 11,        // case-sensitive, hashed
  kTypeStringNoCase = 12,  // case-insensitive, hashed
  kTypeText = 13,          // case-sensitive, not hashed
  kTypeTextNoCase = 14,    // case-insensitive, not hashed
  kTypeCustom = 15,        // the column's compare function
};

// The bytes that all copies of column values together may reserve.
inline constexpr size_t kValueCopyBudget = size_t{32} << 20;
// The most entries an index add sorts at once (24 bytes each, sorted through
// a second array of as many: 24 MiB).
inline constexpr size_t kSortRunEntries = size_t{1} << 19;

// The value copies' budget, exposed for tests and diagnosis.
namespace value_budget {
// Bytes reserved by all copies now.
size_t bytes_in_use();
size_t budget();
// Sets the budget (tests use a small one to see a copy dropped).
void set_budget(size_t bytes);
}  // namespace value_budget

// Column flag bits.
inline constexpr int32_t kIndexAtOpen = 1;  // build the index when the table opens
inline constexpr int32_t kUniqueKey = 2;    // the index admits no two equal values

// Table open modes (passed on to the record and index files).
inline constexpr int kOpenCreate = 1;          // start empty in unnamed files
inline constexpr int kOpenCreateIfMissing = 2;
inline constexpr int kOpenReadOnly = 4;
inline constexpr int kOpenNew = 3;             // what the JMD uses

// The only row-add mode: append.
inline constexpr int kAddAppend = 16;

// Comparison of two values of a type-15 column: negative, zero or positive.
using CompareFunction = int (*)(const void* a, const void* b);

// One column definition. The caller keeps the array alive while the table is
// open; the engine keeps a view of it and never copies it.
struct ColumnDef {
  const char* name = "";
  int32_t position = 0;          // byte offset of the value in the record
  uint32_t width = 0;            // bytes; strings include the terminating NUL
  int32_t type = 0;              // ColumnType
  int32_t flags = 0;             // kIndexAtOpen, kUniqueKey
  CompareFunction compare = nullptr;  // type 15 only
};

// The bytes of a record, for the row calls: record_bytes(my_struct).
template <class T>
std::span<const std::byte> record_bytes(const T& record) {
  static_assert(std::is_trivially_copyable_v<T>);
  return std::as_bytes(std::span<const T, 1>(&record, 1));
}
template <class T>
std::span<std::byte> record_bytes(T& record) {
  static_assert(std::is_trivially_copyable_v<T>);
  return std::as_writable_bytes(std::span<T, 1>(&record, 1));
}

// A value to bound a query or a join with: the bytes of the value as they lie
// in a record (a string's characters, NUL optional; an integer's 4 bytes).
// Bytes past the given ones count as NUL, up to the column's width.
using Value = std::string_view;
template <class T>
Value value_of(const T& number) {
  static_assert(std::is_arithmetic_v<T>);
  return Value(reinterpret_cast<const char*>(&number), sizeof number);
}

class Query;

// An open table: a move-only handle on one slot of the pool of 10. Destroying
// the handle closes the table (and with mode kOpenCreate frees its files).
class Table {
 public:
  Table() = default;
  ~Table();
  Table(Table&& other) noexcept;
  Table& operator=(Table&& other) noexcept;
  Table(const Table&) = delete;
  Table& operator=(const Table&) = delete;

  // Opens or creates the table file name (relative names go below the
  // engine's directory). Builds the indexes of columns with kIndexAtOpen.
  // An empty handle on failure: record size below 4 (-357), no free slot or
  // no memory (-385), file or index failure.
  static Table open(std::string_view name, int record_size, int mode,
                    std::span<const ColumnDef> columns);

  explicit operator bool() const { return slot_ >= 0; }

  // Closes every index, the record file and frees the slot. Always true;
  // an empty handle traces "TableClose (NULL) 1".
  bool close();
  // Flushes the record file and every index; clears the dirty mark on
  // success.
  bool flush();

  // The 0-based number of the column with exactly this name; -1 when none.
  int find_column(std::string_view name) const;

  // Appends a record (mode must be kAddAppend); the new row number, or 0 when
  // refused (a unique key already present: -370) or failed.
  long add_row(std::span<const std::byte> record, int mode = kAddAppend);
  // Replaces row's record, keeping every index in step: the row leaves the
  // index of each column whose value changes and goes back in with the new
  // value. False when refused (a unique key would be repeated: -370) or on a
  // failure (-357). A refused or failed update is undone: the old record is
  // written back and the row put back into the indexes it left, so it reads
  // and lists as before (only when that fails too, reported, does the row
  // stay out of those indexes).
  bool update_row(long row, std::span<const std::byte> record);
  // Reads row into out (at least record_size() bytes); row 0 is the header
  // record. False when row is above the row count or cannot be read.
  bool get_row(long row, std::span<std::byte> out);

  // Reads column's value of row (column width bytes) into out; a text is cut
  // at its NUL and zero-filled. A value of a case-sensitive text column whose
  // copies are kept (keep_values() or an index) comes from the copy, without
  // reading the record; any other is read from the record. False when row is
  // not a row (1 to row_count()), column is out of range, out is too small or
  // the record cannot be read. Writes no trace line.
  bool read_value(long row, int column, std::span<std::byte> out);

  // A hint that row is about to be read: starts bringing its record in, so
  // that reads of rows known in advance overlap. Changes nothing, reports and
  // traces nothing.
  void prefetch_row(long row) const;

  // Keeps copies of column's values from now on, as an index over it would,
  // whether or not it has one: a later index add over the column then needs
  // no pass over the records. Only for columns compared by value (types 10
  // to 15); false, with nothing kept, for others or when a present row
  // cannot be read. Changes nothing else and writes no trace line.
  bool keep_values(int column);

  // Builds the index of column (0 up to and including the column count) from
  // every row; false (-357) when out of range or already indexed.
  bool add_index(int column, int mode = kOpenNew);
  // Closes the column's index and deletes its file.
  bool drop_index(int column);
  // Adds / removes one row's entry in one column's index; success without
  // change when the column has no index. delete_index_row(row, 1) deletes a
  // row from the table's listings.
  bool insert_index_row(long row, int column);
  bool delete_index_row(long row, int column);

  long row_count() const;
  int record_size() const;
  int column_count() const;
  bool dirty() const;
  // How many rows were added or rewritten and index entries inserted or
  // deleted since the table opened: what was read from it still holds while
  // the count is the same.
  uint64_t change_count() const;
  bool has_index(int column) const;
  const std::string& name() const;  // with the engine's directory prefixed
  // Index file of a column.
  std::string index_file_name(int column) const;

 private:
  friend class Query;
  explicit Table(int slot, uint32_t serial) : slot_(slot), serial_(serial) {}
  int slot_ = -1;
  uint32_t serial_ = 0;
};

// A query over one column's index: a move-only handle on one slot of the
// pool of 20. Destroying the handle stops the query and its join chain.
class Query {
 public:
  Query() = default;
  ~Query();
  Query(Query&& other) noexcept;
  Query& operator=(Query&& other) noexcept;
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;

  // Starts a query over column's index (built first when missing), from the
  // first entry not below bound, or from the start without one. exact keeps
  // to rows equal to bound and needs one. Empty on failure or when the pool
  // is spent.
  static Query start(Table& table, int column, std::optional<Value> bound, bool exact);

  explicit operator bool() const { return slot_ >= 0; }
  // Pool position + 1, as the trace shows it; 0 for an empty handle.
  int number() const { return slot_ + 1; }

  // Row numbers; 0 at the end.
  long next();
  long previous();
  long current();

  // A copy of the query and its join chain; empty when the pool runs out
  // (the partial copy is released).
  Query duplicate() const;
  // Adds the condition "column of table equals (exact) or is not below value"
  // to this query; rows then come out only where every condition holds.
  bool join(Table& table, int column, std::optional<Value> value, bool exact);
  // Releases the query and its chain. Also done by the destructor.
  void stop();

 private:
  explicit Query(int slot) : slot_(slot) {}
  int slot_ = -1;
};

// The directory that relative table names are taken from (empty: as given).
void set_engine_directory(std::string_view directory);
const std::string& engine_directory();

// The trace file: opened at the first table open from GDBTraceFile (section
// Debug of the default INI file) and kept for the rest of the run. Closing it
// makes the next table open read the key again.
void close_engine_trace();
bool engine_trace_open();

// The 32-bit index key of a value of the given type, as the index orders it
// (strings of types 11/12 by their hash); nullopt for an unknown type.
std::optional<int32_t> index_key(int32_t type, const std::byte* value, uint32_t width);

// The string hash of types 11 (no_case false) and 12 (no_case true), over at
// most width characters up to the first NUL.
uint32_t string_hash(std::string_view text, bool no_case);

}  // namespace px::engine
