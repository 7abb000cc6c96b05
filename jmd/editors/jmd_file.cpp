#include "jmd/editors/jmd_file.h"

#include "common/file_replace.h"
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

JmdFile::JmdFile(std::string path, Operator& op)
    : path_(std::move(path)), op_(op), editor_(service_, op) {}

bool JmdFile::load() {
  OperatorReporter reporter(op_);
  std::unique_ptr<jmd::Jmd> loaded = jmd::load_jmd(path_, reporter);
  if (!loaded) return false;
  service_.adopt(std::move(loaded));
  return true;
}

bool JmdFile::save(FileSystem& files) {
  jmd::Jmd* database = service_.jmd();
  if (database == nullptr) {
    op_.show(msg::kFileNotWritten, {path_});
    return false;
  }
  FileResult saved = jmd::save_jmd(*database, path_, files);
  if (!saved) {
    FileMessage why = failure_message(saved, path_);
    op_.show(why.number, why.args);
    op_.show(msg::kFileNotWritten, {path_});
    return false;
  }
  service_.set_modified(false);
  return true;
}

}  // namespace px::editors
