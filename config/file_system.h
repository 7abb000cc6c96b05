// The file steps of a save that must survive faults, behind one small
// interface: the real one does them on the disk, a test's one can fail any
// step and then check that the old files are still whole.
#pragma once

#include <string>

namespace px {

class FileSystem {
 public:
  virtual ~FileSystem() = default;

  // True when something is at path.
  virtual bool exists(const std::string& path) = 0;
  // Forces a written file's contents to the disk.
  virtual bool sync(const std::string& path) = 0;
  // Makes to a second name for the file at from (a hard link, or a copy where
  // links cannot be made). to must not exist.
  virtual bool keep_copy(const std::string& from, const std::string& to) = 0;
  // Renames from to to, replacing to in one step.
  virtual bool rename(const std::string& from, const std::string& to) = 0;
  // Deletes the file at path; true when it is gone.
  virtual bool remove(const std::string& path) = 0;
};

// The real file system.
FileSystem& system_file_system();

}  // namespace px
