#include "common/file_util.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>

#include "common/platform.h"
#include "common/readable_file.h"

namespace px {
namespace {

constexpr size_t npos = std::string_view::npos;

// Calls sink with each block read from fd until end of file.
template <typename Sink>
bool read_blocks(int fd, Sink sink) {
  char buffer[16384];
  for (;;) {
    ssize_t count = ::read(fd, buffer, sizeof buffer);
    if (count == 0) return true;
    if (count < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    if (!sink(std::string_view(buffer, static_cast<size_t>(count)))) return false;
  }
}

// Index of the first character of the last path component.
size_t last_component_start(std::string_view path) {
  size_t i = path.size();
  while (i > 0 && !is_separator(path[i - 1])) --i;
  return i;
}

// Position of the extension's dot; npos when the last component has no dot.
// A dot in a directory name is not an extension.
size_t extension_dot(std::string_view path) {
  size_t dot = path.rfind('.');
  return (dot == npos || dot < last_component_start(path)) ? npos : dot;
}

bool is_bad_short_name_char(char c) {
  unsigned char u = static_cast<unsigned char>(c);
  return u < 33 || u == 127 || std::string_view("/:?*<>|").find(c) != npos;
}

bool same_file(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool rename_or_copy(const std::string& from, const std::string& to) {
  if (std::rename(from.c_str(), to.c_str()) == 0) return true;
  if (errno != EXDEV) return false;
  return copy_file(from, to) && ::unlink(from.c_str()) == 0;
}

// Successive temporary-name numbers. Starting from the process id and the
// clock spreads concurrent processes apart; the counter keeps one process
// from offering the same (deleted, hence free) name twice in a row.
unsigned next_temp_number() {
  static std::atomic<unsigned> counter{0};
  unsigned seed = static_cast<unsigned>(::getpid()) * 40503u + static_cast<unsigned>(std::time(nullptr));
  return (seed + counter++) % 0xFFFFu + 1;  // 1..FFFF, as four hex digits at most
}

constexpr unsigned kTempNumberCount = 0xFFFF;

}  // namespace

bool is_separator(char c) { return c == '/' || c == '\\'; }

std::string add_separator(std::string_view path) {
  std::string result(path);
  if (!result.empty() && !is_separator(result.back())) result += '/';
  return result;
}

std::string strip_separators(std::string_view path) {
  while (!path.empty() && is_separator(path.back())) path.remove_suffix(1);
  return std::string(path);
}

std::string join_path(std::string_view name, std::string_view directory) {
  if (directory.empty()) return std::string(name);
  return add_separator(directory) + std::string(name);
}

std::string directory_part(std::string_view path) {
  return std::string(path.substr(0, last_component_start(path)));
}

std::string file_part(std::string_view path) {
  return std::string(path.substr(last_component_start(path)));
}

std::string cut_at_backslash(std::string_view path) {
  return std::string(path.substr(0, path.find('\\')));
}

std::string add_extension(std::string_view name, std::string_view ext) {
  std::string result(name);
  if (extension_dot(name) == npos) {
    result += '.';
    result += ext;
  }
  return result;
}

std::string strip_extension(std::string_view name) {
  return std::string(name.substr(0, extension_dot(name)));
}

std::string extension(std::string_view name) {
  size_t dot = extension_dot(name);
  return dot == npos ? std::string() : std::string(name.substr(dot + 1, 3));
}

bool is_absolute(std::string_view path) {
  return (!path.empty() && is_separator(path.front())) || path.find(':') != npos;
}

bool is_directory(const std::string& path) {
  struct stat info;
  return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// Characters are checked before lengths, so a name that is both too long and
// holds a bad character reports kShortNameBadChar. Base and extension are
// split at the last dot.
int check_short_name(std::string_view name) {
  std::string_view component = name.substr(last_component_start(name));
  for (char c : component) {
    if (is_bad_short_name_char(c)) return kShortNameBadChar;
  }
  size_t dot = component.rfind('.');
  size_t base_length = (dot == npos) ? component.size() : dot;
  size_t ext_length = (dot == npos) ? 0 : component.size() - dot - 1;
  return (base_length > 8 || ext_length > 3) ? kShortNameTooLong : kShortNameOk;
}

bool move_file(const std::string& from, const std::string& to) {
  // The classic branch deletes the target before moving; when the move then
  // fails the target is gone. That is the documented behaviour of the branch.
  if (!is_nt_family()) ::unlink(to.c_str());
  return rename_or_copy(from, to);
}

bool copy_file(const std::string& from, const std::string& to) {
  UniqueFd source = open_file(from, O_RDONLY);
  struct stat from_stat;
  if (!source.valid() || ::fstat(source.get(), &from_stat) != 0 || S_ISDIR(from_stat.st_mode)) {
    return false;
  }
  // Opening the source itself with O_TRUNC would destroy it.
  struct stat to_stat;
  if (::stat(to.c_str(), &to_stat) == 0 && same_file(from_stat, to_stat)) return false;

  UniqueFd target = open_file(to, O_WRONLY | O_CREAT | O_TRUNC, from_stat.st_mode & 07777);
  if (!target.valid()) return false;
  bool copied = read_blocks(source.get(), [&](std::string_view block) {
    return write_all(target.get(), block) == 0;
  });
  return copied && target.close() == 0;
}

std::string temp_directory() {
  for (const char* variable : {"TMPDIR", "TMP"}) {
    const char* value = std::getenv(variable);
    if (value != nullptr && *value != '\0' && is_directory(value)) return value;
  }
  return is_directory("/tmp") ? "/tmp" : ".";
}

std::optional<std::string> temp_name(std::string_view directory, std::string_view prefix) {
  const std::string folder = directory.empty() ? temp_directory() : std::string(directory);
  const std::string stem(prefix.size() < 3 ? std::string_view("PXX") : prefix.substr(0, 3));
  for (unsigned attempt = 0; attempt < kTempNumberCount; ++attempt) {
    char number[16];
    std::snprintf(number, sizeof number, "%X", next_temp_number());
    std::string path = join_path(stem + number + ".tmp", folder);
    if (open_file(path, O_WRONLY | O_CREAT | O_EXCL, 0600).valid()) {
      ::unlink(path.c_str());
      return path;
    }
    if (errno != EEXIST) return std::nullopt;  // unusable directory: no number will help
  }
  return std::nullopt;
}

std::optional<std::string> temp_name_with_extension(std::string_view directory,
                                                    std::string_view prefix,
                                                    std::string_view ext) {
  std::optional<std::string> name = temp_name(directory, prefix);
  if (!name) return std::nullopt;
  std::string stem = strip_extension(*name);
  return ext.empty() ? stem : add_extension(stem, ext);
}

// A name counts as free when it cannot be opened for reading, so an existing
// but unreadable file is (rarely) offered as well.
std::optional<std::string> unique_name(std::string_view directory, std::string_view prefix,
                                       std::string_view ext) {
  const std::string lead(prefix.size() < 2 ? std::string_view("px") : prefix.substr(0, 2));
  struct timespec now;
  ::clock_gettime(CLOCK_REALTIME, &now);
  const unsigned long pid = static_cast<unsigned long>(::getpid());
  const unsigned long seconds = static_cast<unsigned long>(now.tv_sec);
  const unsigned long millis = static_cast<unsigned long>(now.tv_nsec / 1000000) & 0xFFFFul;
  for (char letter = 'a'; letter <= 'z'; ++letter) {
    char buffer[80];
    std::snprintf(buffer, sizeof buffer, "%2.2s%lX%lX%lX%c", lead.c_str(), pid, seconds, millis,
                  letter);
    std::string name = ext.empty() ? std::string(buffer) : add_extension(buffer, ext);
    name = join_path(name, directory);
    UniqueFd probe = open_file(name, O_RDONLY);
    if (!probe.valid()) return name;
  }
  return std::nullopt;
}

UniqueFd open_file(const std::string& path, int flags, mode_t mode) {
  int fd;
  do {
    fd = ::open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY, mode);
  } while (fd < 0 && errno == EINTR);
  return UniqueFd(fd);
}

std::optional<std::string> read_file(const std::string& path) {
  return read_whole_file(path, std::string().max_size());
}

bool write_output_file(const std::string& path, std::string_view text, bool append) {
  int flags = O_WRONLY | O_CREAT | O_NONBLOCK | (append ? O_APPEND : O_TRUNC);
  UniqueFd out = open_file(path, flags, 0666);
  if (!out.valid()) return false;
  // Open now; a pipe's writes wait for its reader as usual.
  int status = ::fcntl(out.get(), F_GETFL);
  if (status == -1 || ::fcntl(out.get(), F_SETFL, status & ~O_NONBLOCK) == -1) return false;
  bool written = write_all(out.get(), text) == 0;
  return out.close() == 0 && written;
}

int write_all(int fd, std::string_view data) {
  while (!data.empty()) {
    ssize_t written = ::write(fd, data.data(), data.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    data.remove_prefix(static_cast<size_t>(written));
  }
  return 0;
}

}  // namespace px
