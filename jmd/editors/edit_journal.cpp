#include "jmd/editors/edit_journal.h"

#include <new>

namespace px::editors {

void EditJournal::begin() { ++depth_; }

void EditJournal::end() {
  if (depth_ == 0 || --depth_ > 0 || open_.empty()) return;
  undo_.push_back(std::move(open_));
  open_.clear();
  redo_.clear();
}

long EditJournal::add(engine::Table& table, const Record& record) {
  long row = add_record(table, record);
  if (row != 0) open_.push_back({&table, nullptr, row, What::kAdded, 1, {}, {}});
  return row;
}

bool EditJournal::update(engine::Table& table, long row, const Record& record) {
  Record before = blank_record(table);
  if (!read_row(table, row, before) || !update_record(table, row, record)) return false;
  open_.push_back({&table, nullptr, row, What::kUpdated, 0, std::move(before), record});
  return true;
}

bool EditJournal::remove(engine::Table& table, long row, int column) {
  if (!table.delete_index_row(row, column)) return false;
  open_.push_back({&table, nullptr, row, What::kRemoved, column, {}, {}});
  return true;
}

long EditJournal::add_name(jmd::JobNames& names, std::string_view name) {
  long id = 0;
  try {
    id = names.add(name);
  } catch (const std::bad_alloc&) {
    return 0;
  }
  open_.push_back({nullptr, &names, id, What::kNameAdded, 0, {}, {}});
  return id;
}

bool EditJournal::unlist_name(jmd::JobNames& names, long id) {
  if (!names.unlist(id)) return false;
  open_.push_back({nullptr, &names, id, What::kNameRemoved, 0, {}, {}});
  return true;
}

bool EditJournal::apply(const Change& change, bool forward) {
  if (change.names != nullptr) {
    bool listing = (change.what == What::kNameAdded) == forward;
    return listing ? change.names->relist(change.row) : change.names->unlist(change.row);
  }
  engine::Table& table = *change.table;
  switch (change.what) {
    case What::kAdded:
      return forward ? table.insert_index_row(change.row, change.column)
                     : table.delete_index_row(change.row, change.column);
    case What::kRemoved:
      return forward ? table.delete_index_row(change.row, change.column)
                     : table.insert_index_row(change.row, change.column);
    case What::kUpdated:
      return update_record(table, change.row, forward ? change.after : change.before);
    case What::kNameAdded:
    case What::kNameRemoved:
      break;
  }
  return false;
}

bool EditJournal::undo() {
  if (undo_.empty()) return false;
  Act act = std::move(undo_.back());
  undo_.pop_back();
  for (auto change = act.rbegin(); change != act.rend(); ++change) {
    if (!apply(*change, false)) return false;
  }
  redo_.push_back(std::move(act));
  return true;
}

bool EditJournal::redo() {
  if (redo_.empty()) return false;
  Act act = std::move(redo_.back());
  redo_.pop_back();
  for (const Change& change : act) {
    if (!apply(change, true)) return false;
  }
  undo_.push_back(std::move(act));
  return true;
}

void EditJournal::clear() {
  undo_.clear();
  redo_.clear();
  open_.clear();
  depth_ = 0;
}

}  // namespace px::editors
