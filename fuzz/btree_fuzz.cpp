// Opens arbitrary bytes as a B-tree index file, then walks it both ways,
// searches, inserts (in any order and in order), deletes and walks again. A
// damaged node must end the operation with its report, never a crash or an
// endless walk; every report must be one of the node and record failures.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/fuzz_file.h"
#include "jmd/engine/btree.h"
#include "jmd/engine/report.h"

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
// Keys steered by the input, each the first of a run of entries long enough
// to split a leaf (more than 84); every other run comes in order, as an index
// build's does. Most inputs make a few runs; one whose last byte has its low
// four bits set makes enough of them to fill the block cache with changed
// blocks, so that their write-back when the cache is full is tried too.
constexpr int kFewKeys = 4;
constexpr int kManyKeys = 16;
constexpr int kRunLength = 90;

// The engine's reports, checked instead of formatted for the log: a damaged
// file may only ever cause the failures of a node or record read or write.
class ReportCheck : public px::engine::ReportSink {
 public:
  void message(int, const std::vector<std::string>&) override { std::abort(); }
  void text(std::string_view text) override {
    for (std::string_view known : {"btget failed: ", "btput failed: ", "VLGet failed - ",
                                   "VLPut failed - ", "Vlist.c: "}) {
      if (text.starts_with(known)) return;
    }
    std::abort();
  }
};

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
  ReportCheck reports;
  px::engine::ReportRoute route(reports);
  IntCompare compare;
  auto tree = BTree::open(file.write(data, size), px::engine::kVListCreateIfMissing, compare);
  if (!tree) return 0;
  walk(*tree);
  // Keys and rows from the input's tail, so the fuzzer steers them; a run
  // wraps around past the largest key.
  auto key = [](int32_t first, int k) {
    return static_cast<int32_t>(static_cast<uint32_t>(first) + static_cast<uint32_t>(k));
  };
  int32_t keys[kManyKeys] = {};
  std::memcpy(keys, data + (size > sizeof keys ? size - sizeof keys : 0),
              size < sizeof keys ? size : sizeof keys);
  const int runs = size > 0 && (data[size - 1] & 0x0F) == 0x0F ? kManyKeys : kFewKeys;
  for (int i = 0; i < runs; ++i) {
    bool found = false;
    BTreeCursor c = tree->search(keys[i], 0, found);
    BTreeEntry e;
    if (c) c.next(e);
    tree->insert(keys[i], i + 1);
    for (int k = 0; k < kRunLength; ++k) {
      if (i % 2) {
        tree->append(key(keys[i], k), i + 1);
      } else {
        tree->insert(key(keys[i], k), i + 1);
      }
    }
  }
  walk(*tree);
  for (int i = 0; i < runs; ++i) {
    tree->remove(keys[i], i + 1);
    for (int k = 0; k < kRunLength; k += 3) tree->remove(key(keys[i], k), i + 1);
  }
  walk(*tree);
  tree->flush();
  tree->close();
  return 0;
}
