#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "toolkit/headless/headless_fixture.h"

namespace px::tk {
namespace {

using namespace sample;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using ControlsTest = HeadlessTest;

TEST_F(ControlsTest, TypingHonoursTheLimitAndTheCaret) {
  with_sample([&](Window d) {
    Control name = d.control(kName);
    rec.take();
    EXPECT_TRUE(tk.type(d, kName, "abcdefg"));  // limit 5: "f" and "g" are refused
    EXPECT_EQ(name.text(), "abcde");
    EXPECT_THAT(rec.take(), ElementsAre("15 3 in", "15 3 changed", "15 3 changed", "15 3 changed",
                                        "15 3 changed", "15 3 changed"));
    name.set_selection(1, 3);
    EXPECT_TRUE(tk.type(d, kName, "X"));
    EXPECT_EQ(name.text(), "aXde");
    EXPECT_EQ(name.selection().start, 2);
    name.set_caret(0);
    tk.type(d, kName, "\b");  // nothing before the caret: no change
    name.set_caret(4);
    tk.type(d, kName, "\b\b");
    EXPECT_EQ(name.text(), "aX");
    EXPECT_THAT(rec.take(), ElementsAre("15 3 changed", "15 3 changed", "15 3 changed"));
    EXPECT_TRUE(tk.replace_text(d, kName, "0123456789"));
    EXPECT_EQ(name.text(), "01234");
    name.set_limit(3);  // a lower limit cuts the text, as a real field does
    EXPECT_EQ(name.text(), "012");
    name.set_text("abcdef");
    EXPECT_EQ(name.text(), "abc");
    EXPECT_THAT(rec.take(), ElementsAre("15 3 changed"));
  });
}

TEST_F(ControlsTest, ProgramChangesNeverNotify) {
  with_sample([&](Window d) {
    rec.take();
    d.control(kName).set_text("x");
    d.control(kKeep).set_checked(true);
    d.control(kSingle).add("row");
    d.control(kSingle).select(0);
    d.control(kCombo).add("c");
    d.control(kCombo).select(0);
    d.control(kSpin).set_position(4);
    d.control(kName).focus();
    EXPECT_THAT(rec.lines, IsEmpty());
    EXPECT_EQ(d.focused_control(), kName);
  });
}

TEST_F(ControlsTest, OperatorCannotUseDisabledHiddenOrReadOnlyControls) {
  with_sample([&](Window d) {
    EXPECT_FALSE(tk.type(d, kLocked, "x"));
    EXPECT_FALSE(tk.click(d, kHiddenButton));
    EXPECT_FALSE(tk.type(d, kShown, "x"));
    EXPECT_EQ(d.control(kShown).text(), "shown");
    d.control(kKeep).set_enabled(false);
    EXPECT_FALSE(tk.click(d, kKeep));
    EXPECT_FALSE(d.control(kKeep).checked());
    d.control(kHiddenButton).set_visible(true);
    EXPECT_TRUE(tk.click(d, kHiddenButton));
    d.control(kOk).set_enabled(false);
    EXPECT_FALSE(tk.press_enter(d));
    EXPECT_FALSE(tk.click(d, kName));  // an edit is typed into, not clicked
    EXPECT_EQ(failures.size(), 1u);
    failures.clear();
    d.control(77).set_text("no such control");
    EXPECT_EQ(failures.size(), 1u);
    failures.clear();
  });
}

TEST_F(ControlsTest, CheckBoxesToggleAndRadioButtonsKeepTheirGroup) {
  with_sample([&](Window d) {
    rec.take();
    tk.click(d, kKeep);
    EXPECT_TRUE(d.control(kKeep).checked());
    tk.click(d, kKeep);
    EXPECT_FALSE(d.control(kKeep).checked());
    tk.click(d, kMinutes);
    tk.click(d, kLeft);
    tk.click(d, kSeconds);
    EXPECT_FALSE(d.control(kMinutes).checked());
    EXPECT_TRUE(d.control(kSeconds).checked());
    EXPECT_TRUE(d.control(kLeft).checked());  // another group
    d.control(kRight).set_checked(true);
    EXPECT_FALSE(d.control(kLeft).checked());
    d.control(kRight).set_checked(false);
    EXPECT_FALSE(d.control(kRight).checked());
    EXPECT_EQ(rec.lines[1], "15 4 clicked");  // after the focus moved to it
  });
}

TEST_F(ControlsTest, SingleSelectionListKeepsOneRow) {
  with_sample([&](Window d) {
    Control list = d.control(kSingle);
    for (const char* row : {"alpha", "beta", "gamma"}) list.add(row);
    list.add("first", 0);
    rec.take();
    tk.click_row(d, kSingle, 1);
    tk.click_row(d, kSingle, 2);
    tk.click_row(d, kSingle, 2);  // already selected: nothing changes
    EXPECT_THAT(list.selected_rows(), ElementsAre(2));
    EXPECT_EQ(list.text(), "beta");
    EXPECT_TRUE(tk.double_click_row(d, kSingle, 3));
    EXPECT_THAT(rec.take(), ElementsAre("15 9 in", "15 9 selection", "15 9 selection",
                                        "15 9 selection", "15 9 double"));
    // Keys a list has no use for itself reach the handler, focus first.
    tk.focus_control(d, kName);
    rec.take();
    EXPECT_TRUE(tk.press_key(d, kSingle, Key::kInsert));
    EXPECT_TRUE(tk.press_key(d, kSingle, Key::kEnter));
    EXPECT_THAT(rec.take(), ElementsAre("15 3 out", "15 9 in", "15 9 key insert", "15 9 key enter"));
    EXPECT_EQ(list.selected(), 3);
    EXPECT_FALSE(tk.press_key(d, kName, Key::kInsert));  // not a list box
    ASSERT_EQ(failures.size(), 1u);
    failures.clear();
    list.set_row(3, "GAMMA");
    EXPECT_TRUE(list.remove(0));
    EXPECT_EQ(list.selected(), 2);
    EXPECT_EQ(list.row(2), "GAMMA");
    EXPECT_FALSE(list.remove(3));
    list.select_all(true);  // not for a single-selection list
    EXPECT_EQ(list.selection_count(), 1);
    list.select(2, false);
    EXPECT_EQ(list.selected(), -1);
    list.suspend();
    list.clear_rows();
    list.resume();
    EXPECT_EQ(list.count(), 0);
  });
}

// The sample window takes Ctrl+F and F3 wherever the focus is; its list
// still reports Insert, and a key nobody takes does nothing.
TEST_F(ControlsTest, WindowKeysReachTheWindowWithTheFocusedControl) {
  Window w = tk.create_window(kSampleWindow, rec.handler());
  rec.take();
  EXPECT_TRUE(tk.press_key(w, 0, Key::kCtrlF));  // nothing has the focus yet
  EXPECT_TRUE(tk.press_key(w, 2, Key::kF3));     // the list gets the focus first
  EXPECT_TRUE(tk.press_key(w, 0, Key::kCtrlF));
  EXPECT_TRUE(tk.press_key(w, 2, Key::kInsert));
  EXPECT_FALSE(tk.press_key(w, 0, Key::kShiftF3));
  EXPECT_FALSE(tk.press_key(w, 2, Key::kShiftF3));
  EXPECT_FALSE(tk.press_key(w, 0, Key::kInsert));  // a list key needs its list
  EXPECT_TRUE(tk.type(w, 3, "a"));
  EXPECT_TRUE(tk.press_key(w, 3, Key::kEnter));
  EXPECT_THAT(rec.take(), ElementsAre("15 0 key ctrl+f", "15 2 in", "15 2 key f3",
                                      "15 2 key ctrl+f", "15 2 key insert", "15 2 out", "15 3 in",
                                      "15 3 changed", "15 3 key enter"));
  w.set_enabled(false);
  EXPECT_FALSE(tk.press_key(w, 0, Key::kCtrlF));
  EXPECT_THAT(rec.take(), IsEmpty());
  w.destroy();
}

// The sample window's list shows 7 rows (120 pixels).
TEST_F(ControlsTest, ListKeepsItsTopRowUntilItMustMove) {
  Window w = tk.create_window(kSampleWindow, rec.handler());
  Control list = w.control(2);
  for (int i = 0; i < 21; ++i) list.add("row " + std::to_string(i));
  EXPECT_EQ(list.top_row(), 0);
  ASSERT_TRUE(tk.scroll_list(w, 2, 10));
  EXPECT_EQ(list.top_row(), 10);
  list.set_row(12, "changed");
  list.add("row 21");
  list.add("row -1", 0);
  list.select(12);  // in view
  EXPECT_EQ(list.top_row(), 10);
  list.select(2);   // out of view: scrolled to
  EXPECT_EQ(list.top_row(), 2);
  list.set_top_row(9);
  list.select(2);   // already selected: stays where it is
  EXPECT_EQ(list.top_row(), 9);
  list.set_top_row(100);  // the last page is full
  EXPECT_EQ(list.top_row(), 23 - 7);
  for (int i = 0; i < 10; ++i) list.remove(0);
  EXPECT_EQ(list.top_row(), 13 - 7);
  ASSERT_TRUE(tk.scroll_list(w, 2, 0));
  ASSERT_TRUE(tk.click_row(w, 2, 10));  // clicked rows come into view
  EXPECT_EQ(list.top_row(), 4);
  list.clear_rows();
  EXPECT_EQ(list.top_row(), 0);
  w.destroy();
}

TEST_F(ControlsTest, MultipleSelectionListTogglesRows) {
  with_sample([&](Window d) {
    Control list = d.control(kMulti);
    for (const char* row : {"a", "b", "c", "d"}) list.add(row);
    tk.click_row(d, kMulti, 1);
    tk.click_row(d, kMulti, 3);
    EXPECT_THAT(list.selected_rows(), ElementsAre(1, 3));
    tk.click_row(d, kMulti, 1);
    EXPECT_THAT(list.selected_rows(), ElementsAre(3));
    list.select(0);
    EXPECT_THAT(list.selected_rows(), ElementsAre(0, 3));
    list.select_all(true);
    EXPECT_EQ(list.selection_count(), 4);
    list.select_all(false);
    EXPECT_EQ(list.selected(), -1);
  });
}

TEST_F(ControlsTest, ComboBoxesAndDropDownLists) {
  with_sample([&](Window d) {
    Control combo = d.control(kCombo);
    combo.set_text("typed");  // cut to its limit of 4
    combo.add("LPT1");
    combo.add("LPT22");
    EXPECT_EQ(combo.text(), "type");  // adding rows leaves the field alone
    EXPECT_EQ(combo.selected(), -1);
    rec.take();
    tk.click_row(d, kCombo, 1);
    EXPECT_EQ(combo.text(), "LPT2");
    tk.type(d, kCombo, "\b3");
    EXPECT_EQ(combo.text(), "LPT3");
    EXPECT_THAT(rec.take(), ElementsAre("15 11 in", "15 11 selection", "15 11 changed", "15 11 changed"));

    Control drop = d.control(kDrop);
    for (const char* row : {"c:", "d:"}) drop.add(row);
    EXPECT_EQ(drop.text(), "");
    drop.set_text("d:");
    EXPECT_EQ(drop.selected(), 1);
    tk.click_row(d, kDrop, 0);
    EXPECT_EQ(drop.text(), "c:");
    EXPECT_FALSE(tk.type(d, kDrop, "x"));
  });
}

TEST_F(ControlsTest, ScrollBarsMoveWithinTheirRange) {
  with_sample([&](Window d) {
    Control spin = d.control(kSpin);
    spin.set_range(1, 999);
    spin.set_page(30);
    spin.set_position(5000);
    EXPECT_EQ(spin.position(), 999);
    spin.set_position(10);
    rec.take();
    tk.scroll(d, kSpin, ScrollAction::kLineDown);
    tk.scroll(d, kSpin, ScrollAction::kPageUp);
    tk.scroll(d, kSpin, ScrollAction::kThumb, 500);
    EXPECT_THAT(rec.take(), ElementsAre("15 13 scrolled 11", "15 13 scrolled 1", "15 13 scrolled 500"));
    spin.set_range(0, 100);
    EXPECT_EQ(spin.position(), 100);
    EXPECT_EQ(spin.page(), 30);
  });
}

TEST_F(ControlsTest, TextEditsHoldParagraphsUpToTheirLimit) {
  with_sample([&](Window d) {
    Control text = d.control(kText);
    EXPECT_EQ(text.visible_lines(), 5);
    text.suspend();
    EXPECT_TRUE(text.add_paragraph("one"));
    EXPECT_TRUE(text.add_paragraph("two"));
    EXPECT_TRUE(text.add_paragraph("three"));
    EXPECT_FALSE(text.add_paragraph("four"));  // limit 3
    text.resume();
    EXPECT_EQ(text.paragraph_count(), 3);
    EXPECT_EQ(text.paragraph(1), "two");
    EXPECT_EQ(text.text(), "one\ntwo\nthree");
    text.set_limit(0);
    for (int i = 0; i < 20; ++i) text.add_paragraph("line " + std::to_string(i));
    text.show_paragraph(22);
    EXPECT_EQ(text.origin().line, 18);  // the last line at the bottom
    text.show_paragraph(2);
    EXPECT_EQ(text.origin().line, 2);
    text.set_origin({100, 7});
    EXPECT_EQ(text.origin().line, 18);
    EXPECT_EQ(text.origin().column, 7);
    text.set_text("a\nb");
    EXPECT_EQ(text.paragraph_count(), 2);
    text.clear_paragraphs();
    EXPECT_EQ(text.paragraph_count(), 0);
  });
}

TEST_F(ControlsTest, FocusMovesTellTheFieldsLeftAndEntered) {
  with_sample([&](Window d) {
    rec.take();
    EXPECT_TRUE(tk.focus_control(d, kName));
    EXPECT_TRUE(tk.focus_control(d, kCombo));
    EXPECT_FALSE(tk.focus_control(d, kLocked));
    EXPECT_THAT(rec.take(), ElementsAre("15 3 in", "15 3 out", "15 11 in"));
    EXPECT_TRUE(tk.request_help(d));
    EXPECT_THAT(rec.take(), ElementsAre("18 11"));
  });
}

TEST_F(ControlsTest, EscapePressesCancelAndDescribeShowsTheState) {
  with_sample([&](Window d) {
    d.control(kSingle).add("row");
    d.control(kSingle).select(0);
    d.control(kKeep).set_checked(true);
    d.set_title("Sample for demo");
    std::string shown = tk.describe(d);
    EXPECT_NE(shown.find("900 \"Sample for demo\""), std::string::npos);
    EXPECT_NE(shown.find("4 check \"&Keep\" checked"), std::string::npos);
    EXPECT_NE(shown.find("   *row"), std::string::npos);
    EXPECT_NE(shown.find("16 edit \"locked\" disabled"), std::string::npos);
    EXPECT_TRUE(tk.press_escape(d));
    EXPECT_FALSE(d.exists());
  });
  EXPECT_EQ(rec.lines.back(), "1");
}

}  // namespace
}  // namespace px::tk
