// Job steps that name a printer or a task the JMD does not have. Deleting a
// printer or task never touches the steps that name it, so such steps are
// allowed; the lists mark them and pxctl jmd check warns of them.
#pragma once

#include <string>
#include <vector>

#include "jmd/editors/jmd_editor.h"

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

}  // namespace px::editors
