// The model of the "Select Directory" dialog (150): the drives of the
// machine and the directories of the current one, walked without changing
// the process's own current directory (so nothing needs restoring when the
// dialog ends).
//
// Drives come from the mount table: "/" first, then the local disk file
// systems and the network ones in mount-point order. A network file system
// (nfs, nfs4, cifs, smb3, fuse.sshfs, 9p) is listed as "<mount point>  <source>"
// and left out when it has no source; pseudo, optical and removable file
// systems are not listed. The drive of a directory is the listed mount
// point that is the longest prefix of it. As the original row counter did,
// a left-out network drive still counts when the current drive's row is
// worked out, so the selection can fall one row late after one.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace px::forms {

struct Drive {
  std::string mount_point;
  std::string row;  // as the drive list shows it
  bool listed = true;
};

// The drives of a mount table's text (the format of /proc/self/mounts),
// listed and left out, in list order.
std::vector<Drive> drives_from_mount_table(std::string_view text);

// The drives of this machine.
std::vector<Drive> system_drives();

class DirectoryBrowser {
 public:
  // Opens on start when it names a directory (a leading "x:" is ignored,
  // a relative one is taken from cwd), else on cwd.
  DirectoryBrowser(std::vector<Drive> drives, std::string_view start, const std::string& cwd);

  // The drive list's rows and the selected one (-1 when none fits).
  std::vector<std::string> drive_rows() const;
  int drive_row() const { return drive_row_; }
  // The directory shown, and its sub-directories (".." included, "." not),
  // sorted by name.
  const std::string& directory() const { return directory_; }
  const std::vector<std::string>& entries() const { return entries_; }

  // Another drive chosen: lists its mount point. False, with nothing
  // changed, when it cannot be read.
  bool choose_drive(int row);
  // A directory of the list double-clicked: lists it. False, with nothing
  // changed, when it cannot be read.
  bool enter(std::string_view entry);

 private:
  bool list(const std::string& directory);
  int row_of_drive(const std::string& directory) const;

  std::vector<Drive> drives_;  // listed ones only
  std::vector<Drive> all_drives_;
  std::string directory_;
  std::vector<std::string> entries_;
  int drive_row_ = -1;
};

}  // namespace px::forms
