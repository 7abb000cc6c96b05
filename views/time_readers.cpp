#include "views/time_readers.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <system_error>

namespace px::views {

EntryBatch::Entry& EntryBatch::add(std::string_view name, ino_t inode,
                                   const std::vector<char>& matched) {
  Entry entry;
  entry.name_at = names_.size();
  entry.name_size = name.size();
  entry.inode = inode;
  names_.append(name);
  names_.push_back('\0');
  matched_.insert(matched_.end(), matched.begin(), matched.end());
  entries_.push_back(entry);
  return entries_.back();
}

void EntryBatch::read_times(int dir_fd) {
  for (Entry& entry : entries_) {
    if (!entry.to_read) continue;
    struct stat info {};
    entry.is_file = fstatat(dir_fd, names_.c_str() + entry.name_at, &info, 0) == 0 &&
                    S_ISREG(info.st_mode);
    if (entry.is_file) {
      entry.modified_ns = static_cast<int64_t>(info.st_mtim.tv_sec) * 1000000000 +
                          info.st_mtim.tv_nsec;
    }
  }
}

TimeReaders::TimeReaders(int dir_fd, unsigned threads) : dir_fd_(dir_fd) {
  try {
    for (unsigned i = 1; i < threads; ++i) threads_.emplace_back([this] { read_batches(true); });
  } catch (const std::system_error&) {
    // No more threads now: those started and the giving thread do the work.
  }
}

TimeReaders::~TimeReaders() { finish(); }

void TimeReaders::give(EntryBatch& batch) {
  {
    std::lock_guard lock(mutex_);
    waiting_.push_back(&batch);
  }
  given_.notify_one();
}

void TimeReaders::finish() {
  {
    std::lock_guard lock(mutex_);
    finishing_ = true;
  }
  given_.notify_all();
  read_batches(false);
  for (std::thread& thread : threads_) thread.join();
  threads_.clear();
}

void TimeReaders::read_batches(bool wait) {
  for (;;) {
    EntryBatch* batch = nullptr;
    {
      std::unique_lock lock(mutex_);
      if (wait) given_.wait(lock, [this] { return finishing_ || !waiting_.empty(); });
      if (waiting_.empty()) return;
      batch = waiting_.front();
      waiting_.pop_front();
    }
    batch->read_times(dir_fd_);
  }
}

unsigned default_time_readers() {
  return std::clamp(std::thread::hardware_concurrency(), 1u, 4u);
}

}  // namespace px::views
