#include "jmd/editors/row_dialog.h"

#include <algorithm>

#include "jmd/editors/editor_messages.h"
#include "jmd/editors/row_list.h"
#include "jmd/jmd_schema.h"
#include "toolkit/dialog_base.h"
#include "toolkit/resources/resource_ids.h"

namespace px::editors {

namespace {

constexpr const char* kOnErrorFlags[] = {"C", "S"};
constexpr const char* kLoadFlags[] = {"F", "P", "T", "M", "R", "H"};

int resource_of(ListKind kind) {
  switch (kind) {
    case ListKind::kTasks: return tk::kTaskDialog;
    case ListKind::kPrinters: return tk::kPrinterDialog;
    case ListKind::kMemory: return tk::kManagedMemoryDialog;
    default: return tk::kJobStepDialog;
  }
}

// The keys of a table (kind 1 to 3) in row order.
std::vector<std::string> keys_of(JmdEditor& editor, ListKind kind) {
  std::vector<std::string> keys;
  engine::Table* table = editor.table(kind);
  std::vector<long> rows;
  if (table == nullptr || !list_rows(*table, kind, {}, rows)) return keys;
  std::sort(rows.begin(), rows.end());
  Record record = blank_record(*table);
  for (long row : rows) {
    if (read_row(*table, row, record)) keys.push_back(get_text(table_slot(kind), record, key_column(kind)));
  }
  return keys;
}

struct RowDialog : tk::DialogBase {
  RowDialog(tk::Toolkit& toolkit, JmdEditor& editor, RowRequest request, const RowAdded& added)
      : toolkit(toolkit), editor(editor), request(std::move(request)), added(added) {}

  tk::Toolkit& toolkit;
  JmdEditor& editor;
  RowRequest request;
  const RowAdded& added;
  std::optional<OkResult> result;

  RowForm& form() { return request.form; }

  void fill_combo(tk::Window dialog, int control, const std::vector<std::string>& rows) {
    tk::Control combo = dialog.control(control);
    for (const std::string& row : rows) combo.add(row);
  }

  void create(tk::Window dialog) override {
    ListKind kind = form().kind();
    FormMode mode = form().mode();
    if (mode != FormMode::kEdit) {
      int title = kind == ListKind::kTasks      ? msg::kTaskTitle
                  : kind == ListKind::kPrinters ? msg::kPrinterTitle
                  : kind == ListKind::kMemory   ? msg::kMemoryTitle
                                                : 0;
      if (title != 0) dialog.set_title(message_label(title));
    } else if (kind == ListKind::kSteps) {
      dialog.set_title(message_label(msg::kEditStepTitle));
    }
    if (kind == ListKind::kPrinters) fill_combo(dialog, tk::kPrinterId, keys_of(editor, ListKind::kMemory));
    if (kind == ListKind::kSteps) {
      fill_combo(dialog, tk::kStepTaskId, keys_of(editor, ListKind::kTasks));
      fill_combo(dialog, tk::kStepPrinterName, keys_of(editor, ListKind::kPrinters));
      fill_combo(dialog, tk::kStepOnError, {std::begin(kOnErrorFlags), std::end(kOnErrorFlags)});
      fill_combo(dialog, tk::kStepLoadFlag, {std::begin(kLoadFlags), std::end(kLoadFlags)});
    }
    for (const FieldRule& rule : form().rules()) {
      tk::Control field = dialog.control(rule.control);
      // The dialog cuts and beeps itself, so the field takes one more.
      field.set_limit(static_cast<int>(rule.longest) + 1);
      field.set_text(form().text(rule.control));
      field.set_enabled(form().enabled(rule.control));
    }
    int first = kind == ListKind::kSteps ? tk::kStepTaskId : form().rules().front().control;
    dialog.control(first).focus();
  }

  void changed(tk::Window dialog, int control) {
    const FieldRule* rule = form().rule_for_control(control);
    if (rule == nullptr) return;
    tk::Control field = dialog.control(control);
    std::string text = field.text();
    Typed typed = apply_change(*rule, text);
    if (typed.text != text) {
      int caret = field.selection().end;
      field.set_text(typed.text);
      caret = std::clamp(caret - typed.caret_back, 0, static_cast<int>(typed.text.size()));
      field.set_caret(caret);
    }
    for (int i = 0; i < typed.beeps; ++i) toolkit.beep();
  }

  void ok(tk::Window dialog) {
    for (const FieldRule& rule : form().rules()) {
      form().set(rule.control, dialog.control(rule.control).text());
    }
    OkResult stored = form().kind() == ListKind::kSteps
                          ? editor.ok_step(form(), request.row, request.steps, request.before)
                          : editor.ok(form(), request.row);
    if (!stored.accepted()) {
      if (stored.focus != 0) dialog.control(stored.focus).focus();
      return;
    }
    result = stored;
    dialog.destroy();
  }

  // "Add Managed Memory...", "Add Task...", "Add Printer...": the nested
  // dialog of kind in New mode; its new key goes into the combo box.
  void add_nested(tk::Window dialog, ListKind kind, int combo) {
    std::optional<OkResult> added_row = run_row_dialog(
        toolkit, editor, RowRequest{editor.new_form(kind), 0, {}, std::nullopt}, added);
    if (!added_row) return;
    dialog.control(combo).add(added_row->key);
    dialog.control(combo).set_text(added_row->key);
    if (added) added(kind);
  }

  // Typing runs the field's rules; OK stores the row; the "Add ..." buttons
  // open their nested dialog.
  void control(tk::Window dialog, const tk::Event& e) override {
    if (e.notice == tk::Notice::kChanged) {
      changed(dialog, e.control);
      return;
    }
    if (e.notice != tk::Notice::kClicked) return;
    if (e.control == tk::kOk) {
      ok(dialog);
    } else if (form().kind() == ListKind::kPrinters && e.control == tk::kPrinterAddMemory) {
      add_nested(dialog, ListKind::kMemory, tk::kPrinterId);
    } else if (form().kind() == ListKind::kSteps && e.control == tk::kStepAddTask) {
      add_nested(dialog, ListKind::kTasks, tk::kStepTaskId);
    } else if (form().kind() == ListKind::kSteps && e.control == tk::kStepAddPrinter) {
      add_nested(dialog, ListKind::kPrinters, tk::kStepPrinterName);
    }
  }
};

// "New Job Name": OK closes with the name accept made of the typed text, or
// keeps the dialog open on the field when accept refused it.
class JobNameDialog : public tk::DialogBase {
 public:
  using Accept = std::function<int(const std::string& typed, std::string& name)>;
  explicit JobNameDialog(const Accept& accept) : accept_(accept) {}
  std::optional<std::string> chosen;

 private:
  void create(tk::Window dialog) override { dialog.control(tk::kJobNameEdit).focus(); }

  void control(tk::Window dialog, const tk::Event& e) override {
    if (!e.is_control(tk::kOk, tk::Notice::kClicked)) return;
    std::string name;
    if (accept_(dialog.control(tk::kJobNameEdit).text(), name) == 0) {
      chosen = name;
      dialog.destroy();
    } else {
      dialog.control(tk::kJobNameEdit).focus();
    }
  }

  const Accept& accept_;
};

}  // namespace

std::optional<OkResult> run_row_dialog(tk::Toolkit& toolkit, JmdEditor& editor,
                                       RowRequest request, const RowAdded& added) {
  RowDialog state(toolkit, editor, std::move(request), added);
  if (!state.run_modal(toolkit, resource_of(state.form().kind()))) {
    editor.op().show(msg::kDialogNotCreated);
    return std::nullopt;
  }
  return state.result;
}

std::optional<std::string> run_job_name_dialog(
    tk::Toolkit& toolkit, Operator& op,
    const std::function<int(const std::string& typed, std::string& name)>& accept) {
  JobNameDialog dialog(accept);
  if (!dialog.run_modal(toolkit, tk::kJobNameDialog)) {
    op.show(msg::kDialogNotCreated);
    return std::nullopt;
  }
  return dialog.chosen;
}

}  // namespace px::editors
