// Insert and delete: splits, the root that never moves, absorbing a node into
// its neighbours, and keeping separators and open cursors in step.
//
// Separator rule: the key of entry i of an inner node is never above any key
// in child i's subtree and above every key of child i - 1's subtree. Inserts
// below entry 0 lower entry 0; a node whose first entry changes hands the new
// first entry up to its parent, and a node whose entries move into its next
// neighbour hands that neighbour's new first entry up as well.
#include <algorithm>
#include <climits>

#include "jmd/engine/btree.h"

namespace px::engine {

struct BTree::Split {
  bool happened = false;
  BTreeEntry separator;  // first entry of the new right node, with it as child
};

struct BTree::Removal {
  bool freed = false;          // the node was emptied and freed
  bool first_changed = false;  // the node's first entry is now `first`
  BTreeEntry first;
  bool next_changed = false;   // the next node on the level now starts with next_first
  BTreeEntry next_first;
};

namespace {

void clear_from(BTreeNode& node, int from) {
  for (int i = from; i < kNodeCapacity; ++i) node.entry(i) = BTreeEntry{};
}

void take_key(BTreeEntry& to, const BTreeEntry& from) {
  to.key = from.key;
  to.row = from.row;
}

}  // namespace

// ---- insert ----

void BTree::insert_entry(int32_t n, BTreeNode& node, int pos, const BTreeEntry& entry) {
  std::copy_backward(node.entries.begin() + pos, node.entries.begin() + node.count,
                     node.entries.begin() + node.count + 1);
  node.entry(pos) = entry;
  ++node.count;
  move_cursors(n, pos, INT_MAX, n, 1);
}

BTree::Insert BTree::insert(int32_t key, int32_t row) {
  Split split;
  return insert_into(kRootNode, BTreeEntry{key, row, 0}, 0, false, split);
}

// An entry above every other one would be found at the end of each node on
// the rightmost path, and that is where it is put, after one comparison with
// the last entry of the last leaf.
BTree::Insert BTree::append(int32_t key, int32_t row, bool known_above) {
  BTreeEntry entry{key, row, 0};
  const BTreeNode* v = nullptr;
  int32_t n = kRootNode;
  for (int depth = 0;; ++depth) {
    if (depth > kMaxDepth || !(v = view(n, __LINE__))) return Insert::kFailed;
    if (v->kind == kNodeLeaf) break;
    if (v->count == 0) return insert(key, row);
    n = v->entry(v->count - 1).child;
  }
  if (v->count > 0 && !known_above) {
    int r = compare_->compare(entry, v->entry(v->count - 1));
    if (r == kCompareError) return Insert::kFailed;
    if (r <= 0) return insert(key, row);
  } else if (v->count == 0 && n != kRootNode) {
    return insert(key, row);
  }
  Split split;
  return insert_into(kRootNode, entry, 0, true, split);
}

BTree::Insert BTree::insert_into(int32_t n, const BTreeEntry& entry, int depth, bool at_end,
                                 Split& split) {
  const BTreeNode* v = depth > kMaxDepth ? nullptr : view(n, __LINE__);
  if (v == nullptr) return Insert::kFailed;
  if (v->kind == kNodeLeaf) {
    bool equal = false;
    int pos = at_end ? v->count : leaf_position(*v, entry, equal);
    if (pos < 0) return Insert::kFailed;
    if (equal) return Insert::kDuplicate;
    if (pos == v->count && v->next != 0) {
      const BTreeNode* next = view(v->next, __LINE__);
      if (next == nullptr) return Insert::kFailed;
      int r = next->count > 0 ? compare_->compare(entry, next->entries[0]) : -1;
      if (r == kCompareError) return Insert::kFailed;
      if (r == 0) return Insert::kDuplicate;
    }
    // A leaf with room takes the entry in its cached copy, the node view()
    // showed, which is then marked for writing.
    if (v->count < kNodeCapacity) {
      BTreeNode* node = kept(n);  // still cached: one node was brought in since
      if (node == nullptr) return Insert::kFailed;
      insert_entry(n, *node, pos, entry);
      mark_dirty(n);
      return Insert::kInserted;
    }
    BTreeNode node;
    if (!read(n, node, __LINE__)) return Insert::kFailed;
    return place(n, node, pos, entry, split) ? Insert::kInserted : Insert::kFailed;
  }
  if (v->count == 0) {
    report(false, __LINE__, n);
    return Insert::kFailed;
  }
  bool failed = false, below_first = false;
  int i = at_end ? v->count - 1 : child_index(*v, entry, failed, below_first);
  if (failed) return Insert::kFailed;
  Split child_split;
  Insert result = insert_into(v->entry(i).child, entry, depth + 1, at_end, child_split);
  if (result != Insert::kInserted || (!below_first && !child_split.happened)) return result;
  BTreeNode node;
  if (!read(n, node, __LINE__)) return Insert::kFailed;
  if (below_first) take_key(node.entry(0), entry);
  if (child_split.happened) {
    return place(n, node, i + 1, child_split.separator, split) ? result : Insert::kFailed;
  }
  return write(n, node, __LINE__) ? result : Insert::kFailed;
}

// Stores entry at pos of node n, splitting the node first when it is full.
// A split of any node but the root hands a separator to the caller; the root
// keeps its place: its content moves to a new node, which is split, and node 1
// becomes an inner node over the two halves.
bool BTree::place(int32_t n, BTreeNode& node, int pos, const BTreeEntry& entry, Split& split) {
  if (node.count < kNodeCapacity) {
    insert_entry(n, node, pos, entry);
    return write(n, node, __LINE__);
  }
  int32_t left = n;
  if (n == kRootNode) {
    left = allocate(__LINE__);
    if (left == 0) return false;
    node.next = node.prev = 0;
    move_cursors(kRootNode, 0, INT_MAX, left, 0);
  }
  int32_t right_node = allocate(__LINE__);
  if (right_node == 0) return false;
  BTreeNode right;
  right.kind = node.kind;
  std::copy(node.entries.begin() + kNodeHalf, node.entries.end(), right.entries.begin());
  right.count = kNodeHalf;
  node.count = kNodeHalf;
  clear_from(node, kNodeHalf);
  right.next = node.next;
  right.prev = left;
  if (node.next != 0) {
    BTreeNode after;
    if (!read(node.next, after, __LINE__)) return false;
    after.prev = right_node;
    if (!write(node.next, after, __LINE__)) return false;
  }
  node.next = right_node;
  move_cursors(left, kNodeHalf, INT_MAX, right_node, -kNodeHalf);
  if (pos <= kNodeHalf) {
    insert_entry(left, node, pos, entry);
  } else {
    insert_entry(right_node, right, pos - kNodeHalf, entry);
  }
  if (!write(left, node, __LINE__) || !write(right_node, right, __LINE__)) return false;
  BTreeEntry separator{right.entries[0].key, right.entries[0].row, right_node};
  if (n != kRootNode) {
    split.happened = true;
    split.separator = separator;
    return true;
  }
  BTreeNode root;
  root.kind = kNodeInner;
  root.count = 2;
  root.entries[0] = BTreeEntry{node.entry(0).key, node.entry(0).row, left};
  root.entries[1] = separator;
  return write(kRootNode, root, __LINE__);
}

// ---- delete ----

bool BTree::remove(int32_t key, int32_t row) {
  Removal removal;
  if (!remove_from(kRootNode, BTreeEntry{key, row, 0}, 0, removal)) return false;
  return collapse_root();
}

bool BTree::remove_from(int32_t n, const BTreeEntry& entry, int depth, Removal& result) {
  const BTreeNode* v = depth > kMaxDepth ? nullptr : view(n, __LINE__);
  if (v == nullptr) return false;
  BTreeNode node;
  if (v->kind == kNodeLeaf) {
    bool equal = false;
    int pos = leaf_position(*v, entry, equal);
    if (pos < 0 || !equal || v->entry(pos).row != entry.row) return false;
    return read(n, node, __LINE__) && remove_at(n, node, pos, result);
  }
  if (v->count == 0) return false;
  bool failed = false, below_first = false;
  int i = child_index(*v, entry, failed, below_first);
  if (failed) return false;
  Removal child;
  if (!remove_from(v->entry(i).child, entry, depth + 1, child)) return false;
  if (!read(n, node, __LINE__)) return false;
  bool changed = false;
  if (child.next_changed) {
    if (i + 1 < node.count) {
      take_key(node.entry(i + 1), child.next_first);
      changed = true;
    } else if (node.next != 0) {
      BTreeNode after;
      if (!read(node.next, after, __LINE__) || after.count == 0) return false;
      take_key(after.entries[0], child.next_first);
      if (!write(node.next, after, __LINE__)) return false;
      result.next_changed = true;
      result.next_first = child.next_first;
    }
  }
  if (child.freed) return remove_at(n, node, i, result);
  if (child.first_changed) {
    take_key(node.entry(i), child.first);
    changed = true;
    if (i == 0) {
      result.first_changed = true;
      result.first = node.entry(0);
    }
  }
  return !changed || write(n, node, __LINE__);
}

// Removes entry pos of node n. Outside the root, the node's remaining entries
// move into its neighbours when they have room for all of them, and an empty
// node is unlinked from its level and freed.
bool BTree::remove_at(int32_t n, BTreeNode& node, int pos, Removal& result) {
  std::copy(node.entries.begin() + pos + 1, node.entries.begin() + node.count,
            node.entries.begin() + pos);
  --node.count;
  clear_from(node, node.count);
  for (CursorState* c : cursors_) {
    if (c->node != n) continue;
    if (c->pos > pos) --c->pos;
    else if (c->pos == pos) c->on = false;
  }
  if (n == kRootNode) return write(n, node, __LINE__);

  int32_t left = node.prev, right = node.next;
  BTreeNode l, r;
  if (left != 0 && !read(left, l, __LINE__)) return false;
  if (right != 0 && !read(right, r, __LINE__)) return false;
  bool left_changed = false, right_changed = false;
  if (pos == node.count && right != 0) move_cursors(n, pos, pos, right, -pos);

  int room_left = left != 0 ? kNodeCapacity - l.count : 0;
  int room_right = right != 0 ? kNodeCapacity - r.count : 0;
  if (node.count > 0 && room_left + room_right >= node.count) {
    int k = std::min(room_left, static_cast<int>(node.count));
    if (k > 0) {
      std::copy(node.entries.begin(), node.entries.begin() + k, l.entries.begin() + l.count);
      move_cursors(n, 0, k - 1, left, l.count);
      l.count += k;
      left_changed = true;
    }
    int rest = node.count - k;
    if (rest > 0) {
      std::copy_backward(r.entries.begin(), r.entries.begin() + r.count,
                         r.entries.begin() + r.count + rest);
      move_cursors(right, 0, INT_MAX, right, rest);
      std::copy(node.entries.begin() + k, node.entries.begin() + node.count, r.entries.begin());
      move_cursors(n, k, INT_MAX, right, -k);
      r.count += rest;
      right_changed = true;
      result.next_changed = true;
      result.next_first = r.entries[0];
    }
    node.count = 0;
  }
  if (node.count == 0) {
    // Cursors still here go to the next entry on the level.
    int32_t target = right != 0 ? right : left != 0 ? left : kRootNode;
    int target_pos = right == 0 && left != 0 ? l.count : 0;
    for (CursorState* c : cursors_) {
      if (c->node != n) continue;
      c->node = target;
      c->pos = target_pos;
      c->on = false;
    }
    if (left != 0) {
      l.next = right;
      left_changed = true;
    }
    if (right != 0) {
      r.prev = left;
      right_changed = true;
    }
    if (!release(n, __LINE__)) return false;
    result.freed = true;
  } else {
    if (pos == 0) {
      result.first_changed = true;
      result.first = node.entry(0);
    }
    if (!write(n, node, __LINE__)) return false;
  }
  if (left_changed && !write(left, l, __LINE__)) return false;
  if (right_changed && !write(right, r, __LINE__)) return false;
  return true;
}

// An inner root left without entries becomes an empty leaf; one left with a
// single child takes that child's content, and the child is freed.
bool BTree::collapse_root() {
  BTreeNode root;
  if (!read(kRootNode, root, __LINE__)) return false;
  while (root.kind == kNodeInner && root.count <= 1) {
    if (root.count == 0) {
      root = BTreeNode{};
      return write(kRootNode, root, __LINE__);
    }
    int32_t child = root.entries[0].child;
    if (!read(child, root, __LINE__)) return false;
    root.next = root.prev = 0;
    move_cursors(child, 0, INT_MAX, kRootNode, 0);
    if (!write(kRootNode, root, __LINE__) || !release(child, __LINE__)) return false;
  }
  return true;
}

}  // namespace px::engine
