// New work for a demo: transaction files dropped into a collector directory
// at intervals, so that the console's views keep changing while the
// simulated server takes them. Every seventh file has no job line, so the
// server rejects it into its error directory.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace px::sim {

// The name of the sequence-th fed file for pattern: each "*" of it becomes
// "FEED" and the six-digit number, each "?" a "0" ("*.DAT" gives
// "FEED000012.DAT").
std::string fed_file_name(std::string_view pattern, int sequence);

// Writes the sequence-th file into directory whole (through a hidden
// temporary name that no pattern of the server lists, then a rename); its
// path, or nullopt when it could not be written.
std::optional<std::string> feed_transaction(const std::string& directory, std::string_view pattern,
                                            int sequence);

}  // namespace px::sim
