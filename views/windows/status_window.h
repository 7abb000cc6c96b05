// "Nexa Status and Queue" (window 137): every instance's status line and
// waiting files, refilled by its timer every QueueRefreshCycle seconds, and
// within a second when a collector directory or a status file changes
// (inotify; at most once a second while changes go on). A refill changes
// the rows in place, so the list stays scrolled where the operator left it. The files are listed on a thread of their own: a directory
// that hangs leaves the window answering, and its rows come when the
// listing ends. At most one exists; opening it again refills it at once. A
// refill keeps the operator's selected row (the same row text, else the
// same position).
//
//   0 create    help; fixed-pitch list font; the refresh timer; fill; focus
//   1 destroy   help dropped; the view is forgotten
//   3 resize    the list takes the client area less 50 at the right and 5
//               at the bottom (at least 1 each way); "Close" 10 right of
//               it, its top 55 above the list's vertical middle
//   4 paint     light grey, the header text at (5, 20), followed on its
//               line by "last updated HH:MM:SS", the time of the last fill
//   5 close, control 1 ("Close")   destroy
//   16 timer    refill (the refresh timer), or refill when something
//               watched changed (the watch timer)
#pragma once

#include <string>

#include "views/windows/view_host.h"

namespace px::views {

inline constexpr int kWatchPeriodMs = 500;
// How long a refill waits for its listing before leaving it to finish on
// its own thread (a slow or hung network directory).
inline constexpr int kListingWaitMs = 250;

inline constexpr const char* kStatusHeader =
    "Instance name / Collector directory              Status / File list";

// The header line as paint draws it: the header text, then "    last
// updated " and updated when that is not empty.
std::string status_header(const std::string& updated);

// Shows the view: refills and focuses an open one, else opens it (message
// 100 when it cannot be created). The window, or an invalid one.
tk::Window show_status_queue(const ViewHost& host);

// The open status and queue window; an invalid Window when none is open.
tk::Window status_queue_window(tk::Toolkit& toolkit);

}  // namespace px::views
