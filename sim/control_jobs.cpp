#include "sim/control_jobs.h"

#include <algorithm>
#include <utility>

#include "common/file_pattern.h"
#include "common/file_util.h"
#include "common/job_file.h"
#include "common/text.h"
#include "sim/file_age.h"

namespace px::sim {

namespace {

constexpr std::pair<std::string_view, Command> kCommands[] = {
    {"Pause Server", Command::kPause},
    {"Resume Server", Command::kResume},
    {"Job Table Reload", Command::kReloadJobs},
    {"Printer Reload", Command::kReloadPrinter},
    {"Shut Down Server", Command::kShutDown},
};

// The first data line that names a command, with the command.
std::pair<Command, std::string> find_command(const std::string& path) {
  JobLineReader reader(JobLineReader::MissingInclude::kSkip);
  if (!reader.start(path)) return {Command::kNone, {}};
  std::string line;
  while (reader.read(line) == JobLineReader::Status::kLine) {
    if (!line.empty() && line[0] == '^') continue;
    Command command = parse_command(line);
    if (command != Command::kNone) return {command, std::string(trim(line))};
  }
  return {Command::kNone, {}};
}

std::vector<std::string> split_lines(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    size_t end = text.find('\n');
    std::string_view line = trim(text.substr(0, end));
    if (!line.empty()) lines.emplace_back(line);
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + 1);
  }
  return lines;
}

}  // namespace

Command parse_command(std::string_view text) {
  text = trim(text);
  for (const auto& [name, command] : kCommands) {
    if (iequals(text, name)) return command;
  }
  return Command::kNone;
}

bool is_control_job_name(std::string_view name) {
  return iequals(name, kStopServerFile) || matches_file_pattern(name, kControlJobPattern);
}

std::vector<std::string> waiting_control_jobs(const std::string& directory) {
  std::vector<std::string> names = list_directory(directory, "*.msg").value_or(std::vector<std::string>{});
  std::erase_if(names, [](const std::string& name) { return !is_control_job_name(name); });
  names = oldest_first(directory, std::move(names));
  std::stable_partition(names.begin(), names.end(),
                        [](const std::string& name) { return iequals(name, kStopServerFile); });
  return names;
}

ControlJob read_control_job(const std::string& directory, const std::string& name) {
  ControlJob job;
  job.file = name;
  std::string path = join_path(name, directory);
  JobFile file(path);
  std::optional<std::string> job_name = file.job_name();
  if (job_name && iequals(*job_name, kControlJobName)) {
    std::tie(job.command, job.command_text) = find_command(path);
    if (job.command == Command::kReloadPrinter) {
      job.printers = split_lines(file.field_value("LogicalPrinter").value_or(""));
      job.form = std::string(trim(file.field_value("MDFFileName").value_or("")));
    }
  }
  // The name is the request: a stopserv.msg that holds another command (or
  // none) is a plain shut-down, carrying nothing of that command.
  if (iequals(name, kStopServerFile) && job.command != Command::kShutDown) {
    job.command = Command::kShutDown;
    job.command_text = kCommands[4].first;
    job.printers.clear();
    job.form.clear();
  }
  return job;
}

}  // namespace px::sim
