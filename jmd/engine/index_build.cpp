// Index add in key order.
//
// Inserting a table's rows into a new index in row order sends every
// insertion down a random path of the tree, and on a large table most of its
// comparisons reach values the processor no longer has in its caches. Here
// the entries are first sorted in one compact array that holds each entry's
// key and the first bytes of its value, and then inserted in that order: each
// insertion then follows the tree's rightmost path, whose values are the ones
// just inserted. The array holds at most kSortRunEntries entries: a larger
// table is sorted in runs of that many rows, kept in a temporary file, and
// merged as they are inserted, so the tree is built in the same order.
//
// The tree places every entry by its own comparison, whatever the order of
// insertion, so the index holds the same entries in the same order as the
// row-order build gives (a duplicate in a unique column is refused the same
// way); only the fill of its nodes differs. The sort is therefore free to
// break ties its own way (texts equal in their first bytes go by row); it
// must only be a strict order, which is why floating-point columns (NaN) and
// columns with their own compare function are left to the row-order build.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

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
                        : 0),
        key_flip_(signed_keys(column_.type) ? 0x80000000u : 0u) {
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
    int r = order(ordered_key(a), ordered_key(b));
    if (r == 0) r = order(a.head_high, b.head_high);
    if (r == 0) r = order(a.head_low, b.head_low);
    if (r == 0) r = order(a.row, b.row);
    return r;
  }

  // What makes a key order as an unsigned number (see ordered_key).
  uint32_t key_flip() const { return key_flip_; }

  // compare(a, b) < 0, as the merge of runs asks it: plain word comparisons
  // that inline, without the column type's switch.
  bool less(const SortEntry& a, const SortEntry& b) const {
    uint32_t ka = ordered_key(a);
    uint32_t kb = ordered_key(b);
    if (ka != kb) return ka < kb;
    if (a.head_high != b.head_high) return a.head_high < b.head_high;
    if (a.head_low != b.head_low) return a.head_low < b.head_low;
    return a.row < b.row;
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
  // Keys of the sortable types order as signed or unsigned 32-bit numbers
  // (compare_keys); a signed key with its sign bit flipped orders as an
  // unsigned one. The texts that are not hashed all have the key 0.
  static bool signed_keys(int32_t type) {
    return type == kTypeInt || type == kTypeLong || type == kTypeShort || type == kTypeChar;
  }
  uint32_t ordered_key(const SortEntry& e) const { return static_cast<uint32_t>(e.key) ^ key_flip_; }

  // Whether the first bytes hold the whole value (a canonical text is
  // zero-filled after its end); true for a column without values.
  bool whole_in_head(const SortEntry& e) const {
    return head_width_ == 0 || head_width_ == column_.width || (e.head_low & 0xff) == 0;
  }

  const ColumnDef& column_;
  ColumnDef head_column_;
  bool unique_;
  uint32_t head_width_;
  uint32_t key_flip_;
};

// One pass of the radix sort: moves the n entries of from into to, ordered
// by the byte of word(entry) at shift and, within a byte, as they came.
template <class Word>
void distribute(const SortEntry* from, SortEntry* to, size_t n, Word word, int shift) {
  std::array<size_t, 256> count{};
  for (size_t i = 0; i < n; ++i) ++count[(word(from[i]) >> shift) & 0xff];
  size_t sum = 0;
  for (size_t& c : count) sum += std::exchange(c, sum);
  for (size_t i = 0; i < n; ++i) to[count[(word(from[i]) >> shift) & 0xff]++] = from[i];
}

// Sorts entries, which come in ascending row order, into EntryOrder::less's
// order: a radix sort, least significant byte first, over the first value
// bytes (low word, then high word) and the key made unsigned (key_flip).
// Each pass keeps equal bytes in the order they came, so equal entries stay
// in row order, the last tie-break. A byte that is the same in every entry
// (the key of a text column, the bytes a value's spellings share) costs no
// pass. scratch, as large as entries, takes every other pass.
void radix_sort(std::vector<SortEntry>& entries, std::vector<SortEntry>& scratch,
                uint32_t key_flip) {
  const size_t n = entries.size();
  scratch.resize(n);
  auto low = [](const SortEntry& e) { return e.head_low; };
  auto high = [](const SortEntry& e) { return e.head_high; };
  auto key = [key_flip](const SortEntry& e) {
    return uint64_t{static_cast<uint32_t>(e.key) ^ key_flip};
  };
  // The bits that differ between entries: set in some and clear in others.
  uint64_t all_low = ~uint64_t{0}, any_low = 0, all_high = ~uint64_t{0}, any_high = 0;
  uint64_t all_key = ~uint64_t{0}, any_key = 0;
  for (const SortEntry& e : entries) {
    all_low &= e.head_low;
    any_low |= e.head_low;
    all_high &= e.head_high;
    any_high |= e.head_high;
    all_key &= key(e);
    any_key |= key(e);
  }
  const uint64_t differ_low = all_low ^ any_low;
  const uint64_t differ_high = all_high ^ any_high;
  const uint64_t differ_key = all_key ^ any_key;
  SortEntry* from = entries.data();
  SortEntry* to = scratch.data();
  auto pass = [&](auto word, uint64_t differ, int bytes) {
    for (int shift = 0; shift < 8 * bytes; shift += 8) {
      if (((differ >> shift) & 0xff) == 0) continue;
      distribute(from, to, n, word, shift);
      std::swap(from, to);
    }
  };
  pass(low, differ_low, 8);
  pass(high, differ_high, 8);
  pass(key, differ_key, 4);
  if (from != entries.data()) std::copy(from, from + n, entries.data());
}

}  // namespace

size_t sort_run_entries() { return g_sort_run_entries; }

void set_sort_run_entries(size_t entries) { g_sort_run_entries = std::max<size_t>(entries, 1); }

namespace {

// Sorted runs of entries in a temporary file that has no name (it goes away
// with its descriptor), in the directory of the table.
class RunFile {
 public:
  explicit RunFile(const std::string& table_name) {
    std::string directory = table_name.substr(0, table_name.find_last_of('/') + 1);
    fd_ = open(directory.empty() ? "." : directory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (fd_ < 0) {
      // A file system without unnamed files: the C library's temporary file,
      // which is removed as soon as it is made.
      if (std::FILE* f = std::tmpfile()) {
        fd_ = dup(fileno(f));
        std::fclose(f);
      }
    }
  }
  ~RunFile() {
    if (fd_ >= 0) close(fd_);
  }
  RunFile(const RunFile&) = delete;
  RunFile& operator=(const RunFile&) = delete;

  bool usable() const { return fd_ >= 0; }
  // Appends n entries; false when they cannot all be written.
  bool append(const SortEntry* entries, size_t n) {
    // transfer() only reads from the entries when it writes them.
    if (!transfer(const_cast<SortEntry*>(entries), n, size_, true)) return false;
    size_ += n;
    return true;
  }
  // Reads n entries from entry index at.
  bool read(size_t at, SortEntry* out, size_t n) { return transfer(out, n, at, false); }

 private:
  bool transfer(SortEntry* entries, size_t n, size_t at, bool write) {
    auto* bytes = reinterpret_cast<char*>(entries);
    size_t total = n * sizeof(SortEntry);
    off_t offset = static_cast<off_t>(at * sizeof(SortEntry));
    for (size_t done = 0; done < total;) {
      off_t from = offset + static_cast<off_t>(done);
      ssize_t k = write ? pwrite(fd_, bytes + done, total - done, from)
                        : pread(fd_, bytes + done, total - done, from);
      if (k < 0 && errno == EINTR) continue;
      if (k <= 0) return false;
      done += static_cast<size_t>(k);
    }
    return true;
  }
  int fd_ = -1;
  size_t size_ = 0;  // entries written
};

// One sorted run being merged: where it lies in the run file, and the part
// of it read into its share of the buffer.
struct RunCursor {
  size_t next = 0;    // index in the run file of the first entry not yet read
  size_t end = 0;     // index past the run's last entry
  SortEntry* buffer = nullptr;
  size_t capacity = 0;
  size_t at = 0;      // position in the buffer
  size_t held = 0;    // entries in the buffer

  // Makes the cursor's current entry available; false at the end of the
  // run, or (failed set) when it cannot be read.
  bool fill(RunFile& file, bool& failed) {
    if (at < held) return true;
    if (next == end) return false;
    held = std::min(capacity, end - next);
    at = 0;
    if (!file.read(next, buffer, held)) {
      failed = true;
      return false;
    }
    next += held;
    return true;
  }
};

// Inserts e, the next entry in sorted order (previous: the one before it),
// into column c's index, which holds the entries before it.
bool insert_sorted(TableState& t, int c, const EntryOrder& entry_order, const SortEntry& e,
                   const SortEntry* previous) {
  Placing placing = previous != nullptr && entry_order.known_after(*previous, e)
                        ? Placing::kAfterAll
                        : Placing::kInOrder;
  return insert_entry(t, c, e.key, e.row, placing);
}

}  // namespace

OrderedBuild add_index_in_key_order(TableState& t, int c) {
  const ColumnDef& column = t.column(c);
  if (!sortable_type(column.type) || t.row_count < 2) return OrderedBuild::kNotTried;
  const size_t run = g_sort_run_entries;
  std::vector<SortEntry> entries;
  try {
    entries.reserve(std::min(static_cast<size_t>(t.row_count), run));
  } catch (const std::bad_alloc&) {
    return OrderedBuild::kNotTried;
  }
  EntryOrder entry_order(t, c);
  ValueCache& values = t.value_cache(c);
  // Values kept for every row already (and not given up) spare the pass
  // over the records.
  bool from_kept_values = t.keeps_values(c) && !values.failed();
  std::vector<std::byte> record;
  std::vector<std::byte> head;
  bool hashed = column.type == kTypeString || column.type == kTypeStringNoCase;
  auto less = [&](const SortEntry& a, const SortEntry& b) { return entry_order.less(a, b); };
  std::vector<SortEntry> scratch;
  // The rows in runs of at most `run` entries, each sorted; more than one run
  // is kept in a file and the runs are merged. Nothing is inserted before
  // every row has been read, so a row that cannot be had leaves the index to
  // the row-order build, which reports it.
  std::unique_ptr<RunFile> file;
  std::vector<RunCursor> runs;
  for (long first = 1; first <= t.row_count; first += static_cast<long>(run)) {
    long last = std::min(t.row_count, first + static_cast<long>(run) - 1);
    entries.clear();
    for (long row = first; row <= last; ++row) {
      int32_t key = 0;
      const std::byte* start = nullptr;
      if (from_kept_values) {
        // The key of a canonical value is the key of the value itself; the
        // texts that are not hashed all have the key 0.
        const std::byte* value = hashed ? values.value(row, record) : values.prefix(row);
        if (value == nullptr) return OrderedBuild::kNotTried;
        if (hashed) key = *index_key(column.type, value, column.width);
        start = values.prefix(row);
      } else {
        t.records->prefetch(row + kReadAhead);
        if (!read_record(t, row, record) || !record_key(t, c, record.data(), key)) {
          return OrderedBuild::kNotTried;
        }
        const std::byte* value = record.data() + column.position;
        if (values.active()) values.store(row, value);
        start = entry_order.head_of(value, head);
      }
      entries.push_back(entry_order.entry(key, row, start));
    }
    try {
      radix_sort(entries, scratch, entry_order.key_flip());
    } catch (const std::bad_alloc&) {
      std::sort(entries.begin(), entries.end(), less);  // in place, slower
    }
    if (first == 1 && last == t.row_count) break;  // one run: merged already
    if (!file) file = std::make_unique<RunFile>(t.name);
    RunCursor cursor;
    cursor.next = runs.empty() ? 0 : runs.back().end;
    cursor.end = cursor.next + entries.size();
    if (!file->usable() || !file->append(entries.data(), entries.size())) {
      return OrderedBuild::kNotTried;
    }
    runs.push_back(cursor);
  }
  if (runs.empty()) {
    for (size_t i = 0; i < entries.size(); ++i) {
      if (!insert_sorted(t, c, entry_order, entries[i], i > 0 ? &entries[i - 1] : nullptr)) {
        return OrderedBuild::kFailed;
      }
    }
    return OrderedBuild::kBuilt;
  }
  // The merge: each run reads its entries into an equal share of the sort
  // buffer; the lowest current entry of all runs goes in next.
  size_t share = std::max<size_t>(1, entries.capacity() / runs.size());
  entries.resize(std::max(entries.capacity(), share * runs.size()));
  bool failed = false;
  std::vector<size_t> live;  // runs not yet at their end
  for (size_t r = 0; r < runs.size(); ++r) {
    runs[r].buffer = entries.data() + r * share;
    runs[r].capacity = share;
    if (runs[r].fill(*file, failed)) live.push_back(r);
  }
  SortEntry previous;
  bool any = false;
  while (!live.empty() && !failed) {
    size_t lowest = 0;
    for (size_t k = 1; k < live.size(); ++k) {
      const RunCursor& a = runs[live[k]];
      const RunCursor& b = runs[live[lowest]];
      if (less(a.buffer[a.at], b.buffer[b.at])) lowest = k;
    }
    RunCursor& from = runs[live[lowest]];
    SortEntry e = from.buffer[from.at++];
    if (!insert_sorted(t, c, entry_order, e, any ? &previous : nullptr)) {
      return OrderedBuild::kFailed;
    }
    previous = e;
    any = true;
    if (!from.fill(*file, failed)) live.erase(live.begin() + static_cast<long>(lowest));
  }
  if (failed) {
    report_message(kMsgBadArgument, {t.name});
    return OrderedBuild::kFailed;
  }
  return OrderedBuild::kBuilt;
}

}  // namespace px::engine
