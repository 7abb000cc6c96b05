// A private demo installation in a temporary directory with pxserver-sim
// serving it, for tests that drive pxctl against a live stand-in server.
//
// The installation is made from the templates in demo/ (console INI, install
// file, the instances' configuration, E-mail Agent and Print Agent files, the
// JMD) with "%DEMO%" filled in, and empty queue directories. The simulator
// runs with PLEXAR_PIPE_DIR pointing at a directory of its own, and so does
// every pxctl run through run_pxctl.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/run_program.h"
#include "tests/support/test_dir.h"

namespace px {

class LiveInstallation {
 public:
  // Lays out the installation with the demo's instances north and south.
  LiveInstallation();
  ~LiveInstallation();  // stops the simulator, restores PLEXAR_PIPE_DIR
  LiveInstallation(const LiveInstallation&) = delete;
  LiveInstallation& operator=(const LiveInstallation&) = delete;

  // Adds instance name to the install file, made from the demo's instance
  // source in a directory of its own, with each edit (old text, new text)
  // applied to its configuration file.
  using Edits = std::vector<std::pair<std::string, std::string>>;
  void add_instance(const std::string& name, const std::string& source, const Edits& edits = {});

  // Starts pxserver-sim with args after the common ones and waits until it
  // serves its launcher socket. environment holds extra NAME=VALUE entries.
  // False when it did not come up within five seconds.
  bool start_simulator(const std::vector<std::string>& args,
                       const std::vector<std::string>& environment = {});
  void signal_simulator(int signal_number) const;
  // Sends SIGTERM and waits up to ten seconds for the simulator; its exit
  // status, or -1 (killed when it did not end in time).
  int stop_simulator();

  // Runs pxctl with this installation's console INI and the arguments, in
  // the installation's directory; environment holds extra NAME=VALUE entries
  // for this run only.
  ProgramResult run_pxctl(const std::vector<std::string>& args,
                          const std::vector<std::string>& environment = {}) const;

  // "pxctl [--instance NAME] state", first line: "3\trunning" and the like.
  std::string state(const std::string& instance = "") const;

  std::string path(const std::string& relative) const { return dir_.file(relative); }
  std::string read(const std::string& relative) const { return dir_.read(relative); }
  std::string pipe_directory() const { return dir_.file("pipes"); }
  std::string simulator_log() const { return dir_.read("pxserver-sim.log"); }

 private:
  void write_install_file() const;

  TestDir dir_;
  std::vector<std::pair<std::string, std::string>> instances_;  // name, configuration file
  pid_t simulator_ = -1;
  std::string saved_pipe_dir_;
  bool had_pipe_dir_ = false;
};

// Polls condition every 20 ms until it holds or the time is up.
bool eventually(const std::function<bool()>& condition,
                std::chrono::milliseconds limit = std::chrono::seconds(5));

// True when path exists.
bool exists(const std::string& path);

}  // namespace px
