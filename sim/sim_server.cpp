#include "sim/sim_server.h"

#include <unistd.h>

#include "common/file_util.h"
#include "sim/sim_report.h"
#include "sim/transactions.h"

namespace px::sim {

namespace {

std::string join(const std::vector<std::string>& items, std::string_view separator) {
  std::string text;
  for (const std::string& item : items) {
    if (!text.empty()) text += separator;
    text += item;
  }
  return text;
}

}  // namespace

SimServer::SimServer(ServerSettings settings) : settings_(std::move(settings)) {}

void SimServer::start() {
  state_ = ServerState::kRunning;
  collected_ = 0;
  log(kMsgServerStarted, {settings_.instance});
  write_status();
}

void SimServer::shut_down() {
  state_ = ServerState::kNotRunning;
  log(kMsgServerShutDown);
  write_status();
}

void SimServer::mark_not_running() {
  state_ = ServerState::kNotRunning;
  write_status();
}

int SimServer::take_control_jobs() {
  int taken = 0;
  for (const std::string& name : waiting_control_jobs(settings_.control_path)) {
    if (!running()) break;
    ControlJob job = read_control_job(settings_.control_path, name);
    std::string path = join_path(name, settings_.control_path);
    if (job.command == Command::kNone) {
      std::string target = join_path(name, settings_.error_path);
      if (!move_file(path, target)) unlink(path.c_str());
      log(kMsgControlJobBad, {name, target});
    } else {
      unlink(path.c_str());
      log(kMsgControlJobRead, {name, job.command_text});
      act(job);
    }
    ++taken;
  }
  return taken;
}

void SimServer::scan() {
  if (!running()) return;
  take_control_jobs();
  if (state_ == ServerState::kRunning) collect_one();
}

void SimServer::act(const ControlJob& job) {
  switch (job.command) {
    case Command::kPause:
      state_ = ServerState::kPaused;
      log(kMsgServerPaused);
      break;
    case Command::kResume:
      state_ = ServerState::kRunning;
      log(kMsgServerResumed);
      break;
    case Command::kReloadJobs:
      log(kMsgJobTableReloaded, {settings_.jmd_file});
      break;
    case Command::kReloadPrinter:
      log(kMsgPrinterReloaded, {join(job.printers, ","), job.form});
      break;
    case Command::kShutDown:
      shut_down();
      return;
    case Command::kNone:
      return;
  }
  write_status();
}

void SimServer::collect_one() {
  std::vector<std::string> waiting = waiting_transactions(settings_.data_path, settings_.file_pattern);
  if (waiting.empty()) return;
  const std::string& name = waiting.front();
  std::string backup = settings_.backup_files ? settings_.backup_path : std::string();
  Collected result = collect_transaction(settings_.data_path, name, backup, settings_.error_path);
  if (!result.done) return;  // tried again at the next scan
  if (result.job) {
    ++collected_;
    log(kMsgTransactionCollected, {name, *result.job});
    write_status();
  } else {
    log(kMsgTransactionBad, {name, result.moved_to});
  }
}

void SimServer::write_status() {
  std::string text;
  switch (state_) {
    case ServerState::kNotRunning: text = settings_.not_running_text; break;
    case ServerState::kPaused: text = settings_.paused_text; break;
    case ServerState::kRunning:
      text = message_body(kMsgServerRunning, {std::to_string(collected_)});
      break;
  }
  if (!write_status_line(settings_.status_file, kServerProgram, text)) {
    report(kMsgStatusNotWritten, {settings_.status_file});
  }
}

void SimServer::log(int message, const std::vector<std::string>& args) const {
  append_log_line(settings_.log_file, kServerProgram, message_line(message, args));
}

}  // namespace px::sim
