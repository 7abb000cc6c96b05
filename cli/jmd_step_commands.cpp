// pxctl jmd add-step, edit-step, delete-step and move-step: the job window's
// step edits, steps numbered from 1 in the window's order.
#include "cli/cli.h"
#include "cli/jmd_edit_support.h"
#include "jmd/editors/editor_messages.h"

namespace px::cli {

using editors::FormMode;
using editors::ListKind;

int jmd_add_step(const std::vector<std::string>& w) {
  // add-step FILE JOB [--before N] COLUMN=VALUE ...
  if (w.size() < 3) return usage_error("jmd add-step", "pxctl jmd add-step FILE JOB [--before N] COLUMN=VALUE ...");
  size_t first = 3;
  std::optional<long> before;
  if (w.size() >= 5 && w[3] == "--before") {
    before = positive_number(w[4]);
    if (!before) return usage_error("jmd add-step", "pxctl jmd add-step FILE JOB [--before N] COLUMN=VALUE ...");
    first = 5;
  }
  Typing typing;
  if (!parse_typing(w, first, ListKind::kSteps, FormMode::kNew, typing)) {
    return usage_error("jmd add-step", "pxctl jmd add-step FILE JOB [--before N] COLUMN=VALUE ...");
  }
  return edit_jmd_file(w, [&](editors::JmdEditor& editor, Operator& op) {
    std::string job = w[2];
    std::vector<long> steps = steps_of(editor, job);
    // Step count + 1 is the empty row after the last step: a step added
    // before it goes at the end.
    if (before && *before > static_cast<long>(steps.size()) + 1) {
      op.show(editors::msg::kNoSuchStep,
              {std::to_string(*before), job, std::to_string(steps.size())});
      return kExitFailed;
    }
    // A job without steps is new: its name is checked as the New Job Name
    // dialog checks it, unless it is listed already.
    if (steps.empty() && editor.find_row(ListKind::kJobNames, job) == 0) {
      std::string name;
      int refused = editor.check_new_job_name(job, name);
      if (refused != 0) {
        if (refused == editors::msg::kJobNameEmpty) op.show(refused);
        return kExitFailed;
      }
      job = name;
      if (editor.add_job_name(job) == 0) return kExitFailed;
    }
    editors::RowForm form = editor.new_form(ListKind::kSteps, job);
    type_into(form, typing);
    std::optional<size_t> index;
    if (before) index = static_cast<size_t>(*before - 1);
    return editor.ok_step(form, 0, steps, index).accepted() ? kExitOk : kExitFailed;
  }, first);
}

int jmd_edit_step(const std::vector<std::string>& w) {
  // edit-step FILE JOB N COLUMN=VALUE ...
  std::optional<long> number = w.size() >= 4 ? positive_number(w[3]) : std::nullopt;
  Typing typing;
  if (!number || !parse_typing(w, 4, ListKind::kSteps, FormMode::kEdit, typing)) {
    return usage_error("jmd edit-step", "pxctl jmd edit-step FILE JOB N COLUMN=VALUE ...");
  }
  return edit_jmd_file(w, [&](editors::JmdEditor& editor, Operator& op) {
    std::string job = w[2];
    std::vector<long> steps = steps_of(editor, job);
    std::optional<std::vector<long>> rows = step_rows(op, steps, {*number}, job);
    if (!rows) return kExitFailed;
    std::optional<editors::RowForm> form = editor.edit_form(ListKind::kSteps, rows->front());
    if (!form) return kExitFailed;
    type_into(*form, typing);
    return editor.ok_step(*form, rows->front(), steps, std::nullopt).accepted() ? kExitOk
                                                                                 : kExitFailed;
  }, 4);
}

int jmd_delete_step(const std::vector<std::string>& w) {
  // delete-step FILE JOB N ...
  if (w.size() < 4) return usage_error("jmd delete-step", "pxctl jmd delete-step FILE JOB N ...");
  std::vector<long> numbers;
  for (size_t i = 3; i < w.size(); ++i) {
    std::optional<long> n = positive_number(w[i]);
    if (!n) return usage_error("jmd delete-step", "pxctl jmd delete-step FILE JOB N ...");
    numbers.push_back(*n);
  }
  return edit_jmd_file(w, [&](editors::JmdEditor& editor, Operator& op) {
    std::string job = w[2];
    std::vector<long> steps = steps_of(editor, job);
    std::optional<std::vector<long>> rows = step_rows(op, steps, numbers, job);
    if (!rows) return kExitFailed;
    return editor.delete_rows(ListKind::kSteps, *rows) == static_cast<long>(rows->size())
               ? kExitOk
               : kExitFailed;
  });
}

int jmd_move_step(const std::vector<std::string>& w) {
  // move-step FILE JOB FIRST LAST up|down
  std::optional<long> first = w.size() == 6 ? positive_number(w[3]) : std::nullopt;
  std::optional<long> last = w.size() == 6 ? positive_number(w[4]) : std::nullopt;
  bool up = w.size() == 6 && w[5] == "up";
  bool down = w.size() == 6 && w[5] == "down";
  if (!first || !last || *first > *last || !(up || down)) {
    return usage_error("jmd move-step", "pxctl jmd move-step FILE JOB FIRST LAST up|down");
  }
  return edit_jmd_file(w, [&](editors::JmdEditor& editor, Operator& op) {
    std::string job = w[2];
    std::vector<long> steps = steps_of(editor, job);
    if (!step_rows(op, steps, {*first, *last}, job)) return kExitFailed;
    // The block moves within the page of 1000 steps that holds it.
    long page_first = (*first - 1) / editors::kPageSize * editors::kPageSize;
    if (*last - 1 >= page_first + editors::kPageSize) {
      op.show(editors::msg::kStepsOnTwoPages, {std::to_string(*first), std::to_string(*last), job});
      return kExitFailed;
    }
    auto page_begin = steps.begin() + page_first;
    auto page_end = steps.begin() + std::min<long>(page_first + editors::kPageSize,
                                                   static_cast<long>(steps.size()));
    std::vector<long> page(page_begin, page_end);
    // A block already at the edge of its page stays where it is.
    editor.move_steps(page, static_cast<size_t>(*first - 1 - page_first),
                      static_cast<size_t>(*last - 1 - page_first), up);
    return kExitOk;
  });
}

}  // namespace px::cli
