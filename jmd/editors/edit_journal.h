// The unsaved edits of a session, for undo and redo: every row a JMD edit
// adds, removes from its table's listing or rewrites, and every entry it
// adds to or takes off the job-names list, grouped by the operator's act
// that made it.
//
// Rows are never removed from a table, only from the index of its key
// column, and job-name entries are never forgotten, only unlisted, so each
// change has an exact inverse: an added row or entry leaves the listing, a
// removed one comes back into it, a rewritten row gets its old record
// again. The journal holds pointers to the tables and the job-names list of
// the open JMD; it is dropped whenever the JMD is saved or closed (the
// caller sees to that).
#pragma once

#include <string_view>
#include <vector>

#include "jmd/editors/record.h"
#include "jmd/engine/table.h"
#include "jmd/job_names.h"

namespace px::editors {

class EditJournal {
 public:
  // The changes recorded between begin and the matching end form one act;
  // begin and end nest.
  void begin();
  void end();

  // The table calls of the editors, recorded. The same results as the
  // engine's calls.
  long add(engine::Table& table, const Record& record);
  bool update(engine::Table& table, long row, const Record& record);
  bool remove(engine::Table& table, long row, int column);
  // The job-names list's calls, recorded: the new entry (0 on failure) and
  // whether the entry was listed and is now taken off.
  long add_name(jmd::JobNames& names, std::string_view name);
  bool unlist_name(jmd::JobNames& names, long id);

  bool can_undo() const { return !undo_.empty(); }
  bool can_redo() const { return !redo_.empty(); }
  // Takes back the last act (or does again the last one taken back); false
  // when there is none or a table refused (the act is then dropped).
  bool undo();
  bool redo();

  // Forgets everything; not while an act is open.
  void clear();
  bool act_open() const { return depth_ > 0; }

 private:
  enum class What { kAdded, kRemoved, kUpdated, kNameAdded, kNameRemoved };
  struct Change {
    engine::Table* table = nullptr;  // or, for the names, the list
    jmd::JobNames* names = nullptr;
    long row = 0;
    What what = What::kAdded;
    int column = 0;  // the key column of kAdded and kRemoved
    Record before;   // kUpdated
    Record after;    // kUpdated
  };
  using Act = std::vector<Change>;

  static bool apply(const Change& change, bool forward);

  std::vector<Act> undo_;
  std::vector<Act> redo_;
  Act open_;
  int depth_ = 0;
};

}  // namespace px::editors
