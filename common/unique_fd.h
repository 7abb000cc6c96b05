// Owns one file descriptor (a file or a socket) and closes it when it goes
// out of scope, on every path.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace px {

class UniqueFd {
 public:
  UniqueFd() = default;
  explicit UniqueFd(int fd) : fd_(fd) {}
  UniqueFd(UniqueFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  UniqueFd& operator=(UniqueFd&& other) noexcept {
    if (this != &other) reset(std::exchange(other.fd_, -1));
    return *this;
  }
  UniqueFd(const UniqueFd&) = delete;
  UniqueFd& operator=(const UniqueFd&) = delete;
  ~UniqueFd() { reset(); }

  int get() const { return fd_; }
  bool valid() const { return fd_ >= 0; }
  // Gives up ownership: returns the descriptor and holds none.
  int release() { return std::exchange(fd_, -1); }
  // Closes the descriptor now: 0, or the errno of close (a late write error
  // shows up here on some file systems). Holds none afterwards either way.
  int close() {
    int fd = release();
    return fd < 0 || ::close(fd) == 0 ? 0 : errno;
  }
  // Closes the descriptor held and takes fd instead.
  void reset(int fd = -1) {
    if (fd_ >= 0) ::close(fd_);
    fd_ = fd;
  }

 private:
  int fd_ = -1;
};

}  // namespace px
