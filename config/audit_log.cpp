#include "config/audit_log.h"

#include <pwd.h>
#include <syslog.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include "common/file_replace.h"
#include "common/ini_profile.h"
#include "common/messages.h"
#include "common/text.h"

namespace px {

namespace {

constexpr size_t kPathSize = 1024;
constexpr int kFieldCount = 8;
constexpr size_t kTimeLength = 20;  // 2026-11-24T13:59:06Z

// A field as the file holds it: no tab or line end, never empty.
std::string clean(std::string_view text) {
  std::string out(text);
  for (char& c : out) {
    if (c == '\t' || c == '\n' || c == '\r') c = ' ';
  }
  return out.empty() ? "-" : out;
}

// Always four digits of year, as the reader wants them (strftime's "%Y"
// writes year 26 as "26").
std::string utc_stamp(std::time_t time) {
  std::tm parts{};
  gmtime_r(&time, &parts);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02dZ",
                parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour,
                parts.tm_min, parts.tm_sec);
  return text.data();
}

std::string user_name() {
  uid_t uid = ::geteuid();
  std::array<char, 4096> buffer{};
  passwd entry{};
  passwd* found = nullptr;
  if (::getpwuid_r(uid, &entry, buffer.data(), buffer.size(), &found) == 0 && found) {
    return found->pw_name;
  }
  return std::to_string(uid);
}

std::string host_name() {
  std::array<char, 256> name{};
  if (::gethostname(name.data(), name.size() - 1) != 0) return "-";
  return name.data();
}

// Reads the digits of text[at, at + count) into value.
bool digits(std::string_view text, size_t at, size_t count, int& value) {
  if (at + count > text.size()) return false;
  value = 0;
  for (size_t i = at; i < at + count; ++i) {
    if (text[i] < '0' || text[i] > '9') return false;
    value = value * 10 + (text[i] - '0');
  }
  return true;
}

// The days of month (1-12) of year in the Gregorian calendar.
int days_in_month(int year, int month) {
  static constexpr std::array<int, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return month == 2 && leap ? 29 : kDays[static_cast<size_t>(month - 1)];
}

std::vector<std::string_view> split_tabs(std::string_view line) {
  std::vector<std::string_view> fields;
  size_t start = 0;
  for (size_t tab; (tab = line.find('\t', start)) != std::string_view::npos; start = tab + 1) {
    fields.push_back(line.substr(start, tab - start));
  }
  fields.push_back(line.substr(start));
  return fields;
}

}  // namespace

AuditRecord audit_record_now(std::string instance, std::string action, std::string result,
                             int message) {
  AuditRecord record;
  record.time = std::time(nullptr);
  record.user = user_name();
  record.host = host_name();
  record.program = messages::program_name();
  record.instance = std::move(instance);
  record.action = std::move(action);
  record.result = std::move(result);
  record.message = message;
  return record;
}

std::string format_audit_line(const AuditRecord& r) {
  std::string line = utc_stamp(r.time);
  for (const std::string* field : {&r.user, &r.host, &r.program, &r.instance, &r.action, &r.result}) {
    line += '\t';
    line += clean(*field);
  }
  line += '\t' + std::to_string(r.message) + '\n';
  return line;
}

std::optional<AuditRecord> parse_audit_line(std::string_view line) {
  std::vector<std::string_view> f = split_tabs(line);
  if (f.size() != kFieldCount || f[0].size() != kTimeLength || f[0].back() != 'Z') return {};
  std::optional<std::time_t> time = parse_audit_time(f[0]);
  if (!time) return {};
  AuditRecord r;
  r.time = *time;
  r.user = f[1];
  r.host = f[2];
  r.program = f[3];
  r.instance = f[4];
  r.action = f[5];
  r.result = f[6];
  r.message = parse_int(f[7]);
  return r;
}

std::string audit_syslog_text(const AuditRecord& r) {
  return "audit: user=" + clean(r.user) + " host=" + clean(r.host) + " instance=" +
         clean(r.instance) + " action=\"" + clean(r.action) + "\" result=" + clean(r.result) +
         " message=" + std::to_string(r.message);
}

std::string audit_log_file() { return ini::get_string("Options", "AuditLog", "", kPathSize); }

bool append_audit_line(const std::string& file, const AuditRecord& record, std::string& error,
                       FileSystem& files) {
  FileResult result = append_file(file, format_audit_line(record), 0660, files);
  if (!result) error = std::strerror(result.error);
  return static_cast<bool>(result);
}

bool write_audit_record(const AuditRecord& record, std::string& file, std::string& error,
                        FileSystem& files) {
  std::string ident = record.program.empty() ? "nexa-control" : record.program;
  ::openlog(ident.c_str(), LOG_PID, LOG_USER);
  ::syslog(record.result == "done" ? LOG_NOTICE : LOG_WARNING, "%s",
           audit_syslog_text(record).c_str());
  ::closelog();
  file = audit_log_file();
  return file.empty() || append_audit_line(file, record, error, files);
}

std::optional<std::time_t> parse_audit_time(std::string_view text) {
  std::tm t{};
  int year, month, day, hour = 0, minute = 0, second = 0;
  if (!digits(text, 0, 4, year) || text.size() < 10 || text[4] != '-' || text[7] != '-' ||
      !digits(text, 5, 2, month) || !digits(text, 8, 2, day)) {
    return {};
  }
  size_t at = 10;
  if (at < text.size() && (text[at] == 'T' || text[at] == ' ')) {
    if (!digits(text, at + 1, 2, hour) || at + 3 >= text.size() || text[at + 3] != ':' ||
        !digits(text, at + 4, 2, minute)) {
      return {};
    }
    at += 6;
    if (at < text.size() && text[at] == ':') {
      if (!digits(text, at + 1, 2, second)) return {};
      at += 3;
    }
  }
  bool utc = at < text.size() && text[at] == 'Z';
  if (utc) ++at;
  if (at != text.size() || month < 1 || month > 12 || day < 1 ||
      day > days_in_month(year, month) || hour > 23 || minute > 59 || second > 60) {
    return {};
  }
  t.tm_year = year - 1900;
  t.tm_mon = month - 1;
  t.tm_mday = day;
  t.tm_hour = hour;
  t.tm_min = minute;
  t.tm_sec = second;
  t.tm_isdst = -1;
  std::time_t time = utc ? ::timegm(&t) : std::mktime(&t);
  if (time == -1) return {};
  return time;
}

}  // namespace px
