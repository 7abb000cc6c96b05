// VList: a file of numbered fixed-size records, read and written through one
// block cache that every open VList shares.
//
// File layout (little-endian 32-bit words):
//
//   offset 0, 512 bytes      header block; its first 104 bytes are the header
//                            record below, the rest is unused
//   offset (b + 1) * 512     block b (b = 0, 1, ...), 512 bytes
//
// Header record (104 bytes, 26 words):
//
//   offset  size  field
//        0    20  magic text "VList version 2.0", NUL-padded
//       20     4  link to the next open VList   (memory only; written as 0)
//       24     4  file name                     (memory only; written as 0)
//       28     4  sequence number of the open VList
//       32     4  file handle (-1 when closed)
//       36     4  record size in bytes
//       40     4  open mode
//       44     4  cache parameter given at open
//       48     4  number of records
//       52     4  number of blocks in use
//       56     4  records per block: 512 / record size when the record size
//                 is at most 512, else 1
//       60     4  blocks per record: 1 when the record size is at most 512,
//                 else the record size / 512 rounded up
//       64    40  list head of the cached blocks    (memory only; written as 0)
//
// Record r lies, for record sizes up to 512, in block r / (records per block)
// at offset (r mod records per block) * record size, never across a block
// boundary. A larger record occupies the blocks from r * (blocks per record)
// on, in 512-byte pieces, the last one shorter. Blocks never written read as
// zeros. The header is written when the file is opened and again on flush and
// close, so the record count survives a reopen.
//
// Cache: each cached block costs 552 bytes (40 for the entry, 512 for the
// data) against a budget of 100,000 bytes, so at most 181 blocks are held by
// all VLists together. Blocks are found through 64 buckets: bucket = (block
// mod 64) xor (the low 6 bits of the VList's sequence number, bit-reversed).
// When the budget is spent the least recently used block is given up; a dirty
// one is written back first, together with the dirty blocks next to it in the
// same file, in one write. A block that is not cached is copied from a
// read-only shared mapping of the file (mapped_file.h), so bringing it in
// costs no system call; a file that cannot be mapped is read a block at a
// time. Writes go to the file and are seen through the mapping at once. A
// file created with kVListCreate has disk space reserved ahead of its writes
// (up to 8 MiB at a time, without changing its size), so that its blocks are
// allocated in large pieces rather than page by page as it grows.
//
// Every failure sets the process-wide last-error word (VListError). Get and
// put also report "VLGet failed - Name '%s' RecNum %ld" / "VLPut failed - ..."
// as message -400. Used from one thread only.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "jmd/engine/mapped_file.h"

namespace px::engine {

// Open mode bits.
inline constexpr int kVListCreate = 1;          // a new, empty file; implies 2, clears 4. It
                                                // has no name at all (gone with the process,
                                                // even a killed one); the name only places
                                                // it in a directory and names it in reports
inline constexpr int kVListCreateIfMissing = 2;
inline constexpr int kVListReadOnly = 4;

inline constexpr int kBlockSize = 512;
inline constexpr int kHeaderRecordSize = 104;
inline constexpr int kCacheEntryCost = 552;
inline constexpr int kCacheBudget = 100000;
inline constexpr int kCacheBuckets = 64;

// Values of the last-error word.
enum VListError : int {
  kVListErrorOk = 0,
  kVListErrorBadRecordSize = 1,   // record size <= 0, or record number below 0
  kVListErrorOutOfMemory = 2,
  kVListErrorCannotOpen = 3,
  kVListErrorSeekFailed = 4,
  kVListErrorHeaderRead = 5,
  kVListErrorHeaderWrite = 6,
  kVListErrorBadMagic = 7,
  kVListErrorGeometry = 8,        // record size or block geometry differ from the file's
  kVListErrorBeyondEnd = 10,      // read at or beyond the number of records
  kVListErrorReadOnly = 11,       // write to a read-only VList
};

int vlist_last_error();
void set_vlist_last_error(int code);

class VList {
 public:
  // Opens or creates the file; nullptr on failure with the last error set.
  static std::unique_ptr<VList> open(std::string_view name, int record_size, int mode,
                                     int cache_parameter);

  // Closes (see close()).
  ~VList();
  VList(const VList&) = delete;
  VList& operator=(const VList&) = delete;

  // Writes back dirty blocks and the header (unless read only or created with
  // kVListCreate), drops the cached blocks and closes the file (which frees
  // a created VList's unnamed file). Always true; a second call does
  // nothing.
  bool close();

  // Copies record r into out (at least record_size() bytes).
  bool get(long r, std::span<std::byte> out);
  // Writes record r from data (at least record_size() bytes); a record beyond
  // the end first grows the VList to r + 1 records.
  bool put(long r, std::span<const std::byte> data);
  // A hint that record r is about to be read: starts bringing its bytes in
  // from the file's mapping. Changes nothing, reports nothing.
  void prefetch(long r) const;
  // Makes room for count records (the record count becomes at least count).
  bool grow(long count);
  // Writes every dirty cached block of this VList and the header.
  bool flush();

  long record_count() const { return record_count_; }
  int record_size() const { return record_size_; }
  int records_per_block() const { return records_per_block_; }
  int blocks_per_record() const { return blocks_per_record_; }
  long blocks_in_use() const { return blocks_in_use_; }
  int mode() const { return mode_; }
  uint32_t sequence() const { return sequence_; }
  // The low 6 bits of the sequence number, bit-reversed: what the cache
  // mixes into the bucket of each of this VList's blocks.
  int bucket_mix() const { return bucket_mix_; }
  const std::string& name() const { return name_; }

  int fd() const { return fd_; }

 private:
  friend class BlockCache;
  VList() = default;
  bool write_header();
  bool read_header();
  bool transfer(long r, std::byte* buffer, bool write);
  void report(bool write, long r) const;

  std::string name_;
  int fd_ = -1;
  uint32_t sequence_ = 0;
  int bucket_mix_ = 0;
  int record_size_ = 0;
  int mode_ = 0;
  int cache_parameter_ = 0;
  long record_count_ = 0;
  long blocks_in_use_ = 0;
  int records_per_block_ = 1;
  int blocks_per_record_ = 1;
  bool closed_ = false;
  int64_t file_size_ = 0;   // bytes in the file, kept in step with every write
  int64_t reserved_ = 0;    // bytes of disk space reserved for the file ahead of its writes
  int cache_head_ = -1;     // first entry of this VList's cached blocks
  MappedFile mapping_;      // the file, for bringing blocks in
};

// The shared block cache. Exposed for tests and for diagnosis.
namespace block_cache {
// Blocks currently held by all VLists.
int blocks_in_use();
// The most blocks the budget allows (budget / entry cost, or less when memory
// ran out).
int capacity();
// The bucket a block of a VList with this sequence number falls into.
int bucket_of(long block, uint32_t sequence);
// Counters since the process started (or the last reset_counters()).
struct Counters {
  long hits = 0;
  long loads = 0;       // blocks brought in (copied, read or zero-filled)
  long reads = 0;       // read calls made (only where a file cannot be mapped)
  long maps = 0;        // mappings made (a file's first, or a larger one)
  long writes = 0;      // write calls made (each may write several blocks)
  long blocks_written = 0;
};
Counters counters();
void reset_counters();
}  // namespace block_cache

}  // namespace px::engine
