#include "shell/task.h"

#include <unistd.h>

#include "common/common_init.h"
#include "config/instances.h"
#include "shell/dispatch.h"
#include "shell/may_end.h"
#include "shell/menu_state.h"
#include "shell/splash.h"
#include "shell/title.h"
#include "toolkit/resources/resource_ids.h"

namespace px::shell {

namespace {

void on_create(Console& console, tk::Window task) {
  console.help().install();
  select_instance_at_start(console, task, tk::kCmdSelectInstance);
  set_edit_items_for_no_selection(task);
  console.overview().start(task);
  open_splash(console.toolkit(), console.op(), console.program_path());
}

// The program's own file, for the files that ship beside it.
std::string own_program_path() {
  std::string path(4096, '\0');
  ssize_t n = ::readlink("/proc/self/exe", path.data(), path.size() - 1);
  path.resize(n > 0 ? static_cast<size_t>(n) : 0);
  return path;
}

}  // namespace

int select_instance_at_start(Console& console, tk::Window task, int command) {
  int count = select_default_instance(console.op());
  if (count == 0) return 0;
  const Instance& current = current_instance();
  set_task_title(task, current.window_title);
  refresh_menu_state(task);
  if (count < 2) task.set_menu_enabled(command, false);
  apply_email_rule(task, current.config_file);
  return count;
}

void handle_task_event(Console& console, const tk::Event& event) {
  tk::Toolkit& toolkit = console.toolkit();
  switch (event.type) {
    case tk::EventType::kCreate:
      on_create(console, event.window);
      break;
    case tk::EventType::kDestroy:
      console.help().close();
      break;
    case tk::EventType::kClose:
      if (may_program_end(console)) toolkit.shut_down();
      break;
    case tk::EventType::kCommand:
      dispatch_command(console, event);
      break;
    case tk::EventType::kTimer:
      console.overview().on_timer(event.window, event);
      break;
    case tk::EventType::kPaint:
      console.overview().paint(event.window);
      break;
    case tk::EventType::kQuit:
      if (!event.query) {
        toolkit.shut_down();
      } else if (may_program_end(console)) {
        toolkit.allow_quit();
      }
      break;
    default:
      break;
  }
}

tk::Application console_application(Console& console) {
  tk::Application app;
  app.menu_bar = email_agent_enabled() ? tk::kMenuBarEmail : tk::kMenuBarBase;
  app.task_handler = [&console](const tk::Event& event) { handle_task_event(console, event); };
  return app;
}

int run_console(tk::Toolkit& toolkit, std::vector<std::string> args) {
  if (int status = common_init(args); status != 0) {
    toolkit.post_error("[" + std::to_string(status) + "]" + init_error_text(status));
    return 1;
  }
  SystemClock clock;
  SystemProgramRunner runner;
  Console console(toolkit, clock, runner, own_program_path());
  return toolkit.run_application(console_application(console));
}

}  // namespace px::shell
