// What every configuration dialog does alike, in one place: the close box
// and Cancel (control 2) close it without doing anything, and once it is
// destroyed its help topics are forgotten. A dialog derives from DialogBase
// and says only what its creation and its other controls do.
#pragma once

#include "toolkit/toolkit.h"

namespace px::dialogs {

// The Cancel button of every dialog resource.
inline constexpr int kCancelButton = 2;

class DialogBase {
 public:
  virtual ~DialogBase() = default;

  // Runs dialog resource modally with this object handling its events;
  // false when it could not be created.
  bool run_modal(tk::Toolkit& toolkit, int resource);
  // One event of the dialog.
  virtual void handle(const tk::Event& e);

 protected:
  // Fills the dialog as it opens.
  virtual void create(tk::Window dialog) = 0;
  // A notice of any control but the Cancel button's click.
  virtual void control(tk::Window dialog, const tk::Event& e) = 0;
};

}  // namespace px::dialogs
