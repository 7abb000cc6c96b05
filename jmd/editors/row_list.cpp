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

bool RowList::reload(engine::Table& table) {
  bool listed = list_rows(table, kind_, job_, rows_);
  if (listed && !filter_.empty()) {
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
  return listed;
}

long RowList::shown() const { return std::min(kPageSize, total() - page_first_); }

std::span<const long> RowList::page() const {
  return std::span<const long>(rows_).subspan(static_cast<size_t>(page_first_),
                                              static_cast<size_t>(shown()));
}

void RowList::next_page() {
  if (has_next()) page_first_ += shown();
}

void RowList::previous_page() { page_first_ = std::max(0L, page_first_ - kPageSize); }

void RowList::show_from(long first) {
  page_first_ = std::clamp(first, 0L, std::max(0L, total() - 1));
}

void RowList::show_page_of(long index) {
  show_from(index < kPageSize ? 0 : index / kPageSize * kPageSize);
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
