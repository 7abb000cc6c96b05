#include "shell/select_instance_dialog.h"

#include <vector>

#include "common/ini_profile.h"
#include "config/instances.h"
#include "config/message_numbers.h"
#include "shell/menu_state.h"
#include "shell/shell_messages.h"
#include "shell/title.h"
#include "toolkit/resources/resource_ids.h"

namespace px::shell {

namespace {

class SelectInstance {
 public:
  explicit SelectInstance(Console& console) : console_(console) {}

  void handle(const tk::Event& e) {
    tk::Window dialog = e.window;
    switch (e.type) {
      case tk::EventType::kCreate:
        fill(dialog);
        break;
      case tk::EventType::kDestroy:
        console_.help().forget(dialog.id());
        break;
      case tk::EventType::kClose:
        dialog.destroy();
        break;
      case tk::EventType::kControl:
        if (e.is_control(tk::kOk, tk::Notice::kClicked) ||
            (e.control == tk::kSelectInstanceList && e.double_click())) {
          choose(dialog);
        } else if (e.is_control(tk::kCancel, tk::Notice::kClicked)) {
          dialog.destroy();
        }
        break;
      default:
        break;
    }
  }

 private:
  void fill(tk::Window dialog) {
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
  if (!console.toolkit().run_modal_dialog(tk::kSelectInstanceDialog,
                                          [&dialog](const tk::Event& e) { dialog.handle(e); })) {
    console.op().show(msg::kDialogNotCreated);
  }
}

}  // namespace px::shell
