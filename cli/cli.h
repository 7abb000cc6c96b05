// What every pxctl command gets, and the commands themselves. Each command
// lives in its own file and is a thin layer over the library call that the
// console's windows use too.
#pragma once

#include <string>
#include <vector>

namespace px::cli {

// Exit codes of every command.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailed = 1;
inline constexpr int kExitUsage = 2;

// Numbered messages of pxctl itself.
inline constexpr int kMsgUnknownCommand = 900;
inline constexpr int kMsgBadArguments = 901;
inline constexpr int kMsgIniWriteFailed = 902;
inline constexpr int kMsgUnknownPrinter = 903;
// An INI change that could not be read back as written: @P1 the file, @P2
// the section name, key or value refused.
inline constexpr int kMsgIniBadSection = 1350;
inline constexpr int kMsgIniBadKey = 1351;
inline constexpr int kMsgIniBadValue = 1352;

struct Invocation {
  std::string command;              // the command word, such as "ini"
  std::vector<std::string> words;   // the words after it, common options left out
  std::vector<std::string> raw;     // the words after it, as common init left them
  std::string instance;             // --instance NAME, empty for the default one
};

// Shows numbered message n with arguments on stderr and logs it.
void report(int n, const std::vector<std::string>& args = {});

// Reports a usage error for command with its synopsis; returns kExitUsage.
int usage_error(const std::string& command, const std::string& synopsis);

// Prints each line on standard output with a line feed.
void print_lines(const std::vector<std::string>& lines);

int run_ini(const Invocation& call);
int run_msg(const Invocation& call);
int run_args(const Invocation& call);
int run_jmd(const Invocation& call);
// Saves the current instance's JMD with its backup.
int run_jmd_save(const Invocation& call);
// Server control on the current instance.
int run_instances(const Invocation& call);
int run_state(const Invocation& call);
int run_pause(const Invocation& call);
int run_resume(const Invocation& call);
int run_shutdown(const Invocation& call);
int run_reload_jobs(const Invocation& call);
int run_reload_printer(const Invocation& call);
int run_start(const Invocation& call);
int run_start_email(const Invocation& call);
int run_stop_email(const Invocation& call);
int run_kick(const Invocation& call);
int run_location(const Invocation& call);
// The monitoring views: the rows or text each window shows.
int run_status(const Invocation& call);
int run_queue(const Invocation& call);
int run_rejects(const Invocation& call);
int run_log(const Invocation& call);
int run_reject_file(const Invocation& call);
// The configuration dialogs' forms and lists.
int run_config(const Invocation& call);
int run_processes(const Invocation& call);
// instances add|edit|default|remove (run_instances hands these over).
int run_instances_change(const Invocation& call);
// Prints the operator audit log, or its records since a time.
int run_audit(const Invocation& call);
// Prints the Usage section of the INI file, or the built-in summary.
int run_help(const Invocation& call);

}  // namespace px::cli
