// Feeds arbitrary bytes to the simulator as a control job: the first byte
// picks the file's name (a pxctrl*.msg or stopserv.msg), the rest is the
// file. Checks that stopserv.msg always asks for a shut-down, that a command
// found is the one its line names, that only Printer Reload carries printers
// and a form, and that a file the directory listing offers is one the
// simulator takes as a control job.
#include <cstddef>
#include <cstdio>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "common/text.h"
#include "fuzz/fuzz_file.h"
#include "sim/control_jobs.h"

namespace {

using px::sim::Command;

constexpr const char* kNames[] = {"pxctrl0001.msg", "stopserv.msg", "PXCTRL_x.MSG", "StopServ.Msg"};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  if (size == 0) return 0;
  std::string name = kNames[bytes[0] % std::size(kNames)];
  static const px::fuzz::ScratchFile scratch("unused");
  const std::string& directory = scratch.directory();
  std::string path = scratch.write_beside(name, bytes + 1, size - 1);

  if (!px::sim::is_control_job_name(name)) std::abort();
  std::vector<std::string> waiting = px::sim::waiting_control_jobs(directory);
  if (waiting.size() != 1 || waiting[0] != name) std::abort();

  px::sim::ControlJob job = px::sim::read_control_job(directory, name);
  if (job.file != name) std::abort();
  bool stop_file = name.size() == 12 && (name[0] == 's' || name[0] == 'S');
  if (stop_file && job.command != Command::kShutDown) std::abort();
  if (job.command != Command::kNone && px::sim::parse_command(job.command_text) != job.command) {
    std::abort();
  }
  if (job.command != Command::kReloadPrinter && (!job.printers.empty() || !job.form.empty())) {
    std::abort();
  }
  for (const std::string& printer : job.printers) {
    if (printer.empty() || printer != px::trim(printer)) std::abort();
  }
  std::remove(path.c_str());
  return 0;
}
