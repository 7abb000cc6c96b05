// The process-wide state behind the messages interface. Only the messages
// module's own files include this.
#pragma once

#include <map>
#include <string>

namespace px::messages {

struct CachedMessage {
  int level = 0;
  std::string text;
};

struct MessageState {
  std::map<int, CachedMessage> cache;
  int verbosity = 0;
  int worst_level = 0;
  int worst_number = 0;
  std::string worst_text;
  int current_level = 0;
  bool number_prefix = true;
  std::string program_name;
  std::string log_file;
  std::string trace_file;
  bool trace_failed = false;
  std::string date_format;
  std::string last_message_file;
  bool shutting_down = false;
  bool quick_log_fallback = false;
};

MessageState& state();

// Writes one stamped line to the log; false when it finally could not.
bool write_log_line(const std::string& line);

}  // namespace px::messages
