#include "jmd/engine/vlist.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "jmd/engine/engine_test_log.h"
#include "tests/support/test_dir.h"

namespace px::engine {
namespace {

std::vector<std::byte> record_of(int size, int seed) {
  std::vector<std::byte> r(static_cast<size_t>(size));
  for (size_t i = 0; i < r.size(); ++i) r[i] = static_cast<std::byte>((seed * 31 + static_cast<int>(i) * 7) & 0xff);
  return r;
}

uint32_t word_at(const std::string& file, size_t offset) {
  uint32_t v = 0;
  for (size_t i = 0; i < 4; ++i) v |= static_cast<uint32_t>(static_cast<uint8_t>(file[offset + i])) << (8 * i);
  return v;
}

bool file_exists(const std::string& path) {
  struct stat st {};
  return stat(path.c_str(), &st) == 0;
}

TEST(VListGeometry, RecordsPerBlockAndBlocksPerRecord) {
  TestDir dir;
  struct Case { int size, per_block, per_record; } cases[] = {
      {328, 1, 1}, {100, 5, 1}, {1405, 1, 3}, {512, 1, 1}, {513, 1, 2}, {1024, 1, 2}};
  for (const Case& c : cases) {
    auto list = VList::open(dir.file("g.vl"), c.size, kVListCreate, 4);
    ASSERT_TRUE(list) << c.size;
    EXPECT_EQ(list->records_per_block(), c.per_block) << c.size;
    EXPECT_EQ(list->blocks_per_record(), c.per_record) << c.size;
  }
}

TEST(VListGeometry, FileLayoutOfHeaderAndRecords) {
  TestDir dir;
  std::string path = dir.file("layout.vl");
  {
    auto small = VList::open(path, 100, kVListCreateIfMissing, 4);
    ASSERT_TRUE(small);
    for (int r = 0; r < 7; ++r) ASSERT_TRUE(small->put(r, record_of(100, r)));
    EXPECT_EQ(small->record_count(), 7);
    EXPECT_TRUE(small->close());
  }
  std::string file = dir.read("layout.vl");
  ASSERT_GE(file.size(), 3u * 512);
  EXPECT_EQ(std::memcmp(file.data(), "VList version 2.0\0\0\0", 20), 0);
  EXPECT_EQ(word_at(file, 36), 100u);
  EXPECT_EQ(word_at(file, 40), 2u);
  EXPECT_EQ(word_at(file, 44), 4u);
  EXPECT_EQ(word_at(file, 48), 7u);
  EXPECT_EQ(word_at(file, 52), 2u);
  EXPECT_EQ(word_at(file, 56), 5u);
  EXPECT_EQ(word_at(file, 60), 1u);
  // Record 6 is the second record of block 1; nothing crosses a block edge.
  auto expected = record_of(100, 6);
  EXPECT_EQ(std::memcmp(file.data() + 2L * 512 + 100, expected.data(), 100), 0);

  std::string big_path = dir.file("big.vl");
  {
    auto big = VList::open(big_path, 1405, kVListCreateIfMissing, 4);
    ASSERT_TRUE(big);
    ASSERT_TRUE(big->put(1, record_of(1405, 1)));
    big->close();
  }
  file = dir.read("big.vl");
  expected = record_of(1405, 1);
  ASSERT_GE(file.size(), 4u * 512 + 1405);
  // Record 1 starts at block 3, in 512-byte pieces.
  EXPECT_EQ(std::memcmp(file.data() + 4L * 512, expected.data(), 1405), 0);
}

TEST(VListAccess, ReadBeyondEndFailsAndWriteBeyondEndGrows) {
  TestDir dir;
  MessageCapture log(dir);
  messages::set_trace_file(dir.file("trace.txt"));
  std::string path = dir.file("seven.vl");
  auto list = VList::open(path, 328, kVListCreate, 4);
  ASSERT_TRUE(list);
  for (int r = 0; r < 7; ++r) ASSERT_TRUE(list->put(r, record_of(328, r)));
  std::vector<std::byte> out(328);
  EXPECT_FALSE(list->get(7, out));
  EXPECT_EQ(vlist_last_error(), kVListErrorBeyondEnd);
  EXPECT_TRUE(log.contains("[-400]VLGet failed - Name '" + path + "' RecNum 7\n")) << log.text();
  // The trace text also goes to the trace file.
  EXPECT_NE(dir.read("trace.txt").find(": VLGet failed - Name '" + path + "' RecNum 7\n"),
            std::string::npos);
  EXPECT_FALSE(list->get(-1, out));
  EXPECT_EQ(vlist_last_error(), kVListErrorBadRecordSize);

  ASSERT_TRUE(list->put(7, record_of(328, 7)));
  EXPECT_EQ(list->record_count(), 8);
  ASSERT_TRUE(list->get(7, out));
  EXPECT_EQ(out, record_of(328, 7));

  // Growing makes room; records never written read as zeros.
  ASSERT_TRUE(list->grow(20));
  EXPECT_EQ(list->record_count(), 20);
  ASSERT_TRUE(list->get(19, out));
  EXPECT_EQ(out, std::vector<std::byte>(328));
  ASSERT_TRUE(list->grow(5));
  EXPECT_EQ(list->record_count(), 20);
}

TEST(VListOpen, ReopenChecksMagicAndGeometry) {
  TestDir dir;
  MessageCapture log(dir);
  std::string path = dir.file("keep.vl");
  {
    auto list = VList::open(path, 100, kVListCreateIfMissing, 4);
    ASSERT_TRUE(list);
    for (int r = 0; r < 12; ++r) ASSERT_TRUE(list->put(r, record_of(100, r)));
  }
  {
    auto list = VList::open(path, 100, kVListCreateIfMissing, 4);
    ASSERT_TRUE(list);
    EXPECT_EQ(list->record_count(), 12);
    std::vector<std::byte> out(100);
    ASSERT_TRUE(list->get(11, out));
    EXPECT_EQ(out, record_of(100, 11));
  }
  EXPECT_FALSE(VList::open(path, 101, kVListCreateIfMissing, 4));
  EXPECT_EQ(vlist_last_error(), kVListErrorGeometry);
  EXPECT_FALSE(VList::open(path, 0, kVListCreateIfMissing, 4));
  EXPECT_EQ(vlist_last_error(), kVListErrorBadRecordSize);

  std::string damaged = dir.read("keep.vl");
  damaged[3] = 'X';
  dir.write("bad_magic.vl", damaged);
  EXPECT_FALSE(VList::open(dir.file("bad_magic.vl"), 100, kVListCreateIfMissing, 4));
  EXPECT_EQ(vlist_last_error(), kVListErrorBadMagic);

  dir.write("short.vl", damaged.substr(0, 50));
  EXPECT_FALSE(VList::open(dir.file("short.vl"), 100, kVListCreateIfMissing, 4));
  EXPECT_EQ(vlist_last_error(), kVListErrorHeaderRead);

  damaged = dir.read("keep.vl");
  damaged[51] = '\x80';  // a negative record count
  dir.write("negative.vl", damaged);
  EXPECT_FALSE(VList::open(dir.file("negative.vl"), 100, kVListCreateIfMissing, 4));
  EXPECT_EQ(vlist_last_error(), kVListErrorGeometry);

  EXPECT_FALSE(VList::open(dir.file("missing.vl"), 100, 0, 4));
  EXPECT_EQ(vlist_last_error(), kVListErrorCannotOpen);
}

TEST(VListOpen, ModesCreateReadOnlyAndUnnamedFiles) {
  TestDir dir;
  MessageCapture log(dir);
  std::string path = dir.file("modes.vl");
  {
    auto list = VList::open(path, 64, kVListCreateIfMissing, 4);
    ASSERT_TRUE(list->put(0, record_of(64, 1)));
  }
  {
    auto list = VList::open(path, 64, kVListReadOnly, 4);
    ASSERT_TRUE(list);
    std::vector<std::byte> out(64);
    EXPECT_TRUE(list->get(0, out));
    EXPECT_FALSE(list->put(0, out));
    EXPECT_EQ(vlist_last_error(), kVListErrorReadOnly);
    EXPECT_TRUE(log.contains("VLPut failed - Name '" + path + "' RecNum 0"));
  }
  {
    // Create works in a new file without a name, which the kernel frees
    // with the process; a file of the name is left alone.
    auto list = VList::open(path, 64, kVListCreate | kVListReadOnly, 4);
    ASSERT_TRUE(list);
    EXPECT_EQ(list->record_count(), 0);
    EXPECT_TRUE(list->put(3, record_of(64, 3)));
    std::vector<std::byte> back(64);
    EXPECT_TRUE(list->get(3, back));
    EXPECT_EQ(back, record_of(64, 3));
    EXPECT_TRUE(list->close());
    EXPECT_TRUE(list->close());
    auto old = VList::open(path, 64, kVListReadOnly, 4);
    ASSERT_TRUE(old);
    EXPECT_EQ(old->record_count(), 1);
  }
  {
    std::string fresh = dir.file("fresh.vl");
    auto list = VList::open(fresh, 64, kVListCreate, 4);
    ASSERT_TRUE(list);
    EXPECT_FALSE(file_exists(fresh));
    EXPECT_TRUE(list->close());
    EXPECT_FALSE(file_exists(fresh));
  }
}

TEST(VListCache, ManyMoreBlocksThanTheBudgetStayCorrect) {
  TestDir dir;
  const int capacity = block_cache::capacity();
  EXPECT_EQ(capacity, 181);
  auto a = VList::open(dir.file("a.vl"), 328, kVListCreate, 4);
  auto b = VList::open(dir.file("b.vl"), 1405, kVListCreate, 4);
  ASSERT_TRUE(a && b);
  const int rows = 600;
  for (int r = 0; r < rows; ++r) {
    ASSERT_TRUE(a->put(r, record_of(328, r)));
    ASSERT_TRUE(b->put(rows - 1 - r, record_of(1405, r)));
    EXPECT_LE(block_cache::blocks_in_use(), capacity);
  }
  // Rewrite a scattered subset, then read everything back in another order.
  for (int r = 0; r < rows; r += 7) ASSERT_TRUE(a->put(r, record_of(328, r + 1000)));
  std::vector<std::byte> out_a(328), out_b(1405);
  for (int r = rows - 1; r >= 0; --r) {
    ASSERT_TRUE(a->get(r, out_a));
    EXPECT_EQ(out_a, record_of(328, r % 7 == 0 ? r + 1000 : r)) << r;
    ASSERT_TRUE(b->get(rows - 1 - r, out_b));
    EXPECT_EQ(out_b, record_of(1405, r)) << r;
  }
  EXPECT_EQ(block_cache::blocks_in_use(), capacity);
  // Blocks come back from the file's mapping, without a read call.
  ASSERT_TRUE(a->flush());
  block_cache::reset_counters();
  for (int r = 0; r < rows; ++r) {
    ASSERT_TRUE(a->get(r, out_a));
    EXPECT_EQ(out_a, record_of(328, r % 7 == 0 ? r + 1000 : r)) << r;
  }
  EXPECT_EQ(block_cache::counters().reads, 0);
  EXPECT_LE(block_cache::counters().maps, 1);
  a->close();
  EXPECT_LT(block_cache::blocks_in_use(), capacity);
  b->close();
  EXPECT_EQ(block_cache::blocks_in_use(), 0);
}

// A created file has disk space reserved ahead of its writes, which must
// not show in its size: the size is what was written, and a record past the
// last one written still reads as beyond the end. A named file reserves
// nothing (the space would outlive the program).
TEST(VListCache, RoomReservedAheadLeavesTheFileSizeAlone) {
  TestDir dir;
  auto created = VList::open(dir.file("c.vl"), 328, kVListCreate, 4);
  auto named = VList::open(dir.file("n.vl"), 328, kVListCreateIfMissing, 4);
  ASSERT_TRUE(created && named);
  const int rows = 1000;
  for (int r = 0; r < rows; ++r) {
    ASSERT_TRUE(created->put(r, record_of(328, r)));
    ASSERT_TRUE(named->put(r, record_of(328, r)));
  }
  ASSERT_TRUE(created->flush());
  ASSERT_TRUE(named->flush());
  struct stat c {}, n {};
  ASSERT_EQ(fstat(created->fd(), &c), 0);
  ASSERT_EQ(fstat(named->fd(), &n), 0);
  EXPECT_EQ(c.st_size, (rows + 1) * 512);
  EXPECT_EQ(n.st_size, (rows + 1) * 512);
  std::vector<std::byte> out(328);
  EXPECT_FALSE(created->get(rows, out));
  ASSERT_TRUE(created->get(rows - 1, out));
  EXPECT_EQ(out, record_of(328, rows - 1));
  // Disk space, in whole pages: the created file has more than its written
  // pages where the file system can reserve at all, the named one not.
  int probe = open(dir.path().c_str(), O_TMPFILE | O_RDWR, 0600);
  bool can_reserve = probe >= 0 && fallocate(probe, FALLOC_FL_KEEP_SIZE, 0, 4096) == 0;
  if (probe >= 0) close(probe);
  const off_t pages = (c.st_size + 4095) / 4096 * 4096;
  if (can_reserve) {
    EXPECT_GT(c.st_blocks * 512, pages);
  }
  EXPECT_LE(n.st_blocks * 512, pages);
}

TEST(VListCache, FlushWritesDirtyBlocksSoAnotherOpenSeesThem) {
  TestDir dir;
  std::string path = dir.file("flush.vl");
  auto list = VList::open(path, 100, kVListCreateIfMissing, 4);
  ASSERT_TRUE(list);
  for (int r = 0; r < 40; ++r) ASSERT_TRUE(list->put(r, record_of(100, r)));
  ASSERT_TRUE(list->flush());
  std::string file = dir.read("flush.vl");
  EXPECT_EQ(file.size(), 9u * 512);
  EXPECT_EQ(word_at(file, 48), 40u);
  auto expected = record_of(100, 39);
  EXPECT_EQ(std::memcmp(file.data() + 8L * 512 + 4L * 100, expected.data(), 100), 0);
}

TEST(VListCache, BucketMixesBlockWithReversedSequence) {
  EXPECT_EQ(block_cache::bucket_of(5, 1), 5 ^ 32);
  EXPECT_EQ(block_cache::bucket_of(70, 3), 6 ^ 48);
  EXPECT_EQ(block_cache::bucket_of(64, 64), 0);
  EXPECT_EQ(block_cache::bucket_of(63, 0b101100), 63 ^ 0b001101);
}

// Writes records 0..count-1 of 512 bytes (one block each) and flushes them.
std::unique_ptr<VList> filled_blocks(const std::string& path, int count, int mode) {
  auto list = VList::open(path, 512, mode, 4);
  if (!list) return nullptr;
  for (int r = 0; r < count; ++r) {
    if (!list->put(r, record_of(512, r))) return nullptr;
  }
  return list->flush() ? std::move(list) : nullptr;
}

TEST(VListMapping, TheMappingIsMadeAgainWhenTheFileOutgrowsIt) {
  TestDir dir;
  auto list = filled_blocks(dir.file("grow.vl"), 1500, kVListCreate);
  ASSERT_TRUE(list);
  std::vector<std::byte> out(512);
  block_cache::reset_counters();
  ASSERT_TRUE(list->get(3, out));
  EXPECT_EQ(out, record_of(512, 3));
  EXPECT_EQ(block_cache::counters().maps, 1);
  // Grow the file far past the first mapping, then read its new end.
  for (int r = 1500; r < 9000; ++r) ASSERT_TRUE(list->put(r, record_of(512, r)));
  ASSERT_TRUE(list->flush());
  ASSERT_TRUE(list->get(8500, out));
  EXPECT_EQ(out, record_of(512, 8500));
  EXPECT_EQ(block_cache::counters().maps, 2);
  for (int r = 0; r < 9000; r += 13) {
    ASSERT_TRUE(list->get(r, out));
    EXPECT_EQ(out, record_of(512, r)) << r;
  }
  EXPECT_EQ(block_cache::counters().maps, 2);
  EXPECT_EQ(block_cache::counters().reads, 0);
}

TEST(VListMapping, BlocksTheFileDoesNotHoldInFullReadAsZeros) {
  TestDir dir;
  std::string path = dir.file("part.vl");
  filled_blocks(path, 3, kVListCreateIfMissing).reset();
  // The file loses the last 100 bytes of block 2; the header still says 3.
  dir.write("part.vl", dir.read("part.vl").substr(0, 4 * 512 - 100));
  auto list = VList::open(path, 512, kVListCreateIfMissing, 4);
  ASSERT_TRUE(list);
  ASSERT_EQ(list->record_count(), 3);
  std::vector<std::byte> out(512);
  ASSERT_TRUE(list->get(1, out));
  EXPECT_EQ(out, record_of(512, 1));
  ASSERT_TRUE(list->get(2, out));
  EXPECT_EQ(out, std::vector<std::byte>(512));
  // Grown but never written: past the end of the file and of the mapping.
  ASSERT_TRUE(list->grow(5000));
  ASSERT_TRUE(list->get(4999, out));
  EXPECT_EQ(out, std::vector<std::byte>(512));
}

TEST(VListMapping, AFileCutShortBehindTheListsBackReadsZerosAndKeepsWorking) {
  TestDir dir;
  std::string path = dir.file("cut.vl");
  auto list = filled_blocks(path, 400, kVListCreateIfMissing);
  ASSERT_TRUE(list);
  std::vector<std::byte> out(512);
  // Reading every block in order maps the file and leaves the first ones
  // uncached.
  for (int r = 0; r < 400; ++r) ASSERT_TRUE(list->get(r, out));
  ASSERT_EQ(truncate(path.c_str(), 11L * 512), 0);  // header and blocks 0 to 9
  ASSERT_TRUE(list->get(5, out));
  EXPECT_EQ(out, record_of(512, 5));
  for (int r : {12, 100, 150}) {
    ASSERT_TRUE(list->get(r, out)) << r;
    EXPECT_EQ(out, std::vector<std::byte>(512)) << r;
  }
  ASSERT_TRUE(list->put(100, record_of(512, 7777)));
  ASSERT_TRUE(list->flush());
  ASSERT_TRUE(list->get(100, out));
  EXPECT_EQ(out, record_of(512, 7777));
  EXPECT_TRUE(list->close());
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__has_feature)
#define PX_ADDRESS_LIMIT_TESTABLE 1
#elif defined(__has_feature)
#if !__has_feature(address_sanitizer)
#define PX_ADDRESS_LIMIT_TESTABLE 1
#endif
#endif

#ifdef PX_ADDRESS_LIMIT_TESTABLE
// The address space this process uses now, in bytes.
long address_space_in_use() {
  long pages = 0;
  std::FILE* f = std::fopen("/proc/self/statm", "r");
  if (f == nullptr) return -1;
  if (std::fscanf(f, "%ld", &pages) != 1) pages = -1;
  std::fclose(f);
  return pages < 0 ? -1 : pages * sysconf(_SC_PAGESIZE);
}

TEST(VListMapping, WithoutRoomForAMappingBlocksAreRead) {
  TestDir dir;
  std::string path = dir.file("read.vl");
  filled_blocks(path, 300, kVListCreateIfMissing).reset();
  fflush(nullptr);
  pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    // No room is left for a mapping of the file: blocks must come by reading.
    auto list = VList::open(path, 512, kVListReadOnly, 4);
    std::vector<std::byte> out(512);
    std::vector<std::byte> expected = record_of(512, 250);
    long in_use = address_space_in_use();
    rlimit limit{static_cast<rlim_t>(in_use + 256L * 1024), static_cast<rlim_t>(in_use + 256L * 1024)};
    if (!list || in_use < 0 || setrlimit(RLIMIT_AS, &limit) != 0) _exit(2);
    block_cache::reset_counters();
    bool ok = list->get(250, out) && out == expected && list->get(249, out) &&
              block_cache::counters().maps == 0 && block_cache::counters().reads == 2;
    _exit(ok ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
}
#endif

}  // namespace
}  // namespace px::engine
