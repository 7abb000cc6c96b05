// The block cache shared by every open VList (internal to the record store;
// vlist.h documents its rules and exposes its counters).
//
// Entries live in one array reserved once for the whole budget, so an entry
// never moves. An entry in use sits in its bucket's chain, on its VList's list
// and on the least-recently-used list, each linked both ways so that an entry
// leaves them at once; a free entry sits on the free list. An entry's 512
// bytes lie in a second array, reserved with the first: the entries alone are
// small enough to stay in the processor's nearest cache while a lookup walks
// a bucket's chain.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "jmd/engine/vlist.h"

namespace px::engine {

struct CacheEntry {
  enum State : uint8_t { kUnused, kFree, kInUse };
  VList* owner = nullptr;
  long block = -1;
  State state = kUnused;
  bool dirty = false;
  int bucket_next = -1;   // next in the bucket chain, or on the free list
  int bucket_prev = -1;   // previous in the bucket chain (-1: first)
  int owner_prev = -1;
  int owner_next = -1;
  int lru_prev = -1;      // towards the most recently used
  int lru_next = -1;      // towards the least recently used
  std::span<std::byte, kBlockSize> data;  // the block's bytes, which never move
};

class BlockCache {
 public:
  // Block b of list, loaded when not cached (a block that lies past the end
  // of the file, or that the file holds only in part, reads as zeros; with
  // whole set the caller overwrites all 512 bytes, so nothing is read).
  // Marks it most recently used. nullptr when no entry can be had.
  static CacheEntry* fetch(VList& list, long block, bool whole);
  // Writes every dirty block of list, lowest block first, contiguous blocks in
  // one write. False when a write fails.
  static bool flush(VList& list);
  // Gives back every entry of list, writing dirty ones first when write_back.
  static bool drop(VList& list, bool write_back);
  // Writes the blocks of count entries (indexes into the cache), whose block
  // numbers follow each other, in one call; marks them clean.
  static bool write_run(VList& list, const int* indexes, int count);
  // Claims an entry for a block that is not cached; -1 when none is free.
  static int claim(VList& list, long block);
  // Fills a claimed entry with its block: from the file's mapping, or read
  // when no mapping can be had; zeros for what the file does not hold.
  static void load(VList& list, CacheEntry& entry);
  // Writes n bytes at offset, keeping the list's file size in step.
  static bool write_at(VList& list, const void* data, size_t n, int64_t offset);
  // Reserves disk space for a created file ahead of a write that reaches end
  // (vlist.h); a hint that cannot fail.
  static void reserve_ahead(VList& list, int64_t end);
};

}  // namespace px::engine
