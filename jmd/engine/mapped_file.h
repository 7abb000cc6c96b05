// A read-only shared mapping of an open file, through which the block cache
// brings blocks in without a system call per block (internal to the record
// store).
//
// The mapping reaches past the end of the file, so that a file that grows by
// the owner's writes stays readable without mapping it again each time; it is
// made again, larger, only when a read lies beyond it. Pages come in at the
// first read of them (with their neighbours in the page cache). Writes to the file
// (pwrite and friends on the same file) are seen through a shared mapping at
// once. Whether bytes lie inside the file is for the caller to know: it keeps
// the file's size in step with its own writes.
//
// A file cut short by someone else while mapped would make a read of the lost
// part raise SIGBUS. Copies out of the mapping are guarded: such a read
// reports kGone instead, and a SIGBUS raised anywhere else goes on to the
// action that was in place before the guard was installed (installed once per
// process, at the first mapping).
//
// Memory: the mapped pages are the file's pages in the kernel's page cache,
// not memory of the program. The kernel counts those read through the
// mapping in the process's resident size (as RssFile), so a save that reads
// every record of a large table shows a resident size of about the table's
// file; the kernel takes them back under memory pressure (writing them to
// the file first when they are newer than it). The program's own memory
// (RssAnon) is what the engine bounds (table.h).
#pragma once

#include <cstddef>
#include <cstdint>

namespace px::engine {

class MappedFile {
 public:
  MappedFile() = default;
  ~MappedFile() { unmap(); }
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  enum class Copy {
    kDone,         // out holds the bytes
    kGone,         // the file no longer holds them (cut short by another)
    kUnavailable,  // no mapping could be made (none is tried again); read
                   // the file another way
  };
  // Copies n bytes at offset of the file open as fd into out, mapping the
  // file first when the mapping does not reach that far. file_size is the
  // caller's idea of the file's size, used to size a new mapping.
  Copy copy(int fd, int64_t offset, std::byte* out, size_t n, int64_t file_size);

  // Starts bringing n bytes at offset toward the processor, when the mapping
  // holds them; a hint only: it reads nothing and cannot fault.
  void prefetch(int64_t offset, size_t n) const;

  // Gives the mapping up (done before the file is closed).
  void unmap();

  // Bytes mapped now (0 when nothing is).
  size_t length() const { return length_; }

 private:
  bool map(int fd, int64_t needed, int64_t file_size);

  std::byte* base_ = nullptr;
  size_t length_ = 0;
  bool failed_ = false;
};

}  // namespace px::engine
