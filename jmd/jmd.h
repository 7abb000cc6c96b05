// The open Job Management Database: four tables of the table engine, each in
// a private temporary file, loaded from and saved to the JMD text file
// (format in jmd/jmd_schema.h). Nothing of the JMD stays in the engine once
// the handle is closed.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "jmd/engine/table.h"
#include "jmd/job_names.h"
#include "jmd/jmd_report.h"
#include "jmd/jmd_schema.h"

namespace px::jmd {

// The JMD handle: the tables in slot order job, printer, task, managed
// memory. Destroying it closes every table and frees its files, which have
// no name while open (a killed load leaves nothing in the temporary directory).
class Jmd {
 public:
  engine::Table& table(int slot) { return tables_.at(static_cast<size_t>(slot)); }
  long row_count(int slot) const { return tables_.at(static_cast<size_t>(slot)).row_count(); }

  // The job names (job_names.h) noted while the job table was loaded, handed
  // over once; nullopt when the job table has changed since the load, when
  // they were taken already or could not be noted.
  std::optional<JobNames> take_loaded_job_names();

 private:
  friend bool close_jmd(std::unique_ptr<Jmd> jmd);
  friend std::unique_ptr<Jmd> load_jmd(const std::string& path, Reporter& reporter);
  std::array<engine::Table, kTableCount> tables_;
  std::optional<JobNames> loaded_names_;
  uint64_t loaded_at_ = 0;  // the job table's change count after the load
};

// The engine's column definitions of a table: its declared columns only
// (six for the printer table, whose Comment is no column). Static data that
// outlives every table.
std::span<const engine::ColumnDef> column_definitions(int slot);

// Creates the four tables (open mode 3, in unnamed files of the temporary
// directory, called by table_file_name for traces) and loads the file at path into them. Nothing on failure,
// every table closed again:
//   a table that cannot be opened   trace "open of table '%s' failed\n"
//   the file cannot be opened       trace "Open of jmd failed in jmd.c:
//                                   errno %d", then kMsgCannotOpen
//   the file is empty or its header is wrong   kMsgBadHeader
//   a record is refused                 the table engine's reason (-357 a
//                                       record that could not be written,
//                                       -370 an equal unique key), then
//                                       kMsgRecordRefused
//   the handle cannot be had        kMsgNoMemory
// A value cut to its field is reported with kMsgValueCut and the load goes
// on. Traces "jmd.c: database initialized successfully" once the tables are
// open. Temporary files beside path left by saves of processes that have
// ended (common/file_replace.h) and table files in the temporary directory
// left by killed processes (table_leftovers.h) are removed first.
std::unique_ptr<Jmd> load_jmd(const std::string& path, Reporter& reporter);

// A name for a new table in the temporary directory: "PXX" (or the prefix's
// first three characters) and a hex number, ".tmp". The table's file never
// takes the name (open mode 3 makes unnamed files), so nothing is created to
// reserve it and a killed process leaves nothing; traces show it.
std::string table_file_name(std::string_view prefix);

// Closes every open table; true when each closed cleanly. No handle is
// success.
bool close_jmd(std::unique_ptr<Jmd> jmd);

// Calls visit with each record of a table that the query over its sort
// column yields, in that order. False when the query cannot be started, a
// record cannot be fetched (visit has then seen the rows before it) or visit
// returns false. The query runs a few rows ahead of visit, which must not
// change the table.
bool for_each_sorted(Jmd& jmd, int slot,
                     const std::function<bool(std::span<const char> record)>& visit);

}  // namespace px::jmd
