#include "config/dialogs/instance_dialogs.h"

#include "config/dialogs/form_dialog.h"
#include "config/forms/form_messages.h"
#include "config/forms/instance_list.h"
#include "config/forms/process_list.h"
#include "config/operator_action.h"
#include "toolkit/dialog_base.h"

namespace px::dialogs {

namespace {

// Nexa Control Configuration (121).
constexpr int kListDialog = 121;
constexpr int kEdit = 1;
constexpr int kDelete = 3;
constexpr int kMakeDefault = 4;
constexpr int kListOk = 5;
constexpr int kList = 7;
// Edit Nexa Control Configuration (124).
constexpr int kRecordDialog = 124;
constexpr int kOk = 1;

// The record dialog: OK refuses a name that cannot be a key, or that
// another row has.
class InstanceRecord : public tk::DialogBase {
 public:
  InstanceRecord(const ConfigContext& context, const forms::InstanceList& list, std::size_t row)
      : context_(context), list_(list), row_(row), instance_(list.rows()[row]) {}

  bool accepted() const { return accepted_; }
  const Instance& instance() const { return instance_; }

 private:
  void create(tk::Window dialog) override {
    set(dialog, forms::kRecordName, instance_.name);
    set(dialog, forms::kRecordTitle, instance_.window_title);
    set(dialog, forms::kRecordConfig, instance_.config_file);
    dialog.control(forms::kRecordName.control).focus();
    disable_when_read_only(dialog.control(kOk));
  }

  void control(tk::Window dialog, const tk::Event& e) override {
    if (e.notice == tk::Notice::kChanged) {
      keep_limit(dialog, e.control);
    } else if (e.is_control(kOk, tk::Notice::kClicked)) {
      ok(dialog);
    }
  }

  static void set(tk::Window dialog, const forms::FieldDef& field, const std::string& text) {
    tk::Control control = dialog.control(field.control);
    control.set_limit(static_cast<int>(field.limit));
    control.set_text(text.substr(0, field.limit));
  }

  void keep_limit(tk::Window dialog, int id) {
    for (const forms::FieldDef* field :
         {&forms::kRecordName, &forms::kRecordTitle, &forms::kRecordConfig}) {
      if (field->control != id) continue;
      tk::Control control = dialog.control(id);
      forms::EditResult result =
          forms::apply_typing_rules(*field, control.text(), control.selection().end, nullptr);
      if (result.text != control.text()) {
        control.set_text(result.text);
        control.set_caret(result.caret);
      }
      if (result.beep) dialog.toolkit().beep();
    }
  }

  void ok(tk::Window dialog) {
    std::string name = dialog.control(forms::kRecordName.control).text();
    int other = list_.find(name);
    if (!forms::InstanceList::usable_name(name)) {
      context_.op.show(forms::kMsgUnusableInstanceName, {name});
      return;
    }
    if (other >= 0 && static_cast<std::size_t>(other) != row_) {
      context_.op.show(forms::kMsgInstanceExists, {name});
      return;
    }
    instance_.name = name;
    instance_.window_title = dialog.control(forms::kRecordTitle.control).text();
    instance_.config_file = dialog.control(forms::kRecordConfig.control).text();
    accepted_ = true;
    dialog.destroy();
  }

  const ConfigContext& context_;
  const forms::InstanceList& list_;
  std::size_t row_;
  Instance instance_;
  bool accepted_ = false;
};

class InstanceConfig : public tk::DialogBase {
 public:
  explicit InstanceConfig(const ConfigContext& context) : context_(context) {}

 private:
  void create(tk::Window dialog) override {
    list_.load();
    dialog.control(kDelete).set_visible(true);
    fill(dialog, -1);
    for (int changes : {kListOk, kMakeDefault, kDelete}) disable_when_read_only(dialog.control(changes));
  }

  void control(tk::Window dialog, const tk::Event& e) override {
    if (e.is_control(kEdit, tk::Notice::kClicked) || (e.control == kList && e.double_click())) {
      edit(dialog);
    } else if (e.is_control(kMakeDefault, tk::Notice::kClicked)) {
      make_default(dialog);
    } else if (e.is_control(kDelete, tk::Notice::kClicked)) {
      remove(dialog);
    } else if (e.is_control(kListOk, tk::Notice::kClicked)) {
      ok(dialog);
    }
  }

  void fill(tk::Window dialog, int selected) {
    tk::Control list = dialog.control(kList);
    list.suspend();
    list.clear_rows();
    for (const Instance& row : list_.rows()) list.add(row.window_title);
    list.resume();
    if (selected >= 0 && selected < list.count()) list.select(selected);
  }

  void edit(tk::Window dialog) {
    tk::Control list = dialog.control(kList);
    int row = list.selected();
    if (row < 0 || list.row(row).empty()) return;
    InstanceRecord record(context_, list_, static_cast<std::size_t>(row));
    if (!record.run_modal(context_.toolkit, kRecordDialog)) {
      context_.op.show(kMsgDialogNotCreated);
      return;
    }
    if (!record.accepted()) return;
    list_.replace(static_cast<std::size_t>(row), record.instance());
    fill(dialog, row);
  }

  void make_default(tk::Window dialog) {
    tk::Control list = dialog.control(kList);
    if (list.count() <= 1) return;
    int row = list.selected();
    if (row < 0) {
      context_.op.show(forms::kMsgNothingSelected);
      return;
    }
    list_.make_default(static_cast<std::size_t>(row));
    fill(dialog, 0);
  }

  void remove(tk::Window dialog) {
    int row = dialog.control(kList).selected();
    if (row < 0) {
      context_.op.show(forms::kMsgNothingSelected);
      return;
    }
    list_.remove(static_cast<std::size_t>(row));
    fill(dialog, std::min(row, static_cast<int>(list_.rows().size()) - 1));
  }

  void ok(tk::Window dialog) {
    if (list_.changed_on_disk()) {
      std::size_t answer = context_.op.ask(
          forms::kMsgChangedAsk, {list_.install_file()},
          {forms::kMsgReloadButton, forms::kMsgOverwriteButton, forms::kMsgCancelButton});
      if (answer == 0) {
        list_.load();
        fill(dialog, 0);
        return;
      }
      if (answer != 1) return;
    }
    if (std::optional<std::string> key = list_.unsavable_value()) {
      context_.op.show(forms::kValueNotSavable, {*key});
      return;  // open still, with the operator's changes
    }
    OperatorAction action(context_.op, "instances apply", "");
    if (!action.permitted()) return;
    if (forms::InstanceList::Applied applied = list_.apply(context_.files); !applied) {
      FileMessage why = failure_message(applied.result, applied.file);
      action.op().show(why.number, why.args);
      action.op().show(forms::kMsgNotSaved, {applied.file});
      return;  // open still, with the operator's changes
    }
    action.finish(ActionResult::kDone);
    dialog.destroy();
  }

  const ConfigContext& context_;
  forms::InstanceList list_;
};

}  // namespace

bool run_instance_config_dialog(const ConfigContext& context) {
  InstanceConfig dialog(context);
  return dialog.run_modal(context.toolkit, kListDialog);
}

}  // namespace px::dialogs
