// The one crash-safe way files are rewritten: the new contents go to a
// temporary file beside the target, which is synced and then renamed over
// the target (and the directory synced). Readers, a killed process and a full
// disk see the old file or the new one, never a mix: on any failure the
// target is left byte for byte as it was and the failed step is returned.
// Nothing is ever rewritten in place; where no temporary file can be made
// beside the target (a directory the user may not write, no free inodes) the
// rewrite is refused.
//
// Temporary files are named "." + the target's name + ".px" + the writing
// process's id + "-" + six hex digits + "." + the machine's host name, e.g.
// ".jobs.jmd.px4711-00a3f2.north1". A process killed mid-write leaves its
// temporary behind; the next rewrite or load of the same target on the same
// machine removes those whose process has ended.
//
// The new file takes the old one's permission bits, and its owner and group
// where the process may set them (as root always; otherwise the writer's
// own, with the group kept when the writer belongs to it). A new file gets
// 0666 less the umask. A symbolic link is followed and stays a link.
//
// Messages (texts in the catalogue), each with @P1 the file and @P2 the
// system's reason:
//   1300  no temporary file can be made beside it (the rewrite is refused)
//   1301  writing the new contents failed (disk full, I/O error)
//   1302  the new contents could not be forced to the disk
//   1303  the new contents could not be renamed over it
//   1304  it could not be opened and locked for the change
//   1305  it is not a regular file (@P2 unused)
//   1306  its present contents could not be read
//   1353  the change itself cannot be written and read back (@P2 unused)
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/file_system.h"
#include "common/unique_fd.h"

namespace px {

inline constexpr int kMsgTempNotCreated = 1300;
inline constexpr int kMsgTempNotWritten = 1301;
inline constexpr int kMsgTempNotSynced = 1302;
inline constexpr int kMsgNotRenamed = 1303;
inline constexpr int kMsgNotLocked = 1304;
inline constexpr int kMsgNotRegular = 1305;
inline constexpr int kMsgNotRead = 1306;
inline constexpr int kMsgChangeRefused = 1353;

// The step of a rewrite that failed; kRefused when the caller's change was
// refused before the file was touched.
enum class FileStep { kNone, kRefused, kLock, kRead, kCreate, kWrite, kSync, kRename };

// The outcome of a rewrite: true when it is done, else the failed step and
// its errno.
struct FileResult {
  FileStep failed = FileStep::kNone;
  int error = 0;
  explicit operator bool() const { return failed == FileStep::kNone; }
};

// The numbered message that tells the operator why a rewrite of path
// failed, with its arguments.
struct FileMessage {
  int number = 0;
  std::vector<std::string> args;
};
FileMessage failure_message(const FileResult& result, const std::string& path);

struct ReplaceOptions {
  // When not empty, the old file stays under this name once the new one is
  // in place (replacing an older one); a backup that cannot be made is not
  // reported and does not stop the rewrite.
  std::string backup;
  // False skips the syncs: the rewrite still never leaves a mix when the
  // process dies, but may not survive a power cut. Only for files that are
  // rewritten all the time and cost nothing to lose (the simulator's status).
  bool durable = true;
  // True publishes the new file only where none exists yet: it is linked to
  // the name instead of renamed over it, so nothing is ever replaced (commit
  // then fails at kRename with EEXIST) and no one sees it half-written.
  bool keep_existing = false;
};

// A new version of a file, written piece by piece and put in place by
// commit. Destroying it uncommitted removes the temporary file.
class FileReplacement {
 public:
  explicit FileReplacement(const std::string& path, FileSystem& files = system_file_system(),
                           ReplaceOptions options = {});
  ~FileReplacement();
  FileReplacement(const FileReplacement&) = delete;
  FileReplacement& operator=(const FileReplacement&) = delete;

  // Adds data to the new contents (buffered); false once a step has failed.
  bool append(std::string_view data);
  // Writes what is buffered, syncs, renames over the target, keeps the
  // backup and syncs the directory. The first failure is returned and the
  // target is as it was.
  FileResult commit();
  // The first failure so far (true while none).
  const FileResult& result() const { return result_; }

 private:
  bool fail(FileStep step, int error);
  bool flush();
  void keep_backup();
  void abandon();

  FileSystem& files_;
  ReplaceOptions options_;
  std::string target_;     // the file really replaced (links resolved)
  std::string temporary_;  // empty when none was made
  UniqueFd file_;
  std::string buffer_;
  FileResult result_;
};

// Replaces the whole contents of path with text.
FileResult replace_file(const std::string& path, std::string_view text,
                        FileSystem& files = system_file_system(),
                        const ReplaceOptions& options = {});

// What a locked rewrite makes of the old text: nullopt when the file did not
// exist. Returning nullopt leaves the file as it was.
using TextChange =
    std::function<std::optional<std::string>(const std::optional<std::string>& old_text)>;

// Rewrites path under an exclusive advisory lock held from before the read
// to after the rename, so writers of the same file in this and other
// processes never lose each other's changes. A missing file is created.
// When change returns nullopt nothing is written (a file made only for the
// lock is removed again) and the result is true.
FileResult rewrite_file(const std::string& path, const TextChange& change,
                        FileSystem& files = system_file_system(),
                        const ReplaceOptions& options = {});

// Appends text to path (created with mode, less the umask, when missing) as
// one piece: under the file's exclusive lock, so appenders in this and other
// processes never interleave, and synced. On any failure the file is cut
// back to its old length, so it is as it was; the failed step is returned
// (kLock for the open, kWrite for a write or close, kSync).
FileResult append_file(const std::string& path, std::string_view text, mode_t mode,
                       FileSystem& files = system_file_system());

// Removes the temporary files beside path left by rewrites of it whose
// process has ended. Failures are ignored.
void remove_stale_temporaries(const std::string& path);

}  // namespace px
