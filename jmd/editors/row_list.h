// The rows of one JMD list and the page of them that the list shows.
//
// Kinds 1 to 3 list every row of their table in the order of the query over
// the key column; kind 4 lists the rows of the job table whose job name is
// the list's job, in table order. Kind 0 lists the entries of the job-names
// list (jmd/job_names.h) in its order; its "rows" are the entry numbers, and
// without a filter only the page shown is read from the list, so that a
// large list opens and pages without being read whole. A page holds at
// most 1000 rows; the paging buttons are there only when the list holds more
// than 1000 rows. The steps of a job end with one empty row on their last
// page, where a new step is added at the end.
//
// An optional filter narrows the list to the rows whose line holds the filter
// text (without regard to case), over the whole table, not only the page.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "jmd/editors/list_kind.h"
#include "jmd/engine/table.h"
#include "jmd/job_names.h"

namespace px::editors {

class RowList {
 public:
  explicit RowList(ListKind kind, std::string job = {});

  ListKind kind() const { return kind_; }
  const std::string& job() const { return job_; }

  // Reads the rows of table (kinds 1 to 4) or names (kind 0) again. The page
  // keeps its start while that is still a row, else shows the last page.
  // False when the table cannot be queried; the list is then empty. The job
  // names are read again by the paging calls below, as long as they are
  // there (a page of names gone is empty).
  bool reload(engine::Table& table);
  bool reload(const std::shared_ptr<jmd::JobNames>& shared);
  // The same with the rows of the list given (in list order) rather than
  // queried.
  void reload(engine::Table& table, std::vector<long> rows);

  // Rows listed (after the filter).
  long total() const { return paging_names_ ? names_total_ : static_cast<long>(rows_.size()); }
  // Index of the first row of the page among all rows, and the rows on it.
  long page_first() const { return page_first_; }
  long shown() const;
  std::span<const long> page() const;
  // Every listed row, in list order; for the job names without a filter
  // the rows of the page (they are read page by page).
  const std::vector<long>& rows() const { return paging_names_ ? page_rows_ : rows_; }

  // The paging buttons are shown (more than 1000 rows).
  bool paged() const { return total() > kPageSize; }
  bool has_previous() const { return page_first_ > 0; }
  bool has_next() const { return page_first_ + shown() < total(); }
  // Kind 4 on the page that holds its last step, unfiltered: the page ends
  // with an empty row.
  bool trailing_empty_row() const {
    return kind_ == ListKind::kSteps && !has_next() && filter_.empty();
  }

  void next_page();
  void previous_page();
  // Shows the page that starts at the row of index first (cut to the rows).
  void show_from(long first);
  // Shows the page of 1000 rows that holds the row of index index.
  void show_page_of(long index);
  // After rows were deleted and the rows read again: when the list held more
  // than 1000 rows before (total_before) or holds more now, the page is
  // found again from the index the first deleted row had. Past the first
  // 1000 rows the page starts 500 rows before that place; within them it is
  // the first page. A list of at most 1000 rows keeps its page.
  void show_after_delete(long first_deleted, long total_before);

  // The lines of the page (without the trailing empty row).
  std::vector<std::string> page_lines(engine::Table& table) const;
  std::vector<std::string> page_lines(const jmd::JobNames& names) const;

  // Narrows the list to rows whose line holds text; empty shows every row.
  // Takes effect at the next reload.
  void set_filter(std::string text) { filter_ = std::move(text); }
  const std::string& filter() const { return filter_; }

 private:
  ListKind kind_;
  std::string job_;
  std::string filter_;
  std::vector<long> rows_;
  long page_first_ = 0;
  // The job names without a filter: rows_ stays empty and the page's rows
  // are read from the list whenever the page changes.
  bool paging_names_ = false;
  std::weak_ptr<jmd::JobNames> names_;
  long names_total_ = 0;
  std::vector<long> page_rows_;
  void read_page();
};

// The rows of a list of kind in list order: every row of table over its key
// column, or for kind 4 the rows of job. False when the query cannot start.
bool list_rows(engine::Table& table, ListKind kind, const std::string& job,
               std::vector<long>& rows);

}  // namespace px::editors
