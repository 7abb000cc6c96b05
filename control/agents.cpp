#include "control/agents.h"

#include <unistd.h>

#include "common/file_replace.h"
#include "common/file_util.h"
#include "common/platform.h"
#include "common/run_command.h"
#include "config/message_numbers.h"
#include "config/settings.h"
#include "config/state_probes.h"
#include "control/gated_action.h"
#include "control/node.h"

namespace px {

namespace {

constexpr size_t kDirectorySize = 4096;

// What differs between starting the server and starting the E-mail Agent.
struct Starter {
  const char* exe_section;    // section holding ExePath
  const char* named_section;  // section named by message 189
  int failed_message;         // shown when the start fails
  int (*start_on_node)(std::string_view, ProgramRunner&);
};

constexpr Starter kServerStarter{"Paths", "Paths", msg::kServerStartFailed, &start_server_on_node};
constexpr Starter kAgentStarter{"Pxemio", "PXEMIO", msg::kEmailStartFailed,
                                &start_email_agent_on_node};

bool config_readable(const ControlContext& context) {
  if (file_readable(context.instance.config_file)) return true;
  context.op.show(msg::kIniUnreadable, {display_path(context.instance.config_file)});
  return false;
}

// Puts the process in a directory for one start and back afterwards.
class DirectoryChange {
 public:
  DirectoryChange() {
    char here[kDirectorySize];
    if (::getcwd(here, sizeof here) != nullptr) saved_ = here;
  }
  DirectoryChange(const DirectoryChange&) = delete;
  DirectoryChange& operator=(const DirectoryChange&) = delete;
  ~DirectoryChange() {
    if (!changed_ || saved_.empty()) return;
    // A saved directory that vanished meanwhile cannot be entered again; the
    // start itself is done, so that is not reported.
    if (::chdir(saved_.c_str()) != 0) saved_.clear();
  }
  bool enter(const std::string& directory) {
    changed_ = ::chdir(directory.c_str()) == 0;
    return changed_;
  }

 private:
  std::string saved_;
  bool changed_ = false;
};

// The classic branch's start: through the node for a remote instance, else
// from the program's own directory.
Outcome start_classic(const ControlContext& context, const Starter& starter) {
  const Instance& instance = context.instance;
  if ((location(instance.name) & kLocationRemoteAccess) != 0) {
    if (starter.start_on_node(instance.name, context.runner) == kNodeOk) return Outcome::kDone;
    context.op.show(starter.failed_message);
    return Outcome::kFailed;
  }
  std::string exe = path_setting(starter.exe_section, "ExePath", instance.config_file);
  if (exe.empty()) {
    context.op.show(msg::kExePathUnusable,
                    {starter.named_section, display_path(instance.config_file)});
    return Outcome::kFailed;
  }
  DirectoryChange directory;
  if (!directory.enter(exe)) {
    context.op.show(msg::kCannotEnterDirectory, {display_path(exe)});
    return Outcome::kFailed;
  }
  set_start_minimised(1);
  if (starter.start_on_node(instance.name, context.runner) == kNodeOk) return Outcome::kDone;
  context.op.show(starter.failed_message);
  return Outcome::kFailed;
}

Outcome start_server_ungated(const ControlContext& context) {
  if (!config_readable(context)) return Outcome::kFailed;
  ServerState state = server_state(context.instance.config_file, context.op);
  if (state == ServerState::kUnknown) return Outcome::kFailed;
  if (state != ServerState::kNotRunning) {
    context.op.show(msg::kServerAlreadyRunning);
    return Outcome::kFailed;
  }
  if (!is_nt_family()) return start_classic(context, kServerStarter);
  return send_to_launcher(context.instance.name, context.op, context.times) ? Outcome::kDone
                                                                            : Outcome::kFailed;
}

Outcome start_email_agent_ungated(const ControlContext& context) {
  if (!config_readable(context)) return Outcome::kFailed;
  if (email_status_file_present(context.instance.config_file, context.op)) {
    context.op.show(msg::kEmailAlreadyRunning);
    return Outcome::kFailed;
  }
  if (!is_nt_family()) return start_classic(context, kAgentStarter);
  return send_to_launcher(context.instance.name + "\\PxEmio", context.op, context.times)
             ? Outcome::kDone
             : Outcome::kFailed;
}

Outcome stop_email_agent_ungated(const ControlContext& context) {
  const std::string& config = context.instance.config_file;
  Operator& op = context.op;
  if (!config_readable(context)) return Outcome::kFailed;
  if (!email_status_file_present(config, op)) {
    op.show(msg::kEmailNotRunning);
    return Outcome::kFailed;
  }
  std::string agent_ini = path_setting("PXEMIO", "IniFileName", config);
  if (agent_ini.empty()) {
    op.show(msg::kSettingMissing, {"PXEMIO", display_path(config), "IniFileName"});
    return Outcome::kFailed;
  }
  std::string data = path_setting("Paths", "DataPath", agent_ini);
  if (data.empty()) {
    op.show(msg::kSettingMissing, {"Paths", display_path(agent_ini), "DataPath"});
    return Outcome::kFailed;
  }
  if (!write_email_stop_file(data, op)) return Outcome::kFailed;
  bool woken = kick(context.instance.name, true, op, context.times);
  op.show(msg::kEmailStopSent);
  return woken ? Outcome::kDone : Outcome::kDeliveredNotWoken;
}

}  // namespace

bool write_email_stop_file(const std::string& data_directory, Operator& op, FileSystem& files) {
  std::string stop_file = join_path(kEmailStopFileName, data_directory);
  FileResult written = replace_file(stop_file, "", files);
  if (written) return true;
  FileMessage why = failure_message(written, stop_file);
  op.show(why.number, why.args);
  op.show(msg::kFileNotOpened, {display_path(stop_file)});
  return false;
}

Outcome start_server(const ControlContext& context) {
  return run_gated("start", context, start_server_ungated);
}

Outcome start_email_agent(const ControlContext& context) {
  return run_gated("start-email", context, start_email_agent_ungated);
}

Outcome stop_email_agent(const ControlContext& context) {
  return run_gated("stop-email", context, stop_email_agent_ungated);
}

}  // namespace px
