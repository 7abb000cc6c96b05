// "About Nexa Control" (dialog 132): the company, the product and the
// program's version ("Version " and the version compiled into the program).
#pragma once

#include <string>

#include "shell/console.h"

namespace px::shell {

// "Version <the build's version>".
std::string version_line();

// Runs the dialog modally; message 101 when it cannot be opened.
void run_about_dialog(Console& console);

}  // namespace px::shell
