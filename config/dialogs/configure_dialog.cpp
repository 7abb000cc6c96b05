#include "config/dialogs/configure_dialog.h"

#include <optional>

#include "common/messages.h"
#include "config/dialogs/agent_dialogs.h"
#include "config/dialogs/form_dialog.h"
#include "config/dialogs/instance_dialogs.h"
#include "config/dialogs/server_dialogs.h"
#include "config/forms/process_list.h"
#include "config/operator_action.h"
#include "toolkit/dialog_base.h"

namespace px::dialogs {

namespace {

constexpr int kDialog = 123;
constexpr int kList = 3;
constexpr int kEditFile = 1;

class Configure : public tk::DialogBase {
 public:
  Configure(const ConfigContext& context, const Instance& instance, bool other_node)
      : context_(context), instance_(instance), other_node_(other_node) {}

  // After the dialog closed: opens what was chosen.
  void open_choice() {
    if (!chosen_) return;
    if (chosen_->empty()) {
      if (!run_instance_config_dialog(context_)) context_.op.show(forms::kMsgEditorNotOpened);
      return;
    }
    std::optional<forms::ProcessEditor> editor =
        forms::process_editor(instance_.config_file, *chosen_, context_.op);
    if (!editor) return;
    bool opened = true;
    switch (editor->kind) {
      case forms::EditorKind::kCommand:
        run_command(*chosen_, editor->command);
        return;
      case forms::EditorKind::kServer:
        opened = run_server_dialog(context_, editor->ini_file);
        break;
      case forms::EditorKind::kEmail:
        opened = run_email_dialog(context_, instance_.config_file);
        break;
      case forms::EditorKind::kPrint:
        opened = run_print_dialog(context_, instance_.config_file);
        break;
    }
    if (!opened) context_.op.show(forms::kMsgEditorNotOpened);
  }

 private:
  void create(tk::Window dialog) override {
    dialog.set_title(messages::message_label(forms::kMsgConfigureTitle));
    dialog.control(kEditFile).set_text(messages::message_label(forms::kMsgEditFileButton));
    listing_ = forms::list_processes(instance_.config_file, other_node_, context_.op);
    if (listing_.closes) {
      dialog.destroy();
      return;
    }
    tk::Control list = dialog.control(kList);
    list.clear_rows();
    list.add(messages::message_label(forms::kMsgInstanceListRow));
    for (const forms::Process& process : listing_.processes) list.add(process.name);
    list.select(0);
    list.focus();
  }

  void control(tk::Window dialog, const tk::Event& e) override {
    if (e.is_control(kEditFile, tk::Notice::kClicked) || (e.control == kList && e.double_click())) {
      choose(dialog);
    }
  }

  void choose(tk::Window dialog) {
    tk::Control list = dialog.control(kList);
    int row = list.selected();
    if (row < 0) return;
    if (row == 0) {
      chosen_ = std::string();
    } else {
      chosen_ = forms::key_for_row(listing_, list.row(row));
      if (!chosen_) return;
    }
    dialog.destroy();
  }

  // EditCfgRtn: the operator action "config edit PROCESS", as the editor
  // it runs may change the files (refused in read-only mode). The task
  // window stays disabled while the editor runs.
  void run_command(const std::string& process, const std::string& command) {
    OperatorAction action(context_.op, "config edit " + process, instance_.name);
    if (!action.permitted()) return;
    tk::Window task = context_.toolkit.task_window();
    task.set_enabled(false);
    set_start_minimised(0);
    if (context_.run_and_wait(command) == kRunFailed) {
      action.op().show(forms::kMsgEditorNotRun, {command});
    }
    task.set_enabled(true);
    action.finish(action.last_message() == 0 ? ActionResult::kDone : ActionResult::kFailed);
  }

  const ConfigContext& context_;
  const Instance& instance_;
  bool other_node_;
  forms::ProcessListing listing_;
  std::optional<std::string> chosen_;  // empty: the instance list
};

}  // namespace

bool run_configure_dialog(const ConfigContext& context, const Instance& instance,
                          bool other_node) {
  Configure configure(context, instance, other_node);
  if (!configure.run_modal(context.toolkit, kDialog)) {
    context.op.show(kMsgDialogNotCreated);
    return false;
  }
  configure.open_choice();
  return true;
}

}  // namespace px::dialogs
