#include "config/dialogs/dialog_base.h"

namespace px::dialogs {

bool DialogBase::run_modal(tk::Toolkit& toolkit, int resource) {
  return toolkit.run_modal_dialog(resource, [this](const tk::Event& e) { handle(e); });
}

void DialogBase::handle(const tk::Event& e) {
  tk::Window dialog = e.window;
  switch (e.type) {
    case tk::EventType::kCreate:
      create(dialog);
      break;
    case tk::EventType::kDestroy:
      dialog.toolkit().forget_help_topics(dialog.id());
      break;
    case tk::EventType::kClose:
      dialog.destroy();
      break;
    case tk::EventType::kControl:
      if (e.is_control(kCancelButton, tk::Notice::kClicked)) {
        dialog.destroy();
      } else {
        control(dialog, e);
      }
      break;
    default:
      break;
  }
}

}  // namespace px::dialogs
