// The log view (window 120) with its process choice (dialog 113), and the
// rejected-file view, which uses the same window.
//
// A log of fewer than 10,000 lines is loaded whole, wrapped by LogLineWrap
// and LogLineIndent, and kept in view at its end; a larger one is shown 30
// lines at a time from its index and opens on its last page. The scroll bars
// (45 vertical, 46 horizontal) move the text: line steps by one line or 10
// columns, page steps by the bar's page (times 10 columns), the thumb to its
// position (a large log shows the page starting there).
//
// Find: the text in the find field (Ctrl+F) is looked for, without regard
// to case, by "Next" or F3 (from the page or text shown onwards) and
// "Previous" or Shift+F3; a paged
// log is searched through its index, never loaded whole.
//
// Beyond that, the view follows its log: a timer looks at it every second;
// appended lines are indexed (never the whole log again) and shown when the
// operator is at the end, and a log that was truncated or replaced is
// loaded again. Scrolling up stops the following; returning to the end
// starts it again.
//
//   0 create    help; title (252 + "Nexa E-Mail Agent" or the instance's
//               title); font ("system" on a CJK locale, else "courier", 10);
//               find the log (144, 167), index it (177), load it; caption
//               (198 + the log's path). A failure closes the window.
//   1 destroy   help dropped
//   3 resize    the text and the scroll bars take the client area
//   5 close     destroy
//   15 control  scroll bars 45 and 46; Next (48) and Previous (49) find
//               the text of field 47; the keys: Ctrl+F focuses field 47,
//               F3 (or Enter in field 47) finds the next, Shift+F3 the
//               previous
//   16 timer    follow the log
#pragma once

#include <string>

#include "views/windows/view_host.h"

namespace px::views {

inline constexpr int kFollowPeriodMs = 1000;

// "Nexa Log": the process choice of the current instance; with one process
// its log opens at once, with several dialog 113 asks which (101 when it
// cannot be opened). 144 and 175 when the processes cannot be read.
void open_server_log(const ViewHost& host);

// "E-Mail Agent Log": window 120 with application value 1.
tk::Window open_email_log(const ViewHost& host);

// Window 120 on the log of the process in section (message 100 when it
// cannot be created). The windows opened by these three, or an invalid one
// when none was opened or it closed itself after its message.
tk::Window open_process_log(const ViewHost& host, const std::string& section);

// The rejected-file view of the file name in the server's (email false) or
// the E-mail Agent's error directory.
tk::Window open_reject_file(const ViewHost& host, bool email, const std::string& name);

// True when the locale (LC_ALL, LC_CTYPE or LANG, the first one set) is
// Japanese, Chinese or Korean: the log view then uses the "system" font.
bool cjk_locale();

}  // namespace px::views
