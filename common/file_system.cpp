#include "common/file_system.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "common/file_util.h"

namespace px {

namespace {

int error_of(int result) { return result == 0 ? 0 : errno; }

// Opens path for writing without blocking on a FIFO or a device, making it
// when missing and create is set.
int open_for_lock(const std::string& path, bool create, UniqueFd& file, bool& created) {
  constexpr int kFlags = O_WRONLY | O_NONBLOCK;
  created = false;
  if (create) {
    file = open_file(path, kFlags | O_CREAT | O_EXCL, 0666);
    if (file.valid()) {
      created = true;
      return 0;
    }
    if (errno != EEXIST) return errno;
  }
  file = open_file(path, kFlags);
  return file.valid() ? 0 : errno;
}

bool same_file(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

class SystemFileSystem : public FileSystem {
 public:
  int create(const std::string& path, mode_t mode, UniqueFd& file) override {
    file = open_file(path, O_WRONLY | O_CREAT | O_EXCL, mode);
    return file.valid() ? 0 : errno;
  }

  int write(int fd, std::string_view data) override { return write_all(fd, data); }

  int sync(int fd) override { return error_of(::fsync(fd)); }

  int close(UniqueFd& file) override { return file.close(); }

  int rename(const std::string& from, const std::string& to) override {
    return error_of(std::rename(from.c_str(), to.c_str()));
  }

  int link(const std::string& from, const std::string& to) override {
    return error_of(::link(from.c_str(), to.c_str()));
  }

  int remove(const std::string& path) override {
    return ::unlink(path.c_str()) == 0 || errno == ENOENT ? 0 : errno;
  }

  int sync_directory(const std::string& directory) override {
    UniqueFd dir = open_file(directory.empty() ? "." : directory, O_RDONLY | O_DIRECTORY);
    if (!dir.valid()) return errno;
    return error_of(::fsync(dir.get()));
  }

  int lock(const std::string& path, bool create, UniqueFd& file, bool& created) override {
    for (;;) {
      if (int error = open_for_lock(path, create, file, created)) return error;
      struct stat held;
      if (::fstat(file.get(), &held) != 0) return errno;
      if (!S_ISREG(held.st_mode)) return S_ISDIR(held.st_mode) ? EISDIR : EINVAL;
      int locked;
      do {
        locked = ::flock(file.get(), LOCK_EX);
      } while (locked != 0 && errno == EINTR);
      if (locked != 0) return errno;
      // Another writer may have renamed a new file over path while this one
      // waited; the lock then guards a file nobody reads any more.
      struct stat now;
      if (::stat(path.c_str(), &now) == 0 && same_file(held, now)) return 0;
      file.reset();
    }
  }
};

}  // namespace

FileSystem& system_file_system() {
  static SystemFileSystem files;
  return files;
}

}  // namespace px
