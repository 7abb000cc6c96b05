#include "common/directory_map.h"

#include <vector>

#include "common/file_util.h"
#include "common/ini_profile.h"
#include "common/text.h"

namespace px {

namespace {

struct MapEntry {
  std::string prefix;
  std::string replacement;
  bool quoted = false;
};

struct DirectoryMap {
  std::vector<MapEntry> entries;
  CaseMap case_map = CaseMap::kNone;
};

DirectoryMap& the_map() {
  static DirectoryMap map;
  return map;
}

MapEntry make_entry(std::string key, std::string value) {
  MapEntry entry{std::move(key), std::move(value), false};
  if (!entry.replacement.empty() && entry.replacement.back() == '"') {
    entry.replacement.pop_back();
    entry.quoted = true;
  } else {
    entry.replacement = add_separator(entry.replacement);
  }
  return entry;
}

}  // namespace

bool load_directory_map(std::string_view qualifier) {
  DirectoryMap& map = the_map();
  map = DirectoryMap{};
  std::string install = ini::get_string("Plexar", "Install", "", 256);
  if (install.empty()) return false;

  std::string directories = "Directories-" + std::string(qualifier);
  KeyList keys = ini::get_key_list(directories, 4096, install);
  for (std::string& key : keys.keys) {
    std::string value = ini::get_string(directories, key, "", 256, install);
    map.entries.push_back(make_entry(std::move(key), std::move(value)));
  }

  std::string special = "Special-" + std::string(qualifier);
  std::string mode = ini::get_string(special, "CaseMap", "no", 10, install);
  char first = mode.empty() ? '\0' : to_upper(mode[0]);
  map.case_map = first == 'L' ? CaseMap::kLower : first == 'U' ? CaseMap::kUpper : CaseMap::kNone;
  return true;
}

std::string map_directory(std::string_view path) {
  const DirectoryMap& map = the_map();
  std::string mapped(path);
  for (char& c : mapped) {
    if (map.case_map == CaseMap::kUpper) c = to_upper(c);
    if (map.case_map == CaseMap::kLower) c = to_lower(c);
  }

  const MapEntry* best = nullptr;
  for (const MapEntry& entry : map.entries) {
    if (!istarts_with(mapped, entry.prefix)) continue;
    if (best == nullptr || entry.prefix.size() > best->prefix.size()) best = &entry;
  }
  if (best == nullptr) return mapped;

  std::string_view rest = std::string_view(mapped).substr(best->prefix.size());
  if (best->quoted) return best->replacement + std::string(rest) + '"';
  if (!rest.empty() && is_separator(rest[0])) rest.remove_prefix(1);
  return join_path(rest, best->replacement);
}

}  // namespace px
