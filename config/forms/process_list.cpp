#include "config/forms/process_list.h"

#include "common/ini_profile.h"
#include "common/text.h"
#include "config/forms/form_defs.h"
#include "config/settings.h"

namespace px::forms {

namespace {

constexpr std::size_t kNameSize = 256;
constexpr std::size_t kCommandSize = 512;
constexpr std::string_view kGroupWords[] = {"Plexar ", "Ortane Relay "};

}  // namespace

std::string without_group_word(std::string_view name) {
  for (std::string_view word : kGroupWords) {
    if (istarts_with(name, word)) return std::string(name.substr(word.size()));
  }
  return std::string(name);
}

ProcessListing list_processes(const std::string& config_file, bool other_node, Operator& op) {
  ProcessListing listing;
  if (!file_readable(config_file)) {
    op.show(kMsgConfigNotOpened, {display_path(config_file)});
    listing.opened = false;
    return listing;
  }
  if (other_node) return listing;
  ini::drop_file(config_file);
  std::optional<std::vector<std::string>> keys = process_keys(config_file);
  if (!keys) {
    op.show(kMsgProcessesMissing, {"Processes", display_path(config_file)});
    listing.closes = true;
    return listing;
  }
  for (const std::string& key : *keys) {
    std::string name = ini::get_string("Processes", key, "", kNameSize, config_file);
    listing.processes.push_back({key, without_group_word(name)});
  }
  return listing;
}

std::optional<std::string> key_for_row(const ProcessListing& listing, std::string_view row) {
  for (const Process& process : listing.processes) {
    if (process.name == row) return process.key;
  }
  return std::nullopt;
}

std::optional<std::string> find_process_key(const ProcessListing& listing,
                                            std::string_view word) {
  for (const Process& process : listing.processes) {
    if (iequals(process.key, word)) return process.key;
  }
  return std::nullopt;
}

std::optional<std::string> process_ini_file(const std::string& config_file, const std::string& key,
                                            Operator& op) {
  if (iequals(key, kServerProcess)) return config_file;
  std::string file = path_setting(key, "IniFileName", config_file);
  if (file.empty()) {
    op.show(kMsgSettingMissing, {key, display_path(config_file), "IniFileName"});
    return std::nullopt;
  }
  return file;
}

std::optional<ProcessEditor> process_editor(const std::string& config_file, const std::string& key,
                                            Operator& op) {
  std::optional<std::string> ini_file = process_ini_file(config_file, key, op);
  if (!ini_file) return std::nullopt;
  ProcessEditor editor{EditorKind::kCommand, key, *ini_file, {}};
  std::string pattern = setting(key, "EditCfgRtn", "", kCommandSize, config_file);
  if (!pattern.empty()) {
    editor.command = fill_percent_s(pattern, *ini_file);
    return editor;
  }
  if (key == kServerProcess) {
    editor.kind = EditorKind::kServer;
  } else if (key == kEmailProcess) {
    editor.kind = EditorKind::kEmail;
  } else if (key == kPrintProcess) {
    editor.kind = EditorKind::kPrint;
  } else {
    op.show(kMsgSettingMissing, {key, display_path(config_file), "EditCfgRtn"});
    return std::nullopt;
  }
  return editor;
}

}  // namespace px::forms
