#include "jmd/engine/block_cache.h"

#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include "jmd/engine/lru_list.h"
#include "jmd/engine/report.h"

namespace px::engine {

namespace {

constexpr int kMaxRun = 256;  // blocks written by one call at most

// The bytes of one cached block.
struct BlockBytes {
  alignas(16) std::array<std::byte, kBlockSize> bytes;
};

struct CacheState {
  std::vector<CacheEntry> entries;  // reserved once; entries never move
  std::vector<BlockBytes> blocks;   // entry i's bytes are blocks[i]; reserved with it
  int capacity = kCacheBudget / kCacheEntryCost;
  bool reserved = false;
  std::array<int, kCacheBuckets> buckets{};
  int free_head = -1;
  LruList<CacheEntry> lru;
  int in_use = 0;
  block_cache::Counters counters;
  std::vector<std::pair<long, int>> flush_order;  // reused by flush
  std::array<iovec, kMaxRun> iov{};

  constexpr CacheState() { buckets.fill(-1); }

  // Entry i and the first entry of a bucket: indexes are ints, so that -1
  // can end a list.
  CacheEntry& at(int i) { return entries[static_cast<size_t>(i)]; }
  int& bucket_head(int bucket) { return buckets[static_cast<size_t>(bucket)]; }
};

// The one cache of the process. Initialised before any code runs, so it is
// there for every VList, however early, and outlives all of them.
constinit CacheState g_cache;

CacheState& cache() { return g_cache; }

int reverse6(uint32_t bits) {
  int out = 0;
  for (int i = 0; i < 6; ++i) {
    if (bits & (1u << i)) out |= 1 << (5 - i);
  }
  return out;
}

// The bucket of a block of list (whose reversed sequence bits were worked out
// when it opened).
int bucket_in(const VList& list, long block) {
  return static_cast<int>(block % kCacheBuckets) ^ list.bucket_mix();
}

int find(const VList& list, long block, int bucket) {
  CacheState& c = cache();
  for (int i = c.bucket_head(bucket); i >= 0; i = c.at(i).bucket_next) {
    if (c.at(i).owner == &list && c.at(i).block == block) return i;
  }
  return -1;
}

void bucket_push(int i, int bucket) {
  CacheState& c = cache();
  CacheEntry& e = c.at(i);
  e.bucket_prev = -1;
  e.bucket_next = c.bucket_head(bucket);
  if (e.bucket_next >= 0) c.at(e.bucket_next).bucket_prev = i;
  c.bucket_head(bucket) = i;
}

void bucket_unlink(int i, int bucket) {
  CacheState& c = cache();
  CacheEntry& e = c.at(i);
  if (e.bucket_prev >= 0) c.at(e.bucket_prev).bucket_next = e.bucket_next;
  else c.bucket_head(bucket) = e.bucket_next;
  if (e.bucket_next >= 0) c.at(e.bucket_next).bucket_prev = e.bucket_prev;
  e.bucket_next = e.bucket_prev = -1;
}

// A free list is sound when its head, if any, is an entry marked free.
bool free_list_sound() {
  CacheState& c = cache();
  if (c.free_head < 0) return true;
  if (c.free_head >= static_cast<int>(c.entries.size())) return false;
  return c.at(c.free_head).state == CacheEntry::kFree;
}

// Takes an entry off the free list; -1 when it is empty, -2 when corrupted.
int take_free() {
  CacheState& c = cache();
  if (!free_list_sound()) {
    report_text("Vlist.c: CacheLoad: free list corrupted!");
    return -2;
  }
  int i = c.free_head;
  if (i >= 0) {
    c.free_head = c.at(i).bucket_next;
    c.at(i).bucket_next = -1;
  }
  return i;
}

bool give_back(int i) {
  CacheState& c = cache();
  if (!free_list_sound()) {
    report_text("Vlist.c: CacheFree: free list corrupted!");
    return false;
  }
  CacheEntry& e = c.at(i);
  e.owner = nullptr;
  e.block = -1;
  e.dirty = false;
  e.state = CacheEntry::kFree;
  e.bucket_next = c.free_head;
  c.free_head = i;
  --c.in_use;
  return true;
}

// A new entry within the budget; -1 when the budget is spent. Memory that
// runs out first lowers the budget to what is in use.
int allocate() {
  CacheState& c = cache();
  if (!c.reserved) {
    c.reserved = true;
    try {
      c.entries.reserve(static_cast<size_t>(c.capacity));
      c.blocks.reserve(static_cast<size_t>(c.capacity));
    } catch (const std::bad_alloc&) {
      c.capacity = 0;
    }
  }
  if (static_cast<int>(c.entries.size()) >= c.capacity) return -1;
  c.blocks.emplace_back();
  c.entries.push_back(CacheEntry{.data = c.blocks.back().bytes});
  return static_cast<int>(c.entries.size()) - 1;
}

// The most disk space reserved ahead of a file's writes at a time, and the
// least worth a call.
constexpr int64_t kMostReserved = int64_t{8} << 20;
constexpr int64_t kLeastReserved = int64_t{256} << 10;

}  // namespace

// Before a write that reaches end: reserves disk space for a created
// (unnamed) file up to about as much again as the file holds beyond end, so
// that a growing file is allocated in large pieces (the file's size stays as
// it is). Only a hint: a file system that cannot reserve is written as it
// is, and a full one reports the write itself.
void BlockCache::reserve_ahead(VList& list, int64_t end) {
  if (end <= list.reserved_ || !(list.mode_ & kVListCreate)) return;
  int64_t ahead = std::clamp(list.file_size_, kLeastReserved, kMostReserved);
  int64_t from = list.reserved_;
  bool reserved = fallocate(list.fd_, FALLOC_FL_KEEP_SIZE, from, end + ahead - from) == 0;
  // A file that cannot have room reserved is not asked again.
  list.reserved_ = reserved ? end + ahead : INT64_MAX;
}

// Writes the blocks of count entries, whose block numbers follow each other,
// in one call.
bool BlockCache::write_run(VList& list, const int* indexes, int count) {
  CacheState& c = cache();
  long first_block = c.at(indexes[0]).block;
  for (size_t k = 0; k < static_cast<size_t>(count); ++k) {
    c.iov[k].iov_base = c.at(indexes[k]).data.data();
    c.iov[k].iov_len = kBlockSize;
  }
  int64_t offset = (static_cast<int64_t>(first_block) + 1) * kBlockSize;
  int64_t total = static_cast<int64_t>(count) * kBlockSize;
  reserve_ahead(list, offset + total);
  int64_t done = 0;
  iovec* iov = c.iov.data();
  int iov_count = count;
  while (done < total) {
    ssize_t n = pwritev(list.fd(), iov, iov_count, offset + done);
    ++c.counters.writes;
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += n;
    while (iov_count > 0 && static_cast<size_t>(n) >= iov->iov_len) {
      n -= static_cast<ssize_t>(iov->iov_len);
      ++iov;
      --iov_count;
    }
    if (iov_count > 0 && n > 0) {
      iov->iov_base = static_cast<std::byte*>(iov->iov_base) + n;
      iov->iov_len -= static_cast<size_t>(n);
    }
  }
  for (int k = 0; k < count; ++k) c.at(indexes[k]).dirty = false;
  c.counters.blocks_written += count;
  list.file_size_ = std::max(list.file_size_, offset + total);
  return true;
}

bool BlockCache::write_at(VList& list, const void* data, size_t n, int64_t offset) {
  const char* p = static_cast<const char*>(data);
  reserve_ahead(list, offset + static_cast<int64_t>(n));
  size_t done = 0;
  while (done < n) {
    ssize_t w = pwrite(list.fd_, p + done, n - done, offset + static_cast<int64_t>(done));
    if (w < 0 && errno == EINTR) continue;
    if (w <= 0) return false;
    done += static_cast<size_t>(w);
  }
  list.file_size_ = std::max<int64_t>(list.file_size_, offset + static_cast<int64_t>(n));
  return true;
}

namespace {

// Writes back the dirty entry i together with the dirty cached blocks of the
// same file that touch it on either side.
bool write_back(int i) {
  CacheState& c = cache();
  VList& list = *c.at(i).owner;
  long block = c.at(i).block;
  std::array<int, kMaxRun> run;
  long low = block;
  while (block - low < kMaxRun / 2 && low > 0) {
    int j = find(list, low - 1, bucket_in(list, low - 1));
    if (j < 0 || !c.at(j).dirty) break;
    --low;
  }
  int count = 0;
  for (long b = low; count < kMaxRun; ++b) {
    int j = b == block ? i : find(list, b, bucket_in(list, b));
    if (j < 0 || !c.at(j).dirty) break;
    run[static_cast<size_t>(count++)] = j;
  }
  return BlockCache::write_run(list, run.data(), count);
}

// Unlinks entry i from its bucket, its VList and the LRU list.
void detach(int i) {
  CacheState& c = cache();
  bucket_unlink(i, bucket_in(*c.at(i).owner, c.at(i).block));
  c.lru.unlink(c.entries, i);
}

}  // namespace

// An entry for block of list, taken from the free list, newly allocated or
// given up by the least recently used block; linked in as most recently
// used. -1 when none can be had.
int BlockCache::claim(VList& list, long block) {
  CacheState& c = cache();
  int i = take_free();
  if (i == -2) return -1;
  if (i < 0) i = allocate();
  if (i < 0) {
    i = c.lru.least_recent();
    if (i < 0) return -1;
    CacheEntry& victim = c.at(i);
    if (victim.dirty && !write_back(i)) return -1;
    VList* owner = victim.owner;
    detach(i);
    if (victim.owner_prev >= 0) c.at(victim.owner_prev).owner_next = victim.owner_next;
    else owner->cache_head_ = victim.owner_next;
    if (victim.owner_next >= 0) c.at(victim.owner_next).owner_prev = victim.owner_prev;
    --c.in_use;
  }
  CacheEntry& e = c.at(i);
  e.owner = &list;
  e.block = block;
  e.state = CacheEntry::kInUse;
  e.dirty = false;
  bucket_push(i, bucket_in(list, block));
  e.owner_prev = -1;
  e.owner_next = list.cache_head_;
  if (list.cache_head_ >= 0) c.at(list.cache_head_).owner_prev = i;
  list.cache_head_ = i;
  c.lru.push_front(c.entries, i);
  ++c.in_use;
  ++c.counters.loads;
  return i;
}

// A block comes from the file's mapping: a copy out of the page cache, with
// no system call. Only when the file cannot be mapped is it read.
void BlockCache::load(VList& list, CacheEntry& e) {
  CacheState& c = cache();
  int64_t offset = (static_cast<int64_t>(e.block) + 1) * kBlockSize;
  if (offset + kBlockSize > list.file_size_) {
    std::ranges::fill(e.data, std::byte{0});
    return;
  }
  size_t mapped = list.mapping_.length();
  MappedFile::Copy copied =
      list.mapping_.copy(list.fd_, offset, e.data.data(), kBlockSize, list.file_size_);
  if (list.mapping_.length() != mapped) ++c.counters.maps;
  if (copied == MappedFile::Copy::kDone) return;
  if (copied == MappedFile::Copy::kUnavailable) {
    ++c.counters.reads;
    size_t done = 0;
    while (done < kBlockSize) {
      ssize_t n = pread(list.fd_, e.data.data() + done, kBlockSize - done,
                        offset + static_cast<int64_t>(done));
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) break;
      done += static_cast<size_t>(n);
    }
    if (done == kBlockSize) return;
  }
  // Cut short by someone else since the size was taken: the block is gone.
  std::ranges::fill(e.data, std::byte{0});
}

CacheEntry* BlockCache::fetch(VList& list, long block, bool whole) {
  CacheState& c = cache();
  int i = find(list, block, bucket_in(list, block));
  if (i >= 0) {
    ++c.counters.hits;
    c.lru.touch(c.entries, i);
    return &c.at(i);
  }
  i = claim(list, block);
  if (i < 0) return nullptr;
  CacheEntry& e = c.at(i);
  if (!whole) load(list, e);
  return &e;
}

bool BlockCache::flush(VList& list) {
  CacheState& c = cache();
  auto& order = c.flush_order;
  order.clear();
  for (int i = list.cache_head_; i >= 0; i = c.at(i).owner_next) {
    if (c.at(i).dirty) order.emplace_back(c.at(i).block, i);
  }
  std::sort(order.begin(), order.end());
  std::array<int, kMaxRun> run;
  bool ok = true;
  size_t k = 0;
  while (k < order.size()) {
    int count = 0;
    long first = order[k].first;
    while (k < order.size() && count < kMaxRun && order[k].first == first + count) {
      run[static_cast<size_t>(count++)] = order[k++].second;
    }
    if (!write_run(list, run.data(), count)) ok = false;
  }
  return ok;
}

bool BlockCache::drop(VList& list, bool write_back_dirty) {
  bool ok = !write_back_dirty || flush(list);
  CacheState& c = cache();
  int i = list.cache_head_;
  while (i >= 0) {
    int next = c.at(i).owner_next;
    detach(i);
    c.at(i).owner_prev = c.at(i).owner_next = -1;
    if (!give_back(i)) ok = false;
    i = next;
  }
  list.cache_head_ = -1;
  return ok;
}

namespace block_cache {

int blocks_in_use() { return cache().in_use; }

int capacity() { return cache().capacity; }

int bucket_of(long block, uint32_t sequence) {
  return static_cast<int>(block % kCacheBuckets) ^ reverse6(sequence & 63u);
}

Counters counters() { return cache().counters; }

void reset_counters() { cache().counters = Counters{}; }

}  // namespace block_cache

}  // namespace px::engine
