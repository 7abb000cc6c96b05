// Opening and closing a tree, node input and output, the free-node list, the
// search within a node, and cursors. Insert and delete are in
// btree_update.cpp.
#include "jmd/engine/btree.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstring>
#include <new>
#include <span>

#include "jmd/engine/node_cache.h"
#include "jmd/engine/report.h"

namespace px::engine {

static_assert(std::endian::native == std::endian::little,
              "nodes are read and written as they lie in memory");

namespace {

constexpr int kFreeHeadOffset = 8;
constexpr std::byte kFreeFill{70};  // 'F'

std::span<std::byte> bytes_of(BTreeNode& node) {
  return std::as_writable_bytes(std::span<BTreeNode, 1>(&node, 1));
}

// Notices a walk along leaf links that comes back to a node it has passed
// (a damaged file's links can make a ring of empty leaves): a node is kept
// as a mark and replaced by the node reached after twice as many steps each
// time, so a ring is found within a few turns of it, whatever the number of
// nodes the file claims.
class LinkWalk {
 public:
  explicit LinkWalk(int32_t start) : mark_(start) {}
  // Whether stepping to node n closes a ring.
  bool looped(int32_t n) {
    if (n == mark_) return true;
    if (++steps_ == span_) {
      mark_ = n;
      span_ *= 2;
      steps_ = 0;
    }
    return false;
  }

 private:
  int32_t mark_;
  long span_ = 1;
  long steps_ = 0;
};

}  // namespace

// ---- open and close ----

std::unique_ptr<BTree> BTree::open(std::string_view name, int mode, BTreeComparator& compare) {
  std::unique_ptr<BTree> tree(new (std::nothrow) BTree);
  if (!tree) return nullptr;
  tree->compare_ = &compare;
  tree->file_ = VList::open(name, kNodeSize, mode, kBTreeCacheParameter);
  if (!tree->file_) return nullptr;
  VList& file = *tree->file_;
  if (file.record_count() == 0) {
    BTreeNode empty;
    if (!file.grow(2) || !tree->write(kRootNode, empty, __LINE__) ||
        !file.put(0, bytes_of(empty))) {
      return nullptr;
    }
    return tree;
  }
  int32_t head = 0;
  BTreeNode root;
  if (file.record_count() < 2 || !tree->read_free_head(head, __LINE__) ||
      !tree->read(kRootNode, root, __LINE__)) {
    return nullptr;
  }
  return tree;
}

BTree::~BTree() { close(); }

bool BTree::close() {
  for (CursorState* c : cursors_) c->tree = nullptr;
  cursors_.clear();
  if (file_) {
    NodeCache::drop(*this, !(file_->mode() & kVListCreate), __LINE__);
    file_->close();
    file_.reset();
  }
  return true;
}

bool BTree::flush() {
  if (!file_) return false;
  bool ok = write_dirty_nodes();
  return file_->flush() && ok;
}

bool BTree::write_dirty_nodes() { return NodeCache::write_back(*this, __LINE__); }

long BTree::node_count() const { return file_ ? file_->record_count() : 0; }

// ---- nodes ----

void BTree::report(bool write, int line, long n) const {
  char text[128];
  std::snprintf(text, sizeof text,
                write ? "btput failed: list %p line_num %d node_num %ld"
                      : "btget failed: list %p line_num %d node_num %ld",
                static_cast<const void*>(this), line, n);
  report_text(text);
}

BTreeNode* BTree::kept(long n) { return NodeCache::find(*this, static_cast<int32_t>(n)); }

void BTree::mark_dirty(long n) { NodeCache::mark_dirty(*this, static_cast<int32_t>(n)); }

void BTree::forget_node(long n) { NodeCache::forget(*this, static_cast<int32_t>(n)); }

bool BTree::store(int32_t n, const BTreeNode& node, int line) {
  if (!valid_node(n) || !file_->put(n, std::as_bytes(std::span<const BTreeNode, 1>(&node, 1)))) {
    report(true, line, n);
    return false;
  }
  return true;
}

// A node that does not hold together (a damaged or freed one) is not used.
bool BTree::sound(long n, const BTreeNode& node) const {
  bool ok = node.count >= 0 && node.count <= kNodeCapacity &&
            (node.kind == kNodeLeaf || node.kind == kNodeInner) &&
            (node.next == 0 || valid_node(node.next)) && (node.prev == 0 || valid_node(node.prev));
  for (int i = 0; ok && node.kind == kNodeInner && i < node.count; ++i) {
    int32_t child = node.entry(i).child;
    ok = valid_node(child) && child != kRootNode && child != n;
  }
  return ok;
}

const BTreeNode* BTree::view(long n, int line) {
  if (!valid_node(n)) {
    report(false, line, n);
    return nullptr;
  }
  int32_t node = static_cast<int32_t>(n);
  if (const BTreeNode* cached = NodeCache::find(*this, node)) return cached;
  BTreeNode* slot = NodeCache::claim(*this, node, line);
  if (slot == nullptr) return nullptr;  // a write-back failed and was reported
  if (!file_->get(n, bytes_of(*slot)) || !sound(n, *slot)) {
    NodeCache::forget(*this, node);
    report(false, line, n);
    return nullptr;
  }
  return slot;
}

bool BTree::read(long n, BTreeNode& out, int line) {
  const BTreeNode* node = view(n, line);
  if (node == nullptr) return false;
  out = *node;
  return true;
}

bool BTree::read_node(long n, BTreeNode& out, int line) { return read(n, out, line); }

bool BTree::write(long n, const BTreeNode& node, int line) {
  if (!valid_node(n)) {
    report(true, line, n);
    return false;
  }
  int32_t number = static_cast<int32_t>(n);
  BTreeNode* slot = NodeCache::find(*this, number);
  if (slot == nullptr && (slot = NodeCache::claim(*this, number, line)) == nullptr) return false;
  *slot = node;
  NodeCache::mark_dirty(*this, number);
  return true;
}

bool BTree::read_free_head(int32_t& head, int line) {
  BTreeNode header;
  if (!file_->get(0, bytes_of(header))) {
    report(false, line, 0);
    return false;
  }
  std::memcpy(&head, bytes_of(header).data() + kFreeHeadOffset, 4);
  if (head != 0 && (!valid_node(head) || head == kRootNode)) {
    report(false, line, 0);
    return false;
  }
  return true;
}

bool BTree::write_free_head(int32_t head, int line) {
  BTreeNode header;
  if (!file_->get(0, bytes_of(header))) {
    report(false, line, 0);
    return false;
  }
  std::memcpy(bytes_of(header).data() + kFreeHeadOffset, &head, 4);
  if (!file_->put(0, bytes_of(header))) {
    report(true, line, 0);
    return false;
  }
  return true;
}

int32_t BTree::free_head() {
  int32_t head = 0;
  return read_free_head(head, __LINE__) ? head : 0;
}

int32_t BTree::allocate(int line) {
  int32_t head = 0;
  if (!read_free_head(head, line)) return 0;
  BTreeNode fresh;
  int32_t n = 0;
  if (head != 0) {
    BTreeNode freed;
    if (!file_->get(head, bytes_of(freed))) {
      report(false, line, head);
      return 0;
    }
    int32_t next_free = 0;
    std::memcpy(&next_free, bytes_of(freed).data() + kFreeHeadOffset, 4);
    if (next_free != 0 && (!valid_node(next_free) || next_free == kRootNode || next_free == head)) {
      report(false, line, head);
      return 0;
    }
    if (!write_free_head(next_free, line)) return 0;
    n = head;
  } else {
    n = static_cast<int32_t>(file_->record_count());
    if (!file_->grow(n + 1L)) {
      report(true, line, n);
      return 0;
    }
  }
  return write(n, fresh, line) ? n : 0;
}

bool BTree::release(int32_t n, int line) {
  int32_t head = 0;
  if (!read_free_head(head, line)) return false;
  BTreeNode freed;
  std::span<std::byte> raw = bytes_of(freed);
  std::fill(raw.begin(), raw.end(), kFreeFill);
  std::memcpy(raw.data() + kFreeHeadOffset, &head, 4);
  forget_node(n);
  if (!valid_node(n) || !file_->put(n, raw)) {
    report(true, line, n);
    return false;
  }
  return write_free_head(n, line);
}

// ---- searching ----

// Binary search over 128 virtual slots: start at 63 with step 64; while the
// step is at least 1, halve it and compare; an index past the last entry
// counts as greater than the key.
BTree::Probe BTree::probe(const BTreeNode& node, const BTreeEntry& key) {
  Probe p{63, 1};
  int step = 64;
  while (step >= 1) {
    step /= 2;
    if (p.index >= node.count) {
      p.result = 1;
    } else {
      int r = compare_->compare(key, node.entry(p.index));
      if (r == kCompareError) {
        p.result = kCompareError;
        return p;
      }
      p.result = r < 0 ? 1 : r > 0 ? -1 : 0;  // the entry against the key
    }
    if (p.result == 0) return p;
    p.index += p.result < 0 ? step : -step;
  }
  return p;
}

// The first entry of a leaf not below key; -1 when a comparison failed.
int BTree::leaf_position(const BTreeNode& node, const BTreeEntry& key, bool& equal) {
  Probe p = probe(node, key);
  equal = p.result == 0;
  if (p.result == kCompareError) return -1;
  return p.result < 0 ? p.index + 1 : p.index;
}

// The entry of an inner node whose child's range holds key.
// below_first tells that key is below entry 0 (it still goes to child 0).
int BTree::child_index(const BTreeNode& node, const BTreeEntry& key, bool& failed,
                       bool& below_first) {
  Probe p = probe(node, key);
  failed = p.result == kCompareError;
  below_first = p.result > 0 && p.index == 0;
  return p.result > 0 && p.index > 0 ? p.index - 1 : p.index;
}

BTreeCursor BTree::search(int32_t key, int32_t row, bool& found) {
  found = false;
  BTreeEntry wanted{key, row, 0};
  const BTreeNode* node = nullptr;
  int32_t n = kRootNode;
  for (int depth = 0;; ++depth) {
    if (depth > kMaxDepth || !(node = view(n, __LINE__))) return {};
    if (node->kind == kNodeLeaf) break;
    if (node->count == 0) return {};
    bool failed = false, below_first = false;
    int i = child_index(*node, wanted, failed, below_first);
    if (failed) return {};
    n = node->entry(i).child;
  }
  int pos = leaf_position(*node, wanted, found);
  if (pos < 0) return {};
  if (pos >= node->count && node->next != 0) {
    // The key lies past this leaf: go on at the next leaf's first entry.
    n = node->next;
    if (!(node = view(n, __LINE__))) return {};
    pos = 0;
    if (node->count > 0) {
      int r = compare_->compare(wanted, node->entry(0));
      if (r == kCompareError) return {};
      found = r == 0;
    }
  }
  return BTreeCursor(new_cursor(n, pos));
}

BTreeCursor BTree::first() {
  const BTreeNode* node = nullptr;
  int32_t n = kRootNode;
  for (int depth = 0;; ++depth) {
    if (depth > kMaxDepth || !(node = view(n, __LINE__))) return {};
    if (node->kind == kNodeLeaf) break;
    if (node->count == 0) {
      report(false, __LINE__, n);
      return {};
    }
    n = node->entry(0).child;
  }
  return BTreeCursor(new_cursor(n, 0));
}

// ---- cursors ----

std::unique_ptr<CursorState> BTree::new_cursor(int32_t node, int pos) {
  auto c = std::make_unique<CursorState>(CursorState{this, node, pos, false});
  cursors_.push_back(c.get());
  return c;
}

void BTree::forget(CursorState* cursor) {
  auto it = std::find(cursors_.begin(), cursors_.end(), cursor);
  if (it != cursors_.end()) {
    *it = cursors_.back();
    cursors_.pop_back();
  }
}

// Cursors on node from at entries first..last move to node to, shifted.
void BTree::move_cursors(int32_t from, int first, int last, int32_t to, int shift) {
  for (CursorState* c : cursors_) {
    if (c->node == from && c->pos >= first && c->pos <= last) {
      c->node = to;
      c->pos += shift;
    }
  }
}

BTreeCursor::BTreeCursor(std::unique_ptr<CursorState> state) : state_(std::move(state)) {}

BTreeCursor::~BTreeCursor() { release(); }

BTreeCursor::BTreeCursor(BTreeCursor&& other) noexcept : state_(std::move(other.state_)) {}

BTreeCursor& BTreeCursor::operator=(BTreeCursor&& other) noexcept {
  if (this != &other) {
    release();
    state_ = std::move(other.state_);
  }
  return *this;
}

void BTreeCursor::release() {
  if (state_ && state_->tree) state_->tree->forget(state_.get());
  state_.reset();
}

int32_t BTreeCursor::node() const { return state_ ? state_->node : 0; }

int BTreeCursor::position() const { return state_ ? state_->pos : 0; }

BTreeCursor BTreeCursor::duplicate() const {
  if (!state_ || !state_->tree) return {};
  std::unique_ptr<CursorState> copy = state_->tree->new_cursor(state_->node, state_->pos);
  copy->on = state_->on;
  return BTreeCursor(std::move(copy));
}

bool BTreeCursor::next(BTreeEntry& out) {
  if (!state_ || !state_->tree) return false;
  BTree& tree = *state_->tree;
  const BTreeNode* node = tree.view(state_->node, __LINE__);
  if (node == nullptr) return false;
  int pos = state_->on ? state_->pos + 1 : state_->pos;
  // Walk on through the leaf links; a damaged file cannot make this loop.
  LinkWalk guard(state_->node);
  for (long steps = 0; pos >= node->count; ++steps) {
    if (node->next == 0 || steps > tree.node_count() || guard.looped(node->next)) {
      state_->pos = node->count;
      state_->on = false;
      return false;
    }
    int32_t next = node->next;
    if (!(node = tree.view(next, __LINE__))) return false;
    state_->node = next;
    pos = 0;
  }
  state_->pos = pos;
  state_->on = true;
  out = node->entry(pos);
  return true;
}

bool BTreeCursor::previous(BTreeEntry& out) {
  if (!state_ || !state_->tree) return false;
  BTree& tree = *state_->tree;
  const BTreeNode* node = tree.view(state_->node, __LINE__);
  if (node == nullptr) return false;
  int pos = std::min(state_->pos, static_cast<int>(node->count)) - 1;
  LinkWalk guard(state_->node);
  for (long steps = 0; pos < 0; ++steps) {
    if (node->prev == 0 || steps > tree.node_count() || guard.looped(node->prev)) {
      state_->pos = 0;
      state_->on = false;
      return false;
    }
    int32_t prev = node->prev;
    if (!(node = tree.view(prev, __LINE__))) return false;
    state_->node = prev;
    pos = node->count - 1;
  }
  state_->pos = pos;
  state_->on = true;
  out = node->entry(pos);
  return true;
}

bool BTreeCursor::current(BTreeEntry& out) {
  if (!state_ || !state_->tree) return false;
  const BTreeNode* node = state_->tree->view(state_->node, __LINE__);
  if (node == nullptr || state_->pos < 0 || state_->pos >= node->count) return false;
  out = node->entry(state_->pos);
  return true;
}

}  // namespace px::engine
