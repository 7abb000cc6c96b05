#include "jmd/job_names.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace px::jmd {
namespace {

// A list noted from job rows 1, 2, ... with these names.
JobNames noted(const std::vector<std::string>& rows) {
  JobNames names;
  for (size_t i = 0; i < rows.size(); ++i) names.note_row(static_cast<long>(i) + 1, rows[i]);
  names.finish_notes(static_cast<long>(rows.size()) + 1);
  return names;
}

std::vector<std::string> listed_names(JobNames& names) {
  std::vector<std::string> out;
  for (uint32_t id : names.in_order(0, names.size())) out.emplace_back(names.name(id));
  return out;
}

// The list order the slow way: every listed entry sorted by name without
// regard to case, then by entry number.
std::vector<uint32_t> sorted_the_slow_way(const JobNames& names) {
  std::vector<uint32_t> ids;
  for (long id = 1; id <= names.entries(); ++id) {
    if (names.listed(id)) ids.push_back(static_cast<uint32_t>(id));
  }
  std::sort(ids.begin(), ids.end(), [&](uint32_t a, uint32_t b) {
    std::string x(names.name(a)), y(names.name(b));
    for (char& c : x) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    for (char& c : y) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return x != y ? x < y : a < b;
  });
  return ids;
}

TEST(JobNames, RunsOfNeighbouringRowsWithTheirRows) {
  JobNames names = noted({"B", "B", "a", "B", "b", "b", "C"});
  // Exact comparison of neighbours: "B" and "b" are two runs.
  ASSERT_EQ(names.entries(), 5);
  EXPECT_EQ(names.run(1), std::make_pair(1L, 3L));
  EXPECT_EQ(names.run(3), std::make_pair(4L, 5L));
  EXPECT_EQ(names.run(5), std::make_pair(7L, 8L));
  // Case is ignored in the order; equal names keep their entry order.
  EXPECT_EQ(listed_names(names), (std::vector<std::string>{"a", "B", "B", "b", "C"}));
  EXPECT_EQ(names.find("b"), 1);
  EXPECT_EQ(names.find_all("B"), (std::vector<long>{1, 3, 4}));
  EXPECT_EQ(names.find("BB"), 0);
  // A shorter name comes before a longer one it starts.
  EXPECT_LT(JobNames::compare("AB", "abc"), 0);
  EXPECT_EQ(JobNames::compare("AbC", "aBc"), 0);
}

TEST(JobNames, PagesAskedInAnyOrderAreThoseOfTheWholeSort) {
  std::mt19937 random(7);
  std::vector<std::string> rows;
  const char* prefixes[] = {"Form", "FORM", "form", "a_long_prefix_past_sixteen_bytes_"};
  for (int i = 0; i < 5000; ++i) {
    rows.push_back(prefixes[random() % 4] + std::to_string(random() % 1500));
  }
  JobNames names = noted(rows);
  std::vector<uint32_t> expected = sorted_the_slow_way(names);
  ASSERT_EQ(names.size(), static_cast<long>(expected.size()));
  const long page = 97;
  std::vector<long> firsts;
  for (long first = 0; first < names.size(); first += page) firsts.push_back(first);
  std::shuffle(firsts.begin(), firsts.end(), random);
  for (long first : firsts) {
    std::span<const uint32_t> got = names.in_order(first, page);
    ASSERT_TRUE(std::equal(got.begin(), got.end(), expected.begin() + first)) << first;
  }
  // Pages overlapping the ones put in order already.
  for (long first : {5L, 150L, 4000L}) {
    std::span<const uint32_t> got = names.in_order(first, 300);
    ASSERT_TRUE(std::equal(got.begin(), got.end(), expected.begin() + first)) << first;
  }
  EXPECT_TRUE(names.in_order(names.size(), 10).empty());
}

TEST(JobNames, ChangesKeepTheOrderAndUndoExactly) {
  std::mt19937 random(11);
  std::vector<std::string> rows;
  for (int i = 0; i < 3000; ++i) rows.push_back("Job" + std::to_string(random() % 900));
  JobNames names = noted(rows);
  // A page first, so that the first change meets a list in parts.
  names.in_order(1000, 50);
  long added = names.add("job5");
  EXPECT_EQ(names.name(added), "job5");
  long gone = names.find("JOB1");
  ASSERT_NE(gone, 0);
  EXPECT_TRUE(names.unlist(gone));
  EXPECT_FALSE(names.unlist(gone));
  EXPECT_FALSE(names.listed(gone));
  std::vector<uint32_t> expected = sorted_the_slow_way(names);
  std::span<const uint32_t> all = names.in_order(0, names.size());
  EXPECT_TRUE(std::equal(all.begin(), all.end(), expected.begin(), expected.end()));
  EXPECT_TRUE(names.relist(gone));
  EXPECT_TRUE(names.unlist(added));
  EXPECT_FALSE(names.relist(names.entries() + 1));
  expected = sorted_the_slow_way(names);
  all = names.in_order(0, names.size());
  EXPECT_TRUE(std::equal(all.begin(), all.end(), expected.begin(), expected.end()));
  EXPECT_EQ(names.size(), names.entries() - 1);
  // An added name has no rows of the job table; a long one is cut.
  EXPECT_EQ(names.run(added), std::make_pair(0L, 0L));
  EXPECT_EQ(names.name(names.add(std::string(60, 'x'))).size(), JobNames::kLongest);
}

TEST(JobNames, AnEmptyListHasNoPage) {
  JobNames names = noted({});
  EXPECT_EQ(names.size(), 0);
  EXPECT_TRUE(names.in_order(0, 1000).empty());
  EXPECT_EQ(names.find("A"), 0);
  EXPECT_EQ(names.name(1), "");
  long a = names.add("A");
  EXPECT_EQ(listed_names(names), (std::vector<std::string>{"A"}));
  EXPECT_TRUE(names.unlist(a));
  EXPECT_EQ(names.size(), 0);
}

}  // namespace
}  // namespace px::jmd
