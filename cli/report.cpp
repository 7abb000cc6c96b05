#include <cstdio>

#include "cli/cli.h"
#include "common/expand.h"
#include "common/messages.h"

namespace px::cli {

void report(int n, const std::vector<std::string>& args) {
  set_message_arguments(args);
  std::string text = messages::show(n);
  std::fprintf(stderr, "%s\n", text.c_str());
}

int usage_error(const std::string& command, const std::string& synopsis) {
  report(kMsgBadArguments, {command, synopsis});
  return kExitUsage;
}

void print_lines(const std::vector<std::string>& lines) {
  for (const std::string& line : lines) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
  }
  std::fflush(stdout);
}

}  // namespace px::cli
