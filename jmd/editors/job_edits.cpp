// The editors' tables, lookups, job names, deletion and the order of steps.
#include <algorithm>

#include "common/text.h"
#include "jmd/editors/editor_messages.h"
#include "jmd/editors/jmd_editor.h"
#include "jmd/editors/row_list.h"
#include "jmd/jmd_schema.h"

namespace px::editors {

namespace {

constexpr size_t kJobNameLongest = 51;

}  // namespace

void JmdEditor::internal_error(const char* module, int line) {
  // The text's own quotes and comma come with the argument: a message word
  // ends only at a blank, "." or "(".
  op_->show(msg::kInternalError, {"'" + std::string(module) + "', line " + std::to_string(line)});
}

engine::Table* JmdEditor::table(ListKind kind) {
  if (kind == ListKind::kJobNames) return nullptr;
  jmd::Jmd* database = service_.open(*op_);
  return database ? &database->table(table_slot(kind)) : nullptr;
}

std::shared_ptr<jmd::JobNames> JmdEditor::job_names() { return service_.job_names(*op_); }

bool JmdEditor::reload(RowList& list) {
  if (list.kind() == ListKind::kJobNames) {
    std::shared_ptr<jmd::JobNames> names = job_names();
    return names != nullptr && list.reload(names);
  }
  engine::Table* rows = table(list.kind());
  if (rows == nullptr) return false;
  if (list.kind() == ListKind::kSteps) {
    if (std::optional<std::vector<long>> steps = steps_as_loaded(list.job())) {
      list.reload(*rows, std::move(*steps));
      return true;
    }
  }
  return list.reload(*rows);
}

std::optional<std::vector<long>> JmdEditor::steps_as_loaded(const std::string& job) {
  // Only a list made already is asked: making one walks the job table.
  std::shared_ptr<jmd::JobNames> names = service_.job_names_made();
  engine::Table* jobs = table(ListKind::kSteps);
  if (names == nullptr || jobs == nullptr || !names->runs_hold(jobs->change_count())) {
    return std::nullopt;
  }
  std::vector<long> steps;
  for (long entry : names->find_all(job)) {
    auto [first, end] = names->run(entry);
    for (long row = first; row < end; ++row) steps.push_back(row);
  }
  std::sort(steps.begin(), steps.end());
  return steps;
}

std::vector<std::string> JmdEditor::page_lines(const RowList& list) {
  if (list.kind() == ListKind::kJobNames) {
    std::shared_ptr<jmd::JobNames> names = job_names();
    return names != nullptr ? list.page_lines(*names) : std::vector<std::string>();
  }
  engine::Table* rows = table(list.kind());
  return rows != nullptr ? list.page_lines(*rows) : std::vector<std::string>();
}

std::string JmdEditor::job_name(long entry) {
  std::shared_ptr<jmd::JobNames> names = job_names();
  return names != nullptr ? std::string(names->name(entry)) : std::string();
}

long JmdEditor::find_row(ListKind kind, std::string_view key) {
  if (kind == ListKind::kJobNames) {
    std::shared_ptr<jmd::JobNames> names = job_names();
    return names != nullptr ? names->find(key) : 0;
  }
  engine::Table* rows = table(kind);
  if (rows == nullptr) return 0;
  int column = rows->find_column(key_column(kind));
  if (column < 0) return 0;
  engine::Query query = engine::Query::start(*rows, column, engine::Value(key), true);
  if (!query) {
    op_->show(msg::kNullCursor, {"pxjmdedt  " + std::to_string(__LINE__)});
    return 0;
  }
  return query.next();
}

std::vector<long> JmdEditor::job_steps(const std::string& job) {
  std::vector<long> rows;
  engine::Table* jobs = table(ListKind::kSteps);
  if (jobs != nullptr) list_rows(*jobs, ListKind::kSteps, job, rows);
  return rows;
}

bool JmdEditor::job_exists(const std::string& job) {
  return find_row(ListKind::kSteps, job) != 0 || find_row(ListKind::kJobNames, job) != 0;
}

int JmdEditor::check_new_job_name(std::string_view typed, std::string& name) {
  // Blanks after the name are dropped; a blank before it is not: such a
  // name is not taken, like an empty one.
  std::string_view candidate = typed.substr(0, std::min(typed.size(), kJobNameLongest));
  candidate = candidate.substr(0, candidate.find_last_not_of(' ') + 1);
  if (candidate.empty() || candidate.front() == ' ') return msg::kJobNameEmpty;
  // A blank or a tab, or any other character that separates words in the
  // JMD file (a line break cannot be typed in the dialog, but pxctl takes
  // one): a job name is one word.
  if (std::any_of(candidate.begin(), candidate.end(), is_space)) {
    op_->show(msg::kJobNameHasBlank, {std::string(candidate)});
    return msg::kJobNameHasBlank;
  }
  if (job_exists(std::string(candidate))) {
    op_->show(msg::kJobExists, {std::string(candidate)});
    return msg::kJobExists;
  }
  name = std::string(candidate);
  return 0;
}

long JmdEditor::add_job_name(const std::string& name) {
  std::shared_ptr<jmd::JobNames> names = job_names();
  if (names == nullptr) return 0;
  Act act(*this);
  return journal_.add_name(*names, name);
}

bool JmdEditor::delete_job(engine::Table& jobs, const std::string& name) {
  std::vector<long> steps;
  if (!list_rows(jobs, ListKind::kSteps, name, steps)) return false;
  int column = jobs.find_column(key_column(ListKind::kSteps));
  for (long step : steps) {
    if (!remove(jobs, step, column)) return false;
  }
  return true;
}

long JmdEditor::delete_rows(ListKind kind, const std::vector<long>& rows) {
  if (kind == ListKind::kJobNames) return delete_job_names(rows);
  engine::Table* listed = table(kind);
  if (listed == nullptr) return 0;
  Act act(*this);
  set_modified();
  int column = listed->find_column(key_column(kind));
  long deleted = 0;
  for (long row : rows) {
    if (!remove(*listed, row, column)) break;
    ++deleted;
  }
  return deleted;
}

long JmdEditor::delete_job_names(const std::vector<long>& entries) {
  std::shared_ptr<jmd::JobNames> names = job_names();
  engine::Table* jobs = names != nullptr ? table(ListKind::kSteps) : nullptr;
  if (jobs == nullptr) return 0;
  Act act(*this);
  set_modified();
  long deleted = 0;
  for (long entry : entries) {
    if (!names->listed(entry) || !delete_job(*jobs, std::string(names->name(entry))) ||
        !journal_.unlist_name(*names, entry)) {
      break;
    }
    ++deleted;
  }
  return deleted;
}

bool JmdEditor::move_steps(const std::vector<long>& page, size_t first, size_t last, bool up) {
  if (first > last || last >= page.size()) return false;
  if (up ? first == 0 : last + 1 == page.size()) return false;
  engine::Table* jobs = table(ListKind::kSteps);
  if (jobs == nullptr) return false;
  Act act(*this);
  Record a = blank_record(*jobs);
  Record b = blank_record(*jobs);
  auto swap_rows = [&](long x, long y) {
    return read_row(*jobs, x, a) && read_row(*jobs, y, b) && update(*jobs, x, b) &&
           update(*jobs, y, a);
  };
  set_modified();
  if (up) {
    for (size_t k = first; k <= last; ++k) {
      if (!swap_rows(page[k - 1], page[k])) return false;
    }
  } else {
    for (size_t k = last + 1; k-- > first;) {
      if (!swap_rows(page[k], page[k + 1])) return false;
    }
  }
  return true;
}

std::vector<long> JmdEditor::insert_steps(const std::vector<long>& steps, size_t before,
                                          const std::vector<Record>& records) {
  engine::Table* jobs = table(ListKind::kSteps);
  if (jobs == nullptr || records.empty()) return {};
  before = std::min(before, steps.size());
  // The contents from the insertion point on, in their new order, and the
  // rows that will hold them: the steps from there on and as many new rows
  // at the end of the table as there are records.
  std::vector<Record> contents(records);
  std::vector<long> targets(steps.begin() + static_cast<long>(before), steps.end());
  for (size_t k = before; k < steps.size(); ++k) {
    Record record = blank_record(*jobs);
    if (!read_row(*jobs, steps[k], record)) return {};
    contents.push_back(std::move(record));
  }
  Act act(*this);
  set_modified();
  for (size_t k = 0; k < records.size(); ++k) {
    // A new row starts as a copy of the content it will end with when it
    // is past every moved step; otherwise it is overwritten below.
    long row = add(*jobs, contents[targets.size()]);
    if (row == 0) return {};
    targets.push_back(row);
  }
  for (size_t k = 0; k < contents.size(); ++k) {
    if (!update(*jobs, targets[k], contents[k])) return {};
  }
  return std::vector<long>(targets.begin(), targets.begin() + static_cast<long>(records.size()));
}

}  // namespace px::editors

namespace px::editors {

JmdEditor::Act::Act(JmdEditor& editor) : editor_(editor) { editor_.journal().begin(); }

JmdEditor::Act::~Act() { editor_.journal_.end(); }

EditJournal& JmdEditor::journal() {
  // Nothing unsaved, nothing to take back: the tables the journal names may
  // be gone.
  if (!journal_.act_open() && !service_.modified()) journal_.clear();
  return journal_;
}

bool JmdEditor::can_undo() { return journal().can_undo(); }
bool JmdEditor::can_redo() { return journal().can_redo(); }

bool JmdEditor::undo() {
  if (!journal().undo()) return false;
  set_modified();
  return true;
}

bool JmdEditor::redo() {
  if (!journal().redo()) return false;
  set_modified();
  return true;
}

}  // namespace px::editors
