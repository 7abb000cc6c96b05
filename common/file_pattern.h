// File-name patterns and directory listings by pattern.
//
// A pattern is a file name in which "*" stands for any run of characters
// (none included) and "?" for exactly one. Letters match without regard to
// case, so "*.DAT" lists "a.dat". The pattern "*.*" matches every name, a
// name without a dot included, as it does where these patterns come from.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace px {

// True when name matches pattern.
bool matches_file_pattern(std::string_view name, std::string_view pattern);

// The plain files of directory (directories and other entries skipped) whose
// names match pattern, in the order the file system returns them; nullopt
// when the directory cannot be read.
std::optional<std::vector<std::string>> list_directory(const std::string& directory,
                                                       std::string_view pattern);

}  // namespace px
