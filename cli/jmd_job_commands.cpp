// pxctl jmd new-job and copy-job: the New Job Name dialog's rules, and a job
// copied on the job-names list and pasted under a new name.
#include "cli/cli.h"
#include "cli/jmd_edit_support.h"
#include "jmd/editors/editor_messages.h"

namespace px::cli {

using editors::ListKind;

namespace {

// A refused new job name: an empty one is shown here (the dialog shows
// nothing and stays open), the others were shown by the check.
int refused_name(Operator& op, int message) {
  if (message == editors::msg::kJobNameEmpty) op.show(message);
  return kExitFailed;
}

}  // namespace

int jmd_new_job(const std::vector<std::string>& w) {
  // new-job FILE JOB
  if (w.size() != 3) return usage_error("jmd new-job", "pxctl jmd new-job FILE JOB");
  return edit_jmd_file(w, [&](editors::JmdEditor& editor, Operator& op) {
    std::string name;
    int refused = editor.check_new_job_name(w[2], name);
    if (refused != 0) return refused_name(op, refused);
    return editor.add_job_name(name) != 0 ? kExitOk : kExitFailed;
  });
}

int jmd_copy_job(const std::vector<std::string>& w) {
  // copy-job FILE FROM TO
  if (w.size() != 4) return usage_error("jmd copy-job", "pxctl jmd copy-job FILE FROM TO");
  return edit_jmd_file(w, [&](editors::JmdEditor& editor, Operator& op) {
    long from = editor.find_row(ListKind::kJobNames, w[2]);
    if (from == 0) {
      op.show(editors::msg::kNotListed, {w[2], list_word(ListKind::kJobNames)});
      return kExitFailed;
    }
    if (!editor.copy(ListKind::kJobNames, {from}, false)) return kExitFailed;
    std::string name;
    int refused = editor.paste_job(w[3], name);
    return refused == 0 ? kExitOk : refused_name(op, refused);
  });
}

}  // namespace px::cli
