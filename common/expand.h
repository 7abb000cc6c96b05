// Expansion of "@" words in message texts.
//
// A word starts at "@" and runs to the first blank, TAB, line feed, "." or
// "(". "@getprofile(key[,section[,file]])" is replaced by that INI value
// (section User and the program's INI file by default). Any other word is
// looked up in the table of named values, such as "P1" for a message's first
// argument; a "." right after a replaced word goes with it. Words without a
// value stay as they are. The text is scanned from its end, so inserted text
// is never expanded again.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace px {

// Sets the named value that "@name" expands to (names match without case).
void set_named_value(std::string_view name, std::string_view value);
// Sets "@P1", "@P2", ... to args in order and removes higher ones left from
// an earlier message.
void set_message_arguments(const std::vector<std::string>& args);
void clear_named_values();

std::string expand(std::string_view input);

}  // namespace px
