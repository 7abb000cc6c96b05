// pxcntrl: the operator's console for the Nexa output server.
#include <string>
#include <vector>

#include "shell/task.h"
#include "toolkit/qt/qt_backend.h"

int main(int argc, char** argv) {
  // Qt takes out the options it knows (-platform, -display...) first.
  std::unique_ptr<px::tk::Toolkit> toolkit = px::tk::make_qt_toolkit(argc, argv);
  std::vector<std::string> args(argv, argv + argc);
  return px::shell::run_console(*toolkit, std::move(args));
}
