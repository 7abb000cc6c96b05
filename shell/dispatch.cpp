#include "shell/dispatch.h"

#include "config/dialogs/configure_dialog.h"
#include "config/instances.h"
#include "control/agents.h"
#include "control/control_commands.h"
#include "jmd/editors/jmd_windows.h"
#include "control/node.h"
#include "shell/about_dialog.h"
#include "shell/documentation.h"
#include "shell/may_end.h"
#include "shell/menu_state.h"
#include "shell/select_instance_dialog.h"
#include "toolkit/resources/resource_ids.h"
#include "views/windows/file_windows.h"
#include "views/windows/log_window.h"
#include "views/windows/status_window.h"

namespace px::shell {

namespace {

// The control actions, each run on the current instance.
Outcome (*control_action(int command))(const ControlContext&) {
  switch (command) {
    case tk::kCmdStartServer: return &start_server;
    case tk::kCmdStartEmail: return &start_email_agent;
    case tk::kCmdShutDownEmail: return &stop_email_agent;
    case tk::kCmdShutDownServer: return &shut_down_server;
    case tk::kCmdReloadPrinter: return &printer_reload;
    case tk::kCmdReloadJmd: return &job_table_reload;
    case tk::kCmdResumeServer: return &resume_server;
    case tk::kCmdPauseServer: return &pause_server;
    default: return nullptr;
  }
}

// The monitoring windows' view of the console.
views::ViewHost view_host(Console& console) {
  return {console.toolkit(), console.op(), console.control_context().clock,
          [&console](tk::WindowId w, const std::string& topic) {
            console.help().associate(w, 0, topic, HelpKind::kWindow);
          },
          [&console](tk::WindowId w) { console.help().forget(w); },
          [&console](tk::WindowId w, bool open) {
            console.overview().view_open(console.task(), w, open);
          },
          console.overview().listing_cache()};
}

// The JMD list a File > Job Management Database item opens.
editors::ListKind jmd_list_kind(int command) {
  switch (command) {
    case tk::kCmdTasks: return editors::ListKind::kTasks;
    case tk::kCmdPrinters: return editors::ListKind::kPrinters;
    case tk::kCmdManagedMemory: return editors::ListKind::kMemory;
    default: return editors::ListKind::kJobNames;
  }
}

// The settings and the instance list may have changed: the menu items that
// depend on them follow.
void after_configuration(tk::Window task) {
  refresh_menu_state(task);
  InstanceEnumerator instances;
  int count = 0;
  if (instances.begin()) {
    for (Instance entry; instances.next(entry);) ++count;
  }
  instances.end();
  task.set_menu_enabled(tk::kCmdSelectInstance, count >= 2);
}

}  // namespace

bool dispatch_command(Console& console, const tk::Event& event) {
  if (auto action = control_action(event.command)) {
    action(console.control_context());
    return true;
  }
  switch (event.command) {
    case tk::kCmdSelectInstance:
      if (may_program_end(console)) run_select_instance_dialog(console);
      return true;
    case tk::kCmdConfigure: {
      const Instance& instance = current_instance();
      dialogs::ConfigContext context{console.toolkit(), console.op(), instance.name};
      bool other_node = (location(instance.name) & kLocationOtherNode) != 0;
      dialogs::run_configure_dialog(context, instance, other_node);
      after_configuration(console.task());
      return true;
    }
    case tk::kCmdExit:
      if (may_program_end(console)) event.window.destroy();
      return true;
    case tk::kCmdAbout:
      run_about_dialog(console);
      return true;
    case tk::kCmdViewDocumentation:
      open_documentation(console.runner(), console.program_path());
      return true;
    case tk::kCmdKnowledgeBase:
      open_knowledge_base(console.runner());
      return true;
    case tk::kCmdSave:
      save_database(console);
      return true;
    case tk::kCmdStatusQueue:
      views::show_status_queue(view_host(console));
      return true;
    case tk::kCmdServerLog:
      views::open_server_log(view_host(console));
      return true;
    case tk::kCmdEmailLog:
      views::open_email_log(view_host(console));
      return true;
    case tk::kCmdServerRejects:
      views::open_rejects(view_host(console), false);
      return true;
    case tk::kCmdEmailRejects:
      views::open_rejects(view_host(console), true);
      return true;
    case tk::kCmdEmailQueue:
      views::open_email_queue(view_host(console));
      return true;
    case tk::kCmdJobs:
    case tk::kCmdTasks:
    case tk::kCmdPrinters:
    case tk::kCmdManagedMemory:
      editors::jmd_windows().attach(console.toolkit(), console.op());
      editors::jmd_windows().open_list(jmd_list_kind(event.command));
      return true;
    case tk::kCmdUndo:
    case tk::kCmdRedo:
      editors::jmd_windows().attach(console.toolkit(), console.op());
      editors::jmd_windows().undo_command(event.command);
      return true;
    case tk::kCmdCut:
    case tk::kCmdCopy:
    case tk::kCmdPaste:
    case tk::kCmdDelete:
      editors::jmd_windows().attach(console.toolkit(), console.op());
      editors::jmd_windows().edit_command(event.command);
      return true;
    default:
      return false;
  }
}

}  // namespace px::shell
