#include "config/file_system.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "common/file_util.h"

namespace px {

namespace {

class SystemFileSystem : public FileSystem {
 public:
  bool exists(const std::string& path) override {
    struct stat info;
    return ::lstat(path.c_str(), &info) == 0;
  }

  bool sync(const std::string& path) override {
    int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    bool synced = ::fsync(fd) == 0;
    return ::close(fd) == 0 && synced;
  }

  bool keep_copy(const std::string& from, const std::string& to) override {
    if (::link(from.c_str(), to.c_str()) == 0) return true;
    // File systems without hard links (and links across devices) get a copy;
    // a target that exists already is never overwritten.
    if (errno == EEXIST || exists(to)) return false;
    return copy_file(from, to);
  }

  bool rename(const std::string& from, const std::string& to) override {
    return std::rename(from.c_str(), to.c_str()) == 0;
  }

  bool remove(const std::string& path) override {
    return ::unlink(path.c_str()) == 0 || errno == ENOENT;
  }
};

}  // namespace

FileSystem& system_file_system() {
  static SystemFileSystem files;
  return files;
}

}  // namespace px
