// One simulated server instance: its run state, and what it does on a scan.
//
// The server is not running, paused or running. Whatever it does it keeps
// the first line of its status file true: message 310's text when not
// running, message 315's text when paused (both from the configuration file,
// the texts the console compares the line with), and the running text of the
// simulator's catalogue otherwise. Every event goes to the instance's log.
//
// A scan (every PauseTime seconds) takes the waiting control jobs, then, when
// running and not paused, one transaction file, so the queue drains at a
// pace the operator can watch. A kick takes the control jobs only. The
// sockets and events that carry kicks belong to the caller.
#pragma once

#include <string>
#include <vector>

#include "sim/control_jobs.h"
#include "sim/instance_settings.h"

namespace px::sim {

enum class ServerState { kNotRunning, kPaused, kRunning };

class SimServer {
 public:
  explicit SimServer(ServerSettings settings);

  const ServerSettings& settings() const { return settings_; }
  // Takes new settings (used when a stopped server is started again).
  void replace_settings(ServerSettings settings) { settings_ = std::move(settings); }

  ServerState state() const { return state_; }
  bool running() const { return state_ != ServerState::kNotRunning; }
  int collected() const { return collected_; }

  // Starts the server (running, not paused) and writes its status.
  void start();
  // Shuts the server down; its status then says not running.
  void shut_down();
  // Writes the not-running status without logging a shut-down (used for a
  // server that the simulator serves but does not start).
  void mark_not_running();

  // Takes every waiting control job out of the control directory and acts
  // on it; stops after a shut-down, leaving later jobs for the next start.
  // Returns the jobs taken.
  int take_control_jobs();

  // A timed scan: control jobs, then one transaction file when running.
  void scan();

 private:
  void act(const ControlJob& job);
  void collect_one();
  void write_status();
  void log(int message, const std::vector<std::string>& args = {}) const;

  ServerSettings settings_;
  ServerState state_ = ServerState::kNotRunning;
  int collected_ = 0;
};

}  // namespace px::sim
