// The operator audit log: one record for every operator action that changes
// something (operator_action.h writes them), sent to the system log
// (syslog(3), the program's name as ident, facility user) and, when AuditLog
// in section Options of the console's INI file names a file, appended to it.
//
// The file holds one line per record, eight fields separated by one tab:
//
//   TIME      the moment the action ended, UTC: 2026-11-24T13:59:06Z
//   USER      the login name of the effective user (its number when unknown)
//   HOST      the host name
//   PROGRAM   pxcntrl or pxctl
//   INSTANCE  the instance acted on, "-" for none
//   ACTION    the action, as its pxctl command names it ("pause",
//             "ini set FILE SECTION KEY"; values are never recorded)
//   RESULT    done, failed, cancelled or refused (read-only mode)
//   MESSAGE   the number of the last message the operator was shown during
//             the action, 0 when none
//
// A tab or line end inside a field is written as a blank, an empty field as
// "-". Each record is appended in one piece under the file's lock
// (append_file of common/file_replace.h), so records of consoles appending
// at once never interleave, and a record that cannot be written whole leaves
// the file as it was.
#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <string_view>

#include "common/file_system.h"

namespace px {

namespace msg {
inline constexpr int kAuditNotWritten = 1702;  // @P1 action, @P2 file, @P3 reason
inline constexpr int kAuditNotKept = 1703;     // @P1 the console's INI file
inline constexpr int kAuditNotRead = 1704;     // @P1 file, @P2 reason
}  // namespace msg

struct AuditRecord {
  std::time_t time = 0;
  std::string user;
  std::string host;
  std::string program;
  std::string instance;
  std::string action;
  std::string result;
  int message = 0;
};

// A record of now, by this user on this host and program.
AuditRecord audit_record_now(std::string instance, std::string action, std::string result,
                             int message);

// The record as its line in the file, with the newline.
std::string format_audit_line(const AuditRecord& record);
// A line of the file (without its newline) back as a record; nothing when
// it does not have the eight fields or its time cannot be read.
std::optional<AuditRecord> parse_audit_line(std::string_view line);

// The record's text in the system log.
std::string audit_syslog_text(const AuditRecord& record);

// The file named by AuditLog in section Options of the console's INI file;
// empty when it is not set.
std::string audit_log_file();

// Appends the record's line to file (made 0660 less the umask when missing);
// false with the reason in error when it could not be appended whole, the
// file then as it was.
bool append_audit_line(const std::string& file, const AuditRecord& record, std::string& error,
                       FileSystem& files = system_file_system());

// Writes the record to the system log and, when AuditLog is set, to its
// file; false with the file and the reason when the file was not written.
bool write_audit_record(const AuditRecord& record, std::string& file, std::string& error,
                        FileSystem& files = system_file_system());

// TIME of "pxctl audit --since TIME": YYYY-MM-DD, optionally followed by
// "T" or a blank and HH:MM or HH:MM:SS; local time, or UTC when it ends in
// "Z". Nothing when it is not such a time or names a day the calendar
// lacks (2026-02-30).
std::optional<std::time_t> parse_audit_time(std::string_view text);

}  // namespace px
