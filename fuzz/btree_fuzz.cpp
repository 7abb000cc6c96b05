// Opens arbitrary bytes as a B-tree index file, then walks it both ways,
// searches, inserts (in any order and in order), deletes and walks again. A
// damaged node must end the operation with its report, never a crash or an
// endless walk.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fuzz/fuzz_file.h"
#include "jmd/engine/btree.h"

namespace {

using px::engine::BTree;
using px::engine::BTreeCursor;
using px::engine::BTreeEntry;

class IntCompare : public px::engine::BTreeComparator {
 public:
  int compare(const BTreeEntry& a, const BTreeEntry& b) override {
    if (a.key != b.key) return a.key < b.key ? -1 : 1;
    if (a.row == b.row) return 0;
    return a.row < b.row ? -1 : 1;
  }
};

constexpr int kMaxSteps = 5000;

void walk(BTree& tree) {
  BTreeCursor c = tree.first();
  BTreeEntry e;
  int steps = 0;
  while (steps < kMaxSteps && c.next(e)) ++steps;
  while (steps < 2 * kMaxSteps && c.previous(e)) ++steps;
  c.current(e);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static px::fuzz::ScratchFile file("input.i01");
  IntCompare compare;
  auto tree = BTree::open(file.write(data, size), px::engine::kVListCreateIfMissing, compare);
  if (!tree) return 0;
  walk(*tree);
  // Keys and rows from the input's tail, so the fuzzer steers them.
  int32_t keys[16] = {};
  std::memcpy(keys, data + (size > sizeof keys ? size - sizeof keys : 0),
              size < sizeof keys ? size : sizeof keys);
  for (int i = 0; i < 16; ++i) {
    bool found = false;
    BTreeCursor c = tree->search(keys[i], 0, found);
    BTreeEntry e;
    if (c) c.next(e);
    tree->insert(keys[i], i + 1);
    // Enough to split; every other run comes in order, as an index build's does.
    for (int k = 0; k < 90; ++k) {
      if (i % 2) {
        tree->append(keys[i] + k, i + 1);
      } else {
        tree->insert(keys[i] + k, i + 1);
      }
    }
  }
  walk(*tree);
  for (int i = 0; i < 16; ++i) {
    tree->remove(keys[i], i + 1);
    for (int k = 0; k < 90; k += 3) tree->remove(keys[i] + k, i + 1);
  }
  walk(*tree);
  tree->flush();
  tree->close();
  return 0;
}
