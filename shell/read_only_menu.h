// Read-only mode in the task window: every menu item that would change a
// file or signal the server is disabled, with message 1701 as its tooltip
// saying why. The actions behind them are refused by their own gate
// (config/operator_action.h) whatever the menus say; this shows the operator
// beforehand what cannot be done.
#pragma once

#include <span>

#include "toolkit/toolkit.h"

namespace px::shell {

// The task window's items that change a file or signal the server: Save
// (both), the five control jobs, Start Nexa, Start and Shut Down E-Mail
// Agent.
std::span<const int> changing_menu_items();

// In read-only mode disables those items and sets their tooltip; otherwise
// takes the tooltips off (the items' state is left to the menu rules).
// Called last wherever the menu rules enable items.
void apply_read_only(tk::Window task);

}  // namespace px::shell
