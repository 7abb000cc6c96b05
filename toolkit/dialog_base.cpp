#include "toolkit/dialog_base.h"

#include "toolkit/resources/resource_ids.h"

namespace px::tk {

bool DialogBase::run_modal(Toolkit& toolkit, int resource) {
  return toolkit.run_modal_dialog(resource, [this](const Event& e) { handle(e); });
}

void DialogBase::handle(const Event& e) {
  Window dialog = e.window;
  switch (e.type) {
    case EventType::kCreate:
      create(dialog);
      break;
    case EventType::kDestroy:
      dialog.toolkit().forget_help_topics(dialog.id());
      destroyed(dialog);
      break;
    case EventType::kClose:
      dialog.destroy();
      break;
    case EventType::kControl:
      if (e.is_control(kCancel, Notice::kClicked)) {
        dialog.destroy();
      } else {
        control(dialog, e);
      }
      break;
    default:
      break;
  }
}

}  // namespace px::tk
