#include "cli/jmd_edit_support.h"

#include <algorithm>

#include "cli/cli.h"
#include "cli/console_operator.h"
#include "common/text.h"
#include "config/operator_action.h"
#include "jmd/editors/editor_messages.h"
#include "jmd/editors/jmd_file.h"
#include "jmd/editors/row_list.h"
#include "jmd/jmd_schema.h"

namespace px::cli {

using editors::ListKind;

const char* const kJmdSynopsis =
    "pxctl jmd check FILE | save IN OUT | list FILE LIST"
    " | show FILE LIST [--page N] | show FILE steps JOB [--page N]"
    " | add FILE LIST COLUMN=VALUE ... | edit FILE LIST KEY COLUMN=VALUE ..."
    " | delete FILE LIST KEY ... | new-job FILE JOB"
    " | add-step FILE JOB [--before N] COLUMN=VALUE ... | edit-step FILE JOB N COLUMN=VALUE ..."
    " | delete-step FILE JOB N ... | move-step FILE JOB FIRST LAST up|down"
    " | copy-job FILE FROM TO   (LIST: jobs, tasks, printers, memory)";

std::optional<ListKind> list_named(const std::string& word) {
  if (word == "jobs") return ListKind::kJobNames;
  if (word == "tasks") return ListKind::kTasks;
  if (word == "printers") return ListKind::kPrinters;
  if (word == "memory") return ListKind::kMemory;
  return std::nullopt;
}

std::string list_word(ListKind kind) {
  switch (kind) {
    case ListKind::kJobNames: return "jobs";
    case ListKind::kTasks: return "tasks";
    case ListKind::kPrinters: return "printers";
    case ListKind::kMemory: return "memory";
    case ListKind::kSteps: return "steps";
  }
  return {};
}

bool parse_typing(const std::vector<std::string>& words, size_t first, ListKind kind,
                  editors::FormMode mode, Typing& typing) {
  editors::RowForm form(kind, mode);
  for (size_t i = first; i < words.size(); ++i) {
    size_t equals = words[i].find('=');
    if (equals == std::string::npos) return false;
    const editors::FieldRule* rule = form.rule_for_column(words[i].substr(0, equals));
    if (rule == nullptr) return false;
    // The priority of a new printer is set from scripts too; a step's job
    // name is fixed once the step exists.
    bool priority = kind == ListKind::kPrinters && rule->control == 14;
    if (!form.enabled(rule->control) && !priority) return false;
    std::string value = words[i].substr(equals + 1);
    // A field holds one line: a line break (or a form or vertical feed,
    // which also end a word of the file) would split the saved line.
    if (value.find_first_of("\n\v\f\r") != std::string::npos) return false;
    typing.emplace_back(rule->control, std::move(value));
  }
  return true;
}

void type_into(editors::RowForm& form, const Typing& typing) {
  for (const auto& [control, text] : typing) form.type(control, text);
}

std::optional<long> positive_number(const std::string& word) {
  if (word.empty() || word.size() > 9) return std::nullopt;
  for (char c : word) {
    if (c < '0' || c > '9') return std::nullopt;
  }
  long n = parse_long(word);
  return n > 0 ? std::optional<long>(n) : std::nullopt;
}

int edit_jmd_file(const std::vector<std::string>& w,
                  const std::function<int(editors::JmdEditor& editor, Operator& op)>& edit,
                  size_t values_from) {
  ConsoleOperator console;
  // Named like the command that changes the file, without the values: the
  // list, the row's key, the job and its steps say what was changed.
  std::string name = "jmd";
  for (size_t i = 0; i < std::min(values_from, w.size()); ++i) name += " " + w[i];
  OperatorAction action(console, name, "");
  if (!action.permitted()) return kExitFailed;
  Operator& op = action.op();
  editors::JmdFile file(w[1], op);
  if (!file.load()) return kExitFailed;
  int status = edit(file.editor(), op);
  if (status != kExitOk) return status;
  if (!file.save()) return kExitFailed;
  action.finish(ActionResult::kDone);
  return kExitOk;
}

std::vector<long> steps_of(editors::JmdEditor& editor, std::string& job) {
  std::vector<long> steps = editor.job_steps(job);
  engine::Table* jobs = editor.table(ListKind::kSteps);
  if (!steps.empty() && jobs != nullptr) {
    editors::Record record = editors::blank_record(*jobs);
    if (editors::read_row(*jobs, steps.front(), record)) {
      job = editors::get_text(jmd::kJobTable, record, "FormName");
    }
  }
  return steps;
}

std::optional<std::vector<long>> step_rows(Operator& op, const std::vector<long>& steps,
                                           const std::vector<long>& numbers,
                                           const std::string& job) {
  std::vector<long> rows;
  for (long n : numbers) {
    if (n > static_cast<long>(steps.size())) {
      op.show(editors::msg::kNoSuchStep,
              {std::to_string(n), job, std::to_string(steps.size())});
      return std::nullopt;
    }
    long row = steps[static_cast<size_t>(n - 1)];
    if (std::find(rows.begin(), rows.end(), row) == rows.end()) rows.push_back(row);
  }
  return rows;
}

}  // namespace px::cli
