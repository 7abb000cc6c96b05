// Fuzzes INI lookups and rewrites over arbitrary file text. The first bytes
// choose the section, key and value; the rest is the file. Checks that a
// rewrite keeps the text ahead of the section and that a set key reads back.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "common/ini_syntax.h"
#include "common/text.h"

namespace {

// A word of up to 7 characters; with long set in its length byte, of up to
// 635, so that values reach past the writer's 255-character pieces and the
// reader's 511-character lines.
std::string_view take_word(std::string_view& data, bool may_be_long = false) {
  unsigned char length_byte = data.empty() ? 0 : static_cast<unsigned char>(data[0]);
  size_t n = may_be_long && (length_byte & 0x80) ? size_t{length_byte & 0x7fu} * 5 : length_byte % 8;
  data.remove_prefix(data.empty() ? 0 : 1);
  n = std::min(n, data.size());
  std::string_view word = data.substr(0, n);
  data.remove_prefix(n);
  return word;
}

bool plain(std::string_view word) {
  for (char c : word) {
    if (px::is_space(c) || c == '=' || c == '[' || c == ']' || c == '\'' || c == '"' ||
        c == ';' || c == '\0')
      return false;
  }
  return !word.empty();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  std::string_view data(reinterpret_cast<const char*>(bytes), size);
  std::string_view section = take_word(data);
  std::string_view key = take_word(data);
  std::string_view value = take_word(data, true);
  const px::Delimiters delims;

  (void)px::find_value(data, section, key, 1024, delims);
  (void)px::find_keys(data, section, 64, delims);
  (void)px::find_keys(data, section, 10240, delims);

  std::string deleted = px::rewrite_text(data, {section, key, std::nullopt}, delims);
  std::string emptied = px::rewrite_text(data, {section, std::nullopt, std::nullopt}, delims);
  std::string set = px::rewrite_text(data, {section, key, value}, delims);
  (void)deleted;
  (void)emptied;

  // A key set in a well-formed file must read back (when the section is not
  // shadowed by lines the writer sees differently from the reader, and no
  // line of the file is long enough for the reader to split it).
  bool clean = data.find('\0') == std::string_view::npos && data.find('\r') == std::string_view::npos &&
               data.find('[') == std::string_view::npos && data.find('=') == std::string_view::npos;
  if (clean && plain(section) && plain(key) && plain(value) && data.size() < 500 &&
      px::unwritable_part({section, key, value}, delims) == px::Unwritable::kNone) {
    std::optional<std::string> back = px::find_value(set, section, key, 1024, delims);
    if (!back || *back != value) std::abort();
    // Setting the same value again changes nothing: a long line is replaced
    // whole, never leaving a tail behind.
    if (px::rewrite_text(set, {section, key, value}, delims) != set) std::abort();
  }

  // Whatever unwritable_part accepts reads back from a file of its own (a
  // quoted value without its quotes).
  if (px::unwritable_part({section, key, value}, delims) == px::Unwritable::kNone) {
    std::string fresh = px::new_file_text({section, key, value}, delims);
    std::optional<std::string> back = px::find_value(fresh, section, key, 1024, delims);
    std::string expected(value);
    if (expected.size() >= 2 && (expected[0] == '\'' || expected[0] == '"') &&
        expected.back() == expected[0]) {
      expected = expected.substr(1, expected.size() - 2);
    }
    if (!back || *back != expected) std::abort();
  }
  return 0;
}
