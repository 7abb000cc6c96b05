// The editors' private clipboard: cut, copy and paste between JMD lists.
#include "jmd/editors/editor_messages.h"
#include "jmd/editors/jmd_editor.h"
#include "jmd/editors/row_list.h"
#include "jmd/jmd_schema.h"

namespace px::editors {

namespace {

bool holds_steps(std::optional<ListKind> kind) {
  return kind == ListKind::kJobNames || kind == ListKind::kSteps;
}

}  // namespace

bool JmdEditor::copy(ListKind kind, const std::vector<long>& rows, bool cut) {
  if (rows.empty()) return false;
  engine::Table* listed = kind == ListKind::kJobNames ? nullptr : table(kind);
  std::shared_ptr<jmd::JobNames> names = kind == ListKind::kJobNames ? job_names() : nullptr;
  if (listed == nullptr && names == nullptr) return false;
  Act act(*this);
  // The steps table is emptied when the kind changes after a cut or copy
  // from a list of kinds 0 to 3. Steps cut or copied again from the same
  // kind, or after steps from a job window, are added to what it holds.
  if (clipboard_kind_ && *clipboard_kind_ != kind && *clipboard_kind_ != ListKind::kSteps) {
    service_.empty_clipboard();
  }
  if (kind == ListKind::kTasks || kind == ListKind::kPrinters || kind == ListKind::kMemory) {
    Record record = blank_record(*listed);
    if (!read_row(*listed, rows.front(), record)) {
      internal_error("pxjmdcb", __LINE__);
      return false;
    }
    // The one-row buffer holds the last row only.
    buffer_ = record;
    clipboard_kind_ = kind;
    return !cut || delete_rows(kind, {rows.front()}) == 1;
  }
  engine::Table* clip = service_.clipboard(*op_);
  if (clip == nullptr) return false;
  engine::Table* jobs = table(ListKind::kSteps);
  if (jobs == nullptr) return false;
  std::vector<long> steps;
  if (kind == ListKind::kJobNames) {
    if (!names->listed(rows.front())) return false;
    list_rows(*jobs, ListKind::kSteps, std::string(names->name(rows.front())), steps);
  } else {
    steps = rows;
  }
  Record step = blank_record(*jobs);
  for (long row : steps) {
    if (!read_row(*jobs, row, step) || add_record(*clip, step) == 0) {
      internal_error("pxjmdcb", __LINE__);
      return false;
    }
  }
  clipboard_kind_ = kind;
  if (!cut) return true;
  if (kind == ListKind::kJobNames) return delete_rows(kind, {rows.front()}) == 1;
  return delete_rows(kind, rows) == static_cast<long>(rows.size());
}

void JmdEditor::empty_clipboard() {
  service_.empty_clipboard();
  clipboard_kind_.reset();
  buffer_.clear();
}

bool JmdEditor::can_paste(ListKind kind) const {
  if (!clipboard_kind_) return false;
  if (kind == ListKind::kJobNames || kind == ListKind::kSteps) {
    // Closing the JMD closed the steps table with it: nothing to paste.
    return holds_steps(clipboard_kind_) && service_.clipboard_made() != nullptr;
  }
  return clipboard_kind_ == kind;
}

std::vector<Record> JmdEditor::clipboard_steps() {
  std::vector<Record> steps;
  if (!holds_steps(clipboard_kind_)) return steps;
  engine::Table* clip = service_.clipboard(*op_);
  if (clip == nullptr) return steps;
  Record record = blank_record(*clip);
  for (long row = 1; row <= clip->row_count(); ++row) {
    if (read_row(*clip, row, record)) steps.push_back(record);
  }
  return steps;
}

int JmdEditor::paste_job(std::string_view typed, std::string& name) {
  if (!can_paste(ListKind::kJobNames)) {
    internal_error("pxjmdcb", __LINE__);
    return msg::kInternalError;
  }
  int refused = check_new_job_name(typed, name);
  if (refused != 0) return refused;
  engine::Table* jobs = table(ListKind::kSteps);
  Act act(*this);
  if (jobs == nullptr || add_job_name(name) == 0) return msg::kInternalError;
  set_modified();
  for (Record& step : clipboard_steps()) {
    set_text(jmd::kJobTable, step, "FormName", name);
    if (add(*jobs, step) == 0) {
      internal_error("pxjmdedt", __LINE__);
      return msg::kInternalError;
    }
  }
  return 0;
}

std::vector<long> JmdEditor::paste_steps(const std::string& job, const std::vector<long>& steps,
                                         size_t before) {
  std::vector<Record> records = clipboard_steps();
  if (records.empty()) {
    internal_error("pxjmdedt", __LINE__);
    return {};
  }
  for (Record& record : records) set_text(jmd::kJobTable, record, "FormName", job);
  Act act(*this);
  std::vector<long> placed = insert_steps(steps, before, records);
  if (placed.empty()) internal_error("pxjmdedt", __LINE__);
  return placed;
}

}  // namespace px::editors
