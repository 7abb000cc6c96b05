#include "control/control_commands.h"

#include "common/ini_profile.h"
#include "config/message_numbers.h"
#include "config/settings.h"
#include "config/state_probes.h"
#include "control/gated_action.h"
#include "control/printer_reload.h"

namespace px {

namespace {

// The message a command shows when the server's state does not allow it;
// 0 when it may go on.
int state_refusal(ControlCommand command, ServerState state) {
  if (state == ServerState::kNotRunning) return msg::kServerNotRunning;
  if (command == ControlCommand::kPause && state == ServerState::kPaused) {
    return msg::kServerPaused;
  }
  if (command == ControlCommand::kResume && state == ServerState::kRunning) {
    return msg::kServerRunning;
  }
  return 0;
}

int success_message(ControlCommand command) {
  switch (command) {
    case ControlCommand::kPrinterReload:
      return msg::kPrinterReloadSent;
    case ControlCommand::kJobTableReload:
      return msg::kJobTableReloadSent;
    case ControlCommand::kShutDown:
      return msg::kShutdownSent;
    case ControlCommand::kPause:
      return msg::kPauseSent;
    case ControlCommand::kResume:
      return msg::kResumeSent;
  }
  return 0;
}

// The target's directory, and for numbered jobs the first free number; shows
// why there is none.
struct Target {
  std::string directory;
  int number = 0;
};

std::optional<Target> choose_target(ControlCommand command, const std::string& config_file,
                                    Operator& op) {
  std::optional<std::string> directory = control_directory(config_file, op);
  if (!directory) return std::nullopt;
  Target target{*directory, 0};
  if (command == ControlCommand::kShutDown) {
    if (path_exists(target.directory + kShutdownFileName)) {
      op.show(msg::kShutdownPending);
      return std::nullopt;
    }
    return target;
  }
  std::optional<int> free = first_free_control_file(target.directory);
  if (!free) {
    op.show(msg::kNoFreeControlName);
    return std::nullopt;
  }
  target.number = *free;
  return target;
}

// Asks the operator which printers and forms to reload: kDone with the
// choice made, kFailed when there is nothing to choose from, kCancelled.
Outcome ask_printer_choice(const ControlContext& context, PrinterReloadChoice& choice) {
  std::optional<std::vector<std::string>> printers;
  if (context.printers) printers = context.printers();
  if (!printers) {
    context.op.show(msg::kJmdNotOpened);
    return Outcome::kFailed;
  }
  if (printers->empty()) {
    context.op.show(msg::kNoPrinters);
    return Outcome::kFailed;
  }
  choice = context.op.choose_printer_reload(context.instance.window_title,
                                            printer_choice_entries(*printers));
  return choice.outcome == kChoiceOk ? Outcome::kDone : Outcome::kCancelled;
}

Outcome run_ungated(ControlCommand command, const ControlContext& context) {
  const std::string& config = context.instance.config_file;
  Operator& op = context.op;
  if (!file_readable(config)) {
    op.show(msg::kIniUnreadable, {display_path(config)});
    return Outcome::kFailed;
  }
  ServerState state = server_state(config, op);
  if (state == ServerState::kUnknown) return Outcome::kFailed;
  if (int refusal = state_refusal(command, state)) {
    op.show(refusal);
    return Outcome::kFailed;
  }

  std::optional<Target> target = choose_target(command, config, op);
  if (!target) return Outcome::kFailed;
  std::optional<std::vector<std::string>> lines = read_template(config);
  if (!lines) {
    op.show(msg::kTemplateMissing, {kTemplateSection, display_path(ini::default_file())});
    return Outcome::kFailed;
  }
  PrinterReloadChoice choice;
  if (command == ControlCommand::kPrinterReload) {
    Outcome chosen = ask_printer_choice(context, choice);
    if (chosen != Outcome::kDone) return chosen;
  }

  std::string text = control_job_text(*lines, command, choice, context.clock.now());
  if (!write_control_job(text, target->directory, command, &target->number,
                         context.scratch_directory, op)) {
    return Outcome::kFailed;
  }
  bool woken = kick(context.instance.name, false, op, context.times);
  op.show(success_message(command));
  return woken ? Outcome::kDone : Outcome::kDeliveredNotWoken;
}

// The pxctl command of each control job, which names it as an action.
const char* action_name(ControlCommand command) {
  switch (command) {
    case ControlCommand::kPrinterReload: return "reload-printer";
    case ControlCommand::kJobTableReload: return "reload-jobs";
    case ControlCommand::kShutDown: return "shutdown";
    case ControlCommand::kPause: return "pause";
    case ControlCommand::kResume: return "resume";
  }
  return "control job";
}

}  // namespace

Outcome run_control_command(ControlCommand command, const ControlContext& context) {
  return run_gated(action_name(command), context,
                   [command](const ControlContext& c) { return run_ungated(command, c); });
}

Outcome printer_reload(const ControlContext& context) {
  return run_control_command(ControlCommand::kPrinterReload, context);
}
Outcome job_table_reload(const ControlContext& context) {
  return run_control_command(ControlCommand::kJobTableReload, context);
}
Outcome shut_down_server(const ControlContext& context) {
  return run_control_command(ControlCommand::kShutDown, context);
}
Outcome pause_server(const ControlContext& context) {
  return run_control_command(ControlCommand::kPause, context);
}
Outcome resume_server(const ControlContext& context) {
  return run_control_command(ControlCommand::kResume, context);
}

}  // namespace px
