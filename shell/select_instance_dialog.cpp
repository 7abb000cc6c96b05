#include "shell/select_instance_dialog.h"

#include <vector>

#include "common/ini_profile.h"
#include "config/instances.h"
#include "config/message_numbers.h"
#include "shell/menu_state.h"
#include "shell/shell_messages.h"
#include "shell/title.h"
#include "toolkit/dialog_base.h"
#include "toolkit/resources/resource_ids.h"

namespace px::shell {

namespace {

class SelectInstance : public tk::DialogBase {
 public:
  explicit SelectInstance(Console& console) : console_(console) {}

 private:
  // Lists every instance with the current one selected.
  void create(tk::Window dialog) override {
    InstanceEnumerator enumerator;
    if (!enumerator.begin()) {
      console_.op().show(msg::kNoInstanceToSelect, {display_path(ini::default_file())});
      dialog.destroy();
      return;
    }
    tk::Control list = dialog.control(tk::kSelectInstanceList);
    list.suspend();
    for (Instance entry; enumerator.next(entry);) {
      list.add(entry.window_title);
      if (entry.name == current_instance().name) list.select(static_cast<int>(instances_.size()));
      instances_.push_back(entry);
    }
    enumerator.end();
    list.resume();
    list.focus();
  }

  // OK or a double click on a row chooses.
  void control(tk::Window dialog, const tk::Event& e) override {
    if (e.is_control(tk::kOk, tk::Notice::kClicked) ||
        (e.control == tk::kSelectInstanceList && e.double_click())) {
      choose(dialog);
    }
  }

  void destroyed(tk::Window dialog) override { console_.help().forget(dialog.id()); }

  // Makes the selected row's instance current and closes.
  void choose(tk::Window dialog) {
    int row = dialog.control(tk::kSelectInstanceList).selected();
    if (row < 0 || static_cast<size_t>(row) >= instances_.size()) return;
    const Instance chosen = instances_[static_cast<size_t>(row)];
    set_task_title(console_.task(), chosen.window_title);
    if (chosen.config_file.size() < 2) {
      console_.op().show(msg::kInstanceWithoutConfig,
                         {chosen.name, display_path(ini::default_file())});
    }
    set_current_instance(chosen);
    refresh_menu_state(console_.task());
    dialog.destroy();
  }

  Console& console_;
  std::vector<Instance> instances_;
};

}  // namespace

void run_select_instance_dialog(Console& console) {
  SelectInstance dialog(console);
  if (!dialog.run_modal(console.toolkit(), tk::kSelectInstanceDialog)) {
    console.op().show(msg::kDialogNotCreated);
  }
}

}  // namespace px::shell
