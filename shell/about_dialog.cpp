#include "shell/about_dialog.h"

#include "shell/shell_messages.h"
#include "toolkit/resources/resource_ids.h"

#ifndef PX_VERSION
#error "PX_VERSION is set by the build"
#endif

namespace px::shell {

std::string version_line() { return std::string("Version ") + PX_VERSION; }

void run_about_dialog(Console& console) {
  auto handler = [&console](const tk::Event& e) {
    tk::Window dialog = e.window;
    switch (e.type) {
      case tk::EventType::kCreate:
        dialog.control(tk::kAboutVersion).set_text(version_line());
        break;
      case tk::EventType::kDestroy:
        console.help().forget(dialog.id());
        break;
      case tk::EventType::kClose:
        dialog.destroy();
        break;
      case tk::EventType::kControl:
        if (e.is_control(tk::kOk, tk::Notice::kClicked)) dialog.destroy();
        break;
      default:
        break;
    }
  };
  if (!console.toolkit().run_modal_dialog(tk::kAboutDialog, handler)) {
    console.op().show(msg::kDialogNotCreated);
  }
}

}  // namespace px::shell
