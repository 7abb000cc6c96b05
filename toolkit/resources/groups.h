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

// shell_dialogs.cpp: Reload Printer (131).
std::span<const WindowDef* const> shell_dialog_defs();

// instance_dialogs.cpp: Nexa Control Configuration (121), Configure Nexa and
// Agents (123), Edit Nexa Control Configuration (124), Select Directory (150).
std::span<const WindowDef* const> instance_dialog_defs();

// view_windows.cpp: the log view (120) and its process choice (113), Nexa
// Status and Queue (137), rejects (142), E-Mail Agent queue (144).
std::span<const WindowDef* const> view_window_defs();

// jmd_editors.cpp: the JMD list window (143), the job window (146) and the
// row dialogs 106, 108, 126, 128, 129.
std::span<const WindowDef* const> jmd_editor_defs();

// config_dialogs.cpp: the server's (134, 136, 147), the E-Mail Agent's (133,
// 148, 149) and the Print Agent's (138, 139, 140) configuration dialogs.
std::span<const WindowDef* const> config_dialog_defs();

}  // namespace px::tk
