// B+-tree index of (key, row number) entries kept in a VList of 1024-byte
// node records. The tree does not know what keys mean: every comparison goes
// through the comparator given at open.
//
// File: a VList (vlist.h) with record size 1024 and cache parameter 5.
//   node 0   the tree header; offset 8 holds the head of the free-node list
//            (0: empty), the rest is zero
//   node 1   the root, always; when it splits its entries move to a new node
//            and node 1 becomes an inner node with two entries
//   node 2.. allocated at the end of the file, or taken from the free list
//
// Node (1024 bytes, little-endian 32-bit words):
//
//   offset  size  field
//        0     4  number of entries in use (0..84)
//        4     4  kind: 0 leaf, 1 inner node
//        8     4  next node on the same level (0: none)
//       12     4  previous node on the same level (0: none)
//       16  1008  84 entries of 12 bytes: key, row number, child node
//                 (child is 0 in a leaf); unused entries are zero
//
// A freed node is filled with the byte 'F' (70) and keeps the old free-list
// head at offset 8. Every node number read from the file is checked against
// the number of nodes before it is followed; a bad one fails the operation.
//
// Node cache: the trees do their work on copies of their nodes held in one
// cache that all open trees share, of at most kNodeCacheNodes nodes (4 MiB of
// node data and about 40 bytes of bookkeeping a node), whatever the number and
// size of the trees. A node not in it is read from the tree's file through
// the record store (and its block cache); when the cache is full, the least
// recently used node gives its place up, written to its file first when it
// was changed. Changed nodes also reach the file on flush and on close (a
// file that close deletes is spared them).
//
// Node reads and writes that fail report "btget failed: list %p line_num %d
// node_num %ld" / "btput failed: ..." as message -400, with the source line
// of the calling statement. A node write fails when a changed node cannot be
// written back to make room, or on flush.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "jmd/engine/vlist.h"

namespace px::engine {

inline constexpr int kNodeSize = 1024;
inline constexpr int kNodeCapacity = 84;
inline constexpr int kNodeHalf = 42;
inline constexpr int kNodeLeaf = 0;
inline constexpr int kNodeInner = 1;
inline constexpr int kRootNode = 1;
inline constexpr int kBTreeCacheParameter = 5;
inline constexpr int kMaxDepth = 64;  // a deeper path means a damaged file
inline constexpr int kNodeCacheNodes = 4096;  // nodes the shared node cache holds
inline constexpr int kNodeCacheMinimum = 8;   // the fewest it can be set to

struct BTreeEntry {
  int32_t key = 0;
  int32_t row = 0;
  int32_t child = 0;
};

struct BTreeNode {
  int32_t count = 0;
  int32_t kind = kNodeLeaf;
  int32_t next = 0;
  int32_t prev = 0;
  std::array<BTreeEntry, kNodeCapacity> entries{};

  // Entry i (0 to kNodeCapacity - 1).
  BTreeEntry& entry(int i) { return entries[static_cast<size_t>(i)]; }
  const BTreeEntry& entry(int i) const { return entries[static_cast<size_t>(i)]; }
};

// Comparison results: negative, zero, positive, or kCompareError when a value
// could not be had (the operation then fails).
inline constexpr int kCompareError = 2;

class BTreeComparator {
 public:
  virtual ~BTreeComparator() = default;
  // Compares a against b (key and row; row 0 stands for a caller's value):
  // -1, 0, 1, or kCompareError.
  virtual int compare(const BTreeEntry& a, const BTreeEntry& b) = 0;
};

static_assert(sizeof(BTreeNode) == kNodeSize, "a node is stored as it lies in memory");

class BTree;

// What a cursor is: a leaf, an entry index in it, and whether the cursor is on
// that entry (after next/previous) or just before it (after a search, or when
// its entry was removed).
struct CursorState {
  BTree* tree = nullptr;
  int32_t node = 0;
  int pos = 0;
  bool on = false;
};

// A position in a leaf of one tree. Move-only; released when destroyed. The
// tree corrects every open cursor when a split or a delete moves its entry;
// a cursor whose tree was closed reports the end.
class BTreeCursor {
 public:
  BTreeCursor() = default;
  ~BTreeCursor();
  BTreeCursor(BTreeCursor&& other) noexcept;
  BTreeCursor& operator=(BTreeCursor&& other) noexcept;
  BTreeCursor(const BTreeCursor&) = delete;
  BTreeCursor& operator=(const BTreeCursor&) = delete;

  explicit operator bool() const { return state_ != nullptr; }

  // Moves to the following entry and returns it; false at the end (or when a
  // node cannot be read). A fresh cursor's first next() gives the entry it
  // was placed before.
  bool next(BTreeEntry& out);
  // Moves to the preceding entry and returns it; false at the start.
  bool previous(BTreeEntry& out);
  // The entry at the cursor's position; false when there is none.
  bool current(BTreeEntry& out);
  // A second cursor at the same position.
  BTreeCursor duplicate() const;
  // Gives the cursor back to its tree.
  void release();

  // Position, for tests: the leaf and the entry index.
  int32_t node() const;
  int position() const;

 private:
  friend class BTree;
  explicit BTreeCursor(std::unique_ptr<CursorState> state);
  std::unique_ptr<CursorState> state_;
};

class BTree {
 public:
  // Opens the index file with the caller's mode (kVListCreate and friends);
  // an empty file is initialised with the header and an empty root leaf.
  // nullptr on failure.
  static std::unique_ptr<BTree> open(std::string_view name, int mode, BTreeComparator& compare);
  ~BTree();
  BTree(const BTree&) = delete;
  BTree& operator=(const BTree&) = delete;

  // Detaches every open cursor, writes the changed nodes (unless the file is
  // deleted on close) and closes the file.
  bool close();
  // Writes the changed nodes and flushes the file.
  bool flush();

  enum class Insert { kInserted, kDuplicate, kFailed };
  // Inserts (key, row); kDuplicate, with nothing changed, when an equal entry
  // (comparison 0) is present.
  Insert insert(int32_t key, int32_t row);
  // The same as insert(), and quicker for an entry that orders after every
  // entry in the tree (as when entries come in sorted): it is then placed
  // at the end of the rightmost path after a single comparison. The tree
  // that results is the one insert() would have made. known_above: the
  // caller has made sure that the entry orders after every entry, and not
  // even that comparison is made (a wrong claim breaks the tree's order).
  Insert append(int32_t key, int32_t row, bool known_above = false);
  // Removes the entry equal to (key, row); false when it is missing or a node
  // cannot be read or written.
  bool remove(int32_t key, int32_t row);

  // A cursor before the first entry not below (key, row); found tells whether
  // that entry compares equal. An empty cursor only when a node cannot be
  // read or a comparison fails.
  BTreeCursor search(int32_t key, int32_t row, bool& found);
  // A cursor before the first entry of the leftmost leaf.
  BTreeCursor first();

  // Nodes in the file, header included.
  long node_count() const;
  // Head of the free-node list (0: empty).
  int32_t free_head();
  // Reads node n, for tests and diagnosis; reports as btget on failure.
  bool read_node(long n, BTreeNode& out, int line);
  const VList& file() const { return *file_; }

 private:
  friend class BTreeCursor;
  friend class NodeCache;
  BTree() = default;

  // Node input and output; line is the caller's source line for the report.
  bool read(long n, BTreeNode& out, int line);
  // The node's cached copy itself, without copying. The pointer stays valid
  // until kNodeCacheMinimum - 1 other nodes have been brought into the node
  // cache (what it shows changes with later writes).
  const BTreeNode* view(long n, int line);
  // The cached copy of node n, or nullptr when it is not cached; for
  // changing a node in place (then mark_dirty()).
  BTreeNode* kept(long n);
  void mark_dirty(long n);
  void forget_node(long n);
  bool write_dirty_nodes();
  bool write(long n, const BTreeNode& node, int line);
  void report(bool write, int line, long n) const;
  bool valid_node(long n) const { return n > 0 && n < node_count(); }
  // Whether node n, as read from the file, holds together.
  bool sound(long n, const BTreeNode& node) const;
  // The header's free-list head, and storing a new one.
  bool read_free_head(int32_t& head, int line);
  bool write_free_head(int32_t head, int line);
  // A new zeroed node (from the free list or the end of the file); 0 on failure.
  int32_t allocate(int line);
  bool release(int32_t n, int line);

  // Position of key in a node by the 128-slot binary search: the index and
  // the last comparison (kCompareError on failure).
  struct Probe {
    int index = 0;
    int result = 1;
  };
  Probe probe(const BTreeNode& node, const BTreeEntry& key);
  int leaf_position(const BTreeNode& node, const BTreeEntry& key, bool& equal);
  int child_index(const BTreeNode& node, const BTreeEntry& key, bool& failed, bool& below_first);

  struct Split;
  struct Removal;
  // at_end: the entry goes to the end of every node on its path.
  Insert insert_into(int32_t n, const BTreeEntry& entry, int depth, bool at_end, Split& split);
  bool place(int32_t n, BTreeNode& node, int pos, const BTreeEntry& entry, Split& split);
  bool remove_from(int32_t n, const BTreeEntry& entry, int depth, Removal& result);
  bool remove_at(int32_t n, BTreeNode& node, int pos, Removal& result);
  bool collapse_root();

  // Cursor bookkeeping when entries move.
  std::unique_ptr<CursorState> new_cursor(int32_t node, int pos);
  void forget(CursorState* cursor);
  void move_cursors(int32_t from, int first, int last, int32_t to, int shift);
  void insert_entry(int32_t n, BTreeNode& node, int pos, const BTreeEntry& entry);

  // Writes node n to the file (for the node cache, whose slot it leaves);
  // reports btput with line on failure.
  bool store(int32_t n, const BTreeNode& node, int line);

  std::unique_ptr<VList> file_;
  BTreeComparator* compare_ = nullptr;
  std::vector<CursorState*> cursors_;  // every open cursor of this tree
};

// The shared node cache. Exposed for tests and for diagnosis.
namespace node_cache {
// The most nodes it holds.
int capacity();
// Nodes held now, by all trees.
int nodes_in_use();
// Sets the capacity (at least kNodeCacheMinimum) while no node is held, as
// tests do to make a small tree overflow it; false otherwise.
bool set_capacity(int nodes);
}  // namespace node_cache

}  // namespace px::engine
