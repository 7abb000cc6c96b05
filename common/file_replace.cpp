#include "common/file_replace.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>

#include "common/file_util.h"

namespace px {

namespace {

constexpr size_t kBufferSize = 1 << 20;
constexpr int kNameAttempts = 100;
constexpr std::string_view kTempMark = ".px";

// The path with its symbolic links resolved; the path itself when it does
// not exist (yet).
std::string resolved_path(const std::string& path) {
  std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
  return real ? std::string(real.get()) : path;
}

// True when something (even a dangling link) has the name path.
bool path_exists(const std::string& path) {
  struct stat info;
  return ::lstat(path.c_str(), &info) == 0 || errno != ENOENT;
}

// "." + name + ".px": what every temporary of the file name starts with.
std::string temp_prefix(std::string_view name) {
  return "." + std::string(name) + std::string(kTempMark);
}

// This machine's name as it goes into temporary names: letters, digits, "-"
// and "_" (anything else becomes "_"), at most 32 characters. A process id
// means something only on the machine that gave it, and a directory may be
// shared with others.
const std::string& host_mark() {
  static const std::string mark = [] {
    char name[256] = {};
    if (::gethostname(name, sizeof name - 1) != 0) return std::string("host");
    std::string result(name, strnlen(name, 32));
    for (char& c : result) {
      bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                   c == '-' || c == '_';
      if (!plain) c = '_';
    }
    return result.empty() ? std::string("host") : result;
  }();
  return mark;
}

// A fresh temporary name beside target, owned by this process:
// prefix, pid, "-", six hex digits, ".", host mark.
std::string temp_name_for(const std::string& target) {
  static std::atomic<unsigned> counter{0};
  unsigned mix = static_cast<unsigned>(std::time(nullptr)) * 2654435761u +
                 static_cast<unsigned>(::getpid()) * 40503u + counter++ * 7919u;
  char tail[32];
  std::snprintf(tail, sizeof tail, "%ld-%06x.", static_cast<long>(::getpid()), mix & 0xFFFFFFu);
  return directory_part(target) + temp_prefix(file_part(target)) + tail + host_mark();
}

// The process id in a temporary's name after its prefix
// ("4711-00a3f2.host"), or 0 when the rest is not of that form or was made
// on another machine.
long owner_of(std::string_view rest) {
  size_t dash = rest.find('-');
  if (dash == 0 || dash == std::string_view::npos || rest.size() < dash + 7 ||
      rest.substr(dash + 7) != "." + host_mark()) {
    return 0;
  }
  long pid = 0;
  for (char c : rest.substr(0, dash)) {
    if (c < '0' || c > '9' || pid > 100000000) return 0;
    pid = pid * 10 + (c - '0');
  }
  return pid;
}

bool process_has_ended(long pid) {
  return ::kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH;
}

// Gives the new file the old one's owner, group and permission bits, as far
// as this process may.
void take_identity(int fd, const struct stat& old) {
  struct stat now;
  if (::fstat(fd, &now) == 0 && (now.st_uid != old.st_uid || now.st_gid != old.st_gid)) {
    if (::fchown(fd, old.st_uid, old.st_gid) != 0) {
      (void)!::fchown(fd, static_cast<uid_t>(-1), old.st_gid);  // the group, at least
    }
  }
  (void)!::fchmod(fd, old.st_mode & 07777);
}

}  // namespace

FileMessage failure_message(const FileResult& result, const std::string& path) {
  int number = 0;
  switch (result.failed) {
    case FileStep::kNone: return {};
    case FileStep::kRefused: number = kMsgChangeRefused; break;
    case FileStep::kLock:
      number = result.error == EISDIR || result.error == EINVAL ? kMsgNotRegular : kMsgNotLocked;
      break;
    case FileStep::kRead: number = kMsgNotRead; break;
    case FileStep::kCreate: number = kMsgTempNotCreated; break;
    case FileStep::kWrite: number = kMsgTempNotWritten; break;
    case FileStep::kSync: number = kMsgTempNotSynced; break;
    case FileStep::kRename: number = kMsgNotRenamed; break;
  }
  return {number, {path, std::strerror(result.error)}};
}

FileReplacement::FileReplacement(const std::string& path, FileSystem& files,
                                 ReplaceOptions options)
    : files_(files), options_(std::move(options)), target_(resolved_path(path)) {
  remove_stale_temporaries(target_);
  struct stat old;
  bool replacing = ::stat(target_.c_str(), &old) == 0 && S_ISREG(old.st_mode);
  // A new file gets the usual bits; a replacement starts private and takes
  // the old file's bits before anything is written into it.
  mode_t mode = replacing ? 0600 : 0666;
  int error = EEXIST;
  for (int attempt = 0; attempt < kNameAttempts && error == EEXIST; ++attempt) {
    temporary_ = temp_name_for(target_);
    error = files_.create(temporary_, mode, file_);
  }
  if (error != 0) {
    temporary_.clear();
    fail(FileStep::kCreate, error);
    return;
  }
  if (replacing) take_identity(file_.get(), old);
  buffer_.reserve(kBufferSize);
}

FileReplacement::~FileReplacement() { abandon(); }

bool FileReplacement::fail(FileStep step, int error) {
  if (result_) result_ = {step, error == 0 ? EIO : error};
  abandon();
  return false;
}

void FileReplacement::abandon() {
  if (file_.valid()) files_.close(file_);
  if (!temporary_.empty()) files_.remove(temporary_);
  temporary_.clear();
}

bool FileReplacement::flush() {
  if (buffer_.empty()) return true;
  int error = files_.write(file_.get(), buffer_);
  buffer_.clear();
  return error == 0 || fail(FileStep::kWrite, error);
}

bool FileReplacement::append(std::string_view data) {
  if (!result_) return false;
  if (buffer_.size() + data.size() > kBufferSize && !flush()) return false;
  if (data.size() >= kBufferSize) {
    int error = files_.write(file_.get(), data);
    return error == 0 || fail(FileStep::kWrite, error);
  }
  buffer_ += data;
  return true;
}

FileResult FileReplacement::commit() {
  if (!result_ || !flush()) return result_;
  if (options_.durable) {
    if (int error = files_.sync(file_.get())) {
      fail(FileStep::kSync, error);
      return result_;
    }
  }
  if (int error = files_.close(file_)) {
    fail(FileStep::kWrite, error);
    return result_;
  }
  std::string held;
  if (!options_.backup.empty() && options_.backup != target_) {
    held = temp_name_for(target_);
    if (files_.link(target_, held) != 0) held.clear();
  }
  bool linked = options_.keep_existing;
  int published = linked ? files_.link(temporary_, target_) : files_.rename(temporary_, target_);
  if (linked && (published == EPERM || published == EOPNOTSUPP) && !path_exists(target_)) {
    // A file system without hard links (some network shares): a rename
    // while the name is free is the nearest it has.
    linked = false;
    published = files_.rename(temporary_, target_);
  }
  if (published != 0) {
    if (!held.empty()) files_.remove(held);
    fail(FileStep::kRename, published);
    return result_;
  }
  if (linked) files_.remove(temporary_);  // the target's name stays
  temporary_.clear();
  if (!held.empty() && files_.rename(held, options_.backup) != 0) files_.remove(held);
  // The new contents are whole and in place. Should the directory not sync,
  // only their surviving a power cut is in doubt, and nothing is left that
  // the operator could do about it, so that is not reported.
  if (options_.durable) files_.sync_directory(directory_part(target_));
  return result_;
}

FileResult replace_file(const std::string& path, std::string_view text, FileSystem& files,
                        const ReplaceOptions& options) {
  FileReplacement replacement(path, files, options);
  replacement.append(text);
  return replacement.commit();
}

FileResult rewrite_file(const std::string& path, const TextChange& change, FileSystem& files,
                        const ReplaceOptions& options) {
  UniqueFd lock;
  bool created = false;
  if (int error = files.lock(path, true, lock, created)) return {FileStep::kLock, error};
  std::optional<std::string> old_text;
  if (!created) {
    old_text = read_file(path);
    if (!old_text) return {FileStep::kRead, errno == 0 ? EIO : errno};
  }
  std::optional<std::string> new_text = change(old_text);
  FileResult result;
  if (new_text) {
    ReplaceOptions kept = options;
    if (created) kept.backup.clear();  // there is no old file to keep
    result = replace_file(path, *new_text, files, kept);
  }
  if (created && (!new_text || !result)) files.remove(path);
  return result;
}

FileResult append_file(const std::string& path, std::string_view text, mode_t mode,
                       FileSystem& files) {
  UniqueFd file;
  bool created = false;
  if (int error = files.lock(path, true, file, created)) return {FileStep::kLock, error};
  // A second descriptor of the same open file keeps the lock, and the means
  // to cut the file back, past a close that fails.
  struct stat old {};
  UniqueFd held;
  if (::fstat(file.get(), &old) == 0 && ::fcntl(file.get(), F_SETFL, O_APPEND) == 0) {
    held.reset(::fcntl(file.get(), F_DUPFD_CLOEXEC, 0));
  }
  if (!held.valid()) {
    int error = errno;
    if (created) files.remove(path);
    return {FileStep::kLock, error};
  }
  // The file was made with 0666 less the umask; narrow that to mode.
  if (created) ::fchmod(file.get(), old.st_mode & mode & 07777);
  FileResult result;
  if (int error = files.write(file.get(), text)) {
    result = {FileStep::kWrite, error};
  } else if (int error = files.sync(file.get())) {
    result = {FileStep::kSync, error};
  } else if (int error = files.close(file)) {
    result = {FileStep::kWrite, error};
  }
  if (!result) {
    if (created) {
      files.remove(path);
    } else if (::ftruncate(held.get(), old.st_size) == 0) {
      ::fsync(held.get());
    }
  }
  return result;
}

void remove_stale_temporaries(const std::string& path) {
  std::string directory = directory_part(path);
  std::unique_ptr<DIR, int (*)(DIR*)> dir(::opendir(directory.empty() ? "." : directory.c_str()),
                                          ::closedir);
  if (!dir) return;
  const std::string prefix = temp_prefix(file_part(path));
  while (const dirent* entry = ::readdir(dir.get())) {
    std::string_view name(entry->d_name);
    if (!name.starts_with(prefix)) continue;
    long pid = owner_of(name.substr(prefix.size()));
    if (pid > 0 && pid != ::getpid() && process_has_ended(pid)) {
      ::unlinkat(::dirfd(dir.get()), entry->d_name, 0);
    }
  }
}

}  // namespace px
