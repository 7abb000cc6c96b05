// Find in a log of any size: the next or previous line that contains a
// text, read from the log in blocks from the nearest checkpoint of its
// index, never loading the log whole.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "views/log_index.h"

namespace px::views {

enum class FindDirection { kForward, kBackward };

// The first line from line from onwards (forward) or from line from back
// to the first line (backward) that contains text, compared without regard
// to case; nullopt when there is none, the text is empty, or the log does
// not open.
std::optional<int64_t> find_line(const LogIndex& index, std::string_view text, int64_t from,
                                 FindDirection direction);

}  // namespace px::views
