#include "shell/read_only_menu.h"

#include "config/operator_action.h"
#include "toolkit/resources/resource_ids.h"

namespace px::shell {

namespace {

constexpr int kChangingItems[] = {
    tk::kCmdSave,          tk::kCmdSaveSecond,    tk::kCmdReloadPrinter, tk::kCmdReloadJmd,
    tk::kCmdStartServer,   tk::kCmdPauseServer,   tk::kCmdResumeServer,  tk::kCmdShutDownServer,
    tk::kCmdStartEmail,    tk::kCmdShutDownEmail,
};

}  // namespace

std::span<const int> changing_menu_items() { return kChangingItems; }

void apply_read_only(tk::Window task) {
  if (!read_only_mode()) {
    for (int item : kChangingItems) task.set_menu_tip(item, "");
    return;
  }
  std::string reason = read_only_reason();
  for (int item : kChangingItems) {
    task.set_menu_enabled(item, false);
    task.set_menu_tip(item, reason);
  }
}

}  // namespace px::shell
