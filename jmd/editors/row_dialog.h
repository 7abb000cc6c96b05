// The JMD row dialogs on the toolkit: "New/Edit Task" (126), "New/Edit
// Printer" (108), "New/Edit Printer Managed Memory" (128), "New/Edit Job
// Step" (106), and "New Job Name" (129). Each binds its controls to a RowForm
// and leaves every rule to the JmdEditor.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "jmd/editors/jmd_editor.h"
#include "toolkit/toolkit.h"

namespace px::editors {

// What a row dialog edits: its form (mode and fields), the row of an edit,
// and for a new job step the job's steps and where the step goes.
struct RowRequest {
  RowForm form;
  long row = 0;
  std::vector<long> steps;
  std::optional<size_t> before;
};

// Told of a row that a nested "Add ..." button of a dialog added, so that
// an open list of its kind shows it.
using RowAdded = std::function<void(ListKind kind)>;

// Runs the row dialog of request.form's kind modally. The stored row's
// result when it ended with OK; nullopt when cancelled or when it could not
// be made (message 101 shown).
std::optional<OkResult> run_row_dialog(tk::Toolkit& toolkit, JmdEditor& editor,
                                       RowRequest request, const RowAdded& added = {});

// Runs "New Job Name". accept is called with the typed name on OK and
// answers 0 to close the dialog (the name is then returned), or the message
// that refused it (the dialog stays open). nullopt when cancelled.
std::optional<std::string> run_job_name_dialog(
    tk::Toolkit& toolkit, Operator& op,
    const std::function<int(const std::string& typed, std::string& name)>& accept);

}  // namespace px::editors
