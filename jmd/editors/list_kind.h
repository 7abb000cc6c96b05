// The five kinds of JMD list: which table each lists, the line each row is
// shown as and the header message above it.
//
//   kind  list             line format                        fields
//   0     job names        "%-51.51s"                         job name
//   1     tasks            "%-9.9s %-40.40s"                  task id, program name
//   2     printers         "%-9.9s     %-8.8s   %-24.24s"     printer name, printer id,
//                                                             physical device
//   3     managed memory   "%-8.8s   %9ld  %-28.28s"          printer id, bytes, comments
//   4     steps of a job   "%-9.9s %-20.20s %-9.9s"           task id, form file name
//                                                             after its last "/" or "\",
//                                                             printer name
//
// Every field is padded or cut to its exact width so that the columns line
// up in a fixed-pitch font. Kinds 0 to 3 carry header messages 278 to 281.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace px::editors {

enum class ListKind : int { kJobNames = 0, kTasks = 1, kPrinters = 2, kMemory = 3, kSteps = 4 };

inline constexpr int kListKindCount = 5;
// Rows of one page of every list.
inline constexpr long kPageSize = 1000;

// The JMD table slot a kind edits (kJobNames and kSteps: the job table).
int table_slot(ListKind kind);

// The header message of kinds 0 to 3; 0 for the steps of a job.
int header_message(ListKind kind);

// The header message's text, without the "[n]" number shown messages carry.
std::string header_text(ListKind kind);

// Message n's text with args as @P1, @P2, ..., without its "[n]" number: a
// title, label or header rather than a report.
std::string message_label(int n, const std::vector<std::string>& args = {});

// The line of a row. record is a record of the kind's table (for kJobNames a
// row of the job table's layout).
std::string format_line(ListKind kind, std::span<const char> record);
// The same into line, reusing its storage.
void format_line(ListKind kind, std::span<const char> record, std::string& line);

// The line of a job name on the job-names list.
void format_job_name(std::string_view name, std::string& line);

// The key column of kinds 0 to 3 (FormName, TaskId, PrinterName, PrinterId);
// the job name FormName for kSteps.
const char* key_column(ListKind kind);

}  // namespace px::editors
