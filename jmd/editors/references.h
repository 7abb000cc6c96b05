// Job steps that name a printer or a task the JMD does not have. Deleting a
// printer or task never touches the steps that name it, so such steps are
// allowed; the lists mark them and pxctl jmd check warns of them.
#pragma once

#include <string>
#include <vector>

#include "jmd/editors/jmd_editor.h"
#include "jmd/editors/row_list.h"

namespace px::editors {

struct MissingReference {
  std::string job;
  long step = 0;       // 1-based, in the job window's order
  bool printer = false;  // else a task
  std::string name;
};

// Every step's printer name and task id that is neither empty nor "*" and
// not in its table, jobs in sort order.
std::vector<MissingReference> missing_references(JmdEditor& editor);

// Whether the step record names a printer or task that is not there.
bool names_missing_row(JmdEditor& editor, const Record& step);

// Whether any step of job names a printer or task that is not there.
bool job_names_missing(JmdEditor& editor, const std::string& job);

// The marks of the rows on the page of a list: for a step (kind 4) whether
// it names a printer or task that is not there, for a job name (kind 0)
// whether any step of the job does; all false for the other kinds. The
// steps of the job names are found from the rows the job-names list was
// made from while the job table is unchanged since, so that marking the
// first page of a large list reads only its jobs' steps and needs no index
// over the job table.
std::vector<bool> page_marks(JmdEditor& editor, const RowList& list);

}  // namespace px::editors
