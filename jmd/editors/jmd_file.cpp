#include "jmd/editors/jmd_file.h"

#include <sys/stat.h>

#include <optional>

#include "common/file_util.h"
#include "config/file_system.h"
#include "jmd/editors/editor_messages.h"
#include "jmd/jmd_report.h"
#include "jmd/jmd_writer.h"

namespace px::editors {

namespace {

// The load's messages reach the operator, its traces the log.
class OperatorReporter : public jmd::Reporter {
 public:
  explicit OperatorReporter(Operator& op) : op_(op) {}
  void message(int n, const std::vector<std::string>& args) override { op_.show(n, args); }
  void trace(std::string_view text) override { log_.trace(text); }

 private:
  Operator& op_;
  jmd::LogReporter log_;
};

}  // namespace

bool replace_jmd_file(jmd::Jmd& jmd, const std::string& path) {
  return replace_jmd_file(jmd, path, system_file_system());
}

bool replace_jmd_file(jmd::Jmd& jmd, const std::string& path, FileSystem& files) {
  std::string directory = directory_part(path);
  if (directory.empty()) directory = ".";
  std::optional<std::string> fresh = temp_name(directory, "jmd");
  if (!fresh) return false;
  if (!jmd::save_jmd(jmd, *fresh) || !files.sync(*fresh)) {
    files.remove(*fresh);
    return false;
  }
  struct stat info;
  if (::stat(path.c_str(), &info) == 0) ::chmod(fresh->c_str(), info.st_mode & 07777);
  if (!files.rename(*fresh, path)) {
    files.remove(*fresh);
    return false;
  }
  return true;
}

JmdFile::JmdFile(std::string path, Operator& op)
    : path_(std::move(path)), op_(op), editor_(service_, op) {}

bool JmdFile::load() {
  OperatorReporter reporter(op_);
  std::unique_ptr<jmd::Jmd> loaded = jmd::load_jmd(path_, reporter);
  if (!loaded) return false;
  service_.adopt(std::move(loaded));
  return true;
}

bool JmdFile::save() {
  jmd::Jmd* database = service_.jmd();
  if (database == nullptr || !replace_jmd_file(*database, path_)) {
    op_.show(msg::kFileNotWritten, {path_});
    return false;
  }
  service_.set_modified(false);
  return true;
}

}  // namespace px::editors
