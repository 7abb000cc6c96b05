#include "jmd/engine/btree.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <set>
#include <utility>
#include <vector>

#include "jmd/engine/engine_test_log.h"
#include "tests/support/file_size_limit.h"
#include "tests/support/test_dir.h"

namespace px::engine {
namespace {

// Orders entries by key, then by row unless unique (row 0 sorts first).
class IntCompare : public BTreeComparator {
 public:
  explicit IntCompare(bool unique = false) : unique_(unique) {}
  int compare(const BTreeEntry& a, const BTreeEntry& b) override {
    if (a.key != b.key) return a.key < b.key ? -1 : 1;
    if (unique_ || a.row == b.row) return 0;
    return a.row < b.row ? -1 : 1;
  }

 private:
  bool unique_;
};

using Pair = std::pair<int32_t, int32_t>;

std::vector<Pair> walk_forward(BTree& tree) {
  std::vector<Pair> out;
  BTreeCursor c = tree.first();
  BTreeEntry e;
  while (c.next(e)) out.emplace_back(e.key, e.row);
  return out;
}

std::vector<Pair> walk_backward(BTree& tree) {
  std::vector<Pair> out;
  BTreeCursor c = tree.first();
  BTreeEntry e;
  while (c.next(e)) {
  }
  while (c.previous(e)) out.emplace_back(e.key, e.row);
  return out;
}

BTreeNode node_of(BTree& tree, long n) {
  BTreeNode node;
  EXPECT_TRUE(tree.read_node(n, node, __LINE__)) << n;
  return node;
}

// Checks the tree's shape: every level ordered along its links, inner
// entries no greater than their child's first entry, counts within bounds.
void check_structure(BTree& tree, int32_t n, const BTreeEntry* low, int depth, int& leaf_depth) {
  BTreeNode node = node_of(tree, n);
  ASSERT_LE(node.count, kNodeCapacity);
  if (n != kRootNode) {
    ASSERT_GT(node.count, 0) << "empty node " << n;
  }
  IntCompare cmp;
  for (int i = 1; i < node.count; ++i) {
    ASSERT_LT(cmp.compare(node.entry(i - 1), node.entry(i)), 0) << "node " << n;
  }
  if (low != nullptr && node.count > 0) {
    ASSERT_LE(cmp.compare(*low, node.entry(0)), 0) << "separator above node " << n;
  }
  if (node.kind == kNodeLeaf) {
    if (leaf_depth < 0) leaf_depth = depth;
    ASSERT_EQ(leaf_depth, depth);
    return;
  }
  for (int i = 0; i < node.count; ++i) {
    check_structure(tree, node.entry(i).child, &node.entry(i), depth + 1, leaf_depth);
  }
}

class BTreeTest : public ::testing::Test {
 protected:
  void open(bool unique = false) {
    compare_ = IntCompare(unique);
    tree_ = BTree::open(dir_.file("index.i01"), kVListCreate, compare_);
    ASSERT_TRUE(tree_);
  }
  void insert_all(int from, int to, int step) {
    for (int k = from; k < to; k += step) {
      ASSERT_EQ(tree_->insert(k, k), BTree::Insert::kInserted) << k;
    }
  }

  TestDir dir_;
  MessageCapture log_{dir_};
  IntCompare compare_;
  std::unique_ptr<BTree> tree_;

  void random_inserts_and_deletes();
};

TEST_F(BTreeTest, EmptyTreeHasHeaderAndEmptyRootLeaf) {
  open();
  EXPECT_EQ(tree_->node_count(), 2);
  BTreeNode root = node_of(*tree_, kRootNode);
  EXPECT_EQ(root.count, 0);
  EXPECT_EQ(root.kind, kNodeLeaf);
  BTreeCursor c = tree_->first();
  ASSERT_TRUE(c);
  BTreeEntry e;
  EXPECT_FALSE(c.next(e));
  bool found = true;
  BTreeCursor s = tree_->search(5, 0, found);
  ASSERT_TRUE(s);
  EXPECT_FALSE(found);
  EXPECT_FALSE(s.next(e));
}

TEST_F(BTreeTest, EightyFifthEntrySplitsLeafAndRootStaysNodeOne) {
  open();
  insert_all(0, 84 * 10, 10);
  EXPECT_EQ(node_of(*tree_, kRootNode).count, 84);
  EXPECT_EQ(tree_->node_count(), 2);
  // 415 falls in the lower half.
  ASSERT_EQ(tree_->insert(415, 415), BTree::Insert::kInserted);
  EXPECT_EQ(tree_->node_count(), 4);
  BTreeNode root = node_of(*tree_, kRootNode);
  EXPECT_EQ(root.kind, kNodeInner);
  ASSERT_EQ(root.count, 2);
  BTreeNode left = node_of(*tree_, root.entries[0].child);
  BTreeNode right = node_of(*tree_, root.entries[1].child);
  EXPECT_EQ(left.count, 43);
  EXPECT_EQ(right.count, 42);
  EXPECT_EQ(left.entries[42].key, 415);
  EXPECT_EQ(right.entries[0].key, 420);
  EXPECT_EQ(root.entries[1].key, 420);
  EXPECT_EQ(root.entries[0].key, 0);
  EXPECT_EQ(left.next, root.entries[1].child);
  EXPECT_EQ(right.prev, root.entries[0].child);
  EXPECT_EQ(left.entries[43].key, 0);  // unused entries are zero
  EXPECT_EQ(right.entries[42].row, 0);
  std::vector<Pair> all = walk_forward(*tree_);
  ASSERT_EQ(all.size(), 85u);
  EXPECT_TRUE(std::is_sorted(all.begin(), all.end()));
}

// Entries in order make the same tree whether appended or inserted, node
// for node, also with an open cursor to correct and with entries that are
// not above the rest (those are inserted as usual).
TEST_F(BTreeTest, AppendMakesTheTreeInsertMakes) {
  IntCompare other_compare;
  std::unique_ptr<BTree> appended = BTree::open(dir_.file("index.i02"), kVListCreate, other_compare);
  ASSERT_TRUE(appended);
  open();
  BTreeCursor watched = tree_->first();
  BTreeCursor watched_too = appended->first();
  std::vector<Pair> entries;
  for (int k = 0; k < 20000; ++k) entries.emplace_back(k / 3, 5 + k % 3);
  entries.push_back(entries.back());                                   // equal to the last
  for (int k = 0; k < 300; k += 7) entries.emplace_back(k / 3, 1);  // not above the rest
  entries.emplace_back(3, 5);                                           // a duplicate
  for (auto [key, row] : entries) {
    BTree::Insert inserted = tree_->insert(key, row);
    ASSERT_EQ(appended->append(key, row), inserted) << key << " " << row;
    if (key == 40 && row == 6) {
      bool found = false;
      watched = tree_->search(key, row, found);
      watched_too = appended->search(key, row, found);
    }
  }
  ASSERT_EQ(appended->node_count(), tree_->node_count());
  for (long n = 1; n < tree_->node_count(); ++n) {
    BTreeNode a = node_of(*tree_, n);
    BTreeNode b = node_of(*appended, n);
    ASSERT_EQ(std::memcmp(&a, &b, sizeof a), 0) << "node " << n;
  }
  EXPECT_EQ(watched.node(), watched_too.node());
  EXPECT_EQ(watched.position(), watched_too.position());
  int leaf_depth = -1;
  check_structure(*appended, kRootNode, nullptr, 0, leaf_depth);
}

TEST_F(BTreeTest, EqualEntryIsADuplicateAndChangesNothing) {
  open(/*unique=*/true);
  insert_all(0, 200, 1);
  long nodes = tree_->node_count();
  EXPECT_EQ(tree_->insert(150, 999), BTree::Insert::kDuplicate);
  EXPECT_EQ(tree_->insert(0, 999), BTree::Insert::kDuplicate);
  EXPECT_EQ(tree_->node_count(), nodes);
  std::vector<Pair> all = walk_forward(*tree_);
  ASSERT_EQ(all.size(), 200u);
  EXPECT_EQ(all[150], Pair(150, 150));
  bool found = false;
  BTreeCursor c = tree_->search(150, 999, found);
  EXPECT_TRUE(found);
  BTreeEntry e;
  ASSERT_TRUE(c.current(e));
  EXPECT_EQ(e.row, 150);
}

// Three leaves A(84) B C(84): B's entries cannot move, so B keeps however
// few it has; its last delete frees it.
TEST_F(BTreeTest, LeafWithoutRoomInNeighboursKeepsFewEntries) {
  open();
  insert_all(0, 1270, 10);  // ascending: leaves of 42, 42, 43
  BTreeNode root = node_of(*tree_, kRootNode);
  ASSERT_EQ(root.count, 3);
  int32_t a = root.entries[0].child, b = root.entries[1].child, c = root.entries[2].child;
  insert_all(1, 420, 10);   // A to 84
  insert_all(851, 1260, 10);  // C to 84
  ASSERT_EQ(node_of(*tree_, a).count, 84);
  ASSERT_EQ(node_of(*tree_, c).count, 84);
  for (int k = 420; k < 830; k += 10) ASSERT_TRUE(tree_->remove(k, k)) << k;
  BTreeNode middle = node_of(*tree_, b);
  EXPECT_EQ(middle.count, 1);
  EXPECT_EQ(middle.entries[0].key, 830);
  EXPECT_EQ(tree_->free_head(), 0);
  ASSERT_TRUE(tree_->remove(830, 830));
  EXPECT_EQ(tree_->free_head(), b);
  EXPECT_EQ(node_of(*tree_, a).next, c);
  EXPECT_EQ(node_of(*tree_, c).prev, a);
  EXPECT_EQ(walk_forward(*tree_).size(), 168u);
}

TEST_F(BTreeTest, LeafAbsorbedIntoNeighboursIsFreedAndReused) {
  open();
  insert_all(0, 1270, 10);  // A(42: 0..410) B(42: 420..830) C(43: 840..1260)
  BTreeNode root = node_of(*tree_, kRootNode);
  int32_t a = root.entries[0].child, b = root.entries[1].child, c = root.entries[2].child;
  insert_all(1, 300, 10);  // A to 72: room 12
  ASSERT_EQ(node_of(*tree_, a).count, 72);
  // B: 42 entries; rooms 12 + 41 = 53 take the 41 left after one delete.
  ASSERT_TRUE(tree_->remove(420, 420));
  EXPECT_EQ(tree_->free_head(), b);
  BTreeNode freed;
  VList& file = const_cast<VList&>(tree_->file());
  ASSERT_TRUE(file.get(b, std::as_writable_bytes(std::span<BTreeNode, 1>(&freed, 1))));
  EXPECT_EQ(freed.count, 0x46464646);
  EXPECT_EQ(freed.next, 0);  // the old free-list head
  BTreeNode left = node_of(*tree_, a), right = node_of(*tree_, c);
  EXPECT_EQ(left.count, 84);
  EXPECT_EQ(left.entries[83].key, 540);
  EXPECT_EQ(right.count, 43 + 29);
  EXPECT_EQ(right.entries[0].key, 550);
  EXPECT_EQ(left.next, c);
  EXPECT_EQ(right.prev, a);
  root = node_of(*tree_, kRootNode);
  ASSERT_EQ(root.count, 2);
  EXPECT_EQ(root.entries[1].key, 550);  // separator follows C's new first entry
  int leaf_depth = -1;
  check_structure(*tree_, kRootNode, nullptr, 0, leaf_depth);

  // The next split takes the freed node instead of growing the file.
  long nodes = tree_->node_count();
  insert_all(2, 130, 10);  // A overflows
  EXPECT_EQ(tree_->node_count(), nodes);
  EXPECT_EQ(tree_->free_head(), 0);
  EXPECT_EQ(node_of(*tree_, kRootNode).entries[1].child, b);
}

TEST_F(BTreeTest, CursorsFollowTheirEntriesThroughSplitsAndDeletes) {
  open();
  insert_all(0, 840, 10);  // a full root leaf
  bool found = false;
  BTreeCursor at_600 = tree_->search(600, 600, found);
  ASSERT_TRUE(found);
  BTreeCursor at_10 = tree_->search(10, 10, found);
  BTreeCursor copy = at_600.duplicate();
  ASSERT_EQ(tree_->insert(5, 5), BTree::Insert::kInserted);  // root split
  BTreeEntry e;
  ASSERT_TRUE(at_600.current(e));
  EXPECT_EQ(e.key, 600);
  EXPECT_NE(at_600.node(), kRootNode);
  ASSERT_TRUE(at_10.current(e));
  EXPECT_EQ(e.key, 10);
  ASSERT_TRUE(copy.next(e));
  EXPECT_EQ(e.key, 600);
  ASSERT_TRUE(tree_->remove(600, 600));
  ASSERT_TRUE(copy.next(e));  // the cursor now stands before the following entry
  EXPECT_EQ(e.key, 610);
  ASSERT_TRUE(at_600.next(e));
  EXPECT_EQ(e.key, 610);
  ASSERT_TRUE(at_10.previous(e));
  EXPECT_EQ(e.key, 5);
  ASSERT_TRUE(at_10.previous(e));
  EXPECT_EQ(e.key, 0);
  EXPECT_FALSE(at_10.previous(e));
  ASSERT_TRUE(at_10.next(e));
  EXPECT_EQ(e.key, 0);
  tree_->close();
  EXPECT_FALSE(at_10.next(e));  // a closed tree's cursor reports the end
}

// Sets the shared node cache's capacity for one test, and back after it.
class SmallNodeCache {
 public:
  explicit SmallNodeCache(int nodes) : before_(node_cache::capacity()) {
    set_ = node_cache::set_capacity(nodes);
  }
  ~SmallNodeCache() { node_cache::set_capacity(before_); }
  bool set() const { return set_; }

 private:
  int before_;
  bool set_ = false;
};

void BTreeTest::random_inserts_and_deletes() {
  open();
  std::mt19937 rng(20240611);
  std::set<Pair> model;
  std::vector<BTreeCursor> cursors;
  std::vector<Pair> cursor_at;
  int deepest = 0;
  for (int step = 0; step < 60000; ++step) {
    int32_t key = static_cast<int32_t>(rng() % 20000);
    int32_t row = static_cast<int32_t>(rng() % 8 + 1);
    bool insert = rng() % 100 < (step < 30000 ? 80 : 30);
    if (insert) {
      auto expected = model.count({key, row}) ? BTree::Insert::kDuplicate : BTree::Insert::kInserted;
      ASSERT_EQ(tree_->insert(key, row), expected) << step;
      model.insert({key, row});
    } else {
      auto it = model.lower_bound({key, row});
      if (it == model.end()) continue;
      // Keep the entries that open cursors stand on.
      if (std::find(cursor_at.begin(), cursor_at.end(), *it) != cursor_at.end()) continue;
      ASSERT_TRUE(tree_->remove(it->first, it->second)) << step;
      model.erase(it);
      EXPECT_FALSE(tree_->remove(key, 99));
    }
    if (step % 5000 == 4999) {
      // Cursors placed earlier still stand on their entries.
      for (size_t i = 0; i < cursors.size(); ++i) {
        BTreeEntry e;
        ASSERT_TRUE(cursors[i].current(e)) << step;
        EXPECT_EQ(Pair(e.key, e.row), cursor_at[i]) << step;
      }
      std::vector<Pair> forward = walk_forward(*tree_);
      ASSERT_EQ(forward, std::vector<Pair>(model.begin(), model.end())) << step;
      std::vector<Pair> backward = walk_backward(*tree_);
      ASSERT_EQ(backward, std::vector<Pair>(model.rbegin(), model.rend())) << step;
      int leaf_depth = -1;
      check_structure(*tree_, kRootNode, nullptr, 0, leaf_depth);
      deepest = std::max(deepest, leaf_depth);
      for (int probe = 0; probe < 50; ++probe) {
        int32_t k = static_cast<int32_t>(rng() % 20100);
        bool found = false;
        BTreeCursor c = tree_->search(k, 0, found);
        ASSERT_TRUE(c);
        auto it = model.lower_bound({k, 0});
        BTreeEntry e;
        if (it == model.end()) {
          EXPECT_FALSE(c.next(e)) << k;
          continue;
        }
        ASSERT_TRUE(c.next(e)) << k;
        EXPECT_EQ(Pair(e.key, e.row), *it) << k;
        if (cursors.size() < 10 && it->first == k) {
          cursors.push_back(std::move(c));
          cursor_at.push_back(*it);
        }
      }
    }
  }
  EXPECT_EQ(deepest, 2);  // root, inner level, leaves
  // Emptying the tree gives every node back but the root.
  for (const Pair& p : std::vector<Pair>(model.begin(), model.end())) {
    ASSERT_TRUE(tree_->remove(p.first, p.second));
  }
  EXPECT_TRUE(walk_forward(*tree_).empty());
  BTreeNode root = node_of(*tree_, kRootNode);
  EXPECT_EQ(root.kind, kNodeLeaf);
  EXPECT_EQ(root.count, 0);
  int free_nodes = 0;
  for (int32_t n = tree_->free_head(); n != 0 && free_nodes < 100000; ++free_nodes) {
    BTreeNode freed;
    VList& file = const_cast<VList&>(tree_->file());
    ASSERT_TRUE(file.get(n, std::as_writable_bytes(std::span<BTreeNode, 1>(&freed, 1))));
    n = freed.next;
  }
  EXPECT_EQ(free_nodes, tree_->node_count() - 2);
}

TEST_F(BTreeTest, RandomInsertsAndDeletesMatchAMultiset) { random_inserts_and_deletes(); }

// The same work through a node cache far smaller than the tree: nodes leave
// it and come back from the file all the time.
TEST_F(BTreeTest, RandomInsertsAndDeletesMatchAMultisetThroughASmallNodeCache) {
  SmallNodeCache small(kNodeCacheMinimum);
  ASSERT_TRUE(small.set());
  random_inserts_and_deletes();
  EXPECT_LE(node_cache::nodes_in_use(), kNodeCacheMinimum);
}

// A tree larger than the node cache keeps only the cache's nodes in memory,
// and the rest reach its file: closed and opened again, it holds every entry.
TEST_F(BTreeTest, ATreeLargerThanTheNodeCacheLivesInItsFile) {
  SmallNodeCache small(kNodeCacheMinimum);
  ASSERT_TRUE(small.set());
  std::string path = dir_.file("large.i01");
  std::mt19937 rng(7);
  std::set<Pair> model;
  {
    auto tree = BTree::open(path, kVListCreateIfMissing, compare_);
    ASSERT_TRUE(tree);
    for (int k = 0; k < 20000; ++k) {
      Pair p(static_cast<int32_t>(rng() % 1000000), k);
      ASSERT_EQ(tree->insert(p.first, p.second), BTree::Insert::kInserted) << k;
      model.insert(p);
      ASSERT_LE(node_cache::nodes_in_use(), kNodeCacheMinimum);
    }
    EXPECT_GT(tree->node_count(), 20000 / kNodeCapacity);
  }
  EXPECT_EQ(node_cache::nodes_in_use(), 0);  // a closed tree gives its nodes back
  auto tree = BTree::open(path, kVListCreateIfMissing, compare_);
  ASSERT_TRUE(tree);
  EXPECT_EQ(walk_forward(*tree), std::vector<Pair>(model.begin(), model.end()));
  int leaf_depth = -1;
  check_structure(*tree, kRootNode, nullptr, 0, leaf_depth);
}

// A changed node that must leave the node cache but cannot be written to its
// file fails the insert that needed the room, reported as a node write.
TEST_F(BTreeTest, ANodeThatCannotBeWrittenBackFailsAsANodeWrite) {
  SmallNodeCache small(kNodeCacheMinimum);
  ASSERT_TRUE(small.set());
  auto tree = BTree::open(dir_.file("limited.i01"), kVListCreateIfMissing, compare_);
  ASSERT_TRUE(tree);
  BTree::Insert result = BTree::Insert::kInserted;
  {
    // The block cache takes 90 nodes before it writes any; the file may
    // grow by 64 more.
    FileSizeLimit limit(uint64_t{64} * 1024);
    ASSERT_TRUE(limit.set());
    for (int k = 0; k < 100000 && result == BTree::Insert::kInserted; ++k) {
      result = tree->insert(k, k);
    }
  }
  EXPECT_EQ(result, BTree::Insert::kFailed);
  EXPECT_TRUE(log_.contains("btput failed: list ")) << log_.text();
  EXPECT_TRUE(log_.contains("VLPut failed - Name '")) << log_.text();
}

TEST_F(BTreeTest, DamagedNodesFailWithTheirReport) {
  std::string path = dir_.file("kept.i01");
  {
    auto tree = BTree::open(path, kVListCreateIfMissing, compare_);
    ASSERT_TRUE(tree);
    for (int k = 0; k < 300; ++k) ASSERT_EQ(tree->insert(k, k), BTree::Insert::kInserted);
  }
  // Point the root's second child past the end of the file.
  std::string file = dir_.read("kept.i01");
  ASSERT_GT(file.size(), 2u * kNodeSize + 512);
  size_t root = 512 + kNodeSize;
  ASSERT_EQ(file[root + 4], 1);  // an inner node
  file[root + 16 + 12 + 8] = 0x10;
  file[root + 16 + 12 + 9] = 0x27;
  dir_.write("kept.i01", file);
  auto tree = BTree::open(path, kVListCreateIfMissing, compare_);
  EXPECT_FALSE(tree);
  EXPECT_TRUE(log_.contains("btget failed: list ")) << log_.text();
  EXPECT_TRUE(log_.contains(" node_num 1\n")) << log_.text();

  // A leaf full of 'F' (a freed node still linked in) is refused when reached.
  file = dir_.read("kept.i01");
  file[root + 16 + 12 + 8] = 3;
  file[root + 16 + 12 + 9] = 0;
  std::fill(file.begin() + 512 + 3L * kNodeSize, file.begin() + 512 + 4L * kNodeSize, 'F');
  dir_.write("kept.i01", file);
  tree = BTree::open(path, kVListCreateIfMissing, compare_);
  ASSERT_TRUE(tree);
  log_.clear();
  EXPECT_EQ(tree->insert(60, 1000), BTree::Insert::kFailed);  // node 3 holds 42..83
  EXPECT_TRUE(log_.contains(" node_num 3\n")) << log_.text();
  EXPECT_FALSE(tree->remove(50, 50));
  bool found = false;
  EXPECT_FALSE(tree->search(50, 0, found));
  EXPECT_EQ(tree->insert(1000, 1), BTree::Insert::kInserted);  // elsewhere the tree works
  BTreeCursor c = tree->first();
  ASSERT_TRUE(c);
  BTreeEntry e;
  int seen = 0;
  while (c.next(e)) ++seen;
  EXPECT_LT(seen, 300);
}

// A file whose header claims far more nodes than it holds: new nodes get
// numbers that high, and keeping copies of them must cost only what is used.
TEST_F(BTreeTest, NodeNumbersFarBeyondTheFileCostOnlyWhatIsUsed) {
  std::string path = dir_.file("sparse.i01");
  { ASSERT_TRUE(BTree::open(path, kVListCreateIfMissing, compare_)); }
  std::string file = dir_.read("sparse.i01");
  ASSERT_GE(file.size(), 104u);
  const uint32_t claimed = 40'000'000;  // nodes of 1024 bytes: 40 GB if kept flat
  for (size_t i = 0; i < 4; ++i) file[48 + i] = static_cast<char>(claimed >> (8 * i));
  dir_.write("sparse.i01", file);
  auto tree = BTree::open(path, kVListCreateIfMissing, compare_);
  ASSERT_TRUE(tree);
  ASSERT_EQ(tree->node_count(), static_cast<long>(claimed));
  for (int k = 0; k < 200; ++k) ASSERT_EQ(tree->insert(k, k), BTree::Insert::kInserted) << k;
  EXPECT_GT(tree->node_count(), static_cast<long>(claimed));
  std::vector<Pair> expected;
  for (int k = 0; k < 200; ++k) expected.emplace_back(k, k);
  EXPECT_EQ(walk_forward(*tree), expected);
}

}  // namespace
}  // namespace px::engine
