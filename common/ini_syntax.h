// The text rules of INI files, as pure functions over a file's text.
//
// An INI file is a sequence of lines. A line whose first character is the
// section-open character starts a section: its name runs to the first
// section-close character (or to the end of the line). Any other line inside
// a section is an entry: the key is the text before the first "=", trimmed of
// white space; the value is the rest of the line. Lines before the first
// section header are never read. There is no comment syntax: a line starting
// with ";" is a key whose name starts with ";", so it never matches an
// ordinary key and is left out of key lists.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace px {

// The characters that give INI text its structure, in their fixed order.
struct Delimiters {
  char section_open = '[';
  char section_close = ']';
  char separator = '=';
  char quote1 = '\'';
  char quote2 = '"';
  char comment = ';';
  char negation = '^';  // only used to build the section-header scan pattern
};

// The longest line the reader returns; longer lines come in pieces.
inline constexpr size_t kMaxLineLength = 511;

// Returns successive lines of text: each ends before its line feed and is at
// most max_length characters; a longer line is returned in pieces.
class LineReader {
 public:
  LineReader(std::string_view text, size_t max_length) : text_(text), max_(max_length) {}
  // Next line into line; false at the end of the text.
  bool next(std::string_view& line);

 private:
  std::string_view text_;
  size_t max_;
  size_t pos_ = 0;
  // The line feed (or end of text) ending the line at pos_; npos before the
  // first line.
  size_t line_end_ = std::string_view::npos;
};

// The section name of a header line, or nullopt when the line is not a header
// (it must start with the open character and name at least one character).
std::optional<std::string_view> header_name(std::string_view line, const Delimiters& delims);

// The value of key in section, with the value rules applied and cut to
// size - 1 characters; nullopt when the key is not found.
std::optional<std::string> find_value(std::string_view text, std::string_view section,
                                      std::string_view key, size_t size,
                                      const Delimiters& delims);

// The keys of a section in file order, duplicates included, ";" keys left out.
struct KeyList {
  std::vector<std::string> keys;
  int used = 0;           // characters the NUL-separated list takes
  bool overflow = false;  // the list did not fit in size - 1 characters
};
KeyList find_keys(std::string_view text, std::string_view section, size_t size,
                  const Delimiters& delims);

// The change a rewrite makes: key set to value in section. No value deletes
// the key; no key empties the section (its header stays).
struct IniChange {
  std::string_view section;
  std::optional<std::string_view> key;
  std::optional<std::string_view> value;
};

// The part of a change that could not be read back as it was written.
enum class Unwritable {
  kNone,
  // Empty; or holds a line break, a NUL or the section-close character; or is
  // longer than a header line the writer can match (253 characters).
  kSection,
  // Empty; or holds a line break, a NUL or the separator; or starts with the
  // section-open character or white space, or ends with white space; or is
  // longer than the writer can match (254 characters).
  kKey,
  // Holds a line break, a NUL or a TAB (the reader ends a value there); or
  // starts or ends with white space (the reader trims it; quote the value to
  // keep it); or key "=" value is longer than the reader's line (511
  // characters), whose rest would read as a line of its own.
  kValue,
};

// Which part of change, if any, cannot be written and read back unchanged.
// Every rewrite refuses such a change.
Unwritable unwritable_part(const IniChange& change, const Delimiters& delims);

// The text of a new file that holds only the change.
std::string new_file_text(const IniChange& change, const Delimiters& delims);

// The text of an existing file after the change, preserving every other byte.
// A carriage return before a line feed is part of the line end: a line of
// only a line end is empty, and a key or header name never includes it. Lines
// the change leaves keep their own line ends; lines it writes end in a line
// feed. A last line without a line end gets one before a line is added.
// A line is told by its first 255 characters (a header or key must lie
// within them) and is always copied, replaced or dropped whole: the rest of
// a long line is never taken for a header, an empty line or a key.
std::string rewrite_text(std::string_view old_text, const IniChange& change,
                         const Delimiters& delims);

}  // namespace px
