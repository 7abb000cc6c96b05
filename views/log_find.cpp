#include "views/log_find.h"

#include <algorithm>
#include <string>

#include "common/text.h"

namespace px::views {

namespace {

bool contains(std::string_view line, std::string_view text) {
  return ifind(line, text) != std::string_view::npos;
}

std::optional<int64_t> find_forward(const LogIndex& index, std::string_view text, int64_t from) {
  auto reader = index.open_at_line(from);
  if (!reader) return std::nullopt;
  std::string line;
  for (int64_t n = from; n < index.line_count() && reader->next(line); ++n) {
    if (contains(line, text)) return n;
  }
  return std::nullopt;
}

// Block by block towards the start: each block is the lines from one
// checkpoint up to the next (or up to from), and its last match wins.
std::optional<int64_t> find_backward(const LogIndex& index, std::string_view text, int64_t from) {
  for (int64_t block = from / kCheckpointLines; block >= 0; --block) {
    int64_t first = block * kCheckpointLines;
    int64_t count = std::min(kCheckpointLines, from - first + 1);
    auto lines = index.read_lines(first, count);
    if (!lines) return std::nullopt;
    for (int64_t i = static_cast<int64_t>(lines->size()) - 1; i >= 0; --i) {
      if (contains((*lines)[static_cast<size_t>(i)], text)) return first + i;
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<int64_t> find_line(const LogIndex& index, std::string_view text, int64_t from,
                                 FindDirection direction) {
  if (text.empty() || index.line_count() == 0) return std::nullopt;
  from = std::clamp<int64_t>(from, 0, index.line_count() - 1);
  return direction == FindDirection::kForward ? find_forward(index, text, from)
                                              : find_backward(index, text, from);
}

}  // namespace px::views
