#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "jmd/engine/btree.h"
#include "jmd/engine/table.h"
#include "jmd/engine/table_internal.h"
#include "jmd/engine/table_test_support.h"

namespace px::engine {
namespace {

struct Item {
  char text[40];
  char code[12];
  int32_t number;
  uint32_t count;
  char hashed[20];
  char hashed_nc[20];
  float ratio;
  char name[24];
  int8_t tiny;
};

const ColumnDef kItemColumns[] = {
    {"Text", offsetof(Item, text), 40, kTypeTextNoCase, 0, nullptr},
    {"Code", offsetof(Item, code), 12, kTypeText, 0, nullptr},
    {"Number", offsetof(Item, number), 4, kTypeLong, 0, nullptr},
    {"Count", offsetof(Item, count), 4, kTypeUnsigned, 0, nullptr},
    {"Hashed", offsetof(Item, hashed), 20, kTypeString, 0, nullptr},
    {"HashedNc", offsetof(Item, hashed_nc), 20, kTypeStringNoCase, 0, nullptr},
    {"Ratio", offsetof(Item, ratio), 4, kTypeFloat, 0, nullptr},
    {"Name", offsetof(Item, name), 24, kTypeTextNoCase, kUniqueKey, nullptr},
    {"Tiny", offsetof(Item, tiny), 1, kTypeChar, 0, nullptr},
};
constexpr int kColumns = sizeof kItemColumns / sizeof kItemColumns[0];

// A text from a small set of spellings that share long beginnings, differ
// in case or run past sixteen bytes, so that duplicates are common.
std::string some_text(unsigned seed) {
  static const char* const kTexts[] = {
      "shared beginning of a long text A", "Shared Beginning Of A Long Text a",
      "shared beginning of a long text B", "shared beginning",
      "SHARED BEGINNING OF",               "short",
      "Short",                             "",
      "shared beginning of a long",        "zz top"};
  return kTexts[seed % 10];
}

Item item(unsigned k) {
  unsigned mix = k * 2654435761u;
  Item it{};
  std::snprintf(it.text, sizeof it.text, "%s", some_text(mix >> 7).c_str());
  std::snprintf(it.code, sizeof it.code, "%c%u", "aAbB"[mix % 4], (mix >> 9) % 7);
  it.number = static_cast<int32_t>((mix >> 5) % 41) - 20;
  it.count = (mix >> 3) % 5 == 0 ? 0xfffffff0u + (mix % 7) : (mix >> 11) % 13;
  std::snprintf(it.hashed, sizeof it.hashed, "%s", some_text(mix >> 13).c_str());
  std::snprintf(it.hashed_nc, sizeof it.hashed_nc, "%s", some_text(mix >> 17).c_str());
  it.ratio = static_cast<float>((mix >> 4) % 9) / 3.0f - 1.0f;
  std::snprintf(it.name, sizeof it.name, "%s item %u", k % 2 ? "Long named" : "long NAMED", k);
  it.tiny = static_cast<int8_t>((mix >> 6) % 200 - 100);
  return it;
}

class IndexBuildTest : public EngineTest {
 protected:
  void check_built_orders_as_kept();
};

// Limits on the engine's memory for one test, and back after it.
class MemoryLimits {
 public:
  MemoryLimits(size_t sort_run, size_t value_budget, int nodes)
      : run_(sort_run_entries()), budget_(value_budget::budget()), nodes_(node_cache::capacity()) {
    set_sort_run_entries(sort_run);
    value_budget::set_budget(value_budget);
    node_cache::set_capacity(nodes);
  }
  ~MemoryLimits() {
    set_sort_run_entries(run_);
    value_budget::set_budget(budget_);
    node_cache::set_capacity(nodes_);
  }

 private:
  size_t run_;
  size_t budget_;
  int nodes_;
};

// An index built over a full table must order rows exactly as one that took
// every row as it was added, for every kind of column.
TEST_F(IndexBuildTest, BuiltIndexOrdersAsOneKeptSinceTheFirstRow) { check_built_orders_as_kept(); }

// The same when the build sorts in runs of a few rows, when no value copy
// fits the budget (comparisons read the records) and when the node cache is
// far smaller than the indexes: the engine's memory stays within its limits.
TEST_F(IndexBuildTest, LimitsOnMemoryChangeNoOrder) {
  {
    MemoryLimits limits(7, kValueCopyBudget, kNodeCacheNodes);
    check_built_orders_as_kept();
  }
  {
    MemoryLimits limits(kSortRunEntries, 2000, kNodeCacheMinimum);
    ASSERT_EQ(node_cache::capacity(), kNodeCacheMinimum);
    check_built_orders_as_kept();
  }
  {
    MemoryLimits limits(50, 0, kNodeCacheMinimum);
    check_built_orders_as_kept();
  }
}

void IndexBuildTest::check_built_orders_as_kept() {
  Table built = Table::open("built.tmp", sizeof(Item), kOpenNew, kItemColumns);
  Table kept = Table::open("kept.tmp", sizeof(Item), kOpenNew, kItemColumns);
  ASSERT_TRUE(built && kept);
  for (int c = 0; c < kColumns; ++c) {
    if (!kept.has_index(c)) {
      ASSERT_TRUE(kept.add_index(c));
    }
  }
  const unsigned kRows = 700;
  for (unsigned k = 1; k <= kRows; ++k) {
    Item it = item(k);
    ASSERT_EQ(built.add_row(record_bytes(it)), k);
    ASSERT_EQ(kept.add_row(record_bytes(it)), k);
  }
  for (int c = 0; c < kColumns; ++c) {
    SCOPED_TRACE(kItemColumns[c].name);
    std::vector<long> order = rows_of(built, c);
    ASSERT_EQ(order.size(), kRows);
    EXPECT_EQ(order, rows_of(kept, c));
  }
  // The built indexes take later changes as the kept ones do.
  for (unsigned k = 1; k <= kRows; k += 7) {
    Item it = item(k * 31 + 5);
    std::snprintf(it.name, sizeof it.name, "renamed %u", k);
    ASSERT_TRUE(built.update_row(k, record_bytes(it)));
    ASSERT_TRUE(kept.update_row(k, record_bytes(it)));
  }
  for (int c = 0; c < kColumns; ++c) {
    SCOPED_TRACE(kItemColumns[c].name);
    EXPECT_EQ(rows_of(built, c), rows_of(kept, c));
  }
  EXPECT_EQ(rows_of(built, 0, Value("SHARED BEGINNING OF A LONG TEXT A"), true),
            rows_of(kept, 0, Value("shared beginning of a long text a"), true));
  EXPECT_LE(value_budget::bytes_in_use(), value_budget::budget());
  EXPECT_LE(node_cache::nodes_in_use(), node_cache::capacity());
}

// Values kept from the start, or from when asked, build the same index as
// the records do, and stay in step with changes while no index is there.
TEST_F(IndexBuildTest, KeptValuesBuildTheIndexTheRecordsWould) {
  Table kept = Table::open("kept.tmp", sizeof(Item), kOpenNew, kItemColumns);
  Table plain = Table::open("plain.tmp", sizeof(Item), kOpenNew, kItemColumns);
  ASSERT_TRUE(kept && plain);
  EXPECT_TRUE(kept.keep_values(0));
  EXPECT_TRUE(kept.keep_values(4));
  EXPECT_FALSE(kept.keep_values(2));  // an integer column is not compared by value
  EXPECT_FALSE(kept.keep_values(kColumns));
  auto add = [&](unsigned from, unsigned to) {
    for (unsigned k = from; k <= to; ++k) {
      ASSERT_EQ(kept.add_row(record_bytes(item(k))), k);
      ASSERT_EQ(plain.add_row(record_bytes(item(k))), k);
    }
  };
  auto change = [&](unsigned seed) {
    for (unsigned k = 1; k <= 400; k += 9) {
      Item it = item(k * seed);
      std::snprintf(it.name, sizeof it.name, "changed %u %u", seed, k);
      ASSERT_TRUE(kept.update_row(k, record_bytes(it)));
      ASSERT_TRUE(plain.update_row(k, record_bytes(it)));
    }
  };
  add(1, 300);
  EXPECT_TRUE(kept.keep_values(5));  // asked for with rows present
  add(301, 400);
  change(7);
  for (int c : {0, 4, 5}) {
    SCOPED_TRACE(kItemColumns[c].name);
    EXPECT_EQ(rows_of(kept, c), rows_of(plain, c));
    ASSERT_TRUE(kept.drop_index(c));
    ASSERT_TRUE(plain.drop_index(c));
  }
  change(11);
  for (int c : {0, 4, 5}) {
    SCOPED_TRACE(kItemColumns[c].name);
    std::vector<long> order = rows_of(kept, c);
    EXPECT_EQ(order.size(), 400u);
    EXPECT_EQ(order, rows_of(plain, c));
  }
}

// A value read through read_value() is the record's, whether it comes from
// the kept copies (a case-sensitive text, short or past the first bytes) or
// from the record (a case-insensitive text, whose copy is lowered, or a
// number), also after updates.
TEST_F(IndexBuildTest, ReadValueGivesTheRecordsValue) {
  Table table = Table::open("values.tmp", sizeof(Item), kOpenNew, kItemColumns);
  ASSERT_TRUE(table);
  ASSERT_TRUE(table.keep_values(4));
  ASSERT_TRUE(table.keep_values(0));
  for (unsigned k = 1; k <= 200; ++k) ASSERT_EQ(table.add_row(record_bytes(item(k))), k);
  for (unsigned k = 3; k <= 200; k += 7) {
    Item it = item(k);
    std::snprintf(it.hashed, sizeof it.hashed, "Updated, longer %u", k % 100);
    std::snprintf(it.text, sizeof it.text, "Changed %u", k);
    ASSERT_TRUE(table.update_row(k, record_bytes(it)));
  }
  std::vector<std::byte> value(40);
  for (long row = 1; row <= 200; ++row) {
    Item record{};
    ASSERT_TRUE(table.get_row(row, record_bytes(record)));
    const auto* bytes = reinterpret_cast<const std::byte*>(&record);
    for (int c : {0, 2, 4}) {
      const ColumnDef& def = kItemColumns[c];
      ASSERT_TRUE(table.read_value(row, c, value)) << row;
      std::vector<std::byte> expected(bytes + def.position, bytes + def.position + def.width);
      if (c != 2) {  // a text: nothing past its NUL
        size_t length = strnlen(reinterpret_cast<const char*>(expected.data()), def.width);
        std::fill(expected.begin() + static_cast<std::ptrdiff_t>(length), expected.end(),
                  std::byte{0});
      }
      ASSERT_TRUE(std::equal(expected.begin(), expected.end(), value.begin()))
          << "row " << row << " column " << def.name;
    }
  }
  EXPECT_FALSE(table.read_value(0, 4, value));
  EXPECT_FALSE(table.read_value(201, 4, value));
  EXPECT_FALSE(table.read_value(1, kColumns, value));
  std::vector<std::byte> small(10);
  EXPECT_FALSE(table.read_value(1, 4, small));
}

// Rows written under a non-unique definition and opened again under a unique
// one: the index cannot be built, and the duplicate is reported.
TEST_F(IndexBuildTest, DuplicatesInAUniqueColumnRefuseTheIndex) {
  // Name runs past sixteen bytes; Code (short) and Number repeat often.
  ColumnDef loose[] = {kItemColumns[7], kItemColumns[1], kItemColumns[2]};
  for (ColumnDef& column : loose) column.flags = 0;
  {
    Table t = Table::open("dup.tmp", sizeof(Item), kOpenCreateIfMissing, loose);
    ASSERT_TRUE(t);
    for (unsigned k = 1; k <= 50; ++k) {
      Item it = item(k);
      if (k == 40) std::strcpy(it.name, "LONG NAMED ITEM 12");
      ASSERT_EQ(t.add_row(record_bytes(it)), k);
    }
  }
  ColumnDef strict[] = {loose[0], loose[1], loose[2]};
  for (ColumnDef& column : strict) column.flags = kUniqueKey;
  Table t = Table::open("dup.tmp", sizeof(Item), kOpenCreateIfMissing, strict);
  ASSERT_TRUE(t);
  for (int c = 0; c < 3; ++c) {
    SCOPED_TRACE(strict[c].name);
    log_.clear();
    EXPECT_FALSE(t.add_index(c));
    EXPECT_FALSE(t.has_index(c));
    EXPECT_TRUE(log_.contains(std::string("already has a row with this ") + strict[c].name));
    EXPECT_FALSE(std::filesystem::exists(t.index_file_name(c)));
  }
}

}  // namespace
}  // namespace px::engine
