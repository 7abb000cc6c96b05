#include "views/file_lists.h"

#include "config/settings.h"
#include "views/file_listing.h"
#include "views/view_messages.h"

namespace px::views {

namespace {

bool config_readable(const std::string& file, Operator& op) {
  if (file_readable(file)) return true;
  op.show(msg::kIniUnreadable, {display_path(file)});
  return false;
}

// A path setting that must be there; shows 167 when it is not.
std::optional<std::string> required_path(const char* section, const char* key,
                                         const std::string& file, Operator& op) {
  std::string value = path_setting(section, key, file);
  if (value.empty()) {
    op.show(msg::kSettingMissing, {section, display_path(file), key});
    return std::nullopt;
  }
  return value;
}

}  // namespace

std::optional<std::string> agent_ini_file(const std::string& config_file, Operator& op) {
  if (!config_readable(config_file, op)) return std::nullopt;
  auto agent = required_path("PXEMIO", "IniFileName", config_file, op);
  if (!agent || !config_readable(*agent, op)) return std::nullopt;
  return agent;
}

std::optional<FileList> email_queue(const std::string& config_file, Operator& op) {
  auto agent = agent_ini_file(config_file, op);
  if (!agent) return std::nullopt;
  auto directory = required_path("Paths", "DataPath", *agent, op);
  if (!directory) return std::nullopt;
  if (!directory_exists(*directory)) {
    op.show(msg::kDirectoryMissing, {display_path(*directory)});
    return std::nullopt;
  }
  FileList list;
  list.directory = *directory;
  const std::string_view patterns[] = {kAgentStopFile, "*.dat"};
  if (auto groups = list_files(*directory, patterns)) {
    sort_by_age((*groups)[0], kAgentStopFile, list.rows);
    sort_by_age((*groups)[1], kServerStopFile, list.rows);
  }
  list.has_files = !list.rows.empty();
  if (list.has_files) {
    list.caption = msg::kQueueCaption;
  } else {
    list.rows.push_back(message_row(msg::kNoFiles));
  }
  return list;
}

std::optional<std::string> error_directory(const std::string& config_file, bool email,
                                           Operator& op) {
  std::string settings = config_file;
  if (email) {
    auto agent = agent_ini_file(config_file, op);
    if (!agent) return std::nullopt;
    settings = *agent;
  } else if (!config_readable(config_file, op)) {
    return std::nullopt;
  }
  return required_path("Paths", "ErrorPath", settings, op);
}

std::optional<FileList> rejects(const std::string& config_file, bool email, Operator& op) {
  auto directory = error_directory(config_file, email, op);
  if (!directory) return std::nullopt;
  auto files = directory_exists(*directory) ? list_files(*directory, "*.*") : std::nullopt;
  if (!files) {
    op.show(msg::kErrorDirectoryMissing, {display_path(*directory)});
    return std::nullopt;
  }
  FileList list;
  list.directory = *directory;
  for (size_t i = 0; i < files->size(); ++i) list.rows.emplace_back(files->name(i));
  list.has_files = !list.rows.empty();
  if (list.has_files) {
    list.caption = msg::kRejectsCaption;
  } else {
    list.rows.push_back(message_row(msg::kNoRejects));
  }
  return list;
}

}  // namespace px::views
