// The installed instances of Nexa and the console's current instance.
//
// The console's INI file names the install file (key Install of section
// Plexar). Section Configuration of the install file has one key per
// instance: the key is the instance's name, the value the path of its
// configuration file, in instance order; the first instance is the default.
// Each configuration file gives the instance's description as WindowTitle in
// section Plexar.
//
// The current instance is one process-wide record, changed only by the
// selections below; every server-side setting is read from its
// configuration file.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "config/operator.h"

namespace px {

struct Instance {
  std::string name;
  std::string window_title;
  std::string config_file;
};

// Limits of the names and paths kept for an instance.
inline constexpr size_t kEnumeratedNameLength = 73;
inline constexpr size_t kInstanceNameLength = 260;
inline constexpr size_t kWindowTitleLength = 255;

// The install file named by the console's INI file; empty when none is.
std::string install_file();

// The configuration file of the instance called name, read from the install
// file (cut to size - 1 characters); empty when it has none.
std::string instance_config_file(std::string_view name, size_t size = 256);

// The description of the instance whose configuration file is config_file:
// its WindowTitle, or a single blank when the path is shorter than 2
// characters.
std::string instance_window_title(const std::string& config_file);

// Walks the instances in install-file order. begin reads their names (up to
// 1,024 characters' worth) and answers whether there is at least one; next
// delivers one instance per call, re-reading its configuration file's path
// and title (a single blank when the path is shorter than 2 characters).
class InstanceEnumerator {
 public:
  bool begin();
  bool next(Instance& out);
  void end();

 private:
  std::vector<std::string> names_;
  size_t next_ = 0;
};

// The process-wide current instance; empty before a selection.
const Instance& current_instance();

// Makes instance current and the profile engine's active instance (its
// directory map is loaded).
void set_current_instance(const Instance& instance);

// Start-up selection: the first instance becomes current. Returns how many
// instances there are. With none, shows 164 with the console's INI file and
// leaves the current instance as it was; a current instance whose
// configuration path is shorter than 2 characters shows 165.
int select_default_instance(Operator& op);

// Makes the instance called name current. False after showing 165 when the
// install file gives it no configuration file.
bool select_instance(std::string_view name, Operator& op);

}  // namespace px
