// The catalogue of resources: finds a window, dialog or menu bar by id, lists
// them all, and checks a definition for the mistakes that a table invites.
//
// To add resources: write their tables in a file of this folder (one file
// per group, as shell_windows.cpp does), give the file a function that
// returns the group's definitions, declare it in groups.h and add it to the
// list in catalog.cpp. Then run the resource tests and scripts/screenshots.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "toolkit/resources/resource.h"

namespace px::tk {

// nullptr when no resource has that id.
const WindowDef* find_window_def(int id);
const MenuBarDef* find_menu_bar(int id);

// Every window and dialog, and every menu bar, in id order.
std::span<const WindowDef* const> all_window_defs();
std::span<const MenuBarDef* const> all_menu_bars();

// Where a back end finds its resources: the catalogue, or a test's own
// tables.
struct ResourceLookup {
  std::function<const WindowDef*(int id)> window = find_window_def;
  std::function<const MenuBarDef*(int id)> menu_bar = find_menu_bar;
};

// The command item with that id anywhere in the bar (submenus included);
// nullptr when none.
const MenuItemDef* find_menu_command(const MenuBarDef& bar, int id);

// The mistakes found in a definition, one line each; empty when it is sound.
// A window: ids repeated, kNoId on a control that the code could address,
// controls outside the client area, controls that overlap (except a group
// box and what it holds), two default or two cancel buttons, a mnemonic used
// twice, a label mnemonic with no field after it. A menu bar: a command id
// used twice, a mnemonic used twice within one menu, an empty submenu,
// separators at the ends of a menu or side by side.
std::vector<std::string> check_window_def(const WindowDef& def);
std::vector<std::string> check_menu_bar(const MenuBarDef& bar);

}  // namespace px::tk
