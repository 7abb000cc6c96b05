// The cache of B-tree nodes that every open tree shares (internal to the
// B-tree; btree.h documents its rules).
//
// It holds at most capacity() nodes of 1024 bytes, whatever the number and
// size of the trees: a node that is not cached is read from its tree's file
// (through the record store and its block cache), and when every slot is
// taken the least recently used node gives its slot up, written back to its
// file first when it was changed. Slots live in one array reserved once, so
// a node's copy never moves while it is cached; a pointer to it stays valid
// until capacity() - 1 other nodes have been brought in after it.
#pragma once

#include <cstdint>

#include "jmd/engine/btree.h"

namespace px::engine {

class NodeCache {
 public:
  // The cached copy of node n of tree, made the most recently used; nullptr
  // when it is not cached.
  static BTreeNode* find(const BTree& tree, int32_t n);
  // A slot for node n of tree, which is not cached: taken from the unused
  // ones or from the least recently used node, which is written back first
  // when dirty (a failed write-back is reported by its tree, with line, and
  // gives nullptr). The slot's content is left as it was; the caller fills it.
  static BTreeNode* claim(BTree& tree, int32_t n, int line);
  // Marks the cached node n of tree as changed (it must be cached).
  static void mark_dirty(const BTree& tree, int32_t n);
  // Forgets node n of tree without writing it.
  static void forget(const BTree& tree, int32_t n);
  // Writes every changed node of tree, lowest node first; false when one
  // could not be written (it stays changed, the others are still written).
  static bool write_back(BTree& tree, int line);
  // Gives back every slot of tree, writing its changed nodes first when
  // write_back_dirty. False when a write failed.
  static bool drop(BTree& tree, bool write_back_dirty, int line);
};

}  // namespace px::engine
