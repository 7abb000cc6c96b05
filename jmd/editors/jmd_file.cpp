#include "jmd/editors/jmd_file.h"

#include "common/file_replace.h"
#include "jmd/editors/editor_messages.h"
#include "jmd/jmd_report.h"
#include "jmd/jmd_writer.h"

namespace px::editors {

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
