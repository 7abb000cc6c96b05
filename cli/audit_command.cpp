// pxctl audit [--since TIME]: prints the operator audit log (the file named
// by AuditLog in section Options of the console's INI file), a record a
// line as the file holds them; with --since only the records from TIME on.
// A log not written yet prints nothing.
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

#include "cli/cli.h"
#include "common/ini_profile.h"
#include "config/audit_log.h"

namespace px::cli {

namespace {

const char* const kSynopsis = "pxctl audit [--since TIME]  (TIME: YYYY-MM-DD[THH:MM[:SS]][Z])";

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
  if (::access(file.c_str(), F_OK) != 0 && errno == ENOENT) return kExitOk;  // nothing recorded yet
  std::ifstream in(file, std::ios::binary);
  if (!in) {
    report(msg::kAuditNotRead, {file, std::strerror(errno)});
    return kExitFailed;
  }
  for (std::string line; std::getline(in, line);) {
    if (since) {
      std::optional<AuditRecord> record = parse_audit_line(line);
      if (!record || record->time < *since) continue;
    }
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
  }
  if (in.bad()) {
    report(msg::kAuditNotRead, {file, std::strerror(errno)});
    return kExitFailed;
  }
  return kExitOk;
}

}  // namespace px::cli
