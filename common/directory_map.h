// The install-wide directory map: path prefixes that are replaced by other
// directories, and a case mapping applied to every mapped path.
//
// The map of a qualifier q (an instance name) is read from the install file,
// the file named by key Install of section Plexar in the default INI file:
// each key of section "Directories-q" is a prefix and its value the
// replacement; key CaseMap of section "Special-q" selects upper ("U..."),
// lower ("L...") or no case mapping. A replacement that ends with a double
// quote is a quoted entry: its quote is removed and put back at the end of
// every path it maps. The map is process-wide.
#pragma once

#include <string>
#include <string_view>

namespace px {

enum class CaseMap { kNone = 0, kUpper = 1, kLower = 2 };

// Replaces the map with the one for qualifier. False when the install file is
// not named (the map is then empty).
bool load_directory_map(std::string_view qualifier);

// The path rewritten through the map: case mapped, then the longest matching
// prefix (compared without regard to case; the first on a tie) replaced.
std::string map_directory(std::string_view path);

}  // namespace px
