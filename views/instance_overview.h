// The task window's overview of the installation: one line per instance
// with its title, its server's state and how many files wait in its queue,
// made from the same listing as the status and queue view.
#pragma once

#include <string>
#include <vector>

#include "views/status_queue.h"

namespace px::views {

// "%-40s  %-12s  %d waiting" (title, state, files waiting) for a listed
// block; for a block that is only a problem row, the title and the
// problem's text. The state is the status line's, by the server-state rule
// (no status file: not running; StatusFile not set or an empty line:
// unknown). plans and
// blocks are in the same order.
std::vector<std::string> overview_lines(const std::vector<BlockPlan>& plans,
                                        const std::vector<ListedBlock>& blocks);

}  // namespace px::views
