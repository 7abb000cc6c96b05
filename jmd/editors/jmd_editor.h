// The JMD editors' rules on the open database, without any toolkit: the
// windows and pxctl call the same operations.
//
// Every successful add, edit or delete sets the database's modified flag.
// Nothing here writes the JMD file.
//
// Job steps: the steps of a job are the job table's rows with its name, in
// table order. Rows are never moved: inserting a step before another appends
// rows and shifts the contents of the job's later rows down, and moving steps
// swaps the contents of neighbouring rows, so that table order is step order.
//
// Deleting: a job name deletes every step of the job; printers, tasks and
// managed memory rows are deleted without looking at the steps that name them.
//
// The private clipboard: job steps (copied from the job-names list or from a
// job window) go into the service's "clipbrd" table, one row of the other
// kinds into a one-row buffer. A cut or copy of another kind than the last
// one, when that was from a list of kinds 0 to 3, empties the table first;
// otherwise the steps cut or copied are added to those it holds, and a paste
// gives them all.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "config/jmd_service.h"
#include "config/operator.h"
#include "jmd/editors/edit_journal.h"
#include "jmd/editors/list_kind.h"
#include "jmd/editors/record.h"
#include "jmd/editors/row_form.h"
#include "jmd/editors/row_list.h"
#include "jmd/job_names.h"

namespace px::editors {

// What OK of a row dialog came to: message 0 and the row stored, or the
// message shown and the control to give the focus to.
struct OkResult {
  int message = 0;
  int focus = 0;
  long row = 0;
  std::string key;  // the stored row's key (job name for a step)
  bool accepted() const { return message == 0; }
};

class JmdEditor {
 public:
  JmdEditor(JmdService& service, Operator& op) : service_(service), op_(&op) {}

  JmdService& service() { return service_; }
  Operator& op() { return *op_; }
  // Reports to op from now on (the console's operator can be replaced).
  void set_operator(Operator& op) { op_ = &op; }

  // The table that a list of kinds 1 to 4 shows (the job table for kind 4);
  // nullptr after showing why it cannot be had, and for kind 0, whose rows
  // are the entries of the job-names list.
  engine::Table* table(ListKind kind);
  // The job-names list of kind 0; nullptr after showing why it cannot be had.
  std::shared_ptr<jmd::JobNames> job_names();

  // Reads the rows of a list again from what its kind lists, and the lines
  // of its page. False when that cannot be had (the reason was shown) or
  // the table cannot be queried (nothing shown).
  bool reload(RowList& list);
  std::vector<std::string> page_lines(const RowList& list);

  // The row of kinds 0 to 3 whose key is key (without regard to case); 0
  // when none. For kind 0 the first entry of the job-names list.
  long find_row(ListKind kind, std::string_view key);
  // The job's steps in table order.
  std::vector<long> job_steps(const std::string& job);
  // The job has steps, or is listed among the job names.
  bool job_exists(const std::string& job);

  // Row dialogs of kinds 1 to 3 and the job step. A new form holds the
  // defaults (for a step, job is the step's job); an edit form the row;
  // a paste form the clipboard's buffered row (nullopt after the internal
  // error when the clipboard holds another kind).
  RowForm new_form(ListKind kind, std::string_view job = {});
  std::optional<RowForm> edit_form(ListKind kind, long row);
  std::optional<RowForm> paste_form(ListKind kind);

  // OK of a task, printer or managed-memory dialog: validates, shows the
  // refusal, or stores (an edit updates row in place).
  OkResult ok(const RowForm& form, long row = 0);
  // OK of the job step dialog: never refused. An edit updates row; a new
  // step goes before the step at index before of steps (the job's steps in
  // order), or at the end of the job table without one.
  OkResult ok_step(const RowForm& form, long row, const std::vector<long>& steps,
                   std::optional<size_t> before);

  // The "New Job Name" dialog's OK: the name read (cut to 51 characters,
  // trailing blanks dropped) and checked. 0 and name set when accepted; else
  // kJobNameEmpty (an empty name or one starting with a blank: the dialog
  // shows nothing),
  // kJobNameHasBlank (shown), or kJobExists (shown).
  int check_new_job_name(std::string_view typed, std::string& name);
  // Lists a new job name in the job-names list; its entry, 0 on failure.
  long add_job_name(const std::string& name);

  // The job name of an entry of the job-names list; empty when none.
  std::string job_name(long entry);

  // Deletes rows of a list of kind (job names with all their steps). How
  // many were deleted; a failure ends the deletion at that row.
  long delete_rows(ListKind kind, const std::vector<long>& rows);

  // Moves the block of steps [first, last] of page (the rows shown, in order)
  // up or down by one by swapping contents. False (nothing done) when the
  // block already starts at the first or ends at the last row of the page.
  bool move_steps(const std::vector<long>& page, size_t first, size_t last, bool up);

  // Inserts records (job-table rows) before the step at index before of steps
  // (at the end when before is the number of steps). The rows now holding
  // them; empty on failure.
  std::vector<long> insert_steps(const std::vector<long>& steps, size_t before,
                                 const std::vector<Record>& records);

  // The clipboard. Cut and copy of rows of a list of kind (for kind 0 the
  // job names, whose steps are copied); a cut then deletes them without
  // asking. False after showing why.
  bool copy(ListKind kind, const std::vector<long>& rows, bool cut);
  // Empties the clipboard (as a new session of the editors finds it).
  void empty_clipboard();
  // What the clipboard holds: the kind of its last cut or copy, if any.
  std::optional<ListKind> clipboard_kind() const { return clipboard_kind_; }
  // A list of kind can paste what the clipboard holds (job steps go into
  // job names and job windows, while the JMD they were taken from is still
  // open; other rows into their own kind).
  bool can_paste(ListKind kind) const;
  // The clipboard's job steps.
  std::vector<Record> clipboard_steps();
  // Paste into the job-names list under name (checked as a new job name
  // first: the check's message, else 0): lists the name and adds every
  // clipboard step under it at the end of the job table.
  int paste_job(std::string_view typed, std::string& name);
  // Paste into a job window: the clipboard steps, renamed to job, before the
  // step at index before of steps. The rows now holding them.
  std::vector<long> paste_steps(const std::string& job, const std::vector<long>& steps,
                                size_t before);

  // The modified flag.
  void set_modified() { service_.set_modified(true); }
  bool modified() { return service_.modified(); }

  // Undo and redo of the acts above since the JMD was last saved (or
  // opened). False when there is nothing to take back or do again.
  bool can_undo();
  bool can_redo();
  bool undo();
  bool redo();

 private:
  OkResult store(engine::Table& table, const RowForm& form, long row, const Record& record,
                 const std::string& key, int duplicate_message);
  OkResult ok_task(const RowForm& form, long row);
  OkResult ok_printer(const RowForm& form, long row);
  OkResult ok_memory(const RowForm& form, long row);
  OkResult refuse(int message, int focus, const std::vector<std::string>& args = {});
  bool delete_job(engine::Table& jobs, const std::string& name);
  long delete_job_names(const std::vector<long>& entries);
  // A job's steps in table order from the rows the job-names list was made
  // from, while the job table is as it was then (no query by job name, whose
  // index a large table builds first); nullopt otherwise.
  std::optional<std::vector<long>> steps_as_loaded(const std::string& job);
  void internal_error(const char* module, int line);

  // One operator's act: what it changes is one step of undo.
  class Act {
   public:
    explicit Act(JmdEditor& editor);
    ~Act();
    Act(const Act&) = delete;
    Act& operator=(const Act&) = delete;

   private:
    JmdEditor& editor_;
  };
  // The journal, emptied first when the JMD was saved or closed since it
  // was written to.
  EditJournal& journal();
  // Row changes, through the journal.
  long add(engine::Table& table, const Record& record) { return journal_.add(table, record); }
  bool update(engine::Table& table, long row, const Record& record) {
    return journal_.update(table, row, record);
  }
  bool remove(engine::Table& table, long row, int column) {
    return journal_.remove(table, row, column);
  }

  JmdService& service_;
  Operator* op_;
  EditJournal journal_;
  std::optional<ListKind> clipboard_kind_;
  Record buffer_;  // the one-row buffer of kinds 1 to 3
};

// One of the device names "lpt1" to "lpt9", "com1" to "com9", "prn", "con",
// "aux" (without regard to case).
bool is_reserved_device(std::string_view id);

// The form file of a step whose form field is empty: the job name with the
// extension "mdf" (a dot and "mdf" appended when it has none).
std::string default_form_file(std::string_view job);

}  // namespace px::editors
