// Test helper: sends every message to a log file in a temporary directory so
// a test can look at what the engine reported.
#pragma once

#include <string>

#include "common/messages.h"
#include "tests/support/test_dir.h"

namespace px::engine {

class MessageCapture {
 public:
  explicit MessageCapture(const TestDir& dir) : dir_(dir) {
    messages::reset();
    messages::set_verbosity(-1000);
    messages::set_log_file(dir_.file("messages.log"));
  }
  ~MessageCapture() { messages::reset(); }
  // Everything logged so far.
  std::string text() const { return dir_.read("messages.log"); }
  bool contains(const std::string& part) const { return text().find(part) != std::string::npos; }
  void clear() const { dir_.write("messages.log", ""); }

 private:
  const TestDir& dir_;
};

}  // namespace px::engine
