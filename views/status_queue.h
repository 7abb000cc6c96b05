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

#include <optional>
#include <string>
#include <vector>

#include "config/instances.h"
#include "views/listing_cache.h"

namespace px::views {

// The longest status line shown.
inline constexpr size_t kStatusLineLength = 339;

// One instance's block as far as its settings tell, before any file is
// looked at: made where the settings and messages are (the GUI thread),
// then listed with files alone, on any thread, so that a slow or hung
// network directory never holds up the window.
struct BlockPlan {
  std::string title;                    // the instance's WindowTitle
  std::string config_file;              // its configuration file
  std::optional<std::string> only_row;  // a settings problem: the whole block
  std::string directory;                // the collector directory
  std::string pattern;                  // FileSpec up to its first ";"
  std::string status_file;              // empty when not set
  std::string title_row;                // "%s - "
  // The rows and status texts for what the files may turn out to be.
  std::string missing_directory_row;
  std::string not_set_status;
  std::string unopened_status;
  std::string empty_status;
  std::string no_files;
};

// The plan of one instance's block. Makes the instance the profile engine's
// active instance (its directory map is loaded) and leaves it so.
BlockPlan plan_block(const Instance& instance);
// What listing a planned block found.
struct ListedBlock {
  std::vector<std::string> rows;           // the block's rows
  bool listed = false;                     // false: a settings or directory problem row
  std::optional<std::string> status_line;  // the status file's first line, when it opened
  int waiting = 0;                         // files listed (control jobs and transactions)
};
// Lists a planned block; reads only the file system. cache, when given,
// keeps the times of the directory's files between listings.
ListedBlock list_block_detail(const BlockPlan& plan, ListingCache* cache = nullptr);
// The rows of a planned block.
std::vector<std::string> list_block(const BlockPlan& plan);
// plan_block, then list_block.
std::vector<std::string> instance_block(const Instance& instance);

// Every instance's plan in install-file order; afterwards the current
// instance is the active one again.
std::vector<BlockPlan> plan_status_queue();
// Every planned block listed, in order; reads only the file system.
std::vector<ListedBlock> list_blocks(const std::vector<BlockPlan>& plans,
                                     ListingCache* cache = nullptr);
// The rows of listed blocks, one after the other.
std::vector<std::string> rows_of(const std::vector<ListedBlock>& blocks);
// The rows of every planned block, in order; reads only the file system.
std::vector<std::string> list_status_queue(const std::vector<BlockPlan>& plans);
// Every instance's block: plan_status_queue, then list_status_queue.
std::vector<std::string> status_queue_rows();

// The first line of a status file (at most 339 characters, the line end
// removed); nullopt when it does not open.
std::optional<std::string> read_status_line(const std::string& status_file);
// The status shown for a status file: its first line, or the message row
// for an empty line (196) or a file that does not open (173).
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
