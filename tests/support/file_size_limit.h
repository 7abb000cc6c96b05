// Test helper: limits the size of the files the process writes, as
// `ulimit -f` does, for as long as the object lives. A write past the limit
// then fails with EFBIG instead of raising SIGXFSZ, which is ignored
// meanwhile. Every file of the process is limited, so the limit must leave
// room for what the test writes besides the file it is about.
#pragma once

#include <signal.h>
#include <sys/resource.h>

#include <cstdint>

namespace px {

class FileSizeLimit {
 public:
  explicit FileSizeLimit(uint64_t bytes) {
    getrlimit(RLIMIT_FSIZE, &before_);
    previous_ = signal(SIGXFSZ, SIG_IGN);
    rlimit limit = before_;
    limit.rlim_cur = bytes;
    set_ = setrlimit(RLIMIT_FSIZE, &limit) == 0;
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    signal(SIGXFSZ, previous_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  // Whether the limit is in force.
  bool set() const { return set_; }

 private:
  rlimit before_{};
  sighandler_t previous_ = SIG_DFL;
  bool set_ = false;
};

}  // namespace px
