// Opens arbitrary bytes as a VList file (the record size taken from its own
// header, and a second time with another size), then reads, writes beyond the
// end, flushes and closes it.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "fuzz/fuzz_file.h"
#include "jmd/engine/vlist.h"

namespace {

using px::engine::VList;

int32_t word_at(const uint8_t* data, size_t size, size_t offset) {
  if (offset + 4 > size) return 0;
  int32_t v;
  std::memcpy(&v, data + offset, 4);
  return v;
}

void exercise(const std::string& path, int record_size, uint8_t seed) {
  auto list = VList::open(path, record_size, px::engine::kVListCreateIfMissing, 4);
  if (!list) return;
  std::vector<std::byte> buffer(static_cast<size_t>(record_size), std::byte{seed});
  long count = list->record_count();
  for (long r = 0; r < 64 && r < count; ++r) list->get(r, buffer);
  if (count > 0) list->get(count - 1, buffer);
  list->get(count, buffer);  // one past the end: refused
  for (long r = 0; r < 8; ++r) list->put((r * 37 + seed) % 300, buffer);
  list->grow(count < 1000 ? count + 5 : count);
  list->flush();
  for (long r = 0; r < 300 && r < list->record_count(); r += 7) list->get(r, buffer);
  list->close();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static px::fuzz::ScratchFile file("input.vl");
  int32_t stored = word_at(data, size, 36);
  int record_size = stored > 0 && stored <= 4096 ? stored : 100;
  uint8_t seed = size > 0 ? data[size - 1] : 0;
  exercise(file.write(data, size), record_size, seed);
  exercise(file.write(data, size), 1 + seed * 7, seed);
  return 0;
}
