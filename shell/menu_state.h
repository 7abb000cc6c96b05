// Which menu items of the task window are enabled, from the current
// instance's configuration.
//
// The refresh reads, from the instance's configuration file, DataPath,
// BackupPath, ErrorPath and ExePath (section Paths), JMDFileName (Options),
// and LogFile and StatusFile (Plexar), each mapped through the directory map;
// a value is "set" when it is not empty then. With the location word it
// enables:
//   1047 Save and 1012                  JMDFileName set
//   1017 Nexa Log                       LogFile set and not "stdout" (in any
//                                       case: the log goes to the terminal)
//   1019 Nexa Rejects                   ErrorPath set
//   1024 1025 1037 1026 1023            DataPath set
//   1009 Start Nexa                     startable from here (location bit 2)
//                                       and, unless the instance has remote
//                                       access (bit 8), ExePath, DataPath,
//                                       BackupPath, ErrorPath and JMDFileName
//                                       all set
// Both the refresh and the E-mail Agent rule end with the read-only rule
// (read_only_menu.h), which disables the items that change something.
#pragma once

#include <string>

#include "config/instances.h"
#include "toolkit/toolkit.h"

namespace px::shell {

// What the refresh decides for one instance.
struct MenuState {
  bool save = false;
  bool log = false;
  bool rejects = false;
  bool control = false;
  bool start = false;
};

// The state for the instance's configuration file and location word.
MenuState menu_state(const std::string& config_file, unsigned location);

// Re-reads the current instance's configuration and sets the items above.
void refresh_menu_state(tk::Window task);

// The E-mail Agent rule: when PXEMIO (section Options of the console's INI
// file) is nonzero, the agent's five items (1011, 1035, 1020, 1021, 1048)
// are enabled when the configuration file has a PXEMIO section with keys,
// and disabled otherwise. Nothing changes when PXEMIO is 0.
void apply_email_rule(tk::Window task, const std::string& config_file);

// Cut, Copy, Paste and Delete as they are with no database window focused:
// nothing selected, nothing to paste.
void set_edit_items_for_no_selection(tk::Window task);

// True when the console's INI file enables the E-mail Agent (PXEMIO in
// section Options nonzero): the menu bar with its items is used.
bool email_agent_enabled();

}  // namespace px::shell
