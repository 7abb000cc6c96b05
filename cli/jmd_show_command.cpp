// pxctl jmd show: a JMD list as its window shows it, its header message and
// then the rows of one page; or the steps of one job.
#include <cstdio>

#include "cli/cli.h"
#include "cli/console_operator.h"
#include "cli/jmd_edit_support.h"
#include "jmd/editors/editor_messages.h"
#include "jmd/editors/jmd_file.h"
#include "jmd/editors/row_list.h"

namespace px::cli {

namespace {

bool print_line(const std::string& line) {
  return std::fwrite(line.data(), 1, line.size(), stdout) == line.size() &&
         std::fputc('\n', stdout) != EOF;
}

}  // namespace

int jmd_show(const std::vector<std::string>& w) {
  // show FILE LIST [--page N] | show FILE steps JOB [--page N]
  std::vector<std::string> words(w.begin(), w.end());
  long page = 1;
  if (words.size() >= 2 && words[words.size() - 2] == "--page") {
    std::optional<long> n = positive_number(words.back());
    if (!n) return usage_error("jmd show", "pxctl jmd show FILE jobs|tasks|printers|memory [--page N] | show FILE steps JOB [--page N]");
    page = *n;
    words.resize(words.size() - 2);
  }
  bool steps = words.size() == 4 && words[2] == "steps";
  std::optional<editors::ListKind> kind =
      steps ? std::optional(editors::ListKind::kSteps)
            : (words.size() == 3 ? list_named(words[2]) : std::nullopt);
  if (!kind) return usage_error("jmd show", "pxctl jmd show FILE jobs|tasks|printers|memory [--page N] | show FILE steps JOB [--page N]");

  ConsoleOperator op;
  editors::JmdFile file(words[1], op);
  if (!file.load()) return kExitFailed;
  editors::JmdEditor& editor = file.editor();
  std::string job = steps ? words[3] : std::string();
  if (steps && editor.job_steps(job).empty()) {
    op.show(editors::msg::kNotListed, {job, "jobs"});
    return kExitFailed;
  }
  editors::RowList list(*kind, job);
  if (!editor.reload(list)) return kExitFailed;
  bool printed = steps || print_line(editors::header_text(*kind));
  if ((page - 1) * editors::kPageSize < list.total()) {
    list.show_from((page - 1) * editors::kPageSize);
    for (const std::string& line : editor.page_lines(list)) printed = printed && print_line(line);
  }
  return printed && std::fflush(stdout) == 0 ? kExitOk : kExitFailed;
}

}  // namespace px::cli
