// The copies of column values that comparisons use instead of records, and
// the budget that bounds them all together.
#include <algorithm>
#include <cstring>
#include <new>

#include "jmd/engine/table_internal.h"

namespace px::engine {

namespace {

// Bytes reserved by every value cache of the process.
size_t g_value_bytes = 0;
size_t g_value_budget = kValueCopyBudget;

}  // namespace

// ---- the budget ----

ValueCache::Charge::Charge(Charge&& other) noexcept : bytes_(other.bytes_) { other.bytes_ = 0; }

ValueCache::Charge& ValueCache::Charge::operator=(Charge&& other) noexcept {
  if (this != &other) {
    g_value_bytes -= bytes_;
    bytes_ = other.bytes_;
    other.bytes_ = 0;
  }
  return *this;
}

ValueCache::Charge::~Charge() { g_value_bytes -= bytes_; }

bool ValueCache::Charge::set(size_t bytes) {
  if (bytes > bytes_ && g_value_bytes - bytes_ + bytes > g_value_budget) return false;
  g_value_bytes = g_value_bytes - bytes_ + bytes;
  bytes_ = bytes;
  return true;
}

size_t ValueCache::held() const {
  return bytes_.capacity() + prefixes_.capacity() + whole_at_.capacity() * sizeof(uint32_t);
}

size_t ValueCache::Charge::most() const {
  size_t others = g_value_bytes - bytes_;
  return others >= g_value_budget ? 0 : g_value_budget - others;
}

// Grows v by doubling, as far as the budget lets it: the last step fills
// what is left, and the next one fails (no growth row by row, which would
// copy the whole array each time).
template <class T>
bool ValueCache::room(std::vector<T>& v, size_t n) {
  if (n <= v.capacity()) return true;
  size_t others = held() - v.capacity() * sizeof(T);
  size_t limit = charge_.most();
  if (others > limit || n > (limit - others) / sizeof(T)) return false;
  size_t want = std::min(std::max(n, v.capacity() * 2), (limit - others) / sizeof(T));
  if (!charge_.set(others + want * sizeof(T))) return false;
  v.reserve(want);
  return true;
}

void ValueCache::give_up() {
  ValueCache failed;
  failed.column_ = column_;
  failed.width_ = width_;
  failed.prefix_width_ = prefix_width_;
  failed.failed_ = true;
  *this = std::move(failed);
}

namespace value_budget {

size_t bytes_in_use() { return g_value_bytes; }

size_t budget() { return g_value_budget; }

void set_budget(size_t bytes) { g_value_budget = bytes; }

}  // namespace value_budget

// ---- the copies ----

void ValueCache::reset(const ColumnDef& column) {
  clear();
  column_ = &column;
  width_ = column.width;
  bool text = column.type >= kTypeString && column.type <= kTypeTextNoCase;
  prefix_width_ = text ? std::min(width_, kPrefixWidth) : 0;
}

void ValueCache::reserve(long rows) {
  if (failed_) return;
  size_t count = static_cast<size_t>(rows) + 1;
  try {
    // Within the budget or not at all: store() then grows as it goes, and
    // gives up when the budget is spent.
    if (prefix_width_ == 0) {
      room(bytes_, count * width_);
    } else {
      room(prefixes_, count * prefix_width_);
      if (width_ > prefix_width_) room(whole_at_, count);
    }
  } catch (const std::bad_alloc&) {
    give_up();
  }
}

void ValueCache::store(long row, const std::byte* value) {
  if (failed_) return;
  try {
    if (!store_value(row, value)) give_up();
  } catch (const std::bad_alloc&) {
    give_up();
  }
}

bool ValueCache::store_value(long row, const std::byte* value) {
  size_t r = static_cast<size_t>(row);
  if (prefix_width_ == 0) {
    if (bytes_.size() < (r + 1) * width_) {
      if (!room(bytes_, (r + 1) * width_)) return false;
      bytes_.resize((r + 1) * width_);
    }
    make_canonical(*column_, value, bytes_.data() + r * width_);
    return true;
  }
  if (prefixes_.size() < (r + 1) * prefix_width_) {
    if (!room(prefixes_, (r + 1) * prefix_width_)) return false;
    prefixes_.resize((r + 1) * prefix_width_);
  }
  std::byte* head = prefixes_.data() + r * prefix_width_;
  if (width_ == prefix_width_) {
    make_canonical(*column_, value, head);
    return true;
  }
  if (whole_at_.size() < r + 1) {
    if (!room(whole_at_, r + 1)) return false;
    whole_at_.resize(r + 1, kNoWhole);
  }
  if (strnlen(reinterpret_cast<const char*>(value), width_) < prefix_width_) {
    // The text ends within the first bytes: they hold all of it.
    ColumnDef first_bytes = *column_;
    first_bytes.width = prefix_width_;
    make_canonical(first_bytes, value, head);
    whole_at_[r] = kNoWhole;
    return true;
  }
  if (whole_at_[r] == kNoWhole) {
    if (!room(bytes_, bytes_.size() + width_)) return false;
    uint32_t place = static_cast<uint32_t>(bytes_.size() / width_);
    bytes_.resize(bytes_.size() + width_);
    whole_at_[r] = place;
  }
  std::byte* whole = bytes_.data() + static_cast<size_t>(whole_at_[r]) * width_;
  make_canonical(*column_, value, whole);
  std::memcpy(head, whole, prefix_width_);
  return true;
}

const std::byte* ValueCache::value(long row, std::vector<std::byte>& scratch) const {
  size_t r = static_cast<size_t>(row);
  if (width_ == 0 || failed_) return nullptr;
  if (prefix_width_ == 0) {
    return (r + 1) * width_ <= bytes_.size() ? bytes_.data() + r * width_ : nullptr;
  }
  const std::byte* head = prefix(row);
  if (head == nullptr || width_ == prefix_width_) return head;
  if (r < whole_at_.size() && whole_at_[r] != kNoWhole) {
    return bytes_.data() + static_cast<size_t>(whole_at_[r]) * width_;
  }
  scratch.assign(width_, std::byte{0});
  std::memcpy(scratch.data(), head, prefix_width_);
  return scratch.data();
}

}  // namespace px::engine
