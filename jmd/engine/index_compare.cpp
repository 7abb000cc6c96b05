// Index keys of the column types, the string hash, and the index comparison.
#include <algorithm>
#include <bit>
#include <cstring>
#include <new>

#include "jmd/engine/table_internal.h"

namespace px::engine {

namespace {

template <class T>
T load(const std::byte* p) {
  T v;
  std::memcpy(&v, p, sizeof v);
  return v;
}

unsigned char lower(unsigned char c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; }

// Compares two NUL-terminated texts over at most width bytes.
int compare_text(const std::byte* a, const std::byte* b, uint32_t width, bool no_case) {
  auto* x = reinterpret_cast<const unsigned char*>(a);
  auto* y = reinterpret_cast<const unsigned char*>(b);
  for (uint32_t i = 0; i < width; ++i) {
    unsigned char c = no_case ? lower(x[i]) : x[i];
    unsigned char d = no_case ? lower(y[i]) : y[i];
    if (c != d) return c < d ? -1 : 1;
    if (c == 0) return 0;
  }
  return 0;
}

// memcmp() of 16 bytes as two big-endian words: the bytes in order, without
// a call.
int compare_16(const std::byte* a, const std::byte* b) {
  for (size_t half = 0; half < 2; ++half) {
    uint64_t x = load<uint64_t>(a + 8 * half);
    uint64_t y = load<uint64_t>(b + 8 * half);
    if (x != y) {
      if constexpr (std::endian::native == std::endian::little) {
        x = __builtin_bswap64(x);
        y = __builtin_bswap64(y);
      }
      return x < y ? -1 : 1;
    }
  }
  return 0;
}

}  // namespace

int compare_keys(int32_t type, int32_t a, int32_t b) {
  switch (type) {
    case kTypeInt: case kTypeLong: case kTypeShort: case kTypeChar:
      return order(a, b);
    case kTypeUnsigned: case kTypeUnsignedLong: case kTypeUnsignedShort: case kTypeUnsignedChar:
    case kTypeString: case kTypeStringNoCase:
      return order(static_cast<uint32_t>(a), static_cast<uint32_t>(b));
    case kTypeFloat: case kTypeDouble:
      return order(std::bit_cast<float>(a), std::bit_cast<float>(b));
    case kTypeText: case kTypeTextNoCase: case kTypeCustom:
      return 0;
    default:
      return kCompareError;
  }
}

uint32_t string_hash(std::string_view text, bool no_case) {
  uint32_t hash = 0;
  for (size_t i = 0; i < text.size() && text[i] != '\0'; ++i) {
    size_t k = i % 4;
    if (k == 0 && i > 0) hash = (hash << 1) | ((hash >> 3) & 1u);
    unsigned char c = static_cast<unsigned char>(text[i]);
    if (no_case) c = lower(c);
    hash ^= static_cast<uint32_t>(c) << (8 * k);
  }
  return hash;
}

std::optional<int32_t> index_key(int32_t type, const std::byte* value, uint32_t width) {
  switch (type) {
    case kTypeInt: case kTypeUnsigned: case kTypeLong: case kTypeUnsignedLong:
      return load<int32_t>(value);
    case kTypeShort:
      return static_cast<int32_t>(load<int16_t>(value));
    case kTypeUnsignedShort:
      return static_cast<int32_t>(load<uint16_t>(value));
    case kTypeChar:
      return static_cast<int32_t>(load<int8_t>(value));
    case kTypeUnsignedChar:
      return static_cast<int32_t>(load<uint8_t>(value));
    case kTypeFloat:
      return load<int32_t>(value);
    case kTypeDouble:
      return std::bit_cast<int32_t>(static_cast<float>(load<double>(value)));
    case kTypeString: case kTypeStringNoCase: {
      auto* text = reinterpret_cast<const char*>(value);
      return static_cast<int32_t>(
          string_hash(std::string_view(text, strnlen(text, width)), type == kTypeStringNoCase));
    }
    case kTypeText: case kTypeTextNoCase: case kTypeCustom:
      return 0;
    default:
      return std::nullopt;
  }
}

bool compares_values(int32_t type) { return type >= kTypeDouble && type <= kTypeCustom; }

// Full values of types 10 to 15 once their keys are equal.
static int compare_full(const ColumnDef& column, const std::byte* a, const std::byte* b) {
  switch (column.type) {
    case kTypeDouble:
      return order(load<double>(a), load<double>(b));
    case kTypeString: case kTypeText:
      return compare_text(a, b, column.width, false);
    case kTypeStringNoCase: case kTypeTextNoCase:
      return compare_text(a, b, column.width, true);
    case kTypeCustom: {
      if (column.compare == nullptr) return kCompareError;
      int r = column.compare(a, b);
      return r < 0 ? -1 : (r > 0 ? 1 : 0);
    }
    default:
      return 0;
  }
}

int compare_column_values(const ColumnDef& column, const std::byte* a, const std::byte* b) {
  std::optional<int32_t> ka = index_key(column.type, a, column.width);
  std::optional<int32_t> kb = index_key(column.type, b, column.width);
  if (!ka || !kb) return kCompareError;
  int r = compare_keys(column.type, *ka, *kb);
  if (r != 0 || !compares_values(column.type)) return r;
  return compare_full(column, a, b);
}

void make_canonical(const ColumnDef& column, const std::byte* value, std::byte* out) {
  int32_t type = column.type;
  if (type < kTypeString || type > kTypeTextNoCase) {
    std::memcpy(out, value, column.width);
    return;
  }
  bool no_case = type == kTypeStringNoCase || type == kTypeTextNoCase;
  auto* from = reinterpret_cast<const unsigned char*>(value);
  auto* to = reinterpret_cast<unsigned char*>(out);
  uint32_t i = 0;
  for (; i < column.width && from[i] != 0; ++i) to[i] = no_case ? lower(from[i]) : from[i];
  std::memset(to + i, 0, column.width - i);
}

int compare_canonical(const ColumnDef& column, const std::byte* a, const std::byte* b) {
  if (column.type >= kTypeString && column.type <= kTypeTextNoCase) {
    int r = std::memcmp(a, b, column.width);
    return r < 0 ? -1 : (r > 0 ? 1 : 0);
  }
  return compare_full(column, a, b);
}

IndexCompare::IndexCompare(TableState& table, int column)
    : table_(table), column_def_(table.column(column)), values_(table.value_cache(column)) {}

void IndexCompare::set_bound(const std::byte* value) {
  const ColumnDef& column = column_def_;
  bound_.resize(column.width);
  make_canonical(column, value, bound_.data());
}

// The canonical value of row: the bound for row 0, else the value cache's
// copy (put together in canonical when the cache keeps only its first
// bytes); only a row the cache lacks is read and made canonical there.
const std::byte* IndexCompare::value_of(const ColumnDef& column, int32_t row,
                                        std::vector<std::byte>& canonical) {
  if (row == 0) return bound_.size() == column.width ? bound_.data() : nullptr;
  if (const std::byte* v = values_.value(row, canonical)) return v;
  if (!read_record(table_, row, table_.work_a)) return nullptr;
  canonical.resize(column.width);
  make_canonical(column, table_.work_a.data() + column.position, canonical.data());
  return canonical.data();
}

// The first bytes of row's canonical value: from the compact array when it
// holds them, else the start of the whole value.
const std::byte* IndexCompare::prefix_of(const ColumnDef& column, int32_t row,
                                         std::vector<std::byte>& canonical) {
  if (row != 0) {
    if (const std::byte* p = values_.prefix(row)) return p;
  }
  return value_of(column, row, canonical);
}

// Orders the canonical values of two entries whose keys are equal. Texts are
// compared by their first bytes first: those settle the order unless they
// are equal, and equal ones that end in NUL mean equal values (a canonical
// text is zero-filled after its end). Only then is the rest compared.
int IndexCompare::value_order(const ColumnDef& column, const BTreeEntry& a,
                              const BTreeEntry& b) {
  uint32_t head = values_.prefix_width();
  if (head > 0) {
    const std::byte* pa = prefix_of(column, a.row, canonical_a_);
    const std::byte* pb = prefix_of(column, b.row, canonical_b_);
    if (pa == nullptr || pb == nullptr) return kCompareError;
    int r = head == ValueCache::kPrefixWidth ? compare_16(pa, pb) : std::memcmp(pa, pb, head);
    if (r != 0) return r < 0 ? -1 : 1;
    if (head == column.width || pa[head - 1] == std::byte{0}) return 0;
  }
  const std::byte* va = value_of(column, a.row, canonical_a_);
  const std::byte* vb = value_of(column, b.row, canonical_b_);
  if (va == nullptr || vb == nullptr) return kCompareError;
  return compare_canonical(column, va, vb);
}

// Keys first; equal keys of a type compared by value then compare the
// canonical values.
int IndexCompare::compare_values(const BTreeEntry& a, const BTreeEntry& b) {
  const ColumnDef& column = column_def_;
  int r = compare_keys(column.type, a.key, b.key);
  if (r != 0 || !compares_values(column.type)) return r;
  return value_order(column, a, b);
}

int IndexCompare::compare(const BTreeEntry& a, const BTreeEntry& b) {
  const ColumnDef& column = column_def_;
  int r = compare_keys(column.type, a.key, b.key);
  if (r != 0) return r;
  if (a.row == b.row && a.row != 0) return 0;
  if (compares_values(column.type)) {
    r = value_order(column, a, b);
    if (r == kCompareError) return r;
  }
  if (r == 0 && !(column.flags & kUniqueKey)) r = order(a.row, b.row);
  return r;
}

}  // namespace px::engine
