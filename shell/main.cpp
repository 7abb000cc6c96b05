// pxcntrl: the operator's console for the Nexa output server.
#include <csignal>
#include <new>
#include <string>
#include <vector>

#include "common/common_init.h"
#include "shell/task.h"
#include "toolkit/qt/qt_backend.h"

int main(int argc, char** argv) {
  // Under a file size limit a save past it must fail with a message and
  // keep the operator's edits, not end the console.
  std::signal(SIGXFSZ, SIG_IGN);
  try {
    // Qt takes out the options it knows (-platform, -display...) first.
    std::unique_ptr<px::tk::Toolkit> toolkit = px::tk::make_qt_toolkit(argc, argv);
    std::vector<std::string> args(argv, argv + argc);
    return px::shell::run_console(*toolkit, std::move(args));
  } catch (const std::bad_alloc&) {
    px::report_out_of_memory();
    return 1;
  }
}
