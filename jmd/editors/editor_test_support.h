// A JMD file in a test directory, opened for editing, for the editors' tests.
#pragma once

#include <string>

#include "config/recording_operator.h"
#include "jmd/editors/jmd_file.h"
#include "jmd/editors/row_list.h"
#include "tests/support/small_jmd.h"
#include "tests/support/test_dir.h"

namespace px::editors {

class EditorFixture {
 public:
  explicit EditorFixture(const std::string& text = kSmallJmd)
      : path_(dir_.write("jobs.jmd", text)), file_(path_, op_) {
    loaded_ = file_.load();
  }
  bool loaded() const { return loaded_; }
  JmdEditor& editor() { return file_.editor(); }
  RecordingOperator& op() { return op_; }
  JmdFile& file() { return file_; }
  // Saves and returns the file's text.
  std::string saved() {
    file_.save();
    return dir_.read("jobs.jmd");
  }
  // The lines of every row of a list of kind (all pages).
  std::vector<std::string> lines(ListKind kind, const std::string& job = {}) {
    RowList list(kind, job);
    if (!editor().reload(list)) return {};
    std::vector<std::string> all;
    for (;;) {
      for (std::string& line : editor().page_lines(list)) all.push_back(std::move(line));
      if (!list.has_next()) break;
      list.next_page();
    }
    return all;
  }

 private:
  TestDir dir_;
  RecordingOperator op_;
  std::string path_;
  JmdFile file_;
  bool loaded_ = false;
};

}  // namespace px::editors
