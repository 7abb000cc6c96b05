// The server's configuration dialogs: "Main Configuration for %s" (134) on
// the instance's configuration file, with "Nexa File Locations for %s"
// (147) behind "File Locations..." and "Network Command" (136) behind
// "Network...", a button that is hidden when the dialog opens.
//
// Main dialog: "Browse..." (25) picks the log file through the file-open
// dialog titled with message 261. Network dialog: opens with "Send network
// command" unchecked and its four edits and their labels disabled, without
// reading the file; the check box enables and disables them; its OK writes
// all five keys. File locations: each "Browse..." (11 to 14) picks a
// directory for its field; OK is 10.
#pragma once

#include <string>

#include "config/dialogs/config_context.h"

namespace px::dialogs {

// Runs the main dialog on file; false when it could not be opened.
bool run_server_dialog(const ConfigContext& context, const std::string& file);
bool run_network_dialog(const ConfigContext& context, const std::string& file);
bool run_server_locations_dialog(const ConfigContext& context, const std::string& file);

}  // namespace px::dialogs
