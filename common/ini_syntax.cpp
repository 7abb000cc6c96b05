#include "common/ini_syntax.h"

#include <algorithm>

#include "common/text.h"

namespace px {

namespace {

// The writer reads files in pieces of this many characters (a line feed, when
// it falls inside a piece, ends it) and decides what to do with a line by its
// first piece: whether it is empty, a header and which one, or an entry and
// of which key. The rest of a longer line goes wherever its first piece goes.
constexpr size_t kWriterPieceLength = 255;

struct Entry {
  std::string_view key;
  std::string_view value;  // everything after the separator, untouched
};

Entry split_entry(std::string_view line, const Delimiters& delims) {
  size_t eq = line.find(delims.separator);
  if (eq == std::string_view::npos) return {trim(line), {}};
  return {trim(line.substr(0, eq)), line.substr(eq + 1)};
}

std::string clean_value(std::string_view raw, size_t size, const Delimiters& delims) {
  std::string_view value = trim_left(raw);
  size_t tab = value.find('\t');
  if (tab != std::string_view::npos) value = value.substr(0, tab);
  std::string result = cut_to_buffer(trim_right(value), size);
  if (result.size() >= 2) {
    char first = result.front();
    if ((first == delims.quote1 || first == delims.quote2) && result.back() == first) {
      result = result.substr(1, result.size() - 2);
    }
  }
  return result;
}

// Calls visit(line) for each line of section until it returns false; stops at
// the next header. Returns false when the section does not exist.
template <typename Visit>
bool visit_section(std::string_view text, std::string_view section, const Delimiters& delims,
                   Visit visit) {
  LineReader reader(text, kMaxLineLength);
  std::string_view line;
  bool entered = false;
  while (reader.next(line)) {
    if (!entered) {
      std::optional<std::string_view> name = header_name(line, delims);
      entered = name && iequals(*name, section);
      continue;
    }
    if (!line.empty() && line[0] == delims.section_open) break;
    if (!visit(line)) break;
  }
  return entered;
}

std::string entry_line(std::string_view key, std::string_view value, const Delimiters& delims) {
  std::string line(key);
  line += delims.separator;
  line += value;
  line += '\n';
  return line;
}

std::string header_line(std::string_view section, const Delimiters& delims) {
  std::string line(1, delims.section_open);
  line += section;
  line += delims.section_close;
  line += '\n';
  return line;
}

// A piece without its line end: a line feed, or a carriage return and a line
// feed (files written elsewhere end their lines with both).
std::string_view without_line_end(std::string_view piece) {
  if (piece.empty() || piece.back() != '\n') return piece;
  piece.remove_suffix(1);
  if (!piece.empty() && piece.back() == '\r') piece.remove_suffix(1);
  return piece;
}

// The name a writer sees in a header piece: after the open character up to the
// close character or the end of the line.
std::string_view writer_header_name(std::string_view piece, const Delimiters& delims) {
  std::string_view rest = without_line_end(piece).substr(1);
  return rest.substr(0, rest.find(delims.section_close));
}

// The key a writer sees in an entry piece: the text before the first
// separator, not trimmed; the whole piece without its line end when there is
// no separator.
std::string_view writer_key(std::string_view piece, const Delimiters& delims) {
  piece = without_line_end(piece);
  return piece.substr(0, piece.find(delims.separator));
}

// Ends the text's last line, so an appended line does not join a last line
// that had no line end.
void end_last_line(std::string& text) {
  if (!text.empty() && text.back() != '\n') text += '\n';
}

}  // namespace

// The end of the current line is looked for once, not again for each piece
// of a long line, so a line of any length is read in linear time.
namespace {

// A header or key must fit in the writer's first piece to be matched.
constexpr size_t kMaxSectionName = kWriterPieceLength - 2;  // "[" name "]"
constexpr size_t kMaxKey = kWriterPieceLength - 1;          // key "="
// The reader returns a longer line in pieces, and the pieces after the first
// would read as lines of their own. The entry line ends in a line feed alone,
// whatever the rest of the file uses, so no carriage return counts here.
constexpr size_t kMaxEntryLength = kMaxLineLength;  // key "=" value

bool has_any(std::string_view text, std::string_view characters) {
  return text.find_first_of(characters) != std::string_view::npos;
}

bool has_line_break(std::string_view text) {
  return has_any(text, std::string_view("\n\r\0", 3));
}

bool has_outer_space(std::string_view text) {
  return !text.empty() && (is_space(text.front()) || is_space(text.back()));
}

}  // namespace

Unwritable unwritable_part(const IniChange& change, const Delimiters& delims) {
  std::string_view section = change.section;
  if (section.empty() || section.size() > kMaxSectionName || has_line_break(section) ||
      section.find(delims.section_close) != std::string_view::npos) {
    return Unwritable::kSection;
  }
  if (!change.key) return Unwritable::kNone;
  std::string_view key = *change.key;
  if (key.empty() || key.size() > kMaxKey || has_line_break(key) ||
      key.find(delims.separator) != std::string_view::npos || key[0] == delims.section_open ||
      has_outer_space(key)) {
    return Unwritable::kKey;
  }
  if (!change.value) return Unwritable::kNone;
  std::string_view value = *change.value;
  if (has_line_break(value) || value.find('\t') != std::string_view::npos ||
      has_outer_space(value) || key.size() + 1 + value.size() > kMaxEntryLength) {
    return Unwritable::kValue;
  }
  return Unwritable::kNone;
}

bool LineReader::next(std::string_view& line) {
  if (pos_ >= text_.size()) return false;
  if (line_end_ == std::string_view::npos || line_end_ < pos_) {
    line_end_ = std::min(text_.find('\n', pos_), text_.size());
  }
  if (line_end_ - pos_ > max_) {
    line = text_.substr(pos_, max_);
    pos_ += max_;
    return true;
  }
  line = text_.substr(pos_, line_end_ - pos_);
  pos_ = line_end_ + 1;
  return true;
}

std::optional<std::string_view> header_name(std::string_view line, const Delimiters& delims) {
  if (line.empty() || line[0] != delims.section_open) return std::nullopt;
  std::string_view rest = line.substr(1);
  std::string_view name = rest.substr(0, rest.find(delims.section_close));
  if (name.empty()) return std::nullopt;
  return name;
}

std::optional<std::string> find_value(std::string_view text, std::string_view section,
                                      std::string_view key, size_t size,
                                      const Delimiters& delims) {
  std::optional<std::string> found;
  visit_section(text, section, delims, [&](std::string_view line) {
    Entry entry = split_entry(line, delims);
    if (entry.key.empty() || !iequals(entry.key, key)) return true;
    found = clean_value(entry.value, size, delims);
    return false;
  });
  return found;
}

KeyList find_keys(std::string_view text, std::string_view section, size_t size,
                  const Delimiters& delims) {
  KeyList list;
  visit_section(text, section, delims, [&](std::string_view line) {
    Entry entry = split_entry(line, delims);
    if (entry.key.empty() || entry.key[0] == delims.comment) return true;
    size_t needed = static_cast<size_t>(list.used) + entry.key.size() + 1;
    if (size == 0 || needed > size - 1) {
      list.overflow = true;
      return false;
    }
    list.keys.emplace_back(entry.key);
    list.used = static_cast<int>(needed);
    return true;
  });
  if (list.overflow) list.used = -1;
  return list;
}

std::string new_file_text(const IniChange& change, const Delimiters& delims) {
  std::string text = header_line(change.section, delims);
  if (change.key && change.value) text += entry_line(*change.key, *change.value, delims);
  return text;
}

std::string rewrite_text(std::string_view old_text, const IniChange& change,
                         const Delimiters& delims) {
  std::string out;
  out.reserve(old_text.size() + 64);
  const bool has_entry = change.key && change.value;
  bool in_target = false, found = false, done = false;
  // Empty lines held back, each with its own line end.
  std::string blanks;
  auto flush_blanks = [&] {
    out += blanks;
    blanks.clear();
  };

  size_t pos = 0;
  while (pos < old_text.size()) {
    size_t end = std::min(old_text.find('\n', pos), old_text.size() - 1) + 1;
    std::string_view line = old_text.substr(pos, end - pos);  // with its line end
    pos = end;
    std::string_view first = line.substr(0, kWriterPieceLength);

    if (done) {
      out += line;
    } else if (first.back() == '\n' && without_line_end(first).empty()) {
      blanks += line;
    } else if (first[0] == delims.section_open) {
      if (in_target) {
        // Leaving the section without meeting the key: the entry goes at its
        // end, ahead of the blank lines that precede this header.
        if (has_entry) out += entry_line(*change.key, *change.value, delims);
        done = true;
        in_target = false;
      }
      flush_blanks();
      if (!done && iequals(writer_header_name(first, delims), change.section)) {
        in_target = found = true;
      }
      out += line;
    } else {
      flush_blanks();
      if (in_target && change.key && iequals(writer_key(first, delims), *change.key)) {
        if (change.value) out += entry_line(*change.key, *change.value, delims);
        done = true;
      } else if (!in_target || change.key) {
        out += line;
      }  // with no key every entry of the section is dropped
    }
  }

  if (!done && in_target) {
    if (has_entry) {
      end_last_line(out);
      out += entry_line(*change.key, *change.value, delims);
    }
    flush_blanks();
  } else if (!found && has_entry) {
    // A new section goes at the end; blank lines that ended the file go.
    end_last_line(out);
    out += '\n';
    out += header_line(change.section, delims);
    out += entry_line(*change.key, *change.value, delims);
  }
  return out;
}

}  // namespace px
