#include "shell/about_dialog.h"

#include "shell/shell_messages.h"
#include "toolkit/dialog_base.h"
#include "toolkit/resources/resource_ids.h"

#ifndef PX_VERSION
#error "PX_VERSION is set by the build"
#endif

namespace px::shell {

namespace {

class About : public tk::DialogBase {
 public:
  explicit About(Console& console) : console_(console) {}

 private:
  void create(tk::Window dialog) override {
    dialog.control(tk::kAboutVersion).set_text(version_line());
  }

  void control(tk::Window dialog, const tk::Event& e) override {
    if (e.is_control(tk::kOk, tk::Notice::kClicked)) dialog.destroy();
  }

  void destroyed(tk::Window dialog) override { console_.help().forget(dialog.id()); }

  Console& console_;
};

}  // namespace

std::string version_line() { return std::string("Version ") + PX_VERSION; }

void run_about_dialog(Console& console) {
  About dialog(console);
  if (!dialog.run_modal(console.toolkit(), tk::kAboutDialog)) {
    console.op().show(msg::kDialogNotCreated);
  }
}

}  // namespace px::shell
