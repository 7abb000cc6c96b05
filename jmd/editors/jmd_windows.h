// The console's JMD editor windows: the list window (143) of job names,
// tasks, printers and managed memory, the job window (146) of one job's
// steps, and the Edit menu on them. At most one window per list kind is
// open; they share the console's one open JMD (the JMD service), its
// modified flag and one private clipboard.
#pragma once

#include <array>
#include <memory>
#include <string>

#include "config/operator.h"
#include "jmd/editors/jmd_editor.h"
#include "jmd/editors/list_kind.h"
#include "toolkit/toolkit.h"

namespace px::editors {

class ListWindow;

class JmdWindows {
 public:
  JmdWindows();
  ~JmdWindows();
  JmdWindows(const JmdWindows&) = delete;
  JmdWindows& operator=(const JmdWindows&) = delete;

  // The toolkit the windows are made with and the operator they report to;
  // set before each use (the console's operator can change).
  void attach(tk::Toolkit& toolkit, Operator& op);

  // Opens the list window of kind (job names, tasks, printers, managed
  // memory), or raises it when it is open. Message 100 when it cannot be
  // made.
  void open_list(ListKind kind);
  // Opens the job window for job: new_job for a job that has no steps yet
  // (title 294, else 293). The job-names list is disabled while it is open.
  void open_job(const std::string& job, bool new_job);

  // Cut (32027), Copy (32028), Paste (32029) or Delete (1043) on the focused
  // top-level window; false, with nothing done, when that is no JMD window.
  // The task window, whose menu bar holds the Edit menu, stands for the JMD
  // window the operator worked in last (its menu is reached by leaving that
  // window, where the original console's document windows sat inside it).
  bool edit_command(int command);
  // A JMD window the operator acted in: the task window's Edit menu acts on
  // it.
  void note_active(tk::Window window);

  // Undo (1500) or Redo (1501) of the unsaved edits, whichever window has
  // the focus; the open lists show the result. Message 1509 when there is
  // nothing to undo or redo.
  void undo_command(int command);

  // Closes every JMD window (the JMD itself was closed).
  void close_all();

  // The open window of kind, or an invalid one.
  tk::Window window(ListKind kind) const;
  // Rereads the rows of the list of kind, if it is open.
  void refresh(ListKind kind);
  // Sets the Edit menu's items for the list that has the focus.
  void update_edit_menu(bool one_selected, bool any_selected, ListKind kind);

  tk::Toolkit& toolkit() { return *tk_; }
  JmdEditor& editor() { return editor_; }

 private:
  ListWindow* open_window(tk::WindowId id) const;
  tk::Toolkit* tk_ = nullptr;
  bool closing_ = false;  // close_all at work: nothing is read again
  tk::WindowId last_active_ = 0;
  JmdEditor editor_;
  std::array<std::unique_ptr<ListWindow>, kListKindCount> windows_;
};

// The process-wide JMD windows, beside the process-wide JMD they edit.
JmdWindows& jmd_windows();

}  // namespace px::editors
