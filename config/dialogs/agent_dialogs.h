// The agents' configuration dialogs. Each reads IniFileName from the
// agent's section of the instance's configuration file (PXEMIO or PXMERGE)
// and works on that file; when it has fewer than 2 characters the dialog
// closes at once and shows nothing.
//
// E-mail Agent: "E-Mail Agent Configuration for %s" (133), with "Job Card"
// (149) behind "Job Card..." and "E-Mail Agent File Locations for %s"
// (148) behind "File Locations..." (a button that is never shown); the
// post-office row is hidden for MAPI and EMAPI; "Browse..." (23) picks the
// post office's directory.
//
// Print Agent: "Print Agent Configuration for %s" (138), with "Print Agent
// Currency Options" (139) and "Print Agent Special Characters" (140) behind
// "Currency..." and "Characters..."; the yield percentage (label 10, edit
// 11) is hidden but loaded, checked and saved; "Browse..." 19 to 21 pick
// the form, logo and data directories. A sub-dialog that cannot be created
// shows the box "Can't open dialog".
#pragma once

#include <string>

#include "config/dialogs/config_context.h"

namespace px::dialogs {

// Each takes the instance's configuration file; false when the dialog
// could not be opened (a blank IniFileName is not a failure).
bool run_email_dialog(const ConfigContext& context, const std::string& config_file);
bool run_email_locations_dialog(const ConfigContext& context, const std::string& config_file);
bool run_job_card_dialog(const ConfigContext& context, const std::string& config_file);
bool run_print_dialog(const ConfigContext& context, const std::string& config_file);
bool run_currency_dialog(const ConfigContext& context, const std::string& config_file);
bool run_characters_dialog(const ConfigContext& context, const std::string& config_file);

}  // namespace px::dialogs
