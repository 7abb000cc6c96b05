// A file system for tests that does every step on the disk except the one
// it is told to fail: that step returns the given errno instead (a failed
// write first writes half of its data, as a disk that fills up does). It
// counts the steps, so a test can fail each step in turn.
#pragma once

#include <cerrno>
#include <functional>
#include <string>

#include "common/file_replace.h"
#include "common/file_system.h"

namespace px {

class FaultyFileSystem : public FileSystem {
 public:
  enum Step { kNoStep, kCreate, kWrite, kSync, kClose, kRename, kLink, kRemove, kLock };

  FaultyFileSystem() = default;
  // Fails step with error; when is asked with the step's path (empty for the
  // steps on an open file) and must agree, when given.
  FaultyFileSystem(Step step, int error, std::function<bool(const std::string&)> when = {})
      : step_(step), error_(error), when_(std::move(when)) {}

  // How many times the failure was given.
  int failures() const { return failures_; }

  int create(const std::string& path, mode_t mode, UniqueFd& file) override {
    return failing(kCreate, path) ? error_ : real_.create(path, mode, file);
  }
  int write(int fd, std::string_view data) override {
    if (!failing(kWrite, "")) return real_.write(fd, data);
    real_.write(fd, data.substr(0, data.size() / 2));
    return error_;
  }
  int sync(int fd) override { return failing(kSync, "") ? error_ : real_.sync(fd); }
  int close(UniqueFd& file) override {
    int closed = real_.close(file);  // the descriptor is gone either way
    return failing(kClose, "") ? error_ : closed;
  }
  int rename(const std::string& from, const std::string& to) override {
    return failing(kRename, to) ? error_ : real_.rename(from, to);
  }
  int link(const std::string& from, const std::string& to) override {
    return failing(kLink, to) ? error_ : real_.link(from, to);
  }
  int remove(const std::string& path) override {
    return failing(kRemove, path) ? error_ : real_.remove(path);
  }
  int sync_directory(const std::string& directory) override {
    return real_.sync_directory(directory);
  }
  int lock(const std::string& path, bool create, UniqueFd& file, bool& created) override {
    created = false;
    return failing(kLock, path) ? error_ : real_.lock(path, create, file, created);
  }

 private:
  bool failing(Step step, const std::string& path) {
    if (step != step_ || (when_ && !when_(path))) return false;
    ++failures_;
    return true;
  }

  Step step_ = kNoStep;
  int error_ = 0;
  std::function<bool(const std::string&)> when_;
  int failures_ = 0;
  FileSystem& real_ = system_file_system();
};

// The steps of a locked rewrite (common/file_replace.h) that a test fails in
// turn, each with the message its failure gives, and the errors it fails
// them with.
struct RewriteFault {
  FaultyFileSystem::Step step;
  int message;
};
inline constexpr RewriteFault kRewriteFaults[] = {
    {FaultyFileSystem::kLock, kMsgNotLocked},      {FaultyFileSystem::kCreate, kMsgTempNotCreated},
    {FaultyFileSystem::kWrite, kMsgTempNotWritten}, {FaultyFileSystem::kSync, kMsgTempNotSynced},
    {FaultyFileSystem::kRename, kMsgNotRenamed}};
inline constexpr int kRewriteErrors[] = {ENOSPC, EIO, EACCES};

}  // namespace px
