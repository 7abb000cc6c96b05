// The engine's trace file: every operation's line(s), flushed at once.
// Without a trace file every call here returns at its first test.
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>

#include "common/ini_profile.h"
#include "jmd/engine/table_internal.h"

namespace px::engine {

namespace {

constexpr size_t kTraceNameSize = 256;

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};

struct TraceState {
  std::unique_ptr<std::FILE, FileCloser> file;
  int suspended = 0;
};

TraceState& trace_state() {
  static TraceState state;
  return state;
}

template <class T>
T load(const std::byte* p) {
  T v;
  std::memcpy(&v, p, sizeof v);
  return v;
}

}  // namespace

void open_trace_if_configured() {
  TraceState& s = trace_state();
  if (s.file) return;
  std::string name = ini::get_string("Debug", "GDBTraceFile", "", kTraceNameSize);
  if (name.empty()) return;
  s.file.reset(std::fopen(name.c_str(), "w"));
}

void close_engine_trace() {
  trace_state().file.reset();
  trace_state().suspended = 0;
}

bool engine_trace_open() { return trace_state().file != nullptr; }

bool tracing() {
  const TraceState& s = trace_state();
  return s.file && s.suspended == 0;
}

TraceSuspension::TraceSuspension() { ++trace_state().suspended; }
TraceSuspension::~TraceSuspension() { --trace_state().suspended; }

void trace_printf(const char* format, ...) {
  if (!tracing()) return;
  va_list args;
  va_start(args, format);
  std::vfprintf(trace_state().file.get(), format, args);
  va_end(args);
}

void trace_value(const ColumnDef& column, const std::byte* value) {
  if (!tracing()) return;
  std::FILE* f = trace_state().file.get();
  switch (column.type) {
    case kTypeInt: std::fprintf(f, "%ld", static_cast<long>(load<int32_t>(value))); break;
    case kTypeUnsigned: std::fprintf(f, "%lu", static_cast<unsigned long>(load<uint32_t>(value))); break;
    case kTypeLong: std::fprintf(f, "%d", load<int32_t>(value)); break;
    case kTypeUnsignedLong: std::fprintf(f, "%u", load<uint32_t>(value)); break;
    case kTypeChar: std::fprintf(f, "%d", static_cast<int>(load<int8_t>(value))); break;
    case kTypeUnsignedChar: std::fprintf(f, "%d", static_cast<int>(load<uint8_t>(value))); break;
    case kTypeFloat: std::fprintf(f, "%10g", static_cast<double>(load<float>(value))); break;
    case kTypeDouble: std::fprintf(f, "%20g", load<double>(value)); break;
    case kTypeString: case kTypeStringNoCase: case kTypeText: case kTypeTextNoCase: {
      auto* text = reinterpret_cast<const char*>(value);
      std::fwrite(text, 1, strnlen(text, column.width), f);
      break;
    }
    case kTypeCustom:
      for (uint32_t i = 0; i < column.width; ++i) {
        std::fprintf(f, "%2X", static_cast<unsigned>(static_cast<uint8_t>(value[i])));
      }
      break;
    default:  // 16-bit types and unknown ones print nothing
      break;
  }
}

void trace_columns(const TableState& t, const std::byte* record) {
  if (!tracing()) return;
  for (int c = 0; c < t.column_count(); ++c) {
    const ColumnDef& column = t.column(c);
    trace_printf("Column %s ", column.name);
    trace_value(column, record + column.position);
    trace_printf("\n");
  }
}

void trace_flush() {
  if (trace_state().file) std::fflush(trace_state().file.get());
}

}  // namespace px::engine
