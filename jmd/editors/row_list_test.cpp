#include "jmd/editors/row_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

#include "jmd/editors/editor_test_support.h"

namespace px::editors {
namespace {

std::string printers(int count) {
  std::string text = kJmdHeader;
  char line[64];
  for (int i = 0; i < count; ++i) {
    std::snprintf(line, sizeof line, "!p P%05d * LPT1 * 50 *\n", i);
    text += line;
  }
  return text;
}

std::string steps(int count) {
  std::string text = kJmdHeader;
  for (int i = 0; i < count; ++i) text += "!f JOB P f" + std::to_string(i) + " * 1 T X N N C *\n";
  return text;
}

TEST(Paging, AThousandRowsAreOnePageAndOneMoreBringsThePagingButtons) {
  EditorFixture full(printers(1000));
  RowList list(ListKind::kPrinters);
  ASSERT_TRUE(list.reload(*full.editor().table(ListKind::kPrinters)));
  EXPECT_EQ(list.total(), 1000);
  EXPECT_EQ(list.shown(), 1000);
  EXPECT_FALSE(list.paged());

  EditorFixture over(printers(1001));
  engine::Table& table = *over.editor().table(ListKind::kPrinters);
  RowList paged(ListKind::kPrinters);
  ASSERT_TRUE(paged.reload(table));
  EXPECT_TRUE(paged.paged());
  EXPECT_EQ(paged.shown(), 1000);
  EXPECT_FALSE(paged.has_previous());
  EXPECT_TRUE(paged.has_next());
  paged.next_page();
  EXPECT_EQ(paged.page_first(), 1000);
  EXPECT_EQ(paged.shown(), 1);
  EXPECT_EQ(paged.page_lines(table).at(0).substr(0, 6), "P01000");
  EXPECT_FALSE(paged.has_next());
  paged.previous_page();
  EXPECT_EQ(paged.page_first(), 0);
}

TEST(Paging, StepsEndWithAnEmptyRowOnlyOnTheirLastPage) {
  EditorFixture jmd(steps(1001));
  engine::Table& table = *jmd.editor().table(ListKind::kSteps);
  RowList list(ListKind::kSteps, "JOB");
  ASSERT_TRUE(list.reload(table));
  EXPECT_FALSE(list.trailing_empty_row());
  list.next_page();
  EXPECT_TRUE(list.trailing_empty_row());
  // Steps listed in table order, not sorted by their form file.
  EXPECT_EQ(list.page_lines(table).at(0).substr(10, 5), "f1000");
  RowList few(ListKind::kSteps, "job");
  ASSERT_TRUE(few.reload(table));
  few.show_page_of(1000);
  EXPECT_EQ(few.page_first(), 1000);
}

TEST(Filter, NarrowsTheWholeTableAndPagesWhatIsLeft) {
  EditorFixture jmd(printers(2500));
  engine::Table& table = *jmd.editor().table(ListKind::kPrinters);
  RowList list(ListKind::kPrinters);
  list.set_filter("p01");
  ASSERT_TRUE(list.reload(table));
  EXPECT_EQ(list.total(), 1000);
  EXPECT_FALSE(list.paged());
  EXPECT_EQ(list.page_lines(table).back().substr(0, 6), "P01999");
  // A reload after rows went keeps the page where it still fits.
  list.set_filter("");
  ASSERT_TRUE(list.reload(table));
  list.next_page();
  list.next_page();
  EXPECT_EQ(list.page_first(), 2000);
  list.set_filter("P00");
  ASSERT_TRUE(list.reload(table));
  EXPECT_EQ(list.page_first(), 0);
}

// Job names are matched by their names alone, long ones whole, as the
// names are now (a renamed row is matched by its new name).
TEST(Filter, MatchesJobNamesAsTheyAreNow) {
  std::string text = kJmdHeader;
  for (const char* job : {"Invoice", "CHEQUE", "A_VERY_LONG_JOB_NAME_OF_MONTHLY_INVOICES", "stock"}) {
    text += std::string("!f ") + job + " P f.mdf * 1 T X N N C *\n";
  }
  EditorFixture jmd(text);
  std::shared_ptr<jmd::JobNames> shared = jmd.editor().job_names();
  jmd::JobNames& names = *shared;
  RowList list(ListKind::kJobNames);
  list.set_filter("invoice");
  ASSERT_TRUE(list.reload(shared));
  std::vector<std::string> lines = list.page_lines(names);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0], "A_VERY_LONG_JOB_NAME_OF_MONTHLY_INVOICES" + std::string(11, ' '));
  EXPECT_EQ(lines[1].substr(0, 8), "Invoice ");

  // stock goes, INVOICE_STOCK comes.
  ASSERT_TRUE(names.unlist(names.find("STOCK")));
  names.add("INVOICE_STOCK");
  ASSERT_TRUE(list.reload(shared));
  EXPECT_EQ(list.total(), 3);
  list.set_filter("x_st");
  ASSERT_TRUE(list.reload(shared));
  EXPECT_EQ(list.total(), 0);
  list.set_filter("e_st");
  ASSERT_TRUE(list.reload(shared));
  EXPECT_EQ(list.total(), 1);
}

// Job names in no order, more than a filter puts in order by itself: the
// pages of the filtered list, and of the list without the filter, are those
// of the whole sorted list.
TEST(Filter, ManyJobNamesKeptComeInListOrder) {
  std::string text = kJmdHeader;
  char line[64];
  std::vector<std::string> kept;
  for (int i = 0; i < 12000; ++i) {
    int n = (i * 7919) % 12000;
    std::snprintf(line, sizeof line, "%s%05d", n % 2 ? "job" : "JOB", n);
    text += std::string("!f ") + line + " P f.mdf * 1 T X N N C *\n";
    kept.push_back(std::string(line) + std::string(43, ' '));
    if (i % 20 == 0) text += "!f ZZ" + std::to_string(i) + " P f.mdf * 1 T X N N C *\n";
  }
  std::sort(kept.begin(), kept.end(), [](const std::string& a, const std::string& b) {
    return jmd::JobNames::compare(a, b) < 0;
  });
  EditorFixture jmd(text);
  RowList list(ListKind::kJobNames);
  ASSERT_TRUE(jmd.editor().reload(list));
  list.show_page_of(5500);
  EXPECT_EQ(jmd.editor().page_lines(list).at(500).substr(0, 8), "JOB05500");
  list.set_filter("o");  // every JOB and job, no ZZ
  ASSERT_TRUE(jmd.editor().reload(list));
  ASSERT_EQ(list.total(), 12000);
  std::vector<std::string> all;
  for (list.show_from(0);; list.next_page()) {
    for (std::string& one : jmd.editor().page_lines(list)) all.push_back(one);
    if (!list.has_next()) break;
  }
  EXPECT_EQ(all, kept);

  // The JMD closed under the list: its pages are empty from then on.
  list.set_filter("");
  ASSERT_TRUE(jmd.editor().reload(list));
  jmd.editor().service().close();
  list.next_page();
  EXPECT_EQ(list.shown(), 0);
  EXPECT_TRUE(list.page().empty());
}

}  // namespace
}  // namespace px::editors
