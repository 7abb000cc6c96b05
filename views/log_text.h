// How the log view lays a log out: a log of fewer than 10,000 lines is
// loaded whole, each line wrapped to LogLineWrap characters with
// continuation rows indented by LogLineIndent blanks; a larger one is shown
// 30 lines at a time through its index, opening on its last page.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "config/operator.h"
#include "views/log_index.h"

namespace px::views {

inline constexpr int64_t kWholeLogLimit = 10000;  // this many lines or more are paged
inline constexpr int64_t kPageLines = 30;

struct Wrap {
  int width = 0;    // 0 or less: no wrapping
  int indent = 16;  // blanks in front of each continuation row
};

// LogLineWrap and LogLineIndent from section Options of the console's INI.
Wrap wrap_settings();

// Appends line to rows as its wrapped rows: the first width characters,
// then indent blanks and the next width - indent characters, and so on. A
// line of at most width characters, a width below 1, or an indent at or
// above the width (no room for text) gives the line as one row.
void wrap_line(std::string_view line, Wrap wrap, std::vector<std::string>& rows);

// True when the indexed log is shown whole.
inline bool shown_whole(const LogIndex& index) { return index.line_count() < kWholeLogLimit; }

// The first line of the page a large log opens on: its last 30 lines.
inline int64_t last_page(const LogIndex& index) {
  return index.line_count() > kPageLines ? index.line_count() - kPageLines : 0;
}

// Every line of the log, wrapped; nullopt when it does not open.
std::optional<std::vector<std::string>> whole_log(const std::string& path, Wrap wrap);

// Indexes the log; shows 177 with its path and gives false when it does not
// open.
bool index_log(LogIndex& index, Operator& op);

// The lines of a text file, unwrapped (the rejected-file view); shows 177
// and gives nullopt when it does not open.
std::optional<std::vector<std::string>> file_lines(const std::string& path, Operator& op);

}  // namespace px::views
