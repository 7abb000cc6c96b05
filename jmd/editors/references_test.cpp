#include "jmd/editors/references.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "jmd/editors/editor_test_support.h"
#include "jmd/jmd_schema.h"

namespace px::editors {
namespace {

std::string step(const std::string& job, const std::string& printer) {
  return "!f " + job + " " + printer + " f.mdf * 1 T PXMERGE N N C *\n";
}

// 999 jobs A000 to A998 on a printer that is there, then job B in three runs
// (B, C, B, C, B) of which only the last names a missing printer: in list
// order B's entries stand at 999 to 1001, across the first page's end.
std::string jmd_across_pages() {
  std::string text = kJmdHeader;
  char name[8];
  for (int i = 998; i >= 0; --i) {
    std::snprintf(name, sizeof name, "A%03d", i);
    text += step(name, "LASER1");
  }
  text += step("B", "LASER1") + step("C", "LASER1") + step("b", "LASER1") + step("C", "LASER1") +
          step("B", "GONE");
  text += "!p LASER1 HP4 LPT1 * 50 *\n!x PXMERGE WClass pxmerge.exe * *\n";
  return text;
}

// The page's lines with " !" after the marked ones.
std::vector<std::string> marked_page(JmdEditor& editor, RowList& list) {
  std::vector<std::string> lines = editor.page_lines(list);
  std::vector<bool> marks = page_marks(editor, list);
  EXPECT_EQ(marks.size(), lines.size());
  for (size_t i = 0; i < lines.size() && i < marks.size(); ++i) {
    lines[i] = lines[i].substr(0, lines[i].find(' ')) + (marks[i] ? " !" : "");
  }
  return lines;
}

TEST(PageMarks, AJobIsMarkedOnBothPagesFromTheRowsItWasListedFrom) {
  EditorFixture jmd(jmd_across_pages());
  ASSERT_TRUE(jmd.loaded());
  JmdEditor& editor = jmd.editor();
  RowList list(ListKind::kJobNames);
  ASSERT_TRUE(editor.reload(list));
  ASSERT_EQ(list.total(), 1004);  // 999 + B, b, B + C, C
  std::vector<std::string> first = marked_page(editor, list);
  EXPECT_EQ(first.front(), "A000");
  EXPECT_EQ(first.back(), "B !");
  // No query by job name was needed: the job table has no index over it.
  engine::Table& jobs = *editor.table(ListKind::kSteps);
  EXPECT_FALSE(jobs.has_index(jobs.find_column("FormName")));
  list.next_page();
  EXPECT_EQ(marked_page(editor, list),
            (std::vector<std::string>{"b !", "B !", "C", "C"}));

  // Once the job table has changed, the marks come from queries: the same.
  ASSERT_EQ(editor.delete_rows(ListKind::kJobNames, {editor.find_row(ListKind::kJobNames, "A000")}),
            1);
  ASSERT_TRUE(editor.reload(list));
  list.show_from(0);
  EXPECT_EQ(marked_page(editor, list).back(), "b !");
  list.next_page();
  EXPECT_EQ(marked_page(editor, list), (std::vector<std::string>{"B !", "C", "C"}));
}

// A job window opened on a JMD as loaded lists the steps of every run of its
// job (any case) without a query, as the query lists them.
TEST(JobWindowRows, AsLoadedTheyAreTheRowsOfEveryRunOfTheJob) {
  EditorFixture jmd(jmd_across_pages());
  ASSERT_TRUE(jmd.loaded());
  JmdEditor& editor = jmd.editor();
  RowList names(ListKind::kJobNames);
  ASSERT_TRUE(editor.reload(names));
  RowList steps(ListKind::kSteps, "b");
  ASSERT_TRUE(editor.reload(steps));
  EXPECT_EQ(steps.rows(), (std::vector<long>{1000, 1002, 1004}));
  engine::Table& jobs = *editor.table(ListKind::kSteps);
  EXPECT_FALSE(jobs.has_index(jobs.find_column("FormName")));
  RowList queried(ListKind::kSteps, "b");
  ASSERT_TRUE(queried.reload(jobs));
  EXPECT_EQ(queried.rows(), steps.rows());
  // Once a step is added, the query lists them.
  Record added = blank_record(jobs);
  set_text(jmd::kJobTable, added, "FormName", "b");
  ASSERT_FALSE(editor.insert_steps(steps.rows(), 1, {added}).empty());
  ASSERT_TRUE(editor.reload(steps));
  EXPECT_EQ(steps.rows().size(), 4u);
  EXPECT_EQ(steps.rows().front(), 1000);
}

TEST(PageMarks, StepsNamingAMissingTaskOrPrinterAreMarked) {
  EditorFixture jmd(std::string(kJmdHeader) + step("J", "LASER1") + step("J", "GONE") +
                    "!f J LASER1 f.mdf * 1 T NOTASK N N C *\n" + step("J", "*") +
                    "!p LASER1 HP4 LPT1 * 50 *\n!x PXMERGE WClass pxmerge.exe * *\n");
  ASSERT_TRUE(jmd.loaded());
  RowList list(ListKind::kSteps, "J");
  ASSERT_TRUE(jmd.editor().reload(list));
  EXPECT_EQ(page_marks(jmd.editor(), list), (std::vector<bool>{false, true, true, false}));
  RowList printers(ListKind::kPrinters);
  ASSERT_TRUE(jmd.editor().reload(printers));
  EXPECT_EQ(page_marks(jmd.editor(), printers), (std::vector<bool>{false}));
}

}  // namespace
}  // namespace px::editors
