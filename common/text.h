// Character and string helpers used throughout the runtime. All work on 8-bit
// text in the C locale.
#pragma once

#include <string>
#include <string_view>

namespace px {

// White space as the C library's isspace sees it: blank, TAB, LF, VT, FF, CR.
bool is_space(char c);

char to_upper(char c);
char to_lower(char c);

// Case-insensitive comparisons (ASCII letters only).
bool iequals(std::string_view a, std::string_view b);
bool istarts_with(std::string_view text, std::string_view prefix);
// Case-insensitive search; npos when absent.
size_t ifind(std::string_view text, std::string_view needle);

std::string_view trim_left(std::string_view text);
std::string_view trim_right(std::string_view text);
std::string_view trim(std::string_view text);

// atoi rules: leading white space, an optional sign, decimal digits; 0 when
// there are no digits. Values beyond int saturate instead of overflowing.
int parse_int(std::string_view text);
// The same for long values.
long parse_long(std::string_view text);

// Cuts text to at most size - 1 characters, the room a C buffer of size
// characters leaves for text.
std::string cut_to_buffer(std::string_view text, size_t size);

// format with its first "%s" replaced by value, "%%" giving "%" and any
// other "%" (a later "%s" too) kept as it stands: what a C formatting call
// with one string argument makes of a title or command template.
std::string fill_percent_s(std::string_view format, std::string_view value);

}  // namespace px
