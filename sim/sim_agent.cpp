#include "sim/sim_agent.h"

#include <unistd.h>

#include "common/file_pattern.h"
#include "common/file_util.h"
#include "sim/file_age.h"
#include "sim/sim_report.h"
#include "sim/transactions.h"

namespace px::sim {

SimAgent::SimAgent(std::string instance, AgentSettings settings, std::string server_data_path)
    : instance_(std::move(instance)),
      settings_(std::move(settings)),
      server_data_path_(std::move(server_data_path)) {}

void SimAgent::start() {
  running_ = true;
  log(kMsgAgentStarted, {instance_});
  if (!write_status_line(settings_.status_file, kAgentProgram, settings_.status_text)) {
    report(kMsgStatusNotWritten, {settings_.status_file});
  }
}

void SimAgent::stop() {
  running_ = false;
  unlink(settings_.status_file.c_str());
  log(kMsgAgentStopped);
}

void SimAgent::mark_stopped() {
  running_ = false;
  unlink(settings_.status_file.c_str());
}

void SimAgent::cycle() {
  if (!running_) return;
  std::string stop_file = join_path(kStopReadFile, settings_.data_path);
  if (access(stop_file.c_str(), F_OK) == 0) {
    unlink(stop_file.c_str());
    log(kMsgStopFileFound, {stop_file});
    stop();
    return;
  }
  std::vector<std::string> mail = list_directory(settings_.data_path, kMailPattern)
                                      .value_or(std::vector<std::string>{});
  if (mail.empty()) return;
  std::string name = oldest_first(settings_.data_path, std::move(mail)).front();
  std::string path = join_path(name, settings_.data_path);
  bool good = transaction_job(path).has_value();
  std::string target = join_path(name, good ? server_data_path_ : settings_.error_path);
  if (!move_file(path, target)) return;  // tried again at the next cycle
  log(good ? kMsgMailPassed : kMsgMailBad, {name, target});
}

void SimAgent::log(int message, const std::vector<std::string>& args) const {
  append_log_line(settings_.log_file, kAgentProgram, message_line(message, args));
}

}  // namespace px::sim
