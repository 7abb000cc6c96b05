// Writing stamped lines to the log and trace files, with the retry and panic
// path for a log file that cannot be opened (or the quick fallback to
// standard error of programs run from scripts).
#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <memory>

#include "common/file_util.h"
#include "common/message_state.h"
#include "common/messages.h"
#include "common/text.h"

namespace px::messages {

namespace {

constexpr int kLogRetries = 10;
constexpr unsigned kRetrySeconds = 2;
constexpr int kPanicFiles = 20;
constexpr size_t kStampSize = 128;

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

// The standard stream a special name stands for, or nullptr.
std::FILE* standard_stream(std::string_view name) {
  if (iequals(name, "stdout")) return stdout;
  if (iequals(name, "stderr")) return stderr;
  return nullptr;
}

bool write_all(std::FILE* out, const std::string& line) {
  size_t done = 0;
  while (done < line.size()) {
    size_t n = std::fwrite(line.data() + done, 1, line.size() - done, out);
    if (n == 0) return false;
    done += n;
  }
  return std::fflush(out) == 0;
}

// Appends line to the named file or stream; false when it cannot be opened.
bool append_line(const std::string& name, const std::string& line) {
  if (std::FILE* stream = standard_stream(name)) return write_all(stream, line);
  return write_output_file(name, line, true);
}

void write_panic_record(const std::string& log_name) {
  const std::string& program = state().program_name;
  std::string text = program + ":  The logfile \"" + log_name +
                     "\" has been unavailable for too long.";
  std::string record = "PANIC ERROR: '" + stamped_line(text) + "'\n";
  for (int i = 0; i < kPanicFiles; ++i) {
    char name[16];
    std::snprintf(name, sizeof name, "panic.%03d", i);
    File out(std::fopen(name, "w"), std::fclose);
    if (!out) continue;
    write_all(out.get(), record);
    return;
  }
}

}  // namespace

std::string stamped_line(std::string_view text) {
  const std::string& pattern = state().date_format;
  std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char stamp[kStampSize];
  size_t n = std::strftime(stamp, sizeof stamp, pattern.empty() ? "%y%m%d %H:%M:%S" : pattern.c_str(),
                           &local);
  std::string line(stamp, n);
  line += ' ';
  line += state().program_name;
  line += ": ";
  line += text;
  return line;
}

bool write_log_line(const std::string& line) {
  MessageState& s = state();
  if (s.log_file.empty()) return true;
  const int retries = s.quick_log_fallback ? 0 : kLogRetries;
  for (int attempt = 0; attempt <= retries; ++attempt) {
    if (append_line(s.log_file, line)) return true;
    if (attempt < retries && !s.shutting_down) sleep(kRetrySeconds);
  }
  if (!s.quick_log_fallback) write_panic_record(s.log_file);
  std::FILE* notice = s.quick_log_fallback ? stderr : stdout;
  if (iequals(s.log_file, "stdout")) {
    std::fputs("Unable to log to stdout - logging disabled\n", notice);
    s.log_file.clear();
    return false;
  }
  std::fputs("Redirecting logfile output to stderr.\n", notice);
  s.log_file = "stderr";
  return append_line(s.log_file, line);
}

void trace(std::string_view text) {
  MessageState& s = state();
  if (s.trace_file.empty() || s.trace_failed) return;
  if (!append_line(s.trace_file, stamped_line(text) + "\n")) s.trace_failed = true;
}

}  // namespace px::messages
