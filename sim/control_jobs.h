// Control jobs as the server reads them: the files a console drops into the
// control directory to pause, resume, reload or shut down the server.
//
// A control job is a "^"-command job file (see common/job_file.h) named
// pxctrl<anything>.msg, or stopserv.msg for a shut-down request, names
// compared without regard to case. Its lines come from the installation's
// template section PXCNTRLJOB; the simulator relies only on this much of it:
//
//   ^job PXCNTRLJOB          the job header (job name compared without case)
//   ...
//   <command>                a data line holding one of the five command
//   ...                      texts, compared without case: "Pause Server",
//                            "Resume Server", "Job Table Reload",
//                            "Printer Reload", "Shut Down Server"
//   ^field LogicalPrinter    optional, Printer Reload: printers, one a line
//   ^field MDFFileName       optional, Printer Reload: the form file
//
// stopserv.msg always asks for a shut-down, whatever it holds: its name is
// the request, as the console's queue view also treats it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace px::sim {

enum class Command { kNone, kPause, kResume, kReloadJobs, kReloadPrinter, kShutDown };

struct ControlJob {
  std::string file;           // name inside the control directory
  Command command = Command::kNone;
  std::string command_text;   // the line that named the command
  std::vector<std::string> printers;
  std::string form;
};

inline constexpr std::string_view kStopServerFile = "stopserv.msg";
inline constexpr std::string_view kControlJobPattern = "pxctrl*.msg";
inline constexpr std::string_view kControlJobName = "PXCNTRLJOB";

// The command a text names, or kNone.
Command parse_command(std::string_view text);

// True for names of control jobs (pxctrl*.msg, stopserv.msg) in any case.
bool is_control_job_name(std::string_view name);

// The control jobs waiting in directory in the order the server takes them:
// stopserv.msg first, then the others oldest first (name order between files
// of the same age).
std::vector<std::string> waiting_control_jobs(const std::string& directory);

// Reads one control job. command stays kNone when the file cannot be read,
// is not a PXCNTRLJOB job or names no known command (a stopserv.msg is always
// kShutDown).
ControlJob read_control_job(const std::string& directory, const std::string& name);

}  // namespace px::sim
