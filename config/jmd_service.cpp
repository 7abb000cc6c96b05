#include "config/jmd_service.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <span>
#include <vector>

#include "common/file_util.h"
#include "config/message_numbers.h"
#include "config/operator_action.h"
#include "config/settings.h"
#include "jmd/jmd_report.h"
#include "jmd/jmd_schema.h"
#include "jmd/jmd_writer.h"

namespace px {

namespace {

constexpr std::string_view kBackupExtension = ".JBK";
constexpr std::string_view kJobNameColumn = "FormName";

// The load's messages reach the operator (paths shortened), its traces the
// log.
class OperatorReporter : public jmd::Reporter {
 public:
  explicit OperatorReporter(Operator& op) : op_(op) {}
  void message(int n, const std::vector<std::string>& args) override {
    bool path_argument = n == jmd::kMsgBadHeader || n == jmd::kMsgCannotOpen;
    if (path_argument && !args.empty()) {
      std::vector<std::string> shown = args;
      shown[0] = display_path(shown[0]);
      op_.show(n, shown);
    } else {
      op_.show(n, args);
    }
  }
  void trace(std::string_view text) override { log_.trace(text); }

 private:
  Operator& op_;
  jmd::LogReporter log_;
};

// The JMD path of the current instance; nullopt after showing 144 or 167.
std::optional<std::string> jmd_path(Operator& op) {
  const std::string& config = current_instance().config_file;
  if (!file_readable(config)) {
    op.show(msg::kIniUnreadable, {display_path(config)});
    return std::nullopt;
  }
  std::string path = path_setting("Options", "JMDFileName", config);
  if (path.empty()) {
    op.show(msg::kSettingMissing, {"Options", display_path(config), "JMDFileName"});
    return std::nullopt;
  }
  return path;
}

// An empty table of the job table's row layout in an unnamed file of the
// temporary directory, called after name's first letters.
engine::Table open_scratch_table(std::string_view name) {
  const jmd::TableSchema& jobs = jmd::table_schema(jmd::kJobTable);
  return engine::Table::open(jmd::table_file_name(name), static_cast<int>(jobs.record_size),
                             engine::kOpenNew, jmd::column_definitions(jmd::kJobTable));
}

// Whether each row of table (by number, 0 unused) is listed: not deleted.
// A row is deleted by leaving the index of column; while the column has no
// index, no row has left it and every row is listed, as a query (which
// builds the index from every row) would list them. nullopt when the index
// cannot be walked.
std::optional<std::vector<bool>> listed_rows(engine::Table& table, int column) {
  long count = std::max(0L, table.row_count());
  if (!table.has_index(column)) return std::vector<bool>(static_cast<size_t>(count) + 1, true);
  engine::Query query = engine::Query::start(table, column, std::nullopt, false);
  if (!query) return std::nullopt;
  std::vector<bool> listed(static_cast<size_t>(count) + 1, false);
  for (long row = query.next(); row != 0; row = query.next()) {
    if (row <= count) listed[static_cast<size_t>(row)] = true;
  }
  return listed;
}

// Notes in names each listed job row, in row order. The number of job rows
// that could not be read; nullopt when the job table cannot be walked. May
// throw std::bad_alloc.
std::optional<long> note_job_names(engine::Table& jobs, jmd::JobNames& names) {
  const jmd::FieldDef* name = jmd::find_field(jmd::table_schema(jmd::kJobTable), kJobNameColumn);
  int name_column = jobs.find_column(kJobNameColumn);
  if (name == nullptr || name_column < 0) return std::nullopt;
  std::optional<std::vector<bool>> listed = listed_rows(jobs, name_column);
  if (!listed) return std::nullopt;
  std::vector<char> value(name->width);
  long failed = 0;
  for (long row = 1; row < static_cast<long>(listed->size()); ++row) {
    if (!(*listed)[static_cast<size_t>(row)]) continue;
    if (!jobs.read_value(row, name_column, std::as_writable_bytes(std::span<char>(value)))) {
      ++failed;
      continue;
    }
    names.note_row(row, std::string_view(value.data(), strnlen(value.data(), value.size())));
  }
  names.finish_notes(static_cast<long>(listed->size()));
  return failed;
}

// Writes database to path crash-safely; the old file becomes the backup once
// the new one is in place. False when the new file cannot be written or put
// in place; path and its backup are then as before.
bool write_with_backup(jmd::Jmd& database, const std::string& path, FileSystem& files) {
  ReplaceOptions options;
  std::string backup = jmd_backup_name(path);
  if (backup != path) options.backup = backup;
  return static_cast<bool>(jmd::save_jmd(database, path, files, options));
}

void close_process_service() { jmd_service().close(); }

}  // namespace

JmdService::~JmdService() { close(); }

jmd::Jmd* JmdService::open(Operator& op) {
  close_if_instance_changed();
  if (jmd_) return jmd_.get();
  std::optional<std::string> path = jmd_path(op);
  if (!path) return nullptr;
  OperatorReporter reporter(op);
  jmd_ = jmd::load_jmd(*path, reporter);
  if (!jmd_) {
    op.show(msg::kJmdNotLoaded, {display_path(*path)});
    return nullptr;
  }
  take_for_current_instance();
  return jmd_.get();
}

void JmdService::adopt(std::unique_ptr<jmd::Jmd> jmd) {
  close();
  jmd_ = std::move(jmd);
  if (jmd_) take_for_current_instance();
}

bool JmdService::is_open() { return jmd() != nullptr; }

jmd::Jmd* JmdService::jmd() {
  close_if_instance_changed();
  return jmd_.get();
}

bool JmdService::modified() {
  close_if_instance_changed();
  return modified_;
}

void JmdService::set_modified(bool modified) {
  close_if_instance_changed();
  modified_ = modified;
}

bool JmdService::save(Operator& op) { return save(op, system_file_system()); }

bool JmdService::save(Operator& op, FileSystem& files) {
  close_if_instance_changed();
  if (!jmd_) return true;
  OperatorAction gate(op, "jmd-save", taken_for_.name);
  if (!gate.permitted()) return false;
  std::optional<std::string> path = jmd_path(gate.op());
  if (!path) return false;
  if (!write_with_backup(*jmd_, *path, files)) {
    gate.op().show(msg::kJmdNotWritten, {display_path(*path)});
    return false;
  }
  modified_ = false;
  gate.finish(ActionResult::kDone);
  return true;
}

void JmdService::close() {
  job_names_.reset();
  clipboard_ = engine::Table();
  jmd::close_jmd(std::move(jmd_));
  modified_ = false;
  taken_for_ = Instance();
}

std::shared_ptr<jmd::JobNames> JmdService::job_names(Operator& op) {
  close_if_instance_changed();
  if (job_names_) return job_names_;
  jmd::Jmd* database = open(op);
  if (database == nullptr) return nullptr;
  std::optional<long> failed = 0;
  try {
    std::optional<jmd::JobNames> loaded = database->take_loaded_job_names();
    if (loaded) {
      job_names_ = std::make_shared<jmd::JobNames>(std::move(*loaded));
      // Every job row was noted as it was loaded, and none has changed.
      job_names_->set_rows_noted_at(database->table(jmd::kJobTable).change_count());
    } else {
      job_names_ = std::make_shared<jmd::JobNames>();
      failed = note_job_names(database->table(jmd::kJobTable), *job_names_);
    }
  } catch (const std::bad_alloc&) {
    failed.reset();
  }
  if (!failed) {
    job_names_.reset();
    op.show(msg::kJobNamesNotCreated);
    return nullptr;
  }
  if (*failed > 0) op.show(msg::kJobNamesNotAdded, {std::to_string(*failed)});
  return job_names_;
}

std::shared_ptr<jmd::JobNames> JmdService::job_names_made() {
  close_if_instance_changed();
  return job_names_;
}

engine::Table* JmdService::clipboard(Operator& op) {
  close_if_instance_changed();
  if (clipboard_) return &clipboard_;
  clipboard_ = open_scratch_table("clipbrd");
  if (!clipboard_) {
    op.show(msg::kClipboardNotCreated);
    return nullptr;
  }
  take_for_current_instance();
  return &clipboard_;
}

void JmdService::empty_clipboard() { clipboard_ = engine::Table(); }

engine::Table* JmdService::clipboard_made() {
  close_if_instance_changed();
  return clipboard_ ? &clipboard_ : nullptr;
}

void JmdService::close_if_instance_changed() {
  if (!holds_anything()) return;
  const Instance& current = current_instance();
  if (current.name != taken_for_.name || current.config_file != taken_for_.config_file) close();
}

void JmdService::take_for_current_instance() {
  taken_for_ = current_instance();
  if (this == &jmd_service()) {
    // Registered once the table engine's own process-wide state exists (a
    // table is open by now), so the tables are closed and their files
    // removed before that state goes.
    static const bool registered = std::atexit(close_process_service) == 0;
    (void)registered;
  }
}

JmdService& jmd_service() {
  static JmdService service;
  return service;
}

std::string jmd_backup_name(std::string_view jmd_path) {
  size_t last_separator = jmd_path.find_last_of("/\\");
  size_t name_start = last_separator == std::string_view::npos ? 0 : last_separator + 1;
  size_t dot = jmd_path.rfind('.');
  bool has_extension = dot != std::string_view::npos && dot >= name_start;
  std::string backup(has_extension ? jmd_path.substr(0, dot) : jmd_path);
  backup += kBackupExtension;
  return backup;
}

}  // namespace px
