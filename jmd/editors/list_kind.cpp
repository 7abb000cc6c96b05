#include "jmd/editors/list_kind.h"

#include <cinttypes>
#include <cstdio>
#include <string_view>

#include "common/expand.h"
#include "common/messages.h"
#include "jmd/jmd_schema.h"

namespace px::editors {

namespace {

std::string_view text_of(std::span<const char> record, int slot, std::string_view column) {
  const jmd::FieldDef* field = jmd::find_field(jmd::table_schema(slot), column);
  return field ? jmd::string_field(record, *field) : std::string_view();
}

int32_t number_of(std::span<const char> record, int slot, std::string_view column) {
  const jmd::FieldDef* field = jmd::find_field(jmd::table_schema(slot), column);
  return field ? jmd::int_field(record, *field) : 0;
}

// The file name after the last "/" or "\".
std::string_view base_name(std::string_view path) {
  size_t separator = path.find_last_of("/\\");
  return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

// Formats with printf rules; string_view arguments go through "%.*s" so the
// widths and cuts are printf's own.
template <class... Args>
std::string printed(const char* format, Args... args) {
  char line[256];
  int n = std::snprintf(line, sizeof line, format, args...);
  if (n < 0) return {};
  return std::string(line, std::min(static_cast<size_t>(n), sizeof line - 1));
}

// A field as a NUL-terminated copy, so that "%-9.9s" sees exactly its text.
std::string c_text(std::string_view text) { return std::string(text); }

}  // namespace

int table_slot(ListKind kind) {
  switch (kind) {
    case ListKind::kTasks: return jmd::kTaskTable;
    case ListKind::kPrinters: return jmd::kPrinterTable;
    case ListKind::kMemory: return jmd::kMemoryTable;
    default: return jmd::kJobTable;
  }
}

int header_message(ListKind kind) {
  int k = static_cast<int>(kind);
  return k >= 0 && k <= 3 ? 278 + k : 0;
}

std::string message_label(int n, const std::vector<std::string>& args) {
  std::string text = messages::message_text(n);
  const std::string number = "[" + std::to_string(n) + "]";
  if (text.starts_with(number)) text.erase(0, number.size());
  set_message_arguments(args);
  return expand(text);
}

std::string header_text(ListKind kind) {
  int n = header_message(kind);
  return n == 0 ? std::string() : message_label(n);
}

const char* key_column(ListKind kind) {
  switch (kind) {
    case ListKind::kTasks: return "TaskId";
    case ListKind::kPrinters: return "PrinterName";
    case ListKind::kMemory: return "PrinterId";
    default: return "FormName";
  }
}

std::string format_line(ListKind kind, std::span<const char> record) {
  int slot = table_slot(kind);
  auto text = [&](std::string_view column) { return c_text(text_of(record, slot, column)); };
  switch (kind) {
    case ListKind::kJobNames:
      return printed("%-51.51s", text("FormName").c_str());
    case ListKind::kTasks:
      return printed("%-9.9s %-40.40s", text("TaskId").c_str(), text("TaskName").c_str());
    case ListKind::kPrinters:
      return printed("%-9.9s     %-8.8s   %-24.24s", text("PrinterName").c_str(),
                     text("PrinterId").c_str(), text("PhysicalDev").c_str());
    case ListKind::kMemory:
      return printed("%-8.8s   %9ld  %-28.28s", text("PrinterId").c_str(),
                     static_cast<long>(number_of(record, slot, "Amount")),
                     text("Comment").c_str());
    case ListKind::kSteps:
      return printed("%-9.9s %-20.20s %-9.9s", text("TaskId").c_str(),
                     c_text(base_name(text_of(record, slot, "MDFName"))).c_str(),
                     text("PrinterName").c_str());
  }
  return {};
}

}  // namespace px::editors
