#include "jmd/engine/node_cache.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <new>
#include <utility>
#include <vector>

#include "jmd/engine/lru_list.h"

namespace px::engine {

namespace {

struct Slot {
  const BTree* owner = nullptr;  // nullptr: unused
  int32_t node = 0;
  bool dirty = false;
  int hash_next = -1;  // next in the bucket chain, or on the unused list
  int lru_prev = -1;   // towards the most recently used
  int lru_next = -1;   // towards the least recently used
};

struct CacheState {
  constexpr CacheState() { recent.fill(-1); }
  int capacity = kNodeCacheNodes;
  bool reserved = false;
  std::vector<Slot> slots;        // reserved once; grows up to capacity
  std::vector<BTreeNode> nodes;   // the copies, parallel to slots
  std::vector<int> buckets;       // a power of two, at least twice the capacity
  int unused_head = -1;
  LruList<Slot> lru;
  int in_use = 0;
  // The slots find() gave last, by the low bits of the node number: a tree's
  // work asks for the same few nodes (its root, the inner nodes and the leaf
  // of the moment) again and again. An entry is checked before it is used.
  std::array<int, 64> recent{};
  std::vector<std::pair<int32_t, int>> order;  // reused by write_back

  // Slot i: indexes are ints, so that -1 can end a list.
  Slot& slot(int i) { return slots[static_cast<size_t>(i)]; }
};

// The one node cache of the process, there before any code runs.
constinit CacheState g_cache;

size_t bucket_of(const BTree* owner, int32_t n) {
  auto mix = reinterpret_cast<uintptr_t>(owner) >> 4;
  uint64_t h = (static_cast<uint64_t>(static_cast<uint32_t>(n)) ^ (mix * 0x9E3779B97F4A7C15ull)) *
               0xD6E8FEB86659FD93ull;
  return static_cast<size_t>(h >> 32) & (g_cache.buckets.size() - 1);
}

// Reserves the slots and the buckets at the first use; false when memory
// for them cannot be had (no node can be had then: tree operations fail).
bool reserve() {
  CacheState& c = g_cache;
  if (c.reserved) return !c.buckets.empty();
  c.reserved = true;
  try {
    c.slots.reserve(static_cast<size_t>(c.capacity));
    c.nodes.reserve(static_cast<size_t>(c.capacity));
    size_t buckets = 1;
    while (buckets < 2 * static_cast<size_t>(c.capacity)) buckets *= 2;
    c.buckets.assign(buckets, -1);
  } catch (const std::bad_alloc&) {
    c.slots = {};
    c.nodes = {};
    c.buckets = {};
    c.capacity = 0;
    return false;
  }
  return true;
}

int find_slot(const BTree* owner, int32_t n) {
  CacheState& c = g_cache;
  if (c.buckets.empty()) return -1;
  for (int i = c.buckets[bucket_of(owner, n)]; i >= 0; i = c.slot(i).hash_next) {
    if (c.slot(i).owner == owner && c.slot(i).node == n) return i;
  }
  return -1;
}

void bucket_unlink(int i) {
  CacheState& c = g_cache;
  Slot& s = c.slot(i);
  int* link = &c.buckets[bucket_of(s.owner, s.node)];
  while (*link != i) link = &c.slot(*link).hash_next;
  *link = s.hash_next;
  s.hash_next = -1;
}

// Takes slot i out of use and puts it on the unused list.
void release(int i) {
  CacheState& c = g_cache;
  bucket_unlink(i);
  c.lru.unlink(c.slots, i);
  Slot& s = c.slot(i);
  s.owner = nullptr;
  s.dirty = false;
  s.hash_next = c.unused_head;
  c.unused_head = i;
  --c.in_use;
}

}  // namespace

BTreeNode* NodeCache::find(const BTree& tree, int32_t n) {
  CacheState& c = g_cache;
  int& memo = c.recent[static_cast<uint32_t>(n) % c.recent.size()];
  int i = memo;
  if (i < 0 || c.slot(i).owner != &tree || c.slot(i).node != n) {
    i = find_slot(&tree, n);
    if (i < 0) return nullptr;
    memo = i;
  }
  c.lru.touch(c.slots, i);
  return &c.nodes[static_cast<size_t>(i)];
}

BTreeNode* NodeCache::claim(BTree& tree, int32_t n, int line) {
  CacheState& c = g_cache;
  if (!reserve()) return nullptr;
  int i = c.unused_head;
  if (i >= 0) {
    c.unused_head = c.slot(i).hash_next;
  } else if (static_cast<int>(c.slots.size()) < c.capacity) {
    c.slots.emplace_back();
    c.nodes.emplace_back();
    i = static_cast<int>(c.slots.size()) - 1;
  } else {
    i = c.lru.least_recent();
    if (i < 0) return nullptr;
    Slot& victim = c.slot(i);
    // The owner is a tree that is open: a tree gives its slots back when it
    // closes.
    BTree& owner = const_cast<BTree&>(*victim.owner);
    if (victim.dirty && !owner.store(victim.node, c.nodes[static_cast<size_t>(i)], line)) {
      return nullptr;
    }
    release(i);
    c.unused_head = c.slot(i).hash_next;
  }
  Slot& s = c.slot(i);
  s.owner = &tree;
  s.node = n;
  s.dirty = false;
  size_t b = bucket_of(&tree, n);
  s.hash_next = c.buckets[b];
  c.buckets[b] = i;
  c.lru.push_front(c.slots, i);
  ++c.in_use;
  return &c.nodes[static_cast<size_t>(i)];
}

void NodeCache::mark_dirty(const BTree& tree, int32_t n) {
  int i = find_slot(&tree, n);
  if (i >= 0) g_cache.slot(i).dirty = true;
}

void NodeCache::forget(const BTree& tree, int32_t n) {
  int i = find_slot(&tree, n);
  if (i >= 0) release(i);
}

bool NodeCache::write_back(BTree& tree, int line) {
  CacheState& c = g_cache;
  auto& order = c.order;
  order.clear();
  for (int i = 0; i < static_cast<int>(c.slots.size()); ++i) {
    if (c.slot(i).owner == &tree && c.slot(i).dirty) order.emplace_back(c.slot(i).node, i);
  }
  std::sort(order.begin(), order.end());
  bool ok = true;
  for (auto [node, i] : order) {
    if (tree.store(node, c.nodes[static_cast<size_t>(i)], line)) {
      c.slot(i).dirty = false;
    } else {
      ok = false;
    }
  }
  return ok;
}

bool NodeCache::drop(BTree& tree, bool write_back_dirty, int line) {
  CacheState& c = g_cache;
  bool ok = !write_back_dirty || write_back(tree, line);
  for (int i = 0; i < static_cast<int>(c.slots.size()); ++i) {
    if (c.slot(i).owner == &tree) release(i);
  }
  return ok;
}

namespace node_cache {

int capacity() { return g_cache.capacity; }

int nodes_in_use() { return g_cache.in_use; }

bool set_capacity(int nodes) {
  CacheState& c = g_cache;
  if (c.in_use > 0 || nodes < kNodeCacheMinimum) return false;
  c = CacheState{};
  c.capacity = nodes;
  return true;
}

}  // namespace node_cache

}  // namespace px::engine
