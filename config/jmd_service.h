// The JMD service: the console's one open Job Management Database, which the
// JMD editors, Printer Reload, pxctl jmd-save and the program's end share.
//
// The JMD is the file named by JMDFileName in section Options of the current
// instance's configuration file (through the directory map; a value shorter
// than 2 characters counts as missing). It is loaded on first use and kept
// until it is closed, the current instance changes (the next call finds the
// change and closes the old one) or the program ends. Beside it the service
// keeps the editors' modified flag and two lists that go when the JMD is
// closed:
//   "jobname"  the job names of the job list (jmd/job_names.h): the job
//              table's rows that are not deleted, walked in row order, one
//              entry for every job name that differs from the row before it.
//              Only neighbours are compared, so a job whose steps are not
//              next to each other is listed once per run of steps. It is
//              kept in memory, compactly, rather than as a table: the names
//              noted while the JMD was loaded make it without reading a
//              record, and a page of it is put in order when it is shown.
//   "clipbrd"  the editors' private clipboard of job steps: a scratch table
//              of the table engine with the job table's row layout, in a
//              fresh file of the temporary directory.
//
// Save writes the tables (as jmd/jmd_writer.h writes them, crash-safely:
// a temporary file beside the JMD, synced and renamed over it), keeping the
// old JMD as its backup. Only one backup generation is kept; its name is the JMD
// path cut at the last dot after the last "/" or "\" (kept whole without
// one), then ".JBK": /data/jobs.jmd -> /data/jobs.JBK, a.b/jobs ->
// a.b/jobs.JBK. The previous backup is replaced only once the new JMD is in
// place, so a failed save leaves the old JMD and the old backup as they were.
// A backup that cannot be made is not reported; the save goes on. A JMD whose
// name is its own backup name is saved without a backup.
//
// Messages (paths shortened for display):
//   144  the configuration file cannot be read          @P1 its path
//   167  JMDFileName is missing                         @P1 "Options", @P2 the
//                                                       file, @P3 "JMDFileName"
//   179  the JMD cannot be loaded (after the load's own message)  @P1 the JMD
//   180  the "jobname" list cannot be made
//   181  job names could not be added                   @P1 how many
//   182  the "clipbrd" table cannot be made
//   185  the JMD cannot be written                      @P1 the JMD
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "common/file_system.h"
#include "config/instances.h"
#include "config/operator.h"
#include "jmd/engine/table.h"
#include "jmd/jmd.h"
#include "jmd/job_names.h"

namespace px {

class JmdService {
 public:
  JmdService() = default;
  ~JmdService();  // closes without saving
  JmdService(const JmdService&) = delete;
  JmdService& operator=(const JmdService&) = delete;

  // The open JMD, loaded on first use; nullptr after showing why (144, 167,
  // or the load's own messages and then 179).
  jmd::Jmd* open(Operator& op);
  // Takes a JMD loaded from a file of the caller's choice (pxctl's JMD file
  // commands) in place of the instance's: what was held is closed first.
  // save() still writes the instance's file; the caller saves this one.
  void adopt(std::unique_ptr<jmd::Jmd> jmd);
  // Whether a JMD is open; jmd() is it (nullptr when none), without opening.
  bool is_open();
  jmd::Jmd* jmd();

  // Set by every change an editor makes; cleared by a save and by close.
  bool modified();
  void set_modified(bool modified);

  // Writes the open JMD with its backup and clears the modified flag. True
  // when nothing is open. False after showing 144 or 167 (JMDFileName is
  // read again) or 185; the flag then stays set. A save is the operator
  // action "jmd-save" (operator_action.h): read-only mode refuses it (1700).
  bool save(Operator& op);
  // The same with the file steps done through files.
  bool save(Operator& op, FileSystem& files);

  // Unloads the JMD without saving, frees "jobname" and "clipbrd" and
  // clears the modified flag.
  void close();

  // The "jobname" list, made on first use (which opens the JMD): from the
  // names noted at the load while the job table is as loaded, else from a
  // walk over the job table. nullptr after showing 180 or the open's
  // message. 181 tells how many job rows could not be read; the list is
  // kept all the same. Closing drops the service's share of it.
  std::shared_ptr<jmd::JobNames> job_names(Operator& op);
  // The "jobname" list when it was made already (nothing is made or shown).
  std::shared_ptr<jmd::JobNames> job_names_made();

  // The "clipbrd" table, made empty on first use; nullptr after showing 182.
  engine::Table* clipboard(Operator& op);
  // Drops the clipboard's rows: the next clipboard() call makes it anew.
  void empty_clipboard();
  // The "clipbrd" table while it is there (made and not dropped or closed
  // since); nullptr otherwise. Nothing is made or shown.
  engine::Table* clipboard_made();

 private:
  // Closes everything when the current instance is not the one it was
  // taken for.
  void close_if_instance_changed();
  // Notes the current instance as the owner of what is now held; the
  // process-wide service then also closes when the program ends.
  void take_for_current_instance();
  bool holds_anything() const { return jmd_ || job_names_ || clipboard_; }

  std::unique_ptr<jmd::Jmd> jmd_;
  std::shared_ptr<jmd::JobNames> job_names_;
  engine::Table clipboard_;
  bool modified_ = false;
  Instance taken_for_;  // the instance whose JMD this is
};

// The process-wide service. What it holds is closed when the program ends.
JmdService& jmd_service();

// The backup name of a JMD path (see above).
std::string jmd_backup_name(std::string_view jmd_path);

}  // namespace px
