#include "common/command_line.h"

#include "common/readable_file.h"

namespace px {

namespace {

// Bounds that stop an indirect file that names itself, directly or not.
constexpr int kMaxExpansions = 1000;
constexpr size_t kMaxLineLength = size_t{16} * 1024 * 1024;

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n'; }

bool has_blank(std::string_view text) {
  return text.find_first_of(" \t\n") != std::string_view::npos;
}

// Collapses each doubled quote into one.
std::string collapse_doubled_quotes(std::string_view line) {
  std::string out;
  out.reserve(line.size());
  for (size_t i = 0; i < line.size(); ++i) {
    out += line[i];
    if ((line[i] == '"' || line[i] == '\'') && i + 1 < line.size() && line[i + 1] == line[i]) ++i;
  }
  return out;
}

}  // namespace

std::string rebuild_command_line(const std::vector<std::string>& args) {
  // A lone argument is the program's path (the kernel hands a program its path
  // alone, never a whole command line), so it is quoted like any other
  // argument and a path with a blank stays one word.
  std::string line;
  for (const std::string& arg : args) {
    if (has_blank(arg)) {
      line += '"' + arg + '"';
    } else {
      line += arg;
    }
    line += ' ';
  }
  return line;
}

int expand_indirect_files(std::string& line) {
  for (int expansions = 0;; ++expansions) {
    size_t at = line.find('@');
    if (at == std::string::npos) return 0;
    if (at != 0 && line[at - 1] != ' ') return 0;
    if (expansions == kMaxExpansions) return kIndirectFileFailed;

    size_t end = line.find_first_of(" \t\n", at + 1);
    if (end == std::string::npos) end = line.size();
    std::optional<std::string> text =
        read_whole_file(line.substr(at + 1, end - at - 1), kMaxLineLength);
    if (!text) return kIndirectFileFailed;
    for (size_t i = 0; i + 1 < text->size(); ++i) {
      char& c = (*text)[i];
      if (c == '\t' || c == '\n' || c == '\r') c = ' ';
    }
    if (line.size() - (end - at) + text->size() > kMaxLineLength) return kIndirectFileFailed;
    line.replace(at, end - at, *text);
  }
}

std::vector<std::string> split_arguments(std::string_view raw) {
  std::string line = collapse_doubled_quotes(raw);
  std::vector<std::string> args;
  size_t i = 0;
  while (i < line.size()) {
    if (is_blank(line[i]) || line[i] == '\r' || line[i] == '\v' || line[i] == '\f') {
      ++i;
      continue;
    }
    std::string arg;
    while (i < line.size()) {
      char c = line[i++];
      if (c == '"' || c == '\'') {
        size_t close = line.find(c, i);
        size_t stop = close == std::string::npos ? line.size() : close;
        arg.append(line, i, stop - i);
        i = close == std::string::npos ? line.size() : close + 1;
        break;
      }
      if (is_blank(c) || c == '\r' || c == '\v' || c == '\f') break;
      arg += c;
    }
    args.push_back(std::move(arg));
  }
  return args;
}

}  // namespace px
