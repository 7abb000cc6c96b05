// pxctl audit [--since TIME]: prints the operator audit log (the file named
// by AuditLog in section Options of the console's INI file), a record a
// line as the file holds them; with --since only the records from TIME on.
// A log not written yet prints nothing.
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "cli/cli.h"
#include "common/ini_profile.h"
#include "common/readable_file.h"
#include "config/audit_log.h"

namespace px::cli {

namespace {

const char* const kSynopsis = "pxctl audit [--since TIME]  (TIME: YYYY-MM-DD[THH:MM[:SS]][Z])";

// True when line is printed: every line, or with since the records from
// that time on.
bool shown(const std::string& line, std::optional<std::time_t> since) {
  if (!since) return true;
  std::optional<AuditRecord> record = parse_audit_line(line);
  return record && record->time >= *since;
}

}  // namespace

int run_audit(const Invocation& call) {
  const std::vector<std::string>& w = call.words;
  std::optional<std::time_t> since;
  if (w.size() == 2 && w[0] == "--since") {
    since = parse_audit_time(w[1]);
    if (!since) return usage_error("audit", kSynopsis);
  } else if (!w.empty()) {
    return usage_error("audit", kSynopsis);
  }
  std::string file = audit_log_file();
  if (file.empty()) {
    report(msg::kAuditNotKept, {ini::default_file()});
    return kExitFailed;
  }
  ReadStream in = open_stream_for_reading(file);
  if (!in) {
    int error = errno;  // why a regular file did not open
    struct stat info {};
    if (::stat(file.c_str(), &info) != 0) {
      if (errno == ENOENT) return kExitOk;  // nothing recorded yet
      error = errno;
    } else if (S_ISDIR(info.st_mode)) {
      error = EISDIR;
    } else if (!S_ISREG(info.st_mode)) {
      error = EINVAL;  // only a regular file is read: a FIFO would block, a device never end
    }
    report(msg::kAuditNotRead, {file, std::strerror(error)});
    return kExitFailed;
  }
  std::string line;
  int c;
  do {
    c = std::fgetc(in.get());
    if (c != EOF && c != '\n') {
      line += static_cast<char>(c);
    } else if (c == '\n' || !line.empty()) {
      if (shown(line, since)) {
        std::fwrite(line.data(), 1, line.size(), stdout);
        std::fputc('\n', stdout);
      }
      line.clear();
    }
  } while (c != EOF);
  if (std::ferror(in.get())) {
    report(msg::kAuditNotRead, {file, std::strerror(errno)});
    return kExitFailed;
  }
  return kExitOk;
}

}  // namespace px::cli
