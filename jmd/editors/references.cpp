#include "jmd/editors/references.h"

#include "common/text.h"
#include "jmd/jmd.h"
#include "jmd/jmd_schema.h"

namespace px::editors {

namespace {

bool names_something(std::string_view name) { return !name.empty() && name != "*"; }

bool missing(JmdEditor& editor, ListKind kind, std::string_view name) {
  return names_something(name) && editor.find_row(kind, name) == 0;
}

}  // namespace

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
