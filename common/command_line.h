// The command line as one string: rebuilt from an argument vector, with "@"
// indirect files expanded, and split back into arguments.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace px {

// Codes of a command line that cannot be processed.
inline constexpr int kOutOfMemory = -603;
inline constexpr int kIndirectFileFailed = -604;

// One command line from an argument vector: each argument is followed by a
// blank, and one that holds a blank, TAB or line feed is put in double quotes.
// A lone argument is the program's path and is treated the same way, so a
// path with a blank stays whole.
std::string rebuild_command_line(const std::vector<std::string>& args);

// Replaces "@file" words by the text of the file, as long as the first "@" of
// the line starts the line or follows a blank: TABs, line feeds and carriage
// returns of the file (all but its last character) become blanks, and the
// search starts again from the beginning, so files may name other files.
// Returns 0, or kIndirectFileFailed when a file cannot be read or the
// expansion does not end (a file that names itself).
int expand_indirect_files(std::string& line);

// Splits a command line into arguments: every doubled quote ("" or '') is
// first collapsed into one; white space separates arguments; a quote inside
// an argument opens a run in which white space does not separate, the quote
// itself is dropped, and the same quote character ends the argument.
std::vector<std::string> split_arguments(std::string_view raw);

}  // namespace px
