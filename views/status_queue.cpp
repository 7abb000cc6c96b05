#include "views/status_queue.h"

#include <sys/stat.h>

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

std::optional<std::string> read_status_line(const std::string& status_file) {
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(status_file.c_str(), "r"),
                                                       std::fclose);
  // A directory opens for reading here but is no status file.
  struct stat info {};
  if (!file || ::fstat(fileno(file.get()), &info) != 0 || S_ISDIR(info.st_mode)) {
    return std::nullopt;
  }
  std::string line;
  for (int c; line.size() < kStatusLineLength && (c = std::fgetc(file.get())) != EOF;) {
    line.push_back(static_cast<char>(c));
    if (c == '\n') break;
  }
  if (line.ends_with('\n')) line.pop_back();
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

std::string status_line(const std::string& status_file) {
  auto line = read_status_line(status_file);
  if (!line) return message_row(msg::kStatusNotOpened, {display_path(status_file)});
  if (line->empty()) return message_row(msg::kEmptyStatus);
  return *line;
}

BlockPlan plan_block(const Instance& instance) {
  BlockPlan plan;
  plan.title = instance.window_title;
  plan.config_file = instance.config_file;
  load_directory_map(instance.name);
  const std::string& config = instance.config_file;
  const std::string& title = instance.window_title;

  std::string file_spec = setting("Options", "FileSpec", "", kFileSpecSize, config);
  if (file_spec.size() <= 1) {
    plan.only_row = padded_row(title, message_row(msg::kSettingMissing,
                                                  {"Options", display_path(config), "FileSpec"}));
    return plan;
  }
  plan.pattern = file_spec.substr(0, file_spec.find(';'));
  // "*.DAT ;*.TXT": blanks before the ";" are no part of the pattern (no
  // file name ends in one where the patterns come from).
  while (plan.pattern.ends_with(' ') || plan.pattern.ends_with('\t')) plan.pattern.pop_back();
  plan.directory = path_setting("Paths", "DataPath", config);
  if (plan.directory.empty()) {
    plan.only_row = padded_row(title, message_row(msg::kNotSet));
    return plan;
  }
  plan.missing_directory_row =
      padded_row(title, message_row(msg::kDirectoryMissing, {display_path(plan.directory)}));
  plan.title_row = title + " - ";
  plan.status_file = path_setting("Plexar", "StatusFile", config);
  plan.not_set_status = message_row(msg::kNotSet);
  plan.unopened_status = message_row(msg::kStatusNotOpened, {display_path(plan.status_file)});
  plan.empty_status = message_row(msg::kEmptyStatus);
  plan.no_files = message_row(msg::kNoFiles);
  return plan;
}

ListedBlock list_block_detail(const BlockPlan& plan, ListingCache* cache) {
  ListedBlock block;
  if (plan.only_row) {
    block.rows = {*plan.only_row};
    return block;
  }
  // Control jobs and transaction files from one read of the directory.
  const std::string_view patterns[] = {kControlJobPattern, plan.pattern};
  auto groups = list_files(plan.directory, patterns, cache);
  if (!groups) {
    block.rows = {plan.missing_directory_row};
    return block;
  }
  block.listed = true;

  std::string status = plan.not_set_status;
  if (!plan.status_file.empty()) {
    block.status_line = read_status_line(plan.status_file);
    status = !block.status_line           ? plan.unopened_status
             : block.status_line->empty() ? plan.empty_status
                                          : *block.status_line;
  }
  block.rows = {plan.title_row, "  - " + status};
  std::vector<std::string> names;
  for (const FileListing& group : *groups) sort_by_age(group, kServerStopFile, names);
  block.waiting = static_cast<int>(names.size());
  append_file_rows(plan.directory, names.empty() ? std::vector<std::string>{plan.no_files} : names,
                   block.rows);
  return block;
}

std::vector<std::string> list_block(const BlockPlan& plan) { return list_block_detail(plan).rows; }

std::vector<std::string> instance_block(const Instance& instance) {
  return list_block(plan_block(instance));
}

std::vector<BlockPlan> plan_status_queue() {
  std::vector<BlockPlan> plans;
  InstanceEnumerator instances;
  if (instances.begin()) {
    Instance instance;
    while (instances.next(instance)) plans.push_back(plan_block(instance));
  }
  instances.end();
  load_directory_map(current_instance().name);
  return plans;
}

std::vector<ListedBlock> list_blocks(const std::vector<BlockPlan>& plans, ListingCache* cache) {
  std::vector<ListedBlock> blocks;
  for (const BlockPlan& plan : plans) blocks.push_back(list_block_detail(plan, cache));
  return blocks;
}

std::vector<std::string> rows_of(const std::vector<ListedBlock>& blocks) {
  std::vector<std::string> rows;
  for (const ListedBlock& block : blocks) rows.insert(rows.end(), block.rows.begin(), block.rows.end());
  return rows;
}

std::vector<std::string> list_status_queue(const std::vector<BlockPlan>& plans) {
  return rows_of(list_blocks(plans));
}

std::vector<std::string> status_queue_rows() { return list_status_queue(plan_status_queue()); }

StatusSources status_queue_sources() {
  StatusSources sources;
  for (const BlockPlan& plan : plan_status_queue()) {
    if (!plan.directory.empty()) sources.directories.push_back(plan.directory);
    if (!plan.status_file.empty()) sources.files.push_back(plan.status_file);
  }
  return sources;
}

int refresh_period_ms() {
  int seconds = ini::get_int("Options", "QueueRefreshCycle", kDefaultRefreshSeconds);
  return (seconds < 1 ? kDefaultRefreshSeconds : seconds) * 1000;
}

}  // namespace px::views
