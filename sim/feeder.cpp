#include "sim/feeder.h"

#include <cstdio>

#include "common/file_replace.h"
#include "common/file_util.h"

namespace px::sim {

namespace {

constexpr int kBadEvery = 7;
constexpr const char* kJobs[] = {"INVOICE", "DELIVERY", "ACKNOWLEDGE", "PACKLIST", "STATEMENT"};

}  // namespace

std::string fed_file_name(std::string_view pattern, int sequence) {
  char number[16];
  std::snprintf(number, sizeof number, "FEED%06d", sequence);
  std::string name;
  for (char c : pattern) {
    if (c == '*') {
      name += number;
    } else if (c == '?') {
      name += '0';
    } else {
      name += c;
    }
  }
  return name;
}

std::optional<std::string> feed_transaction(const std::string& directory, std::string_view pattern,
                                            int sequence) {
  std::string text;
  if (sequence % kBadEvery != 0) {
    text = std::string("^job ") + kJobs[sequence % 5] + "\n";
  }
  text += "^field OrderNumber\n" + std::to_string(100000 + sequence) + "\n";
  // The replace writes a hidden temporary beside the file and renames it, so
  // the server never collects a half-written transaction.
  std::string path = join_path(fed_file_name(pattern, sequence), directory);
  if (!replace_file(path, text)) return std::nullopt;
  return path;
}

}  // namespace px::sim
