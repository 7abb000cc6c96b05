// The job names of the job list: one entry for every run of job-table rows
// that carry the same job name, walked in row order (a job whose steps are
// not next to each other is listed once per run: rows A, B, A give three
// entries). Entries are numbered from 1 in the order they were made and are
// never renumbered; an entry can leave the list and come back (undo).
//
// The list order is that of the job table's index on the job name: names
// compared without regard to case (ASCII letters), a shorter name before a
// longer one it starts, equal names by entry number.
//
// The list is made without sorting it: a page is put in order when it is
// asked for (the entries before it are then all not after it, those behind
// it all not before it), so that opening the list of a large JMD costs one
// pass over the names and not a sort. The first change (add, leave, come
// back) sorts the whole list once; from then on changes keep it sorted.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace px::jmd {

class JobNames {
 public:
  // The longest job name; longer ones are cut.
  static constexpr size_t kLongest = 51;

  // Making the list: the job table's rows in row order. A row whose name
  // differs (exactly, case counts) from the row noted before it starts an
  // entry, whose run of rows lasts up to the next entry's row. May throw
  // std::bad_alloc.
  void note_row(long row, std::string_view name);
  // After the last noted row: rows up to (not including) end belong to the
  // last entry's run, and every entry noted is listed.
  void finish_notes(long end);

  // Entries made (listed or not) and listed.
  long entries() const { return static_cast<long>(starts_.size()) - 1; }
  long size() const { return static_cast<long>(order_.size()); }
  bool listed(long id) const;
  // The entry's name; empty for no entry.
  std::string_view name(long id) const;
  // The job-table rows [first, end) the entry was made from; {0, 0} for a
  // name added to the list since. They are the entry's rows only when every
  // row of the job table was noted (none was deleted, as after a load) and
  // the table has not changed since: the maker of the list says so with the
  // table's change count then, runs_hold() compares it with the count now.
  std::pair<long, long> run(long id) const;
  bool runs_hold(uint64_t changes_now) const {
    return rows_noted_at_ && *rows_noted_at_ == changes_now;
  }
  void set_rows_noted_at(uint64_t changes) { rows_noted_at_ = changes; }

  // The listed entries at positions [first, first + count) of the list
  // order (cut to the list). Puts them in order first when they are not.
  std::span<const uint32_t> in_order(long first, long count);
  // The first listed entry (in list order) whose name equals name without
  // regard to case; 0 when none.
  long find(std::string_view name) const;
  // The listed entries whose name equals name without regard to case, in
  // entry order.
  std::vector<long> find_all(std::string_view name) const;

  // Lists a new entry holding name (cut to kLongest); its number. May throw
  // std::bad_alloc.
  long add(std::string_view name);
  // Takes a listed entry off the list / lists it again; false when it is not
  // an entry or already so.
  bool unlist(long id);
  bool relist(long id);

  // Puts the whole list in order (by the names' first bytes first, which
  // is faster than sorting pages of it by their whole names).
  void sort();

  // Whether a before b in list order, and the comparison of two names.
  bool before(uint32_t a, uint32_t b) const;
  static int compare(std::string_view a, std::string_view b);

 private:
  // The position in order_ where entry id is or would be listed.
  size_t place_of(uint32_t id) const;
  // Splits the unsorted part around position at so that at is a cut.
  void cut_at(long at);

  std::string text_;              // the names one after another
  std::vector<uint32_t> starts_{0};  // entry id's name is [starts_[id-1], starts_[id])
  std::vector<long> first_rows_;  // of the noted entries, in entry order
  long run_end_ = 0;              // the end of the last noted entry's run
  std::optional<uint64_t> rows_noted_at_;
  std::vector<bool> listed_;
  std::vector<uint32_t> order_;   // the listed entries
  // The parts of order_, by their first position: sorted (true) or only
  // known to lie between their neighbours (false). A change makes one
  // sorted part of the whole list.
  std::map<long, bool> parts_{{0, true}};
};

}  // namespace px::jmd
