// What the console's windows share while the program runs: the toolkit, the
// operator that shows messages as boxes, the help desk, and the services the
// control commands use (clock, program runner, the JMD's printers through
// the JMD service). One
// Console lives from the program's entry to its end; the handlers capture a
// reference to it.
#pragma once

#include <string>

#include "control/clock.h"
#include "control/control_context.h"
#include "control/program_runner.h"
#include "shell/gui_operator.h"
#include "shell/help_desk.h"
#include "toolkit/toolkit.h"
#include "views/windows/task_overview.h"

namespace px::shell {

class Console {
 public:
  // program_path is the program's own file: the splash image and the manual
  // are looked for beside it.
  Console(tk::Toolkit& toolkit, Clock& clock, ProgramRunner& runner, std::string program_path);
  ~Console();  // takes the help desk's hook off the toolkit
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  tk::Toolkit& toolkit() const { return tk_; }
  tk::Window task() const { return tk_.task_window(); }
  Operator& op() { return *op_; }
  HelpDesk& help() { return help_; }
  // The task window's overview of the instances.
  views::TaskOverview& overview() { return overview_; }
  ProgramRunner& runner() { return runner_; }
  const std::string& program_path() const { return program_path_; }

  // The context of a control command on the current instance.
  ControlContext control_context();

  // Tests: another operator than the message boxes, another source of the
  // JMD's printers, shorter signal waits.
  void set_operator(Operator& op) { op_ = &op; }
  void set_printer_source(PrinterSource source) { printers_ = std::move(source); }
  void set_signal_times(const SignalTimes& times) { times_ = times; }

 private:
  tk::Toolkit& tk_;
  Clock& clock_;
  ProgramRunner& runner_;
  std::string program_path_;
  GuiOperator gui_op_;
  Operator* op_;
  HelpDesk help_;
  views::TaskOverview overview_;
  PrinterSource printers_;
  SignalTimes times_;
};

}  // namespace px::shell
