// The pool of queries: start, next, previous, current, duplicate, join, stop.
#include <algorithm>
#include <cstring>
#include <vector>

#include "jmd/engine/table_internal.h"

namespace px::engine {

namespace {

int take_query() {
  for (int i = 0; i < kQueryPoolSize; ++i) {
    QueryState& query = engine().query(i);
    if (!query.in_use) {
      query = QueryState{};
      query.in_use = true;
      return i;
    }
  }
  return -1;
}

// Releases query q and the rest of its chain.
void release_chain(int q) {
  while (q >= 0) {
    QueryState& state = engine().query(q);
    int next = state.next;
    state = QueryState{};
    q = next;
  }
}

// The chain from q on, in order.
std::vector<int> chain_of(int q) {
  std::vector<int> chain;
  for (; q >= 0 && static_cast<int>(chain.size()) < kQueryPoolSize; q = engine().query(q).next) {
    chain.push_back(q);
  }
  return chain;
}

// The traced form of a bound value: the value by the column's type, or
// "<NULL>".
void trace_bound(const TableState* t, int column, const std::optional<Value>& value) {
  if (!tracing()) return;
  if (!value || t == nullptr) {
    trace_printf("<NULL>");
    return;
  }
  const ColumnDef& def = t->column(column);
  std::vector<std::byte> padded(std::max<size_t>(def.width, 8), std::byte{0});
  std::memcpy(padded.data(), value->data(), std::min(value->size(), padded.size()));
  trace_value(def, padded.data());
}

// Starts one query; the slot, or -1.
int start_query(TableState& t, int column, const std::optional<Value>& bound, bool exact) {
  if ((exact && !bound) || !t.valid_index_column(column)) return -1;
  if (!t.index(column) && !add_index_traced(t, column, kOpenNew)) return -1;
  int q = take_query();
  if (q < 0) return -1;
  QueryState& state = engine().query(q);
  state.table_slot = static_cast<int>(&t - engine().tables.data());
  state.table_serial = t.serial;
  state.column = column;
  state.exact = exact;
  BTree& index = *t.index(column);
  if (bound) {
    const ColumnDef& def = t.column(column);
    // Wide enough for the largest number type even when the width is less.
    state.bound.assign(std::max<size_t>(def.width, 8), std::byte{0});
    std::memcpy(state.bound.data(), bound->data(), std::min(bound->size(), size_t{def.width}));
    std::optional<int32_t> key = index_key(def.type, state.bound.data(), def.width);
    if (!key) {
      release_chain(q);
      return -1;
    }
    state.key = *key;
    t.comparator(column)->set_bound(state.bound.data());
    bool found = false;
    state.cursor = index.search(state.key, 0, found);
  } else {
    state.cursor = index.first();
  }
  if (!state.cursor) {
    release_chain(q);
    return -1;
  }
  return q;
}

enum class Step { kNext, kPrevious, kCurrent };

// One query's row after a step; 0 at the end, past an exact query's value, or
// when its table is gone.
long step_one(int q, Step step) {
  QueryState& state = engine().query(q);
  TableState* t = table_at(state.table_slot, state.table_serial);
  if (t == nullptr) return 0;
  BTreeEntry e;
  bool ok = step == Step::kNext       ? state.cursor.next(e)
            : step == Step::kPrevious ? state.cursor.previous(e)
                                      : state.cursor.current(e);
  if (!ok) return 0;
  if (state.exact) {
    IndexCompare* compare = t->comparator(state.column).get();
    if (compare == nullptr) return 0;
    compare->set_bound(state.bound.data());
    if (compare->compare_values(BTreeEntry{state.key, 0, 0}, e) != 0) return 0;
  }
  return e.row;
}

// Steps a join chain: the first query moves, the others are asked where they
// stand; while they disagree the one furthest behind moves on.
long step_chain(int q, Step step) {
  std::vector<int> chain = chain_of(q);
  std::vector<long> rows(chain.size());
  rows[0] = step_one(chain[0], step);
  if (chain.size() == 1 || step == Step::kCurrent) return rows[0];
  for (size_t i = 1; i < chain.size(); ++i) rows[i] = step_one(chain[i], Step::kCurrent);
  bool forward = step == Step::kNext;
  for (;;) {
    if (std::find(rows.begin(), rows.end(), 0L) != rows.end()) return 0;
    auto [low, high] = std::minmax_element(rows.begin(), rows.end());
    if (*low == *high) return rows[0];
    size_t behind = static_cast<size_t>((forward ? low : high) - rows.begin());
    rows[behind] = step_one(chain[behind], step);
  }
}

}  // namespace

Query Query::start(Table& table, int column, std::optional<Value> bound, bool exact) {
  TableState* t = table_at(table.slot_, table.serial_);
  int q = t != nullptr ? start_query(*t, column, bound, exact) : -1;
  if (tracing()) {
    trace_printf("QueryStart %s %s ", t ? t->name.c_str() : "(NULL)", t ? t->column(column).name : "");
    trace_bound(t, column, bound);
    trace_printf(" %d %d\n", exact ? 1 : 0, q + 1);
    trace_flush();
  }
  return q >= 0 ? Query(q) : Query();
}

Query::~Query() {
  if (slot_ >= 0) stop();
}

Query::Query(Query&& other) noexcept : slot_(other.slot_) { other.slot_ = -1; }

Query& Query::operator=(Query&& other) noexcept {
  if (this != &other) {
    if (slot_ >= 0) stop();
    slot_ = other.slot_;
    other.slot_ = -1;
  }
  return *this;
}

long Query::next() {
  long row = slot_ >= 0 ? step_chain(slot_, Step::kNext) : 0;
  trace_printf("QueryNext %d %ld\n", number(), row);
  trace_flush();
  return row;
}

long Query::previous() {
  long row = slot_ >= 0 ? step_chain(slot_, Step::kPrevious) : 0;
  trace_printf("QueryPrev %d %ld\n", number(), row);
  trace_flush();
  return row;
}

long Query::current() {
  long row = slot_ >= 0 ? step_chain(slot_, Step::kCurrent) : 0;
  trace_printf("QueryCurrent %d %ld\n", number(), row);
  trace_flush();
  return row;
}

Query Query::duplicate() const {
  int head = -1;
  if (slot_ >= 0) {
    int tail = -1;
    for (int q : chain_of(slot_)) {
      int copy = take_query();
      if (copy < 0) {
        release_chain(head);
        head = -1;
        break;
      }
      QueryState& from = engine().query(q);
      QueryState& to = engine().query(copy);
      to.table_slot = from.table_slot;
      to.table_serial = from.table_serial;
      to.column = from.column;
      to.cursor = from.cursor.duplicate();
      to.key = from.key;
      to.bound = from.bound;
      to.exact = from.exact;
      if (tail >= 0) engine().query(tail).next = copy;
      else head = copy;
      tail = copy;
    }
  }
  trace_printf("QueryDup %d %d\n", number(), head + 1);
  trace_flush();
  return head >= 0 ? Query(head) : Query();
}

bool Query::join(Table& table, int column, std::optional<Value> value, bool exact) {
  TableState* t = table_at(table.slot_, table.serial_);
  int joined = -1;
  if (slot_ >= 0 && t != nullptr) {
    TraceSuspension quiet;
    joined = start_query(*t, column, value, exact);
  }
  if (joined >= 0) engine().query(chain_of(slot_).back()).next = joined;
  if (tracing()) {
    trace_printf("QueryJoin %d %s ", number(), t ? t->column(column).name : "");
    trace_bound(t, column, value);
    trace_printf(" %d %d\n", exact ? 1 : 0, joined + 1);
    trace_flush();
  }
  return joined >= 0;
}

void Query::stop() {
  int number_shown = number();
  if (slot_ >= 0) release_chain(slot_);
  slot_ = -1;
  trace_printf("QueryStop %d\n", number_shown);
  trace_flush();
}

}  // namespace px::engine
