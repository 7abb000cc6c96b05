#include "config/forms/instance_list.h"

#include <cerrno>

#include <utility>

#include "common/ini_profile.h"
#include "common/text.h"

namespace px::forms {

void InstanceList::load() {
  install_ = px::install_file();
  if (!install_.empty()) ini::drop_file(install_);
  stamp_ = stamp_of(install_);
  rows_.clear();
  if (install_.empty()) return;
  // Every instance, not only those whose names fit in the enumerator's room
  // or its 73 characters: OK writes section Configuration anew from these
  // rows, so a row left out or a name cut would be an instance lost.
  for (const std::string& name : ini::get_key_array("Configuration", install_)) {
    std::string config = instance_config_file(name);
    rows_.push_back({name, instance_window_title(config), config});
  }
}

int InstanceList::find(std::string_view name) const {
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    if (iequals(rows_[i].name, name)) return static_cast<int>(i);
  }
  return -1;
}

bool InstanceList::usable_name(std::string_view name) {
  if (name.empty() || name.front() == '[' || name.front() == ';') return false;
  if (is_space(name.front()) || is_space(name.back())) return false;
  return name.find_first_of("=\r\n") == std::string_view::npos;
}

void InstanceList::make_default(std::size_t row) {
  if (row == 0 || row >= rows_.size()) return;
  Instance chosen = std::move(rows_[row]);
  rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(row));
  rows_.insert(rows_.begin(), std::move(chosen));
}

void InstanceList::replace(std::size_t row, Instance instance) {
  if (row < rows_.size()) rows_[row] = std::move(instance);
}

void InstanceList::add(Instance instance) { rows_.push_back(std::move(instance)); }

void InstanceList::remove(std::size_t row) {
  if (row < rows_.size()) rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(row));
}

std::optional<std::string> InstanceList::unsavable_value() const {
  for (const Instance& row : rows_) {
    IniChange entry{"Configuration", row.name, row.config_file};
    if (unwritable_part(entry, Delimiters{}) != Unwritable::kNone) return row.name;
    IniChange title{"Plexar", "WindowTitle", row.window_title};
    if (row.config_file.size() >= 2 && unwritable_part(title, Delimiters{}) != Unwritable::kNone) {
      return std::string("WindowTitle");
    }
  }
  return std::nullopt;
}

bool InstanceList::changed_on_disk() const { return stamp_of(install_) != stamp_; }

InstanceList::Applied InstanceList::apply(FileSystem* files) {
  if (install_.empty()) return {{FileStep::kLock, ENOENT}, install_};
  // Section Configuration is written anew in list order in one rewrite.
  std::vector<IniChange> changes{{"Configuration", std::nullopt, std::nullopt}};
  for (const Instance& row : rows_) changes.push_back({"Configuration", row.name, row.config_file});
  Applied applied{ini::write_changes(changes, install_, {.keep_backup = true, .files = files}),
                  install_};
  stamp_ = stamp_of(install_);
  for (const Instance& row : rows_) {
    if (row.config_file.size() < 2) continue;
    FileResult written = ini::write_string("Plexar", "WindowTitle", row.window_title,
                                           row.config_file, {.files = files});
    if (!written && applied) applied = {written, row.config_file};
  }
  return applied;
}

}  // namespace px::forms
