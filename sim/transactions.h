// Transaction files: the job files waiting in a collector directory, and
// taking one out the way the server does.
//
// A transaction file is any plain file of the directory whose name matches
// the FileSpec pattern (without regard to case), control jobs excepted. It is
// good when it is a "^"-command job file with a "^job NAME" line; a good file
// is moved to the backup directory (or deleted when there is none), a bad one
// to the error directory.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace px::sim {

// The transaction files of directory matching pattern, oldest first (name
// order between files of the same age).
std::vector<std::string> waiting_transactions(const std::string& directory,
                                              std::string_view pattern);

// The job a transaction file names, or nullopt when it names none or cannot
// be read.
std::optional<std::string> transaction_job(const std::string& path);

struct Collected {
  std::optional<std::string> job;  // nullopt: the file was bad
  std::string moved_to;            // where the file went; empty when deleted
  bool done = false;               // false when the file could not be moved
};

// Takes name out of directory: a good file goes to backup_directory (deleted
// when that is empty), a bad one to error_directory.
Collected collect_transaction(const std::string& directory, const std::string& name,
                              const std::string& backup_directory,
                              const std::string& error_directory);

}  // namespace px::sim
