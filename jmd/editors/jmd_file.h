// Editing a JMD file outside the console's instance (pxctl jmd): the file is
// loaded into a JMD service of its own, edited through a JmdEditor with the
// same rules as the windows, and written back in the save format.
#pragma once

#include <memory>
#include <string>

#include "config/file_system.h"
#include "config/jmd_service.h"
#include "config/operator.h"
#include "jmd/editors/jmd_editor.h"
#include "jmd/jmd.h"

namespace px::editors {

class JmdFile {
 public:
  JmdFile(std::string path, Operator& op);

  // Loads the file; false after the load's own messages (-384 to -387).
  bool load();
  JmdEditor& editor() { return editor_; }
  const std::string& path() const { return path_; }

  // Writes the tables back over the file in one step (see
  // replace_jmd_file); false after showing kFileNotWritten.
  bool save();

 private:
  std::string path_;
  Operator& op_;
  JmdService service_;
  JmdEditor editor_;
};

// Writes jmd in the save format to a new file beside path, forces it to the
// disk and renames it over path, keeping path's permission bits: path is the
// old file or the new one, never a part of either. False (path untouched,
// the new file removed) when any step fails.
// The file steps go through files (a test's can fail any of them).
bool replace_jmd_file(jmd::Jmd& jmd, const std::string& path);
bool replace_jmd_file(jmd::Jmd& jmd, const std::string& path, FileSystem& files);

}  // namespace px::editors
