// pxctl log [--process SECTION | --email] [--line N] [--follow]: what the
// log view shows when it opens. A log of fewer than 10,000 lines is printed
// whole, wrapped by LogLineWrap and LogLineIndent (one output line per
// row); a larger one as the page of its last 30 lines. --line N prints the
// 30 lines from line N (counted from 0). Without --process the one process
// with a log is shown, or where the window would ask which (several
// processes, or none but the E-mail Agent) the server's own log (LogFile of
// Plexar). --follow prints the last page (or the lines from N on), then each
// line appended, until interrupted; a truncated or replaced log is followed
// again from its head, which is said on stderr (1400).
#include <signal.h>
#include <time.h>

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

#include "cli/control_session.h"
#include "common/text.h"
#include "views/log_follow.h"
#include "views/log_source.h"
#include "views/log_text.h"
#include "views/view_messages.h"

namespace px::cli {

namespace {

const char* const kSynopsis =
    "pxctl [--instance NAME] log [--process SECTION | --email] [--line N] [--follow]";

struct LogRequest {
  std::optional<std::string> process;
  bool email = false;
  std::optional<int64_t> line;
  bool follow = false;
};

bool parse_line_number(const std::string& text, int64_t& n) {
  if (text.empty() || text.size() > 18) return false;
  for (char c : text) {
    if (c < '0' || c > '9') return false;
  }
  n = std::stoll(text);
  return true;
}

bool parse_request(const std::vector<std::string>& words, LogRequest& request) {
  for (size_t i = 0; i < words.size(); ++i) {
    const std::string& w = words[i];
    if (w == "--email" && !request.email) {
      request.email = true;
    } else if (w == "--follow" && !request.follow) {
      request.follow = true;
    } else if (w == "--process" && !request.process && i + 1 < words.size() &&
               !words[i + 1].starts_with("--")) {
      request.process = words[++i];
    } else if (w == "--line" && !request.line && i + 1 < words.size()) {
      int64_t n = 0;
      if (!parse_line_number(words[++i], n)) return false;
      request.line = n;
    } else {
      return false;
    }
  }
  return !(request.email && request.process);
}

// The log the request names, as the Display menu would open it.
std::optional<std::string> chosen_log(const LogRequest& request, const std::string& config,
                                      Operator& op) {
  if (request.email) return views::agent_log_file(config, op);
  auto logs = views::log_processes(config, op);
  if (!logs) return std::nullopt;
  if (request.process) {
    for (const views::LogProcess& p : logs->processes) {
      if (iequals(p.section, *request.process)) return views::process_log_file(config, p.section, op);
    }
    op.show(views::msg::kProcessNotListed, {*request.process, display_path(config)});
    return std::nullopt;
  }
  switch (views::log_opening(*logs)) {
    case views::LogOpening::kOnly:
      return views::process_log_file(config, logs->processes[0].section, op);
    case views::LogOpening::kChoice:
      // Where the window asks which process, the server's own log is shown.
      if (!logs->server_log.empty()) return logs->server_log;
      break;
    case views::LogOpening::kNothing:
      break;
  }
  op.show(views::msg::kSettingMissing, {"Plexar", display_path(config), "LogFile"});
  return std::nullopt;
}

volatile sig_atomic_t g_interrupted = 0;

void on_interrupt(int) { g_interrupted = 1; }

// Prints the lines appended to the log until SIGINT or SIGTERM.
int follow(views::LogIndex& index, std::optional<int64_t> from, Operator& op) {
  struct sigaction action {};
  action.sa_handler = on_interrupt;
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
  views::LogFollower follower(index);
  if (from) {
    int64_t count = index.line_count() - *from;
    print_lines(index.read_lines(*from, count).value_or(std::vector<std::string>{}));
  } else {
    print_lines(follower.last_lines(views::kPageLines));
  }
  const struct timespec pause = {0, 200L * 1000 * 1000};
  // Output that can no longer be written (its reader has gone and SIGPIPE
  // is ignored) ends the follow rather than leaving it running unseen.
  while (!g_interrupted && !std::ferror(stdout)) {
    nanosleep(&pause, nullptr);
    auto poll = follower.poll();
    if (!poll) continue;
    if (poll->restarted) op.show(views::msg::kLogStartedAgain, {display_path(index.path())});
    print_lines(poll->lines);
  }
  return std::ferror(stdout) ? kExitFailed : kExitOk;
}

}  // namespace

int run_log(const Invocation& call) {
  LogRequest request;
  if (!parse_request(call.words, request)) return usage_error("log", kSynopsis);
  ControlSession session(call);
  if (!session.ready()) return kExitFailed;
  auto path = chosen_log(request, session.instance().config_file, session.op());
  if (!path) return kExitFailed;
  views::LogIndex index(*path);
  if (!views::index_log(index, session.op())) return kExitFailed;
  if (request.follow) return follow(index, request.line, session.op());

  std::optional<std::vector<std::string>> text;
  if (request.line) {
    text = index.read_lines(*request.line, views::kPageLines);
  } else if (views::shown_whole(index)) {
    text = views::whole_log(*path, views::wrap_settings());
  } else {
    text = index.read_lines(views::last_page(index), views::kPageLines);
  }
  if (!text) {
    session.op().show(views::msg::kFileNotOpened, {display_path(*path)});
    return kExitFailed;
  }
  print_lines(*text);
  return kExitOk;
}

}  // namespace px::cli
