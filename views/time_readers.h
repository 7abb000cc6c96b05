// Reading the modification times of many files of one directory on a few
// threads at once. A stat costs the kernel a lookup of the name and of the
// inode, about a microsecond per file and mostly spent waiting on memory, so
// on a directory of 100,000 files the times cost several times what reading
// the directory does; spread over the processor's cores they are read while
// the directory is still being read, and in a fraction of the time.
//
// Only the stat calls run on the threads: the listing cache and the
// listings themselves are touched by the thread that lists, before it gives
// a batch away and after finish() has waited for every thread.
#pragma once

#include <sys/types.h>

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace px::views {

// A run of entries of a directory, in the order the directory gave them,
// with the patterns each matches and its time once read.
class EntryBatch {
 public:
  struct Entry {
    size_t name_at = 0;  // in the batch's names, followed by '\0'
    size_t name_size = 0;
    ino_t inode = 0;
    bool cacheable = false;  // a plain file by its directory entry
    bool to_read = false;    // its time is read by read_times()
    bool is_file = false;    // a plain file (through a symbolic link too)
    int64_t modified_ns = 0;
  };

  explicit EntryBatch(size_t patterns) : patterns_(patterns) {}

  size_t size() const { return entries_.size(); }
  Entry& entry(size_t i) { return entries_[i]; }
  const Entry& entry(size_t i) const { return entries_[i]; }
  std::string_view name(size_t i) const {
    return std::string_view(names_).substr(entries_[i].name_at, entries_[i].name_size);
  }
  bool matches(size_t i, size_t pattern) const { return matched_[i * patterns_ + pattern] != 0; }

  // Adds an entry that matches the patterns marked in matched (one flag a
  // pattern); returns it.
  Entry& add(std::string_view name, ino_t inode, const std::vector<char>& matched);

  // Reads the time of each entry to read, relative to the directory open
  // as dir_fd. An entry gone meanwhile, or not a plain file, is no file.
  void read_times(int dir_fd);

 private:
  size_t patterns_;
  std::string names_;
  std::vector<Entry> entries_;
  std::vector<char> matched_;  // patterns_ flags an entry
};

// Threads that read the times of the batches given to them. The thread that
// gives the batches reads those left when it calls finish(), which returns
// once every batch given has its times and the threads have ended.
class TimeReaders {
 public:
  // Starts threads - 1 threads (the giving thread is the last one); fewer
  // when the system refuses more.
  TimeReaders(int dir_fd, unsigned threads);
  ~TimeReaders();
  TimeReaders(const TimeReaders&) = delete;
  TimeReaders& operator=(const TimeReaders&) = delete;

  // The batch is not touched by the caller again until finish() returns.
  void give(EntryBatch& batch);
  void finish();

 private:
  // Reads given batches until none is left; with wait, also waits for more
  // until finish() is called.
  void read_batches(bool wait);

  const int dir_fd_;
  std::mutex mutex_;
  std::condition_variable given_;
  std::deque<EntryBatch*> waiting_;
  bool finishing_ = false;
  std::vector<std::thread> threads_;
};

// The threads a listing uses by default: one a processor core, at most 4.
unsigned default_time_readers();

}  // namespace px::views
