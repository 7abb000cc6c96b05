// A JMD file in a test directory, opened for editing, for the editors' tests.
#pragma once

#include <string>

#include "config/recording_operator.h"
#include "jmd/editors/jmd_file.h"
#include "jmd/editors/row_list.h"
#include "tests/support/test_dir.h"

namespace px::editors {

inline constexpr const char* kJmdHeader = "# Plexar Job Management Database (JMD) file\n";

// A small JMD: two jobs (INVOICE with two steps, CHEQUE with one), two
// printers, one task and one managed-memory row.
inline const char* const kSmallJmd =
    "# Plexar Job Management Database (JMD) file\n"
    "!f CHEQUE LASER2 /forms/chq.mdf * 2 T PXMERGE N N C *\n"
    "!f INVOICE LASER1 inv.mdf * 1 T PXMERGE N N C \"first step\"\n"
    "!f INVOICE LASER2 inv2.mdf * 1 T PXMERGE N N C *\n"
    "!p LASER1 HP4 LPT1 * 50 *\n"
    "!p LASER2 * LPT2 * 50 *\n"
    "!x PXMERGE WClass pxmerge.exe * *\n"
    "!m HP4 4096 \"four k\"\n";

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
