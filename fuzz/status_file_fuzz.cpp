// Feeds arbitrary bytes to the state probes as the server's status file and
// as lines of the E-mail Agent's status file, against a small installation
// whose texts for "not running" (310), "paused" (315) and the agent's status
// (105, 132, 133) are known. Checks the first-line rule against its own
// reading of it: the first line (up to and with its line feed, at most 1024
// bytes, up to a NUL) is "not running" when it holds 310's text after the
// level word, else "paused" when it holds 315's, else "running".
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "config/recording_operator.h"
#include "config/state_probes.h"
#include "fuzz/fuzz_file.h"

namespace {

constexpr std::string_view kNotRunning = "Server is not running";
constexpr std::string_view kPaused = "Server paused";
constexpr std::string_view kAgentTexts[] = {"Agent started", "Agent waiting", "Agent ended"};
constexpr int kAgentLines = 32;  // lines of an input matched as the agent's

struct Installation {
  px::fuzz::ScratchFile status{"status.txt"};
  std::string config;
  Installation() {
    std::string agent = "[Messages]\nMsg105=Agent started\nMsg132=Agent waiting\n"
                        "Msg133=Agent ended\n";
    std::string agent_ini = write("agent.ini", agent);
    config = write("plexar.ini", "[Plexar]\nStatusFile=" + status.path() +
                                     "\n[PXEMIO]\nIniFileName=" + agent_ini +
                                     "\n[Messages]\nMsg310=I Server is not running\n"
                                     "Msg315=W Server paused\n");
  }
  std::string write(std::string_view name, const std::string& text) const {
    return status.write_beside(name, reinterpret_cast<const uint8_t*>(text.data()), text.size());
  }
};

// The first line as the probe reads it.
std::string_view first_line(std::string_view data) {
  std::string_view line = data.substr(0, px::kStatusLineLength);
  size_t end = line.find('\n');
  if (end != std::string_view::npos) line = line.substr(0, end + 1);
  return line.substr(0, line.find('\0'));
}

px::ServerState expected_state(std::string_view line) {
  if (line.find(kNotRunning) != std::string_view::npos) return px::ServerState::kNotRunning;
  if (line.find(kPaused) != std::string_view::npos) return px::ServerState::kPaused;
  return px::ServerState::kRunning;
}

// The agent's rule: after three words (blank or line end separated) the rest
// begins with one of its texts.
bool expected_agent_match(std::string_view line) {
  auto is_break = [](char c) { return c == ' ' || c == '\n' || c == '\r'; };
  size_t i = 0;
  for (int word = 0; word < 3; ++word) {
    while (i < line.size() && is_break(line[i])) ++i;
    while (i < line.size() && !is_break(line[i])) ++i;
  }
  while (i < line.size() && is_break(line[i])) ++i;
  std::string_view rest = line.substr(i);
  for (std::string_view text : kAgentTexts) {
    if (rest.substr(0, text.size()) == text) return true;
  }
  return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  static const Installation installation;
  std::string_view data(reinterpret_cast<const char*>(bytes), size);
  installation.status.write(bytes, size);

  px::RecordingOperator op;
  px::ServerState expected = expected_state(first_line(data));
  if (px::server_state(installation.config, op) != expected) std::abort();
  if (px::state_of_status_line(first_line(data), installation.config) != expected) std::abort();

  // Each line is matched on its own, with the same settings looked up anew;
  // past the first lines an input only repeats what shorter inputs try.
  for (int lines = 0; lines < kAgentLines && !data.empty(); ++lines) {
    size_t end = data.find('\n');
    std::string_view line = data.substr(0, end);
    if (px::email_status_line_matches(line, installation.config) != expected_agent_match(line)) {
      std::abort();
    }
    if (end == std::string_view::npos) break;
    data.remove_prefix(end + 1);
  }
  return 0;
}
