#include "shell/menu_state.h"

#include "common/directory_map.h"
#include "common/ini_profile.h"
#include "common/text.h"
#include "config/settings.h"
#include "control/node.h"
#include "shell/read_only_menu.h"
#include "toolkit/resources/resource_ids.h"

namespace px::shell {

namespace {

// The longest section key list read for the E-mail Agent rule.
constexpr size_t kKeyListSize = 1024;

// A path setting, mapped; empty when it is not set.
std::string mapped(std::string_view section, std::string_view key, const std::string& file) {
  std::string value = setting(section, key, "", kPathSettingSize, file);
  return value.empty() ? value : map_directory(value);
}

}  // namespace

MenuState menu_state(const std::string& config_file, unsigned location) {
  std::string data = mapped("Paths", "DataPath", config_file);
  std::string backup = mapped("Paths", "BackupPath", config_file);
  std::string error = mapped("Paths", "ErrorPath", config_file);
  std::string exe = mapped("Paths", "ExePath", config_file);
  std::string jmd = mapped("Options", "JMDFileName", config_file);
  std::string log = mapped("Plexar", "LogFile", config_file);

  MenuState state;
  state.save = !jmd.empty();
  state.log = !log.empty() && !iequals(log, "stdout");
  state.rejects = !error.empty();
  state.control = !data.empty();
  state.start = (location & kLocationStartable) != 0;
  if (state.start && (location & kLocationRemoteAccess) == 0) {
    state.start = !exe.empty() && !data.empty() && !backup.empty() && !error.empty() && !jmd.empty();
  }
  return state;
}

void refresh_menu_state(tk::Window task) {
  const Instance& instance = current_instance();
  MenuState state = menu_state(instance.config_file, location(instance.name));
  task.set_menu_enabled(tk::kCmdSave, state.save);
  task.set_menu_enabled(tk::kCmdSaveSecond, state.save);
  task.set_menu_enabled(tk::kCmdServerLog, state.log);
  task.set_menu_enabled(tk::kCmdServerRejects, state.rejects);
  for (int item : {tk::kCmdReloadPrinter, tk::kCmdReloadJmd, tk::kCmdPauseServer,
                   tk::kCmdResumeServer, tk::kCmdShutDownServer}) {
    task.set_menu_enabled(item, state.control);
  }
  task.set_menu_enabled(tk::kCmdStartServer, state.start);
  apply_read_only(task);
}

bool email_agent_enabled() { return ini::get_int("Options", "PXEMIO", 0) != 0; }

void apply_email_rule(tk::Window task, const std::string& config_file) {
  if (!email_agent_enabled()) return;
  bool has_agent = false;
  if (!config_file.empty()) {
    KeyList keys = ini::get_key_list("PXEMIO", kKeyListSize, config_file);
    has_agent = keys.used > 1 || keys.overflow;
  }
  for (int item : {tk::kCmdStartEmail, tk::kCmdShutDownEmail, tk::kCmdEmailQueue,
                   tk::kCmdEmailRejects, tk::kCmdEmailLog}) {
    task.set_menu_enabled(item, has_agent);
  }
  apply_read_only(task);
}

void set_edit_items_for_no_selection(tk::Window task) {
  for (int item : {tk::kCmdCut, tk::kCmdCopy, tk::kCmdPaste, tk::kCmdDelete}) {
    task.set_menu_enabled(item, false);
  }
}

}  // namespace px::shell
