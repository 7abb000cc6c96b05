// One JMD list window: the list window (143) of kinds 0 to 3 or the job
// window (146) of kind 4, bound to a RowList and the JmdEditor.
#pragma once

#include <string>
#include <vector>

#include "jmd/editors/jmd_windows.h"
#include "jmd/editors/row_list.h"

namespace px::editors {

// The row count under a list: "1001-2000 of 12,345", "0 of 0".
std::string count_text(long first, long shown, long total);

class ListWindow {
 public:
  ListWindow(JmdWindows& owner, ListKind kind, std::string job = {}, bool new_job = false);

  // Makes the window; false when it cannot be made.
  bool create();
  tk::Window window() const { return window_; }
  ListKind kind() const { return list_.kind(); }
  const std::string& job() const { return list_.job(); }
  bool open() const { return window_.exists(); }

  // Reads the rows again and fills the page.
  void refill();
  // Reads the rows again (a failure shown), without filling the page.
  void reload();
  // The Edit menu's acts on this window.
  void cut_or_copy(bool cut);
  void paste();
  void delete_selected(bool ask);

 private:
  void handle(const tk::Event& e);
  void fill();
  // The marks of the rows that name a missing printer or task are added to
  // the page a moment after it is shown, so that the page shows at once:
  // finding them reads the page's steps, and the first read after a load
  // maps the job table's file.
  void mark_later();
  void mark_page();
  void paint();
  void update_controls();
  // The selected lines of the page (never the trailing empty row), as
  // indexes of the page and as rows.
  std::vector<int> selected_lines() const;
  std::vector<long> selected_rows() const;
  engine::Table* table();
  void edit_selected();
  // Reads the rows again after selected rows were deleted and shows the page
  // the list finds from the place of the first of them.
  void refill_after_delete(long first_deleted, long total_before);
  void new_row();
  void move(bool up);
  void select_steps(long first_index, long count);
  // After a printer or task came or went: the marks of the job names and
  // steps are made again.
  void references_changed();
  // The job window with a filter: no step is added, pasted or moved, as the
  // steps around the place are not all shown.
  bool placing_off() const;

  JmdWindows& owner_;
  RowList list_;
  bool new_job_;
  tk::Window window_;
  long marks_timer_ = 0;
};

}  // namespace px::editors
