// pxctl: the console's commands for scripts and terminals.
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <new>
#include <string>
#include <vector>

#include "cli/cli.h"
#include "common/command_line.h"
#include "common/common_init.h"
#include "common/file_util.h"
#include "common/ini_profile.h"
#include "common/messages.h"

namespace {

using px::cli::Invocation;

// pxctl shares the console's INI file: it is looked for by the console's name.
void use_console_ini() {
  char own[4096];
  ssize_t n = readlink("/proc/self/exe", own, sizeof own - 1);
  std::string directory = n > 0 ? px::directory_part(std::string(own, static_cast<size_t>(n))) : "";
  px::ini::set_program_path(directory + "pxcntrl");
}

// Commands whose words are free text (file names, sections, keys, values,
// message arguments): a word "--instance" is theirs.
bool takes_free_words(const std::string& command) {
  return command == "ini" || command == "msg" || command == "args" || command == "jmd";
}

// Splits the initialised arguments into the command and its words. False
// when --instance lacks its name. --instance NAME may also follow the command
// word (once, and not for commands whose words are free text).
bool parse_invocation(const std::vector<std::string>& args, Invocation& call) {
  bool seen_command = false;
  for (size_t i = 1; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (seen_command) {
      if (arg == "--instance" && call.instance.empty() && i + 1 < args.size() &&
          !takes_free_words(call.command)) {
        call.instance = args[++i];
        continue;
      }
      call.raw.push_back(arg);
      if (!px::is_common_option(arg)) call.words.push_back(arg);
    } else if (px::is_common_option(arg)) {
      continue;
    } else if (arg == "--instance") {
      if (++i == args.size()) return false;
      call.instance = args[i];
    } else {
      call.command = arg;
      seen_command = true;
    }
  }
  return true;
}

// Where pxctl's own words begin: after the command word, which follows the
// common options, "@" files and --instance NAME. Those words reach the command
// exactly as the shell gave them. The args command shows the arguments as
// common initialisation leaves them, so for it the whole line is rebuilt.
size_t own_words_start(const std::vector<std::string>& args) {
  for (size_t i = 1; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (px::is_common_option(arg) || (!arg.empty() && arg[0] == '@')) continue;
    if (arg == "--instance") {
      ++i;
      continue;
    }
    return arg == "args" ? args.size() : i + 1;
  }
  return args.size();
}

int dispatch(const Invocation& call) {
  if (call.command == "ini") return px::cli::run_ini(call);
  if (call.command == "msg") return px::cli::run_msg(call);
  if (call.command == "args") return px::cli::run_args(call);
  if (call.command == "jmd") return px::cli::run_jmd(call);
  if (call.command == "jmd-save") return px::cli::run_jmd_save(call);
  if (call.command == "instances") return px::cli::run_instances(call);
  if (call.command == "state") return px::cli::run_state(call);
  if (call.command == "pause") return px::cli::run_pause(call);
  if (call.command == "resume") return px::cli::run_resume(call);
  if (call.command == "shutdown") return px::cli::run_shutdown(call);
  if (call.command == "reload-jobs") return px::cli::run_reload_jobs(call);
  if (call.command == "reload-printer") return px::cli::run_reload_printer(call);
  if (call.command == "start") return px::cli::run_start(call);
  if (call.command == "start-email") return px::cli::run_start_email(call);
  if (call.command == "stop-email") return px::cli::run_stop_email(call);
  if (call.command == "kick") return px::cli::run_kick(call);
  if (call.command == "location") return px::cli::run_location(call);
  if (call.command == "status") return px::cli::run_status(call);
  if (call.command == "queue") return px::cli::run_queue(call);
  if (call.command == "rejects") return px::cli::run_rejects(call);
  if (call.command == "log") return px::cli::run_log(call);
  if (call.command == "reject-file") return px::cli::run_reject_file(call);
  if (call.command == "config") return px::cli::run_config(call);
  if (call.command == "processes") return px::cli::run_processes(call);
  if (call.command == "audit") return px::cli::run_audit(call);
  if (call.command == "--help" || call.command == "-h" || call.command == "help") {
    return px::cli::run_help(call);
  }
  if (call.command.empty()) {
    px::cli::run_help(call);
    return px::cli::kExitUsage;
  }
  px::cli::report(px::cli::kMsgUnknownCommand, {call.command});
  return px::cli::kExitUsage;
}

int run(int argc, char** argv) {
  use_console_ini();
  // A script must not stall on a log file it cannot write, nor find the
  // fallback notice mixed into the command's output.
  px::messages::set_quick_log_fallback(true);
  // Under a file size limit (`ulimit -f`) a write past it must fail and be
  // reported, with the old file left whole, rather than kill pxctl.
  std::signal(SIGXFSZ, SIG_IGN);
  std::vector<std::string> args(argv, argv + argc);
  int status = px::common_init(args, own_words_start(args));
  if (status != 0) {
    std::fprintf(stderr, "[%d]%s\n", status, px::init_error_text(status).c_str());
    return px::cli::kExitFailed;
  }
  Invocation call;
  if (!parse_invocation(args, call)) {
    return px::cli::usage_error("--instance", "pxctl --instance NAME COMMAND ...");
  }
  int result = dispatch(call);
  px::messages::reset();
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::bad_alloc&) {
    px::report_out_of_memory();
    return px::cli::kExitFailed;
  }
}
