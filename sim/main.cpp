// pxserver-sim: a stand-in for the Nexa server and its E-mail Agent, for the
// demo installation and the end-to-end tests. It is not the server.
#include <unistd.h>

#include <cstdio>
#include <new>
#include <string>
#include <vector>

#include "common/common_init.h"
#include "common/file_util.h"
#include "common/ini_profile.h"
#include "common/messages.h"
#include "common/text.h"
#include "sim/sim_report.h"
#include "sim/simulator.h"
#include "sim/stop_signal.h"

namespace {

constexpr int kExitOk = 0;
constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;

constexpr const char* kHelp =
    "pxserver-sim: a TEST AND DEMO STAND-IN for the Nexa server and its E-mail Agent.\n"
    "It is not the server: it only behaves enough like one for the console, pxctl,\n"
    "the demo installation and the end-to-end tests.\n"
    "\n"
    "Usage: pxserver-sim [-aiiFILE] [-allFILE] [--port N] [--stopped NAME]...\n"
    "                    [--feed SECONDS] [NAME...]\n"
    "\n"
    "  NAME            an instance of the install file to serve (default: all of them)\n"
    "  -aiiFILE        the console's INI file; its Install key names the install file\n"
    "                  (default: pxcntrl.ini found as pxctl finds it)\n"
    "  -allFILE        the simulator's own log (default: standard error)\n"
    "  --port N        loopback UDP port for \"^start\"/\"^kick\" datagrams (default 1706,\n"
    "                  0 for none)\n"
    "  --stopped NAME  serve NAME but leave it not running until it is started\n"
    "  --feed SECONDS  every SECONDS, drop a new transaction file (FEEDnnnnnn) into\n"
    "                  the DataPath of each server that runs (or is paused); every\n"
    "                  seventh has no job line\n"
    "\n"
    "For each instance it listens on $PLEXAR_PIPE_DIR/NAME.ctr and\n"
    "$PLEXAR_PIPE_DIR/NAME.em/PxEmio.ctr (default directory /tmp/Plexar), serves the\n"
    "launcher socket $PLEXAR_PIPE_DIR/PxNexa, takes control jobs (pxctrl*.msg,\n"
    "stopserv.msg) on a kick or every PauseTime seconds, keeps the first line of\n"
    "StatusFile true, appends to LogFile, collects FileSpec files from DataPath and\n"
    "stops the E-mail Agent on stopread.msg. With PLEXAR_PLATFORM=classic it also\n"
    "waits on the named semaphores /NAME.ctr and /NAME.EM.PxEmio.ctr.\n"
    "SIGTERM or SIGINT stop it; every status file then says not running.\n";

// The simulator shares the console's INI file, as pxctl does.
void use_console_ini() {
  char own[4096];
  ssize_t n = readlink("/proc/self/exe", own, sizeof own - 1);
  std::string directory = n > 0 ? px::directory_part(std::string(own, static_cast<size_t>(n))) : "";
  px::ini::set_program_path(directory + "pxcntrl");
}

// Reads the options after common initialisation; the argument not understood
// in bad when it returns false.
bool parse_options(const std::vector<std::string>& args, px::sim::SimOptions& options,
                   bool& help, std::string& bad) {
  for (size_t i = 1; i < args.size(); ++i) {
    const std::string& arg = args[i];
    bool has_value = i + 1 < args.size();
    if (px::is_common_option(arg)) continue;
    if (arg == "--help" || arg == "-h") {
      help = true;
    } else if (arg == "--port" && has_value) {
      const std::string& value = args[++i];
      options.datagram_port = px::parse_int(value);
      if (options.datagram_port < 0 || options.datagram_port > 65535 ||
          value.find_first_not_of("0123456789") != std::string::npos) {
        bad = value;
        return false;
      }
    } else if (arg == "--feed" && has_value) {
      const std::string& value = args[++i];
      options.feed_seconds = px::parse_int(value);
      if (options.feed_seconds < 1 || value.find_first_not_of("0123456789") != std::string::npos) {
        bad = value;
        return false;
      }
    } else if (arg == "--stopped" && has_value) {
      options.stopped.push_back(args[++i]);
    } else if (!arg.empty() && arg[0] != '-') {
      options.instances.push_back(arg);
    } else {
      bad = arg;
      return false;
    }
  }
  return true;
}

bool has_log_option(const std::vector<std::string>& args) {
  for (size_t i = 1; i < args.size(); ++i) {
    if (px::istarts_with(args[i], "-all")) return true;
  }
  return false;
}

int run(int argc, char** argv) {
  use_console_ini();
  std::vector<std::string> args(argv, argv + argc);
  int status = px::common_init(args);
  if (status != 0) {
    std::fprintf(stderr, "[%d]%s\n", status, px::init_error_text(status).c_str());
    return kExitFailed;
  }
  if (!has_log_option(args)) px::messages::set_log_file("stderr");

  px::sim::SimOptions options;
  bool help = false;
  std::string bad;
  if (!parse_options(args, options, help, bad)) {
    px::sim::report(px::sim::kMsgBadArgument, {bad});
    return kExitUsage;
  }
  if (help) {
    std::fputs(kHelp, stdout);
    return kExitOk;
  }

  sigset_t wait_mask = px::sim::install_stop_signals();
  px::sim::Simulator simulator(std::move(options));
  if (!simulator.open()) return kExitFailed;
  simulator.run(wait_mask);
  return kExitOk;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::bad_alloc&) {
    px::report_out_of_memory();
    return kExitFailed;
  }
}
