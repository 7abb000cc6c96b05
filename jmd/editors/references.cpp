#include "jmd/editors/references.h"

#include <algorithm>
#include <unordered_map>

#include "common/text.h"
#include "jmd/jmd.h"
#include "jmd/jmd_schema.h"

namespace px::editors {

namespace {

bool names_something(std::string_view name) { return !name.empty() && name != "*"; }

bool missing(JmdEditor& editor, ListKind kind, std::string_view name) {
  return names_something(name) && editor.find_row(kind, name) == 0;
}

// The lookups of one page: a printer or task name is looked up once.
class MissingNames {
 public:
  explicit MissingNames(JmdEditor& editor) : editor_(editor) {}
  bool step_names_missing(const Record& step) {
    return missing_of(ListKind::kPrinters, get_text(jmd::kJobTable, step, "PrinterName")) ||
           missing_of(ListKind::kTasks, get_text(jmd::kJobTable, step, "TaskId"));
  }

 private:
  bool missing_of(ListKind kind, const std::string& name) {
    auto& known = kind == ListKind::kPrinters ? printers_ : tasks_;
    auto at = known.find(name);
    if (at == known.end()) at = known.emplace(name, missing(editor_, kind, name)).first;
    return at->second;
  }
  JmdEditor& editor_;
  std::unordered_map<std::string, bool> printers_;
  std::unordered_map<std::string, bool> tasks_;
};

// Whether a step in the rows the entries were made from names something
// missing.
bool runs_name_missing(engine::Table& jobs, const jmd::JobNames& names,
                       const std::vector<long>& entries, MissingNames& lookups) {
  Record step = blank_record(jobs);
  for (long entry : entries) {
    auto [first, end] = names.run(entry);
    for (long row = first; row < end; ++row) {
      if (read_row(jobs, row, step) && lookups.step_names_missing(step)) return true;
    }
  }
  return false;
}

std::vector<bool> job_name_marks(JmdEditor& editor, std::span<const long> page) {
  std::vector<bool> marks(page.size(), false);
  std::shared_ptr<jmd::JobNames> names = editor.job_names();
  engine::Table* jobs = editor.table(ListKind::kSteps);
  if (names == nullptr || jobs == nullptr) return marks;
  if (!names->runs_hold(jobs->change_count())) {
    for (size_t i = 0; i < page.size(); ++i) {
      marks[i] = job_names_missing(editor, std::string(names->name(page[i])));
    }
    return marks;
  }
  MissingNames lookups(editor);
  // The page is in list order: entries of one job stand together. Only the
  // jobs at the page's ends can have entries off the page.
  for (size_t first = 0; first < page.size();) {
    std::string_view job = names->name(page[first]);
    size_t end = first + 1;
    while (end < page.size() && jmd::JobNames::compare(names->name(page[end]), job) == 0) ++end;
    std::vector<long> entries(page.begin() + static_cast<long>(first),
                              page.begin() + static_cast<long>(end));
    if (first == 0 || end == page.size()) entries = names->find_all(job);
    bool marked = runs_name_missing(*jobs, *names, entries, lookups);
    std::fill(marks.begin() + static_cast<long>(first), marks.begin() + static_cast<long>(end),
              marked);
    first = end;
  }
  return marks;
}

}  // namespace

std::vector<bool> page_marks(JmdEditor& editor, const RowList& list) {
  std::span<const long> page = list.page();
  if (list.kind() == ListKind::kJobNames) return job_name_marks(editor, page);
  std::vector<bool> marks(page.size(), false);
  engine::Table* jobs = editor.table(ListKind::kSteps);
  if (list.kind() != ListKind::kSteps || jobs == nullptr) return marks;
  MissingNames lookups(editor);
  Record step = blank_record(*jobs);
  for (size_t i = 0; i < page.size(); ++i) {
    marks[i] = read_row(*jobs, page[i], step) && lookups.step_names_missing(step);
  }
  return marks;
}

bool names_missing_row(JmdEditor& editor, const Record& step) {
  return missing(editor, ListKind::kPrinters, get_text(jmd::kJobTable, step, "PrinterName")) ||
         missing(editor, ListKind::kTasks, get_text(jmd::kJobTable, step, "TaskId"));
}

bool job_names_missing(JmdEditor& editor, const std::string& job) {
  engine::Table* jobs = editor.table(ListKind::kSteps);
  if (jobs == nullptr) return false;
  // The steps read first: the lookups start queries of their own.
  std::vector<Record> steps;
  for (long row : editor.job_steps(job)) {
    Record step = blank_record(*jobs);
    if (read_row(*jobs, row, step)) steps.push_back(std::move(step));
  }
  for (const Record& step : steps) {
    if (names_missing_row(editor, step)) return true;
  }
  return false;
}

std::vector<MissingReference> missing_references(JmdEditor& editor) {
  std::vector<MissingReference> found;
  jmd::Jmd* database = editor.service().jmd();
  if (database == nullptr) return found;
  // The steps read first: the lookups below start queries of their own.
  std::vector<Record> steps;
  jmd::for_each_sorted(*database, jmd::kJobTable, [&](std::span<const char> record) {
    steps.emplace_back(record.begin(), record.end());
    return true;
  });
  std::string job;
  long step = 0;
  for (const Record& record : steps) {
    std::string name = get_text(jmd::kJobTable, record, "FormName");
    step = iequals(name, job) && step > 0 ? step + 1 : 1;
    job = name;
    std::string printer = get_text(jmd::kJobTable, record, "PrinterName");
    std::string task = get_text(jmd::kJobTable, record, "TaskId");
    if (missing(editor, ListKind::kPrinters, printer)) found.push_back({job, step, true, printer});
    if (missing(editor, ListKind::kTasks, task)) found.push_back({job, step, false, task});
  }
  return found;
}

}  // namespace px::editors
