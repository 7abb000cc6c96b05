#include "control/program_runner.h"

#include <unistd.h>

#include "common/run_command.h"

namespace px {

bool SystemProgramRunner::launch(std::string_view command_line) {
  return px::launch(command_line) == 0;
}

bool RecordingProgramRunner::launch(std::string_view command_line) {
  char directory[4096];
  const char* here = ::getcwd(directory, sizeof directory);
  launches_.push_back({std::string(command_line), here != nullptr ? here : ""});
  return result_;
}

}  // namespace px
