#include "jmd/job_names.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <numeric>

namespace px::jmd {

namespace {

unsigned char lowered(char c) {
  auto u = static_cast<unsigned char>(c);
  return u >= 'A' && u <= 'Z' ? static_cast<unsigned char>(u + ('a' - 'A')) : u;
}

// The first 16 bytes of a name, lowered, as two numbers that order as the
// bytes do: most comparisons of a sort end there.
struct SortKey {
  uint64_t high = 0;
  uint64_t low = 0;
  uint32_t id = 0;
  bool longer = false;  // the name runs on past the 16 bytes
};

SortKey sort_key(std::string_view name, uint32_t id) {
  unsigned char bytes[16] = {};
  size_t n = std::min(name.size(), sizeof bytes);
  for (size_t i = 0; i < n; ++i) bytes[i] = lowered(name[i]);
  SortKey key;
  for (size_t i = 0; i < 8; ++i) key.high = key.high << 8 | bytes[i];
  for (size_t i = 8; i < 16; ++i) key.low = key.low << 8 | bytes[i];
  key.id = id;
  key.longer = name.size() > sizeof bytes;
  return key;
}

}  // namespace

int JobNames::compare(std::string_view a, std::string_view b) {
  size_t n = std::min(a.size(), b.size());
  for (size_t i = 0; i < n; ++i) {
    unsigned char x = lowered(a[i]);
    unsigned char y = lowered(b[i]);
    if (x != y) return x < y ? -1 : 1;
  }
  return a.size() < b.size() ? -1 : (a.size() > b.size() ? 1 : 0);
}

bool JobNames::before(uint32_t a, uint32_t b) const {
  int r = compare(name(a), name(b));
  return r != 0 ? r < 0 : a < b;
}

void JobNames::note_row(long row, std::string_view name) {
  name = name.substr(0, std::min(name.size(), kLongest));
  if (entries() > 0 && this->name(entries()) == name) return;
  text_.append(name);
  starts_.push_back(static_cast<uint32_t>(text_.size()));
  first_rows_.push_back(row);
}

void JobNames::finish_notes(long end) {
  run_end_ = end;
  listed_.assign(static_cast<size_t>(entries()), true);
  order_.resize(listed_.size());
  std::iota(order_.begin(), order_.end(), uint32_t{1});
  // A JMD saved by the console lists its jobs in order: then the list is
  // sorted already and stays so.
  bool sorted = true;
  for (size_t i = 1; i < order_.size() && sorted; ++i) sorted = before(order_[i - 1], order_[i]);
  parts_ = {{0, sorted}};
}

bool JobNames::listed(long id) const {
  return id >= 1 && static_cast<size_t>(id) <= listed_.size() && listed_[static_cast<size_t>(id - 1)];
}

std::string_view JobNames::name(long id) const {
  if (id < 1 || id > entries()) return {};
  size_t start = starts_[static_cast<size_t>(id - 1)];
  return std::string_view(text_).substr(start, starts_[static_cast<size_t>(id)] - start);
}

std::pair<long, long> JobNames::run(long id) const {
  auto noted = static_cast<long>(first_rows_.size());
  if (id < 1 || id > noted) return {0, 0};
  long end = id < noted ? first_rows_[static_cast<size_t>(id)] : run_end_;
  return {first_rows_[static_cast<size_t>(id - 1)], end};
}

void JobNames::cut_at(long at) {
  if (at <= 0 || at >= size()) return;
  auto part = std::prev(parts_.upper_bound(at));
  if (part->first == at) return;
  if (!part->second) {
    auto next = std::next(part);
    long end = next == parts_.end() ? size() : next->first;
    auto base = order_.begin();
    std::nth_element(base + part->first, base + at, base + end,
                     [this](uint32_t a, uint32_t b) { return before(a, b); });
  }
  // Sorted stays sorted on both sides of the cut.
  parts_[at] = part->second;
}

std::span<const uint32_t> JobNames::in_order(long first, long count) {
  first = std::clamp(first, 0L, size());
  long last = std::clamp(first + std::max(count, 0L), first, size());
  if (first == last) return {};
  cut_at(first);
  cut_at(last);
  auto part = parts_.find(first);
  bool sorted = true;
  for (auto p = part; p != parts_.end() && p->first < last; ++p) sorted = sorted && p->second;
  if (!sorted) {
    std::sort(order_.begin() + first, order_.begin() + last,
              [this](uint32_t a, uint32_t b) { return before(a, b); });
  }
  parts_.erase(std::next(part), parts_.lower_bound(last));
  part->second = true;
  return std::span<const uint32_t>(order_).subspan(static_cast<size_t>(first),
                                                   static_cast<size_t>(last - first));
}

void JobNames::sort() {
  if (parts_.size() == 1 && parts_.begin()->second) return;
  std::vector<SortKey> keys;
  keys.reserve(order_.size());
  for (uint32_t id : order_) keys.push_back(sort_key(name(id), id));
  std::sort(keys.begin(), keys.end(), [this](const SortKey& a, const SortKey& b) {
    if (a.high != b.high) return a.high < b.high;
    if (a.low != b.low) return a.low < b.low;
    if (a.longer || b.longer) {
      int r = compare(name(a.id), name(b.id));
      if (r != 0) return r < 0;
    }
    return a.id < b.id;
  });
  for (size_t i = 0; i < keys.size(); ++i) order_[i] = keys[i].id;
  parts_ = {{0, true}};
}

size_t JobNames::place_of(uint32_t id) const {
  auto at = std::lower_bound(order_.begin(), order_.end(), id,
                             [this](uint32_t a, uint32_t b) { return before(a, b); });
  return static_cast<size_t>(at - order_.begin());
}

long JobNames::find(std::string_view name) const {
  std::vector<long> all = find_all(name);
  return all.empty() ? 0 : all.front();
}

std::vector<long> JobNames::find_all(std::string_view name) const {
  std::vector<long> found;
  if (parts_.size() == 1 && parts_.begin()->second) {
    auto at = std::lower_bound(order_.begin(), order_.end(), name,
                               [this](uint32_t a, std::string_view n) {
                                 return compare(this->name(a), n) < 0;
                               });
    for (; at != order_.end() && compare(this->name(*at), name) == 0; ++at) found.push_back(*at);
    return found;
  }
  for (uint32_t id : order_) {
    std::string_view listed = this->name(id);
    if (listed.size() == name.size() && compare(listed, name) == 0) found.push_back(id);
  }
  std::sort(found.begin(), found.end());
  return found;
}

long JobNames::add(std::string_view name) {
  name = name.substr(0, std::min(name.size(), kLongest));
  sort();
  text_.append(name);
  starts_.push_back(static_cast<uint32_t>(text_.size()));
  listed_.push_back(false);
  long id = entries();
  relist(id);
  return id;
}

bool JobNames::unlist(long id) {
  if (!listed(id)) return false;
  sort();
  order_.erase(order_.begin() + static_cast<long>(place_of(static_cast<uint32_t>(id))));
  listed_[static_cast<size_t>(id - 1)] = false;
  return true;
}

bool JobNames::relist(long id) {
  if (id < 1 || static_cast<size_t>(id) > listed_.size() || listed(id)) return false;
  sort();
  auto at = static_cast<long>(place_of(static_cast<uint32_t>(id)));
  order_.insert(order_.begin() + at, static_cast<uint32_t>(id));
  listed_[static_cast<size_t>(id - 1)] = true;
  return true;
}

}  // namespace px::jmd
