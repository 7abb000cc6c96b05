// The groups of resource definitions that catalog.cpp puts together. Each
// group lives in its own file of this folder.
#pragma once

#include <span>

#include "toolkit/resources/resource.h"

namespace px::tk {

// menu_bars.cpp: menu bars 1000 and 1010.
std::span<const MenuBarDef* const> menu_bar_defs();

// shell_windows.cpp: the task window, the splash, Select Instance, About.
std::span<const WindowDef* const> shell_window_defs();

}  // namespace px::tk
