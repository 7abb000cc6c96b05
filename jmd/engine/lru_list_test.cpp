#include "jmd/engine/lru_list.h"

#include <gtest/gtest.h>

#include <vector>

namespace px::engine {
namespace {

struct Entry {
  int lru_prev = -1;
  int lru_next = -1;
};

// The list from most to least recently used, walked both ways: the two
// walks must agree, or a link was left stale.
std::vector<int> order(const LruList<Entry>& lru, const std::vector<Entry>& entries) {
  std::vector<int> forward, backward;
  for (int i = lru.most_recent(); i >= 0 && forward.size() <= entries.size();
       i = entries[static_cast<size_t>(i)].lru_next) {
    forward.push_back(i);
  }
  for (int i = lru.least_recent(); i >= 0 && backward.size() <= entries.size();
       i = entries[static_cast<size_t>(i)].lru_prev) {
    backward.insert(backward.begin(), i);
  }
  EXPECT_EQ(forward, backward);
  return forward;
}

TEST(LruList, KeepsTheOrderOfUseThroughEveryMove) {
  std::vector<Entry> entries(5);
  LruList<Entry> lru;
  EXPECT_EQ(lru.most_recent(), -1);
  EXPECT_EQ(lru.least_recent(), -1);
  for (int i = 0; i < 4; ++i) lru.push_front(entries, i);
  EXPECT_EQ(order(lru, entries), (std::vector<int>{3, 2, 1, 0}));

  lru.touch(entries, 0);  // the last becomes the first
  EXPECT_EQ(order(lru, entries), (std::vector<int>{0, 3, 2, 1}));
  lru.touch(entries, 2);  // from the middle
  EXPECT_EQ(order(lru, entries), (std::vector<int>{2, 0, 3, 1}));
  lru.touch(entries, 2);  // already first: nothing moves
  EXPECT_EQ(order(lru, entries), (std::vector<int>{2, 0, 3, 1}));

  lru.unlink(entries, 1);  // the tail: the next one is given up then
  EXPECT_EQ(lru.least_recent(), 3);
  lru.unlink(entries, 2);  // the head
  lru.unlink(entries, 0);  // from the middle, leaving one
  EXPECT_EQ(order(lru, entries), (std::vector<int>{3}));
  EXPECT_EQ(entries[1].lru_prev, -1);  // an unlinked entry keeps no links
  EXPECT_EQ(entries[1].lru_next, -1);
  lru.unlink(entries, 3);
  EXPECT_EQ(lru.most_recent(), -1);
  EXPECT_EQ(lru.least_recent(), -1);
  lru.push_front(entries, 4);  // an emptied list takes entries again
  EXPECT_EQ(order(lru, entries), (std::vector<int>{4}));
}

}  // namespace
}  // namespace px::engine
