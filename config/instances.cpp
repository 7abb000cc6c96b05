#include "config/instances.h"

#include "common/directory_map.h"
#include "common/ini_profile.h"
#include "common/text.h"
#include "config/message_numbers.h"
#include "config/settings.h"

namespace px {

namespace {

constexpr size_t kNameListSize = 1024;
constexpr size_t kPathSize = 256;

Instance& the_current() {
  static Instance current;
  return current;
}

bool has_config(const Instance& instance) { return instance.config_file.size() >= 2; }

}  // namespace

std::string instance_window_title(const std::string& config_file) {
  if (config_file.size() < 2) return " ";
  return setting("Plexar", "WindowTitle", "", kWindowTitleLength + 1, config_file);
}

std::string install_file() { return ini::get_string("Plexar", "Install", "", kPathSize); }

std::string instance_config_file(std::string_view name, size_t size) {
  std::string install = install_file();
  if (install.empty()) return {};
  return ini::get_string("Configuration", name, "", size, install);
}

bool InstanceEnumerator::begin() {
  names_.clear();
  next_ = 0;
  std::string install = install_file();
  if (!install.empty()) names_ = ini::get_key_list("Configuration", kNameListSize, install).keys;
  return !names_.empty();
}

bool InstanceEnumerator::next(Instance& out) {
  if (next_ >= names_.size()) return false;
  out.name = cut_to_buffer(names_[next_++], kEnumeratedNameLength + 1);
  out.config_file = instance_config_file(out.name);
  out.window_title = instance_window_title(out.config_file);
  return true;
}

void InstanceEnumerator::end() {
  names_.clear();
  next_ = 0;
}

const Instance& current_instance() { return the_current(); }

void set_current_instance(const Instance& instance) {
  the_current() = instance;
  load_directory_map(instance.name);
}

int select_default_instance(Operator& op) {
  InstanceEnumerator instances;
  if (!instances.begin()) {
    op.show(msg::kNoInstance, {display_path(ini::default_file())});
    return 0;
  }
  Instance first;
  Instance entry;
  int count = 0;
  while (instances.next(entry)) {
    if (count++ == 0) first = entry;
  }
  instances.end();
  set_current_instance(first);
  if (!has_config(first))
    op.show(msg::kInstanceWithoutConfig, {first.name, display_path(ini::default_file())});
  return count;
}

bool select_instance(std::string_view name, Operator& op) {
  Instance instance;
  instance.name = cut_to_buffer(name, kInstanceNameLength + 1);
  instance.config_file = instance_config_file(instance.name, kInstanceNameLength + 1);
  instance.window_title = instance_window_title(instance.config_file);
  if (!has_config(instance)) {
    op.show(msg::kInstanceWithoutConfig, {instance.name, display_path(ini::default_file())});
    return false;
  }
  set_current_instance(instance);
  return true;
}

}  // namespace px
