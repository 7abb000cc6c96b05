// One simulated E-mail Agent: it "reads mail" by passing the mail files
// waiting in its own data directory (*.dat) on to its server's collector
// directory, one per cycle, and stops when it finds "stopread.msg".
//
// While running, its status file holds one line whose text after the first
// three words is the whole value of message 105 of the agent's INI file
// (level included), which is what the console compares; when it stops the status file is removed, so that both
// of the console's probes (status line, status file present) say it is not
// running.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "sim/instance_settings.h"

namespace px::sim {

inline constexpr std::string_view kStopReadFile = "stopread.msg";
inline constexpr std::string_view kMailPattern = "*.dat";

class SimAgent {
 public:
  // server_data_path is where the agent hands its mail files on.
  SimAgent(std::string instance, AgentSettings settings, std::string server_data_path);

  const AgentSettings& settings() const { return settings_; }
  bool running() const { return running_; }

  void start();
  void stop();
  // Removes a status file left from an earlier run, without logging a stop.
  void mark_stopped();

  // One cycle (on its timer or a kick): a stop file stops the agent and is
  // removed; otherwise one mail file is passed on (a mail file without a job
  // line goes to the error directory instead).
  void cycle();

 private:
  void log(int message, const std::vector<std::string>& args = {}) const;

  std::string instance_;
  AgentSettings settings_;
  std::string server_data_path_;
  bool running_ = false;
};

}  // namespace px::sim
