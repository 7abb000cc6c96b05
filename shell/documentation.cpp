#include "shell/documentation.h"

#include "common/file_util.h"

namespace px::shell {

namespace {

// The longest program path taken.
constexpr size_t kProgramPathLength = 260;

}  // namespace

std::string documentation_path(std::string_view program_path) {
  if (program_path.size() > kProgramPathLength) program_path = program_path.substr(0, kProgramPathLength);
  return directory_part(program_path) + kDocumentationFile;
}

std::string desktop_open_command(std::string_view target) {
  return std::string(kDesktopOpener) + " \"" + std::string(target) + "\"";
}

void open_documentation(ProgramRunner& runner, std::string_view program_path) {
  runner.launch(desktop_open_command(documentation_path(program_path)));
}

void open_knowledge_base(ProgramRunner& runner) {
  runner.launch(desktop_open_command(kKnowledgeBaseAddress));
}

}  // namespace px::shell
