#include "jmd/editors/row_list.h"

#include <algorithm>

#include "common/text.h"
#include "jmd/editors/record.h"

namespace px::editors {

bool list_rows(engine::Table& table, ListKind kind, const std::string& job,
               std::vector<long>& rows) {
  rows.clear();
  int column = table.find_column(key_column(kind));
  if (column < 0) return false;
  engine::Query query =
      kind == ListKind::kSteps
          ? engine::Query::start(table, column, engine::Value(job), true)
          : engine::Query::start(table, column, std::nullopt, false);
  if (!query) return false;
  for (long row = query.next(); row != 0; row = query.next()) rows.push_back(row);
  return true;
}

RowList::RowList(ListKind kind, std::string job) : kind_(kind), job_(std::move(job)) {}

bool RowList::reload(const std::shared_ptr<jmd::JobNames>& shared) {
  if (shared == nullptr) return false;
  jmd::JobNames& names = *shared;
  paging_names_ = filter_.empty();
  names_ = shared;
  names_total_ = names.size();
  rows_.clear();
  page_rows_.clear();
  if (!paging_names_) {
    std::string line;
    for (long id = 1; id <= names.entries(); ++id) {
      if (!names.listed(id)) continue;
      format_job_name(names.name(id), line);
      if (ifind(line, filter_) != std::string::npos) rows_.push_back(id);
    }
    // Few rows are put in order by themselves; many by putting the whole
    // list in order once and taking them from it.
    constexpr size_t kSortedAlone = 10000;
    if (rows_.size() <= kSortedAlone) {
      std::sort(rows_.begin(), rows_.end(), [&names](long a, long b) {
        return names.before(static_cast<uint32_t>(a), static_cast<uint32_t>(b));
      });
    } else {
      std::vector<bool> kept(static_cast<size_t>(names.entries()) + 1, false);
      for (long id : rows_) kept[static_cast<size_t>(id)] = true;
      names.sort();
      rows_.clear();
      for (uint32_t id : names.in_order(0, names.size())) {
        if (kept[id]) rows_.push_back(id);
      }
    }
  }
  if (page_first_ >= total()) page_first_ = std::max(0L, (total() - 1) / kPageSize * kPageSize);
  read_page();
  return true;
}

void RowList::read_page() {
  if (!paging_names_) return;
  page_rows_.clear();
  std::shared_ptr<jmd::JobNames> names = names_.lock();
  if (names == nullptr) return;
  std::span<const uint32_t> page = names->in_order(page_first_, kPageSize);
  page_rows_.assign(page.begin(), page.end());
}

bool RowList::reload(engine::Table& table) {
  std::vector<long> rows;
  bool listed = list_rows(table, kind_, job_, rows);
  reload(table, std::move(rows));
  return listed;
}

void RowList::reload(engine::Table& table, std::vector<long> rows) {
  paging_names_ = false;
  names_.reset();
  page_rows_.clear();
  rows_ = std::move(rows);
  if (!filter_.empty()) {
    Record record = blank_record(table);
    std::string line;
    std::vector<long> kept;
    // Rows a little ahead are announced to the table, so that their reads
    // overlap.
    constexpr size_t kAhead = 16;
    for (size_t i = 0; i < rows_.size(); ++i) {
      if (i + kAhead < rows_.size()) table.prefetch_row(rows_[i + kAhead]);
      if (!read_row(table, rows_[i], record)) continue;
      format_line(kind_, record, line);
      if (ifind(line, filter_) != std::string::npos) kept.push_back(rows_[i]);
    }
    rows_ = std::move(kept);
  }
  if (page_first_ >= total()) page_first_ = std::max(0L, (total() - 1) / kPageSize * kPageSize);
}

long RowList::shown() const {
  if (paging_names_) return static_cast<long>(page_rows_.size());
  return std::min(kPageSize, total() - page_first_);
}

std::span<const long> RowList::page() const {
  if (paging_names_) return page_rows_;
  return std::span<const long>(rows_).subspan(static_cast<size_t>(page_first_),
                                              static_cast<size_t>(shown()));
}

void RowList::next_page() {
  if (has_next()) page_first_ += shown();
  read_page();
}

void RowList::previous_page() {
  page_first_ = std::max(0L, page_first_ - kPageSize);
  read_page();
}

void RowList::show_from(long first) {
  page_first_ = std::clamp(first, 0L, std::max(0L, total() - 1));
  read_page();
}

void RowList::show_page_of(long index) {
  show_from(index < kPageSize ? 0 : index / kPageSize * kPageSize);
}

void RowList::show_after_delete(long first_deleted, long total_before) {
  if (total_before <= kPageSize && total() <= kPageSize) return;
  constexpr long kRowsBefore = kPageSize / 2;
  show_from(first_deleted >= kPageSize ? first_deleted - kRowsBefore : 0);
}

std::vector<std::string> RowList::page_lines(const jmd::JobNames& names) const {
  std::vector<std::string> lines(static_cast<size_t>(shown()));
  std::span<const long> rows = page();
  for (size_t i = 0; i < rows.size(); ++i) format_job_name(names.name(rows[i]), lines[i]);
  return lines;
}

std::vector<std::string> RowList::page_lines(engine::Table& table) const {
  std::vector<std::string> lines;
  Record record = blank_record(table);
  for (long row : page()) {
    lines.push_back(read_row(table, row, record) ? format_line(kind_, record) : std::string());
  }
  return lines;
}

}  // namespace px::editors
