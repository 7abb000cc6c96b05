// Reading settings from a named INI file for the configuration services and
// control commands.
//
// The profile engine takes an empty file name for the console's own INI
// file; a setting of an instance whose configuration file is unknown must
// read as absent instead, so these helpers never pass an empty name on.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace px {

// The room for a path read from a setting (260 characters).
inline constexpr size_t kPathSettingSize = 261;

// The value of key in section of file, cut to size - 1 characters;
// fallback when file is empty or has no such key.
std::string setting(std::string_view section, std::string_view key, std::string_view fallback,
                    size_t size, const std::string& file);

// A path setting mapped through the directory map; empty when the value is
// shorter than 2 characters (the product's rule for a missing value).
std::string path_setting(std::string_view section, std::string_view key, const std::string& file);

// The room the keys of section Processes are read into (1024 characters).
inline constexpr size_t kProcessKeysSize = 1024;

// The keys of section Processes of an instance's configuration file, in
// file order: the processes the console offers. A list longer than its room
// is full, not empty: the keys that fit are offered. nullopt when the
// section lists no key (fewer than 2 characters) or file is empty.
std::optional<std::vector<std::string>> process_keys(const std::string& file);

// True when path names a file that can be opened for reading.
bool file_readable(const std::string& path);

// True when something (a file or a directory) is at path.
bool path_exists(const std::string& path);

}  // namespace px
