#include "config/settings.h"

#include <sys/stat.h>

#include <cstdio>
#include <utility>

#include "common/directory_map.h"
#include "common/ini_profile.h"
#include "common/readable_file.h"

namespace px {

std::string setting(std::string_view section, std::string_view key, std::string_view fallback,
                    size_t size, const std::string& file) {
  if (file.empty()) return std::string(fallback.substr(0, size == 0 ? 0 : size - 1));
  return ini::get_string(section, key, fallback, size, file);
}

std::string path_setting(std::string_view section, std::string_view key, const std::string& file) {
  std::string value = setting(section, key, "", kPathSettingSize, file);
  return value.size() < 2 ? std::string() : map_directory(value);
}

std::optional<std::vector<std::string>> process_keys(const std::string& file) {
  if (file.empty()) return std::nullopt;
  KeyList keys = ini::get_key_list("Processes", kProcessKeysSize, file);
  if (!keys.overflow && keys.used < 2) return std::nullopt;
  return std::move(keys.keys);
}

bool file_readable(const std::string& path) {
  return can_open_for_reading(path);
}

bool path_exists(const std::string& path) {
  struct stat info;
  return !path.empty() && ::stat(path.c_str(), &info) == 0;
}

}  // namespace px
