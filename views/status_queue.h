// The rows of the status and queue view: for every instance in install-file
// order, a block with its status line and the files waiting in its
// collector directory (control jobs first, then transaction files, each
// group oldest first).
//
// Block of one instance (title: WindowTitle; problems become rows and end
// the block, never the view):
//   "%-30s%s"      title, message 167 / 304 / 163 / 168 (FileSpec missing,
//                  DataPath missing, no list, no such directory)
//   "%s - "        title
//   "  - %s"       first line of StatusFile, or message 196 (empty), 173
//                  (does not open), 304 (StatusFile not set)
//   "  %-28s  %s"  collector directory, message 174 (nothing waiting) or the
//                  first file name
//   "%30s  %s"     "", each further file name
//
// Settings: FileSpec (Options; the text before the first ";"), DataPath
// (Paths) and StatusFile (Plexar) of each instance's configuration file,
// paths through that instance's directory map; QueueRefreshCycle (Options of
// the console's INI file) for the refresh period.
#pragma once

#include <string>
#include <vector>

#include "config/instances.h"

namespace px::views {

// The longest status line shown.
inline constexpr size_t kStatusLineLength = 339;

// The rows of one instance's block. Makes the instance the profile engine's
// active instance (its directory map is loaded) and leaves it so.
std::vector<std::string> instance_block(const Instance& instance);

// Every instance's block in install-file order; afterwards the current
// instance is the active one again.
std::vector<std::string> status_queue_rows();

// The status shown for a status file: its first line (at most 339
// characters, the line end removed), or the message row for an empty line
// (196) or a file that does not open (173).
std::string status_line(const std::string& status_file);

// What the rows are made from, for watching: every instance's collector
// directory and status file (those that are set).
struct StatusSources {
  std::vector<std::string> directories;
  std::vector<std::string> files;
};
StatusSources status_queue_sources();

// QueueRefreshCycle in milliseconds (10 seconds when absent or below 1).
int refresh_period_ms();

}  // namespace px::views
