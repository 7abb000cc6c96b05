// "Select Directory" (dialog 150) and the two browse operations that fill a
// path field of a configuration dialog: a directory through dialog 150, a
// file through the toolkit's file-open dialog. Chosen paths keep their case.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "config/dialogs/config_context.h"
#include "config/forms/directory_browser.h"
#include "config/operator.h"
#include "toolkit/toolkit.h"

namespace px::dialogs {

// Runs dialog 150 starting at start over drives; the directory chosen with
// OK, or nothing. Message 101 when it cannot be opened.
std::optional<std::string> select_directory(tk::Toolkit& toolkit, Operator& op,
                                            const std::string& start,
                                            std::vector<forms::Drive> drives);

// Browse for a directory into the edit field of dialog: its text is the
// start; the chosen directory replaces it. True when it did.
bool browse_for_directory(tk::Window dialog, int field, const ConfigContext& context);

// Browse for a file into the edit field of dialog: the field's directory
// (the toolkit's default directory when it is not one) and file name open
// the file-open dialog titled prompt; the chosen file replaces the text.
bool browse_for_file(tk::Window dialog, int field, const std::string& prompt);

}  // namespace px::dialogs
