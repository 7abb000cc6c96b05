// The row dialogs' forms and their OK: validation and store of tasks,
// printers, managed memory and job steps.
#include <array>

#include "common/text.h"
#include "jmd/editors/editor_messages.h"
#include "jmd/editors/jmd_editor.h"
#include "jmd/jmd_schema.h"
#include "jmd/jmd_writer.h"

namespace px::editors {

namespace {

constexpr std::string_view kDefaultProgram = "PXMERGE";
constexpr std::string_view kDefaultDevice = "LPT1";
constexpr int32_t kDefaultPriority = 50;

std::string trimmed(const RowForm& form, int control) {
  return std::string(trim_blanks(form.text(control)));
}

char flag_of(std::string_view text, char empty, bool upper) {
  if (text.empty()) return empty;
  return upper ? to_upper(text[0]) : text[0];
}

}  // namespace

bool is_reserved_device(std::string_view id) {
  static constexpr std::array<std::string_view, 3> kNames = {"prn", "con", "aux"};
  for (std::string_view name : kNames) {
    if (iequals(id, name)) return true;
  }
  if (id.size() != 4 || id[3] < '1' || id[3] > '9') return false;
  return iequals(id.substr(0, 3), "lpt") || iequals(id.substr(0, 3), "com");
}

std::string default_form_file(std::string_view job) {
  size_t name_start = job.find_last_of("/\\");
  name_start = name_start == std::string_view::npos ? 0 : name_start + 1;
  size_t dot = job.rfind('.');
  std::string file(dot != std::string_view::npos && dot >= name_start ? job.substr(0, dot) : job);
  return file + ".mdf";
}

RowForm JmdEditor::new_form(ListKind kind, std::string_view job) {
  RowForm form(kind, FormMode::kNew);
  form.load_defaults(job);
  return form;
}

std::optional<RowForm> JmdEditor::edit_form(ListKind kind, long row) {
  engine::Table* rows = table(kind);
  if (rows == nullptr) return std::nullopt;
  Record record = blank_record(*rows);
  if (!read_row(*rows, row, record)) {
    internal_error("pxjmdedt", __LINE__);
    return std::nullopt;
  }
  RowForm form(kind, FormMode::kEdit);
  form.load(record);
  return form;
}

std::optional<RowForm> JmdEditor::paste_form(ListKind kind) {
  if (clipboard_kind_ != kind || buffer_.empty()) {
    internal_error("pxjmdcb", __LINE__);
    return std::nullopt;
  }
  RowForm form(kind, FormMode::kPaste);
  form.load(buffer_);
  return form;
}

OkResult JmdEditor::refuse(int message, int focus, const std::vector<std::string>& args) {
  op_->show(message, args);
  OkResult result;
  result.message = message;
  result.focus = focus;
  return result;
}

OkResult JmdEditor::ok(const RowForm& form, long row) {
  Act act(*this);
  switch (form.kind()) {
    case ListKind::kTasks: return ok_task(form, row);
    case ListKind::kPrinters: return ok_printer(form, row);
    case ListKind::kMemory: return ok_memory(form, row);
    default: break;
  }
  internal_error("pxjmdedt", __LINE__);
  return OkResult{msg::kInternalError, 0, 0, {}};
}

// Stores record as a new row, or over row in Edit mode; a refused unique key
// gives duplicate_message. A record whose line in the file would be longer
// than the reader takes at a time is refused: the reader would split it, and
// its rest would be read as a line of its own (a quote is written twice, so
// a task's texts can pass the limit).
OkResult JmdEditor::store(engine::Table& table, const RowForm& form, long row,
                          const Record& record, const std::string& key, int duplicate_message) {
  const jmd::TableSchema& schema = jmd::table_schema(table_slot(form.kind()));
  size_t length = jmd::record_line(schema, record).size() - 1;
  if (length > jmd::kLineLimit) {
    const FieldRule* longest = &form.rules().front();
    for (const FieldRule& rule : form.rules()) {
      if (rule.longest > longest->longest) longest = &rule;
    }
    return refuse(msg::kLineTooLong, longest->control, {key, std::to_string(length)});
  }
  set_modified();
  OkResult result;
  result.key = key;
  result.row = form.mode() == FormMode::kEdit ? (update(table, row, record) ? row : 0)
                                              : add(table, record);
  if (result.row == 0) return refuse(duplicate_message, 4, {key});
  return result;
}

OkResult JmdEditor::ok_task(const RowForm& form, long row) {
  constexpr int slot = jmd::kTaskTable;
  std::string id = trimmed(form, 4);
  if (id.empty()) return refuse(msg::kTaskIdEmpty, 4);
  if (form.mode() != FormMode::kEdit && find_row(ListKind::kTasks, id) != 0) {
    return refuse(msg::kTaskExists, 4, {id});
  }
  engine::Table* tasks = table(ListKind::kTasks);
  if (tasks == nullptr) return OkResult{msg::kInternalError, 4, 0, {}};
  // An edit keeps what the dialog does not show (WindowsClass); so does a
  // paste, from the row that was copied.
  Record record = blank_record(slot);
  if (form.mode() == FormMode::kEdit) {
    if (!read_row(*tasks, row, record)) {
      internal_error("pxjmdedt", __LINE__);
      return OkResult{msg::kInternalError, 4, 0, {}};
    }
  } else if (form.mode() == FormMode::kPaste && buffer_.size() == record.size()) {
    record = buffer_;
  }
  std::string program = trimmed(form, 6);
  set_char(slot, record, "Deleted", jmd::kNotDeleted);
  set_text(slot, record, "TaskId", id);
  set_text(slot, record, "TaskName", program.empty() ? kDefaultProgram : program);
  set_text(slot, record, "TaskParms", trimmed(form, 8));
  set_text(slot, record, "Comment", trimmed(form, 10));
  return store(*tasks, form, row, record, id, msg::kTaskExists);
}

OkResult JmdEditor::ok_printer(const RowForm& form, long row) {
  constexpr int slot = jmd::kPrinterTable;
  std::string name = trimmed(form, 4);
  if (name.empty()) return refuse(msg::kPrinterNameEmpty, 4);
  if (form.mode() != FormMode::kEdit && find_row(ListKind::kPrinters, name) != 0) {
    return refuse(msg::kPrinterExists, 4, {name});
  }
  std::string id = trimmed(form, 6);
  if (is_reserved_device(id)) return refuse(msg::kReservedDevice, 6, {id});
  engine::Table* printers = table(ListKind::kPrinters);
  if (printers == nullptr) return OkResult{msg::kInternalError, 4, 0, {}};
  std::string device = trimmed(form, 9);
  std::string priority = trimmed(form, 14);
  Record record = blank_record(slot);
  set_char(slot, record, "Deleted", jmd::kNotDeleted);
  set_text(slot, record, "PrinterName", name);
  set_text(slot, record, "PrinterId", id);
  set_text(slot, record, "PhysicalDev", device.empty() ? kDefaultDevice : device);
  set_text(slot, record, "PrintDirectorParms", trimmed(form, 12));
  set_number(slot, record, "Priority",
             priority.empty() ? kDefaultPriority : static_cast<int32_t>(parse_long(priority)));
  set_text(slot, record, "Comment", trimmed(form, 16));
  return store(*printers, form, row, record, name, msg::kPrinterExists);
}

OkResult JmdEditor::ok_memory(const RowForm& form, long row) {
  constexpr int slot = jmd::kMemoryTable;
  std::string id = trimmed(form, 4);
  if (id.empty()) return refuse(msg::kMemoryIdEmpty, 4);
  if (is_reserved_device(id)) return refuse(msg::kReservedDevice, 4, {id});
  if (form.mode() != FormMode::kEdit && find_row(ListKind::kMemory, id) != 0) {
    return refuse(msg::kMemoryIdExists, 4, {id});
  }
  engine::Table* memory = table(ListKind::kMemory);
  if (memory == nullptr) return OkResult{msg::kInternalError, 4, 0, {}};
  Record record = blank_record(slot);
  set_char(slot, record, "Deleted", jmd::kNotDeleted);
  set_text(slot, record, "PrinterId", id);
  set_number(slot, record, "Amount", parse_int(trimmed(form, 6)));
  set_text(slot, record, "Comment", trimmed(form, 8));
  return store(*memory, form, row, record, id, msg::kMemoryIdExists);
}

OkResult JmdEditor::ok_step(const RowForm& form, long row, const std::vector<long>& steps,
                            std::optional<size_t> before) {
  Act act(*this);
  constexpr int slot = jmd::kJobTable;
  set_modified();
  const std::string& job = form.text(4);
  std::string task = trimmed(form, 6);
  std::string form_file = trimmed(form, 15);
  std::string macro = trimmed(form, 22);
  Record record = blank_record(slot);
  set_char(slot, record, "Deleted", jmd::kNotDeleted);
  set_text(slot, record, "FormName", job);
  set_text(slot, record, "TaskId", task.empty() ? kDefaultProgram : task);
  set_char(slot, record, "InFile", flag_of(trimmed(form, 9), '\0', false));
  set_char(slot, record, "OutFile", flag_of(trimmed(form, 11), '\0', false));
  set_char(slot, record, "OnErrorFlag", flag_of(trimmed(form, 13), 'C', true));
  set_text(slot, record, "MDFName", form_file.empty() ? default_form_file(job) : form_file);
  set_text(slot, record, "PreambleName", trimmed(form, 17));
  set_text(slot, record, "PrinterName", trimmed(form, 19));
  set_number(slot, record, "MacroNum", macro.empty() ? 1 : static_cast<int32_t>(parse_long(macro)));
  set_char(slot, record, "LoadFlag", flag_of(trimmed(form, 24), 'T', true));
  set_text(slot, record, "Comment", form.text(26));

  OkResult result;
  result.key = job;
  engine::Table* jobs = table(ListKind::kSteps);
  if (jobs == nullptr) return OkResult{msg::kInternalError, 0, 0, job};
  if (form.mode() == FormMode::kEdit) {
    if (update(*jobs, row, record)) {
      result.row = row;
      return result;
    }
  } else if (!before || *before >= steps.size()) {
    result.row = add(*jobs, record);
    if (result.row != 0) return result;
  } else {
    std::vector<long> placed = insert_steps(steps, *before, {record});
    if (!placed.empty()) {
      result.row = placed.front();
      return result;
    }
  }
  internal_error("pxjmdedt", __LINE__);
  return OkResult{msg::kInternalError, 0, 0, job};
}

}  // namespace px::editors
