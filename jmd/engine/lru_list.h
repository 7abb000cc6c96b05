// The least-recently-used order of a cache whose entries live in one array
// (the block cache's entries, the node cache's slots). Entries are linked by
// index through their own lru_prev and lru_next fields (-1 ends the list), so
// that an entry moves to the front or leaves the list at once and nothing is
// allocated. The list holds only the head and the tail; the caller keeps the
// array and passes it in.
#pragma once

#include <cstddef>
#include <vector>

namespace px::engine {

template <typename Entry>
class LruList {
 public:
  // The most recently used entry, and the least recently used: the one a
  // full cache gives up. -1 when the list is empty.
  int most_recent() const { return head_; }
  int least_recent() const { return tail_; }

  // Puts entry i, which is not on the list, first.
  void push_front(std::vector<Entry>& entries, int i) {
    Entry& e = entries[static_cast<size_t>(i)];
    e.lru_prev = -1;
    e.lru_next = head_;
    if (head_ >= 0) entries[static_cast<size_t>(head_)].lru_prev = i;
    head_ = i;
    if (tail_ < 0) tail_ = i;
  }

  // Takes entry i, which is on the list, off it.
  void unlink(std::vector<Entry>& entries, int i) {
    Entry& e = entries[static_cast<size_t>(i)];
    if (e.lru_prev >= 0) entries[static_cast<size_t>(e.lru_prev)].lru_next = e.lru_next;
    else head_ = e.lru_next;
    if (e.lru_next >= 0) entries[static_cast<size_t>(e.lru_next)].lru_prev = e.lru_prev;
    else tail_ = e.lru_prev;
    e.lru_prev = e.lru_next = -1;
  }

  // Makes entry i, which is on the list, the most recently used.
  void touch(std::vector<Entry>& entries, int i) {
    if (head_ == i) return;
    unlink(entries, i);
    push_front(entries, i);
  }

 private:
  int head_ = -1;
  int tail_ = -1;
};

}  // namespace px::engine
