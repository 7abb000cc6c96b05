// "Nexa Control Configuration" (dialog 121), the list of instances, and
// "Edit Nexa Control Configuration" (124), one instance's name,
// description and configuration file.
//
// 121 lists every instance's title in install-file order. "Edit..." (1) or
// a double click opens 124 on the selected row; "Make Default" (4) moves
// the selected row to the top (214 when none is selected); "Delete" (3),
// created hidden, is shown and takes the selected row out; OK (5) rewrites
// section Configuration of the install file in list order and each
// WindowTitle, after asking Reload / Overwrite / Cancel when the install
// file changed since the dialog read it; Cancel writes nothing. OK is the
// operator action "instances apply"; a file it could not write is reported
// (the rewrite's message, then 902) and the dialog stays open. In read-only
// mode OK, Make Default and Delete are disabled with the reason as their
// tooltip, and 124's OK too, but both dialogs open to show the instances.
#pragma once

#include "config/dialogs/config_context.h"

namespace px::dialogs {

// False when the dialog could not be opened.
bool run_instance_config_dialog(const ConfigContext& context);

}  // namespace px::dialogs
