#include "common/text.h"

#include <climits>

namespace px {

bool is_space(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

char to_upper(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }

char to_lower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

bool iequals(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (to_lower(a[i]) != to_lower(b[i])) return false;
  }
  return true;
}

bool istarts_with(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && iequals(text.substr(0, prefix.size()), prefix);
}

size_t ifind(std::string_view text, std::string_view needle) {
  if (needle.size() > text.size()) return std::string_view::npos;
  for (size_t i = 0; i + needle.size() <= text.size(); ++i) {
    if (iequals(text.substr(i, needle.size()), needle)) return i;
  }
  return std::string_view::npos;
}

std::string_view trim_left(std::string_view text) {
  size_t i = 0;
  while (i < text.size() && is_space(text[i])) ++i;
  return text.substr(i);
}

std::string_view trim_right(std::string_view text) {
  size_t n = text.size();
  while (n > 0 && is_space(text[n - 1])) --n;
  return text.substr(0, n);
}

std::string_view trim(std::string_view text) { return trim_right(trim_left(text)); }

long parse_long(std::string_view text) {
  text = trim_left(text);
  bool negative = false;
  if (!text.empty() && (text[0] == '+' || text[0] == '-')) {
    negative = text[0] == '-';
    text.remove_prefix(1);
  }
  long value = 0;
  for (char c : text) {
    if (c < '0' || c > '9') break;
    int digit = c - '0';
    if (value > (LONG_MAX - digit) / 10) return negative ? LONG_MIN : LONG_MAX;
    value = value * 10 + digit;
  }
  return negative ? -value : value;
}

int parse_int(std::string_view text) {
  long value = parse_long(text);
  if (value > INT_MAX) return INT_MAX;
  if (value < INT_MIN) return INT_MIN;
  return static_cast<int>(value);
}

std::string cut_to_buffer(std::string_view text, size_t size) {
  if (size == 0) return std::string();
  return std::string(text.substr(0, size - 1));
}

std::string fill_percent_s(std::string_view format, std::string_view value) {
  std::string out;
  bool filled = false;
  for (size_t i = 0; i < format.size(); ++i) {
    if (format[i] == '%' && i + 1 < format.size()) {
      if (format[i + 1] == '%') {
        out += '%';
        ++i;
        continue;
      }
      if (format[i + 1] == 's' && !filled) {
        out += value;
        filled = true;
        ++i;
        continue;
      }
    }
    out += format[i];
  }
  return out;
}

}  // namespace px
