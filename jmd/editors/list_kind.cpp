#include "jmd/editors/list_kind.h"

#include <algorithm>
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

// A field for "%-W.*s": its length cut to the column's width, so that the
// text needs no terminating NUL and prints exactly as "%-W.Ws" would.
int cut(std::string_view text, int width) {
  return static_cast<int>(std::min(text.size(), static_cast<size_t>(width)));
}

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
  std::string text = messages::message_label(n);
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

void format_line(ListKind kind, std::span<const char> record, std::string& line) {
  int slot = table_slot(kind);
  auto text = [&](std::string_view column) { return text_of(record, slot, column); };
  char buffer[256];
  int n = 0;
  switch (kind) {
    case ListKind::kJobNames:
      format_job_name(text("FormName"), line);
      return;
    case ListKind::kTasks: {
      std::string_view id = text("TaskId"), program = text("TaskName");
      n = std::snprintf(buffer, sizeof buffer, "%-9.*s %-40.*s", cut(id, 9), id.data(),
                        cut(program, 40), program.data());
      break;
    }
    case ListKind::kPrinters: {
      std::string_view name = text("PrinterName"), id = text("PrinterId"),
                       device = text("PhysicalDev");
      n = std::snprintf(buffer, sizeof buffer, "%-9.*s     %-8.*s   %-24.*s", cut(name, 9),
                        name.data(), cut(id, 8), id.data(), cut(device, 24), device.data());
      break;
    }
    case ListKind::kMemory: {
      std::string_view id = text("PrinterId"), comment = text("Comment");
      n = std::snprintf(buffer, sizeof buffer, "%-8.*s   %9ld  %-28.*s", cut(id, 8), id.data(),
                        static_cast<long>(number_of(record, slot, "Amount")), cut(comment, 28),
                        comment.data());
      break;
    }
    case ListKind::kSteps: {
      std::string_view task = text("TaskId"), form = base_name(text("MDFName")),
                       printer = text("PrinterName");
      n = std::snprintf(buffer, sizeof buffer, "%-9.*s %-20.*s %-9.*s", cut(task, 9), task.data(),
                        cut(form, 20), form.data(), cut(printer, 9), printer.data());
      break;
    }
  }
  line.assign(buffer, static_cast<size_t>(std::clamp(n, 0, static_cast<int>(sizeof buffer) - 1)));
}

void format_job_name(std::string_view name, std::string& line) {
  char buffer[64];
  int n = std::snprintf(buffer, sizeof buffer, "%-51.*s", cut(name, 51), name.data());
  line.assign(buffer, static_cast<size_t>(std::clamp(n, 0, static_cast<int>(sizeof buffer) - 1)));
}

std::string format_line(ListKind kind, std::span<const char> record) {
  std::string line;
  format_line(kind, record, line);
  return line;
}

}  // namespace px::editors
