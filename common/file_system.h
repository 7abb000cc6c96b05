// The file steps of a rewrite that must survive faults, behind one small
// interface: the real one does them on the disk; a test's one can fail any
// step with any error number and then check that the old file is still whole.
// Every rewrite of a file the operator cares about (the JMD, INI files, the
// simulator's status files) goes through these steps, by way of
// common/file_replace.h.
//
// Every call returns 0 on success or the errno of the failure.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

#include "common/unique_fd.h"

namespace px {

class FileSystem {
 public:
  virtual ~FileSystem() = default;

  // Creates a new file at path for writing, never opening one that exists
  // (EEXIST), with the permission bits mode (less the umask).
  virtual int create(const std::string& path, mode_t mode, UniqueFd& file) = 0;
  // Writes all of data to the file.
  virtual int write(int fd, std::string_view data) = 0;
  // Forces the file's contents to the disk.
  virtual int sync(int fd) = 0;
  // Closes the file; a late write error shows up here on some file systems.
  virtual int close(UniqueFd& file) = 0;
  // Renames from to to, replacing to in one step.
  virtual int rename(const std::string& from, const std::string& to) = 0;
  // Makes to a second name of the file at from; to must not exist.
  virtual int link(const std::string& from, const std::string& to) = 0;
  // Deletes the name path; a name that is gone already counts as deleted.
  virtual int remove(const std::string& path) = 0;
  // Forces the directory's entries to the disk, so a rename in it lasts.
  virtual int sync_directory(const std::string& directory) = 0;
  // Opens the regular file at path for writing (creating it empty when
  // missing and create is set) and waits for an exclusive advisory lock on
  // it. The lock is taken on the file the path names once it is held, so a
  // writer that renamed a new file over path in the meantime is not missed.
  // ENOENT for a missing file without create, EISDIR or EINVAL for anything
  // but a regular file. created tells whether this call made the file.
  virtual int lock(const std::string& path, bool create, UniqueFd& file, bool& created) = 0;
};

// The real file system.
FileSystem& system_file_system();

}  // namespace px
