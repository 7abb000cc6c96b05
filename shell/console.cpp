#include "shell/console.h"

#include "config/instances.h"
#include "config/jmd_printers.h"
#include "config/jmd_service.h"

namespace px::shell {

Console::Console(tk::Toolkit& toolkit, Clock& clock, ProgramRunner& runner,
                 std::string program_path)
    : tk_(toolkit),
      clock_(clock),
      runner_(runner),
      program_path_(std::move(program_path)),
      gui_op_(toolkit),
      op_(&gui_op_),
      help_(toolkit),
      printers_([this] { return jmd_printer_names(jmd_service(), *op_); }) {}

Console::~Console() { tk_.set_help_hook(nullptr); }

ControlContext Console::control_context() {
  return ControlContext{current_instance(), *op_, clock_, runner_, printers_, times_, {}};
}

}  // namespace px::shell
