// Editing a JMD file outside the console's instance (pxctl jmd): the file is
// loaded into a JMD service of its own, edited through a JmdEditor with the
// same rules as the windows, and written back in the save format.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "common/file_system.h"
#include "config/jmd_service.h"
#include "config/operator.h"
#include "jmd/editors/jmd_editor.h"
#include "jmd/jmd.h"
#include "jmd/jmd_report.h"

namespace px::editors {

// A JMD load's messages reach the operator, its traces the log.
class OperatorReporter : public jmd::Reporter {
 public:
  explicit OperatorReporter(Operator& op) : op_(op) {}
  void message(int n, const std::vector<std::string>& args) override { op_.show(n, args); }
  void trace(std::string_view text) override { log_.trace(text); }

 private:
  Operator& op_;
  jmd::LogReporter log_;
};

class JmdFile {
 public:
  JmdFile(std::string path, Operator& op);

  // Loads the file; false after the load's own messages (-384 to -387).
  bool load();
  JmdEditor& editor() { return editor_; }
  const std::string& path() const { return path_; }

  // Writes the tables back over the file in one crash-safe step (the JMD
  // writer's replace, its file steps through files); false after showing
  // why and kFileNotWritten, the file then as it was.
  bool save(FileSystem& files = system_file_system());

 private:
  std::string path_;
  Operator& op_;
  JmdService service_;
  JmdEditor editor_;
};

}  // namespace px::editors
