// pxctl args ARG...: prints the arguments after the command word as common
// initialisation left them (quotes, "@" files and all), one per line.
#include <cstdio>

#include "cli/cli.h"

namespace px::cli {

int run_args(const Invocation& call) {
  for (const std::string& arg : call.raw) std::printf("%s\n", arg.c_str());
  return kExitOk;
}

}  // namespace px::cli
