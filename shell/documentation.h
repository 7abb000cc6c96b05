// The Help menu's documentation: the manual "control.pdf" beside the
// program, and the vendor's knowledge-base page (command 1040), each opened
// with the desktop's default handler (xdg-open). No failure is reported.
#pragma once

#include <string>
#include <string_view>

#include "control/program_runner.h"

namespace px::shell {

inline constexpr const char* kDocumentationFile = "control.pdf";
inline constexpr const char* kKnowledgeBaseAddress = "https://support.velmar.example/nexa/kb";
inline constexpr const char* kDesktopOpener = "xdg-open";

// The program's path with everything after its last separator replaced by
// "control.pdf"; a path without a separator gives "control.pdf" alone. Only
// this place is looked at, never a search path.
std::string documentation_path(std::string_view program_path);

// The command line that opens target with the desktop's default handler.
std::string desktop_open_command(std::string_view target);

void open_documentation(ProgramRunner& runner, std::string_view program_path);
void open_knowledge_base(ProgramRunner& runner);

}  // namespace px::shell
