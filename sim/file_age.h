// Ordering the files of a directory by age, the way the server takes them.
#pragma once

#include <string>
#include <vector>

namespace px::sim {

// names (files of directory) ordered oldest first by modification time;
// files of the same age keep name order.
std::vector<std::string> oldest_first(const std::string& directory, std::vector<std::string> names);

}  // namespace px::sim
