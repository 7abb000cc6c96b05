#include "views/log_text.h"

#include "common/ini_profile.h"
#include "views/line_reader.h"
#include "views/view_messages.h"

namespace px::views {

Wrap wrap_settings() {
  Wrap wrap;
  wrap.width = ini::get_int("Options", "LogLineWrap", 0);
  wrap.indent = ini::get_int("Options", "LogLineIndent", 16);
  return wrap;
}

void wrap_line(std::string_view line, Wrap wrap, std::vector<std::string>& rows) {
  const bool wraps = wrap.width >= 1 && wrap.indent >= 0 && wrap.indent < wrap.width;
  const size_t width = static_cast<size_t>(wrap.width);
  if (!wraps || line.size() <= width) {
    rows.emplace_back(line);
    return;
  }
  rows.emplace_back(line.substr(0, width));
  const size_t indent = static_cast<size_t>(wrap.indent);
  for (size_t at = width; at < line.size(); at += width - indent) {
    std::string row(indent, ' ');
    row.append(line.substr(at, width - indent));
    rows.push_back(std::move(row));
  }
}

std::optional<std::vector<std::string>> whole_log(const std::string& path, Wrap wrap) {
  LineReader reader(path);
  if (!reader.ok()) return std::nullopt;
  std::vector<std::string> rows;
  for (std::string line; reader.next(line);) wrap_line(line, wrap, rows);
  return rows;
}

bool index_log(LogIndex& index, Operator& op) {
  if (index.build()) return true;
  op.show(msg::kFileNotOpened, {display_path(index.path())});
  return false;
}

std::optional<std::vector<std::string>> file_lines(const std::string& path, Operator& op) {
  LineReader reader(path);
  if (!reader.ok()) {
    op.show(msg::kFileNotOpened, {display_path(path)});
    return std::nullopt;
  }
  std::vector<std::string> lines;
  for (std::string line; reader.next(line);) lines.push_back(line);
  return lines;
}

}  // namespace px::views
