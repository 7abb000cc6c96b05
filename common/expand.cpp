#include "common/expand.h"

#include <map>
#include <optional>

#include "common/ini_profile.h"
#include "common/text.h"

namespace px {

namespace {

struct CaseLess {
  bool operator()(const std::string& a, const std::string& b) const {
    size_t n = std::min(a.size(), b.size());
    for (size_t i = 0; i < n; ++i) {
      char x = to_lower(a[i]), y = to_lower(b[i]);
      if (x != y) return x < y;
    }
    return a.size() < b.size();
  }
};

std::map<std::string, std::string, CaseLess>& named_values() {
  static std::map<std::string, std::string, CaseLess> values;
  return values;
}

bool ends_word(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '.' || c == '('; }

// The value of "@getprofile(key,section,file)" whose argument list starts at
// open; sets close to the index of ")". nullopt when the list is not closed.
std::optional<std::string> profile_value(std::string_view text, size_t open, size_t& close) {
  close = text.find(')', open);
  if (close == std::string_view::npos) return std::nullopt;
  std::string_view args = text.substr(open + 1, close - open - 1);
  std::string_view parts[3];
  for (int i = 0; i < 3 && !args.empty(); ++i) {
    size_t comma = i < 2 ? args.find(',') : std::string_view::npos;
    parts[i] = trim(args.substr(0, comma));
    args = comma == std::string_view::npos ? std::string_view() : args.substr(comma + 1);
  }
  std::string key = cut_to_buffer(parts[0], 51);
  std::string section = parts[1].empty() ? "User" : cut_to_buffer(parts[1], 51);
  std::string file = cut_to_buffer(parts[2], 257);
  return ini::get_string(section, key, "", 201, file);
}

}  // namespace

void set_named_value(std::string_view name, std::string_view value) {
  named_values()[std::string(name)] = std::string(value);
}

void set_message_arguments(const std::vector<std::string>& args) {
  auto& values = named_values();
  for (size_t i = 0; i < args.size(); ++i) values["P" + std::to_string(i + 1)] = args[i];
  for (size_t i = args.size() + 1; values.erase("P" + std::to_string(i)) > 0; ++i) {
  }
}

void clear_named_values() { named_values().clear(); }

std::string expand(std::string_view input) {
  std::string text(input);
  for (size_t at = text.size(); at-- > 0;) {
    if (text[at] != '@') continue;
    size_t end = at + 1;
    while (end < text.size() && !ends_word(text[end])) ++end;
    std::string word = text.substr(at + 1, end - at - 1);

    if (iequals(word, "getprofile")) {
      size_t close = 0;
      if (end < text.size() && text[end] == '(') {
        if (std::optional<std::string> value = profile_value(text, end, close)) {
          text.replace(at, close + 1 - at, *value);
        }
      }
      continue;
    }
    auto found = named_values().find(word);
    if (word.empty() || found == named_values().end()) continue;
    if (end < text.size() && text[end] == '.') ++end;
    text.replace(at, end - at, found->second);
  }
  return text;
}

}  // namespace px
