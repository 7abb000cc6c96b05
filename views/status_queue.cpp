#include "views/status_queue.h"

#include <cstdio>
#include <memory>

#include "common/directory_map.h"
#include "common/ini_profile.h"
#include "config/operator.h"
#include "config/settings.h"
#include "views/file_listing.h"
#include "views/view_messages.h"

namespace px::views {

namespace {

constexpr int kDefaultRefreshSeconds = 10;
constexpr size_t kFileSpecSize = 256;
constexpr std::string_view kControlJobPattern = "px*.msg";

std::string padded_row(std::string_view title, std::string_view text) {
  std::string row(title);
  if (row.size() < 30) row.append(30 - row.size(), ' ');
  row.append(text);
  return row;
}

// "  %-28s  %s" for the first name, "%30s  %s" under it for the others.
void append_file_rows(const std::string& directory, const std::vector<std::string>& names,
                      std::vector<std::string>& rows) {
  for (size_t i = 0; i < names.size(); ++i) {
    std::string row;
    if (i == 0) {
      row = "  " + directory;
      if (directory.size() < 28) row.append(28 - directory.size(), ' ');
    } else {
      row.assign(30, ' ');
    }
    rows.push_back(row + "  " + names[i]);
  }
}

}  // namespace

std::string status_line(const std::string& status_file) {
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(status_file.c_str(), "r"),
                                                       std::fclose);
  if (!file) return message_row(msg::kStatusNotOpened, {display_path(status_file)});
  std::string line;
  for (int c; line.size() < kStatusLineLength && (c = std::fgetc(file.get())) != EOF;) {
    line.push_back(static_cast<char>(c));
    if (c == '\n') break;
  }
  if (line.ends_with('\n')) line.pop_back();
  if (line.ends_with('\r')) line.pop_back();
  if (line.empty()) return message_row(msg::kEmptyStatus);
  return line;
}

std::vector<std::string> instance_block(const Instance& instance) {
  std::vector<std::string> rows;
  load_directory_map(instance.name);
  const std::string& config = instance.config_file;
  const std::string& title = instance.window_title;

  std::string spec = setting("Options", "FileSpec", "", kFileSpecSize, config);
  if (spec.size() <= 1) {
    rows.push_back(padded_row(title, message_row(msg::kSettingMissing,
                                                 {"Options", display_path(config), "FileSpec"})));
    return rows;
  }
  spec = spec.substr(0, spec.find(';'));

  std::string directory = path_setting("Paths", "DataPath", config);
  if (directory.empty()) {
    rows.push_back(padded_row(title, message_row(msg::kNotSet)));
    return rows;
  }
  if (!directory_exists(directory)) {
    rows.push_back(padded_row(title, message_row(msg::kDirectoryMissing, {display_path(directory)})));
    return rows;
  }
  auto control_jobs = list_files(directory, kControlJobPattern);
  auto transactions = list_files(directory, spec);

  std::string status_file = path_setting("Plexar", "StatusFile", config);
  std::string status = status_file.empty() ? message_row(msg::kNotSet) : status_line(status_file);
  rows.push_back(title + " - ");
  rows.push_back("  - " + status);

  std::vector<std::string> names;
  if (control_jobs) sort_by_age(std::move(*control_jobs), kServerStopFile, names);
  if (transactions) sort_by_age(std::move(*transactions), kServerStopFile, names);
  if (names.empty()) {
    append_file_rows(directory, {message_row(msg::kNoFiles)}, rows);
  } else {
    append_file_rows(directory, names, rows);
  }
  return rows;
}

std::vector<std::string> status_queue_rows() {
  std::vector<std::string> rows;
  InstanceEnumerator instances;
  if (instances.begin()) {
    Instance instance;
    while (instances.next(instance)) {
      std::vector<std::string> block = instance_block(instance);
      rows.insert(rows.end(), block.begin(), block.end());
    }
  }
  instances.end();
  load_directory_map(current_instance().name);
  return rows;
}

StatusSources status_queue_sources() {
  StatusSources sources;
  InstanceEnumerator instances;
  if (instances.begin()) {
    Instance instance;
    while (instances.next(instance)) {
      load_directory_map(instance.name);
      std::string directory = path_setting("Paths", "DataPath", instance.config_file);
      if (!directory.empty()) sources.directories.push_back(directory);
      std::string status = path_setting("Plexar", "StatusFile", instance.config_file);
      if (!status.empty()) sources.files.push_back(status);
    }
  }
  instances.end();
  load_directory_map(current_instance().name);
  return sources;
}

int refresh_period_ms() {
  int seconds = ini::get_int("Options", "QueueRefreshCycle", kDefaultRefreshSeconds);
  return (seconds < 1 ? kDefaultRefreshSeconds : seconds) * 1000;
}

}  // namespace px::views
