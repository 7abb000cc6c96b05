// What every modal dialog does alike, in one place: the close box and
// Cancel (control kCancel) close it without doing anything, and once it is
// destroyed its help topics are forgotten. A dialog derives from DialogBase
// and says only what its creation and its other controls do (OK included:
// what OK does is each dialog's own).
#pragma once

#include "toolkit/toolkit.h"

namespace px::tk {

class DialogBase {
 public:
  virtual ~DialogBase() = default;

  // Runs dialog resource modally with this object handling its events;
  // false when it could not be created.
  bool run_modal(Toolkit& toolkit, int resource);
  // One event of the dialog.
  virtual void handle(const Event& e);

 protected:
  // Fills the dialog as it opens.
  virtual void create(Window dialog) = 0;
  // A notice of any control but the Cancel button's click.
  virtual void control(Window dialog, const Event& e) = 0;
  // After the toolkit forgot the destroyed dialog's help topics: what else
  // the dialog's owner keeps for it (topics queued before help was open).
  virtual void destroyed(Window /*dialog*/) {}
};

}  // namespace px::tk
