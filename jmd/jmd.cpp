#include "jmd/jmd.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <new>
#include <vector>

#include "common/file_replace.h"
#include "common/file_util.h"
#include "common/readable_file.h"
#include "jmd/engine/report.h"
#include "jmd/jmd_reader.h"
#include "jmd/table_leftovers.h"

namespace px::jmd {

namespace {

using ColumnDefs = std::vector<engine::ColumnDef>;

// The declared columns of a table, positions taken from its record layout.
ColumnDefs make_columns(int slot) {
  const TableSchema& schema = table_schema(slot);
  ColumnDefs columns;
  for (size_t i = 0; i < schema.column_count; ++i) {
    const FieldDef& field = schema.fields[i];
    engine::ColumnDef column;
    column.name = field.name.data();  // the names are NUL-terminated literals
    column.position = static_cast<int32_t>(field.position);
    column.width = static_cast<uint32_t>(field.width);
    column.type = field.type;
    column.flags = field.flags;
    columns.push_back(column);
  }
  return columns;
}

// The table engine's reports during a load go to the load's reporter, so
// that the operator learns why a record was refused (a record that could not
// be written, or an equal unique key), not only that it was.
class EngineReports : public engine::ReportSink {
 public:
  explicit EngineReports(Reporter& reporter) : reporter_(reporter) {}
  void message(int n, const std::vector<std::string>& args) override {
    reporter_.message(n, args);
  }
  void text(std::string_view text) override { reporter_.trace(text); }

 private:
  Reporter& reporter_;
};

// Opens the four tables in fresh temporary files; false after tracing the
// failure (the tables opened so far are closed with the handle).
bool open_tables(Jmd& jmd, Reporter& reporter) {
  for (int slot = 0; slot < kTableCount; ++slot) {
    const TableSchema& schema = table_schema(slot);
    std::string name = table_file_name(std::string(1, schema.letter));
    jmd.table(slot) = engine::Table::open(name, static_cast<int>(schema.record_size),
                                          engine::kOpenNew, column_definitions(slot));
    if (!jmd.table(slot)) {
      reporter.trace("open of table '" + name + "' failed\n");
      return false;
    }
    // A save lists the table in its sort column's order. Keeping that
    // column's values as the rows come in lets the save build its index over
    // the column without another pass over the records; without them (false)
    // the save only takes longer.
    engine::Table& table = jmd.table(slot);
    table.keep_values(table.find_column(schema.sort_column));
  }
  return true;
}

}  // namespace

std::span<const engine::ColumnDef> column_definitions(int slot) {
  static const std::array<ColumnDefs, kTableCount> kColumns = {
      make_columns(kJobTable), make_columns(kPrinterTable), make_columns(kTaskTable),
      make_columns(kMemoryTable)};
  return kColumns.at(static_cast<size_t>(slot));
}

std::string table_file_name(std::string_view prefix) {
  static unsigned counter = 0;
  const std::string stem(prefix.size() < 3 ? std::string_view("PXX") : prefix.substr(0, 3));
  unsigned number = (static_cast<unsigned>(::getpid()) * 40503u + ++counter) & 0xFFFFu;
  char hex[8];
  std::snprintf(hex, sizeof hex, "%X", number);
  return join_path(stem + hex + ".tmp", temp_directory());
}

std::unique_ptr<Jmd> load_jmd(const std::string& path, Reporter& reporter) {
  std::unique_ptr<Jmd> jmd;
  try {
    jmd = std::make_unique<Jmd>();
  } catch (const std::bad_alloc&) {
    reporter.message(kMsgNoMemory, {});
    return nullptr;
  }
  remove_stale_temporaries(path);
  remove_orphaned_table_files(temp_directory());
  if (!open_tables(*jmd, reporter)) return nullptr;
  reporter.trace("jmd.c: database initialized successfully");

  ReadStream file = open_stream_for_reading(path);
  if (!file) {
    reporter.trace("Open of jmd failed in jmd.c: errno " + std::to_string(errno));
    reporter.message(kMsgCannotOpen, {path});
    return nullptr;
  }
  LineSource lines(file.get());
  // The job list's names are noted as the job rows come in, so that opening
  // the list needs no pass over the records.
  const FieldDef* job_name = find_field(table_schema(kJobTable), "FormName");
  jmd->loaded_names_.emplace();
  auto add = [&jmd, job_name](int slot, std::span<const char> record) {
    long row = jmd->table(slot).add_row(std::as_bytes(record), engine::kAddAppend);
    if (row != 0 && slot == kJobTable && jmd->loaded_names_) {
      try {
        jmd->loaded_names_->note_row(row, string_field(record, *job_name));
      } catch (const std::bad_alloc&) {
        jmd->loaded_names_.reset();  // the list is then made from the table
      }
    }
    return row != 0;
  };
  EngineReports engine_reports(reporter);
  engine::ReportRoute route(engine_reports);
  if (!read_jmd(lines, path, reporter, add)) return nullptr;
  engine::Table& jobs = jmd->table(kJobTable);
  try {
    if (jmd->loaded_names_) jmd->loaded_names_->finish_notes(jobs.row_count() + 1);
  } catch (const std::bad_alloc&) {
    jmd->loaded_names_.reset();
  }
  jmd->loaded_at_ = jobs.change_count();
  return jmd;
}

std::optional<JobNames> Jmd::take_loaded_job_names() {
  std::optional<JobNames> names = std::move(loaded_names_);
  loaded_names_.reset();
  if (names && table(kJobTable).change_count() != loaded_at_) names.reset();
  return names;
}

bool close_jmd(std::unique_ptr<Jmd> jmd) {
  if (!jmd) return true;
  bool closed = true;
  for (engine::Table& table : jmd->tables_) {
    if (table && !table.close()) closed = false;
  }
  return closed;
}

bool for_each_sorted(Jmd& jmd, int slot,
                     const std::function<bool(std::span<const char> record)>& visit) {
  engine::Table& table = jmd.table(slot);
  const TableSchema& schema = table_schema(slot);
  engine::Query query =
      engine::Query::start(table, table.find_column(schema.sort_column), std::nullopt, false);
  if (!query) return false;
  std::vector<char> record(schema.record_size);
  auto bytes = std::as_writable_bytes(std::span<char>(record));
  if (engine::engine_trace_open()) {
    // The trace shows each step of the query next to the read of its row.
    for (long row = query.next(); row != 0; row = query.next()) {
      if (!table.get_row(row, bytes) || !visit(record)) return false;
    }
    return true;
  }
  // The query runs a few rows ahead of the reads, and each row is announced
  // to the table as soon as it is known: on a large table the rows lie far
  // apart, and their reads then overlap instead of waiting one by one.
  constexpr size_t kAhead = 16;
  std::array<long, kAhead> ahead{};
  size_t first = 0;
  size_t count = 0;
  bool more = true;
  for (;;) {
    for (; more && count < kAhead; ++count) {
      long row = query.next();
      more = row != 0;
      if (!more) break;
      table.prefetch_row(row);
      ahead[(first + count) % kAhead] = row;
    }
    if (count == 0) return true;
    long row = ahead[first];
    first = (first + 1) % kAhead;
    --count;
    if (!table.get_row(row, bytes) || !visit(record)) return false;
  }
}

}  // namespace px::jmd
