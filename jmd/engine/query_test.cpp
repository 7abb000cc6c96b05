#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <vector>

#include "jmd/engine/table.h"
#include "jmd/engine/table_test_support.h"

namespace px::engine {
namespace {

class QueryTest : public EngineTest {
 protected:
  void SetUp() override {
    table_ = open_printers();
    ASSERT_TRUE(table_);
    // Rows 1..6: names out of order and in mixed case; ids repeat.
    const char* names[] = {"delta", "Alpha", "charlie", "BRAVO", "echo", "alpha2"};
    const char* ids[] = {"X", "Y", "X", "Z", "X", "Y"};
    for (int i = 0; i < 6; ++i) {
      ASSERT_EQ(table_.add_row(record_bytes(printer(names[i], ids[i], i % 2))), i + 1);
    }
  }
  Table table_;
};

TEST_F(QueryTest, BoundsAndExactness) {
  EXPECT_EQ(rows_of(table_, 1), (std::vector<long>{2, 6, 4, 3, 1, 5}));
  EXPECT_EQ(rows_of(table_, 1, Value("b")), (std::vector<long>{4, 3, 1, 5}));
  EXPECT_EQ(rows_of(table_, 1, Value("CHARLIE"), true), (std::vector<long>{3}));
  EXPECT_EQ(rows_of(table_, 1, Value("zulu")), std::vector<long>{});
  EXPECT_EQ(rows_of(table_, 2, Value("x"), true), (std::vector<long>{1, 3, 5}));
  EXPECT_EQ(rows_of(table_, 2, Value("Y"), true), (std::vector<long>{2, 6}));
  EXPECT_EQ(rows_of(table_, 2, Value("W"), true), std::vector<long>{});
  int32_t one = 1;
  EXPECT_EQ(rows_of(table_, 3, value_of(one), true), (std::vector<long>{2, 4, 6}));
  // Exact needs a value; the column must be within the index bound.
  EXPECT_FALSE(Query::start(table_, 2, std::nullopt, true));
  EXPECT_FALSE(Query::start(table_, 6, std::nullopt, false));
}

TEST_F(QueryTest, PreviousCurrentAndTheEnds) {
  Query q = Query::start(table_, 1, Value("c"), false);
  ASSERT_TRUE(q);
  EXPECT_EQ(q.current(), 3);  // stands before charlie
  EXPECT_EQ(q.next(), 3);
  EXPECT_EQ(q.next(), 1);
  EXPECT_EQ(q.current(), 1);
  EXPECT_EQ(q.previous(), 3);
  EXPECT_EQ(q.previous(), 4);
  EXPECT_EQ(q.previous(), 6);
  EXPECT_EQ(q.previous(), 2);
  EXPECT_EQ(q.previous(), 0);
  EXPECT_EQ(q.next(), 2);
  Query exact = Query::start(table_, 2, Value("X"), true);
  EXPECT_EQ(exact.next(), 1);
  EXPECT_EQ(exact.next(), 3);
  EXPECT_EQ(exact.previous(), 1);
  EXPECT_EQ(exact.previous(), 0);  // the start of the index
}

TEST_F(QueryTest, EmptyTableGivesAQueryThatEndsAtOnce) {
  Table empty = Table::open("empty.tmp", sizeof(Printer), kOpenNew, printer_columns());
  Query q = Query::start(empty, 1, std::nullopt, false);
  ASSERT_TRUE(q);
  EXPECT_EQ(q.next(), 0);
  EXPECT_EQ(q.previous(), 0);
  Query bounded = Query::start(empty, 2, Value("A"), true);
  ASSERT_TRUE(bounded);
  EXPECT_EQ(bounded.next(), 0);
}

TEST_F(QueryTest, JoinKeepsRowsWhereEveryConditionHolds) {
  int32_t zero = 0;
  Query q = Query::start(table_, 2, Value("X"), true);  // rows 1, 3, 5
  ASSERT_TRUE(q.join(table_, 3, value_of(zero), true));  // rows 1, 3, 5 have priority 0
  std::vector<long> rows;
  for (long r = q.next(); r != 0; r = q.next()) rows.push_back(r);
  EXPECT_EQ(rows, (std::vector<long>{1, 3, 5}));

  Query y = Query::start(table_, 2, Value("Y"), true);  // rows 2, 6 (priority 1, 1)
  ASSERT_TRUE(y.join(table_, 3, value_of(zero), true));
  EXPECT_EQ(y.next(), 0);

  Query names = Query::start(table_, 1, Value("b"), false);  // 4, 3, 1, 5 by name
  ASSERT_TRUE(names.join(table_, 2, Value("X"), true));    // 1, 3, 5 by row
  rows.clear();
  for (long r = names.next(); r != 0; r = names.next()) rows.push_back(r);
  // Only where both agree on a row: the first query runs by name, so of its
  // rows 4, 3, 1, 5 the merge meets the exact query's 1, 3, 5 at row 5 alone.
  EXPECT_EQ(rows, (std::vector<long>{5}));
}

TEST_F(QueryTest, DuplicateWalksOnItsOwn) {
  Query q = Query::start(table_, 1, std::nullopt, false);
  EXPECT_EQ(q.next(), 2);
  Query copy = q.duplicate();
  ASSERT_TRUE(copy);
  EXPECT_NE(copy.number(), q.number());
  EXPECT_EQ(copy.next(), 6);
  EXPECT_EQ(copy.next(), 4);
  EXPECT_EQ(q.next(), 6);
  // Rows added while a query is open are seen where they sort.
  ASSERT_EQ(table_.add_row(record_bytes(printer("bz", "Q", 0))), 7);
  EXPECT_EQ(q.next(), 4);
  EXPECT_EQ(q.next(), 7);
  EXPECT_EQ(copy.next(), 7);
}

TEST_F(QueryTest, PoolOfTwentyQueries) {
  std::vector<Query> queries;
  for (int i = 0; i < 20; ++i) {
    queries.push_back(Query::start(table_, 1, std::nullopt, false));
    ASSERT_TRUE(queries.back()) << i;
    EXPECT_EQ(queries.back().number(), i + 1);
  }
  EXPECT_FALSE(Query::start(table_, 1, std::nullopt, false));
  EXPECT_FALSE(queries[0].duplicate());
  queries[4].stop();
  Query again = Query::start(table_, 1, std::nullopt, false);
  EXPECT_EQ(again.number(), 5);
  EXPECT_FALSE(queries[7].join(table_, 2, Value("X"), true));
  // A chain that needs two slots when only one is free is released whole.
  queries[9].stop();
  queries[10].stop();
  ASSERT_TRUE(queries[7].join(table_, 2, Value("X"), true));
  EXPECT_FALSE(queries[7].duplicate());
  EXPECT_EQ(Query::start(table_, 1, std::nullopt, false).number(), 11);
}

TEST_F(QueryTest, ClosedTableEndsItsQueries) {
  Query q = Query::start(table_, 1, std::nullopt, false);
  EXPECT_EQ(q.next(), 2);
  table_.close();
  EXPECT_EQ(q.next(), 0);
  EXPECT_EQ(q.current(), 0);
}

// Texts that agree in their first sixteen bytes are ordered by the rest;
// shorter ones, and those that end right there, come first.
TEST_F(EngineTest, LongTextsOrderPastTheirFirstSixteenBytes) {
  Table table = open_printers();
  ASSERT_TRUE(table);
  const char* comments[] = {"Shared first sixteen B", "shared first sixteen a",
                            "SHARED FIRST SIX",       "shared first si",
                            "Shared First Sixteen A", "Zed",
                            "shared first sixteen"};
  const char* names[] = {"p1", "p2", "p3", "p4", "p5", "p6", "p7"};
  for (int i = 0; i < 7; ++i) {
    Printer p = printer(names[i], "X", 0);
    std::snprintf(p.comment, sizeof p.comment, "%s", comments[i]);
    ASSERT_EQ(table.add_row(record_bytes(p)), i + 1);
  }
  const int comment = 4;
  EXPECT_EQ(rows_of(table, comment), (std::vector<long>{4, 3, 7, 2, 5, 1, 6}));
  EXPECT_EQ(rows_of(table, comment, Value("SHARED FIRST SIXTEEN A"), true),
            (std::vector<long>{2, 5}));
  EXPECT_EQ(rows_of(table, comment, Value("shared first sixteen b")), (std::vector<long>{1, 6}));
  EXPECT_EQ(rows_of(table, comment, Value("shared first six"), true), (std::vector<long>{3}));

  // A long text made short and a short one made long move to their places.
  Printer p{};
  ASSERT_TRUE(table.get_row(1, record_bytes(p)));
  std::strcpy(p.comment, "A");
  ASSERT_TRUE(table.update_row(1, record_bytes(p)));
  ASSERT_TRUE(table.get_row(4, record_bytes(p)));
  std::strcpy(p.comment, "shared first sixteen C and more");
  ASSERT_TRUE(table.update_row(4, record_bytes(p)));
  EXPECT_EQ(rows_of(table, comment), (std::vector<long>{1, 3, 7, 2, 5, 4, 6}));
  EXPECT_EQ(rows_of(table, comment, Value("Shared first sixteen c AND MORE"), true),
            (std::vector<long>{4}));
}

// A unique text column refuses a value equal to another without regard to
// case, however far into the text they first differ in case only.
TEST_F(EngineTest, UniqueLongTextsRefuseEqualValuesPastSixteenBytes) {
  static const ColumnDef columns[] = {
      {"Comment", offsetof(Printer, comment), 40, kTypeTextNoCase, kUniqueKey, nullptr},
  };
  Table table = Table::open("notes.tmp", sizeof(Printer), kOpenNew, columns);
  ASSERT_TRUE(table);
  Printer p = printer("a", "X", 0);
  std::strcpy(p.comment, "seventeen letters long text");
  ASSERT_EQ(table.add_row(record_bytes(p)), 1);
  std::strcpy(p.comment, "seventeen letters long texT");
  EXPECT_EQ(table.add_row(record_bytes(p)), 0);
  std::strcpy(p.comment, "seventeen letters long texts");
  EXPECT_EQ(table.add_row(record_bytes(p)), 2);
  std::strcpy(p.comment, "SEVENTEEN");
  EXPECT_EQ(table.add_row(record_bytes(p)), 3);
  std::strcpy(p.comment, "Seventeen");
  EXPECT_EQ(table.add_row(record_bytes(p)), 0);
  EXPECT_EQ(rows_of(table, 0), (std::vector<long>{3, 1, 2}));
}

}  // namespace
}  // namespace px::engine
