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

int run_ini(const Invocation& call);
int run_msg(const Invocation& call);
int run_args(const Invocation& call);
// Prints the Usage section of the INI file, or the built-in summary.
int run_help(const Invocation& call);

}  // namespace px::cli
