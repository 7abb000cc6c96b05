#include "sim/transactions.h"

#include <unistd.h>

#include <utility>

#include "common/file_pattern.h"
#include "common/file_util.h"
#include "common/job_file.h"
#include "sim/control_jobs.h"
#include "sim/file_age.h"

namespace px::sim {

namespace {

// Moves a file into a directory under its own name.
bool move_into(const std::string& path, const std::string& directory, std::string& target) {
  target = join_path(file_part(path), directory);
  return move_file(path, target);
}

}  // namespace

std::vector<std::string> waiting_transactions(const std::string& directory,
                                              std::string_view pattern) {
  std::vector<std::string> names = list_directory(directory, pattern).value_or(std::vector<std::string>{});
  std::erase_if(names, [](const std::string& name) { return is_control_job_name(name); });
  return oldest_first(directory, std::move(names));
}

std::optional<std::string> transaction_job(const std::string& path) {
  JobFile file(path);
  return file.job_name();
}

Collected collect_transaction(const std::string& directory, const std::string& name,
                              const std::string& backup_directory,
                              const std::string& error_directory) {
  Collected result;
  std::string path = join_path(name, directory);
  result.job = transaction_job(path);
  if (!result.job) {
    result.done = move_into(path, error_directory, result.moved_to);
  } else if (!backup_directory.empty()) {
    result.done = move_into(path, backup_directory, result.moved_to);
  } else {
    result.done = unlink(path.c_str()) == 0;
  }
  return result;
}

}  // namespace px::sim
