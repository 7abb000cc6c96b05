// Feeds arbitrary bytes to the audit log's reader as the lines of the file
// "pxctl audit" prints and as the TIME of "--since". Checks that a line read
// as a record writes back as one line of eight fields that reads back as the
// same record, and that a time accepted with "Z" is the UTC moment its
// digits name.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>

#include "config/audit_log.h"

namespace {

bool same(const px::AuditRecord& a, const px::AuditRecord& b) {
  return a.time == b.time && a.user == b.user && a.host == b.host && a.program == b.program &&
         a.instance == b.instance && a.action == b.action && a.result == b.result &&
         a.message == b.message;
}

// A record read, written and read again comes back the same, once its
// fields have been through one writing (which turns empty fields into "-"
// and line ends into blanks).
void check_line(std::string_view line) {
  std::optional<px::AuditRecord> record = px::parse_audit_line(line);
  if (!record) return;
  std::string written = px::format_audit_line(*record);
  if (written.empty() || written.back() != '\n') std::abort();
  written.pop_back();
  if (written.find('\n') != std::string::npos) std::abort();
  std::optional<px::AuditRecord> again = px::parse_audit_line(written);
  if (!again || again->time != record->time || again->message != record->message) std::abort();
  std::string rewritten = px::format_audit_line(*again);
  rewritten.pop_back();
  std::optional<px::AuditRecord> third = px::parse_audit_line(rewritten);
  if (!third || !same(*again, *third) || rewritten != written) std::abort();
}

void check_time(std::string_view text) {
  std::optional<std::time_t> time = px::parse_audit_time(text);
  if (!time || text.empty() || text.back() != 'Z') return;
  std::tm t{};
  if (gmtime_r(&*time, &t) == nullptr) std::abort();
  char day[64];
  std::snprintf(day, sizeof day, "%04d-%02d-%02d", t.tm_year + 1900, t.tm_mon + 1, t.tm_mday);
  // A leap second rolls over into the next minute, possibly the next day.
  bool leap_second = text.size() >= 19 && text.substr(17, 2) == "60";
  bool rolled_over = text.substr(8, 2) > "28";  // 31 April is 1 May
  if (!leap_second && !rolled_over && text.substr(0, 10) != day) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  std::string_view data(reinterpret_cast<const char*>(bytes), size);
  check_time(data.substr(0, data.find('\n')));
  while (!data.empty()) {
    size_t end = data.find('\n');
    check_line(data.substr(0, end));
    if (end == std::string_view::npos) break;
    data.remove_prefix(end + 1);
  }
  return 0;
}
