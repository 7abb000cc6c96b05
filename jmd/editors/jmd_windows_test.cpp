#include "jmd/editors/jmd_windows.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "common/common_init.h"
#include "common/ini_profile.h"
#include "common/messages.h"
#include "config/instances.h"
#include "config/jmd_service.h"
#include "config/operator_action.h"
#include "config/recording_operator.h"
#include "jmd/editors/editor_messages.h"
#include "jmd/editors/editor_test_support.h"
#include "tests/support/test_dir.h"
#include "toolkit/headless/headless_toolkit.h"
#include "toolkit/resources/resource_ids.h"

namespace px::editors {
namespace {

// The console's JMD windows on the headless toolkit, over a JMD that is the
// current instance's, with the shipped message catalogue.
class JmdWindowsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    tk.set_failure_handler([this](const std::string& what) { failures.push_back(what); });
    ini::set_file(PX_SOURCE_DIR "/demo/pxcntrl.ini");
    messages::reset();
    // The task window passes the Edit menu's commands on, as the shell does.
    tk.run_application({1000, [this](const tk::Event& e) {
                          if (e.type == tk::EventType::kCommand) windows().edit_command(e.command);
                        }});
    windows().attach(tk, op);
  }
  void TearDown() override {
    windows().close_all();
    jmd_service().close();
    set_current_instance({});
    ini::flush_cache();
    tk.verify_scripts_used();
    EXPECT_TRUE(failures.empty()) << failures.front();
  }
  void use_jmd(const std::string& text) {
    std::string jmd = dir.write("jobs.jmd", text);
    std::string config = dir.write("pxserver.ini", "[Options]\nJMDFileName=" + jmd + "\n");
    set_current_instance({"north", "North", config});
  }
  JmdWindows& windows() { return jmd_windows(); }
  tk::Window open(ListKind kind) {
    windows().open_list(kind);
    tk::Window window = windows().window(kind);
    tk.activate(window);
    return window;
  }
  // The rows, once the marks that follow a page have come.
  std::vector<std::string> rows(tk::Window window) {
    tk.advance_time(1);
    std::vector<std::string> all;
    tk::Control list = window.control(tk::kJmdList);
    for (int i = 0; i < list.count(); ++i) all.push_back(list.row(i));
    return all;
  }

  TestDir dir;
  tk::HeadlessToolkit tk;
  RecordingOperator op;
  std::vector<std::string> failures;
};

std::string printers(int count) {
  std::string text = kJmdHeader;
  char line[64];
  for (int i = 0; i < count; ++i) {
    std::snprintf(line, sizeof line, "!p P%05d * LPT1 * 50 *\n", i);
    text += line;
  }
  return text;
}

TEST_F(JmdWindowsTest, ThePrintersListShowsItsHeaderAndRows) {
  use_jmd(kSmallJmd);
  tk::Window list = open(ListKind::kPrinters);
  ASSERT_TRUE(list.exists());
  EXPECT_EQ(tk.paint(list), std::vector<std::string>{header_text(ListKind::kPrinters)});
  EXPECT_EQ(rows(list)[0], "LASER1        HP4        LPT1                    ");
  EXPECT_FALSE(list.control(tk::kJmdNext).visible());
  // A second open raises the same window.
  windows().open_list(ListKind::kPrinters);
  EXPECT_EQ(tk.open_windows().size(), 2u);
}

TEST_F(JmdWindowsTest, AThousandRowsShowNoPagingAndOneMoreShowsThePagingButtons) {
  use_jmd(printers(1000));
  tk::Window list = open(ListKind::kPrinters);
  EXPECT_EQ(list.control(tk::kJmdList).count(), 1000);
  EXPECT_FALSE(list.control(tk::kJmdPrevious).visible());
  windows().close_all();
  jmd_service().close();

  use_jmd(printers(1001));
  list = open(ListKind::kPrinters);
  EXPECT_EQ(list.control(tk::kJmdList).count(), 1000);
  EXPECT_TRUE(list.control(tk::kJmdNext).visible());
  EXPECT_FALSE(list.control(tk::kJmdPrevious).enabled());
  ASSERT_TRUE(tk.click(list, tk::kJmdNext));
  EXPECT_EQ(rows(list), std::vector<std::string>{"P01000        *          LPT1                    "});
  EXPECT_TRUE(list.control(tk::kJmdPrevious).enabled());
  EXPECT_FALSE(list.control(tk::kJmdNext).enabled());
  EXPECT_EQ(list.control(tk::kJmdCount).text(), "1,001-1,001 of 1,001");
  ASSERT_TRUE(tk.click(list, tk::kJmdPrevious));
  EXPECT_EQ(list.control(tk::kJmdList).count(), 1000);
}

// After a delete past the first 1000 rows the list shows the 500 rows before
// the place of the deleted row and the rows from there; within the first
// 1000 rows it shows the first page. A cut deletes the same way.
TEST_F(JmdWindowsTest, ADeletePastTheFirstPageShowsFiveHundredRowsBeforeItsPlace) {
  use_jmd(printers(1500));
  tk::Window list = open(ListKind::kPrinters);
  ASSERT_TRUE(tk.click(list, tk::kJmdNext));
  tk.click_row(list, tk::kJmdList, 200);  // P01200
  op.answer_next(0);
  ASSERT_TRUE(tk.click(list, tk::kJmdDelete));
  std::vector<std::string> shown = rows(list);
  ASSERT_EQ(shown.size(), 799u);
  EXPECT_EQ(shown.front().substr(0, 6), "P00700");
  EXPECT_EQ(shown[500].substr(0, 6), "P01201");
  EXPECT_EQ(list.control(tk::kJmdCount).text(), "701-1,499 of 1,499");
  EXPECT_TRUE(list.control(tk::kJmdPrevious).enabled());
  EXPECT_FALSE(list.control(tk::kJmdNext).enabled());

  // P00999, the 1000th row, is on the first page.
  tk.click_row(list, tk::kJmdList, 299);
  ASSERT_TRUE(windows().edit_command(tk::kCmdCut));
  shown = rows(list);
  ASSERT_EQ(shown.size(), 1000u);
  EXPECT_EQ(shown.front().substr(0, 6), "P00000");
  EXPECT_EQ(shown.back().substr(0, 6), "P01000");
  EXPECT_FALSE(list.control(tk::kJmdPrevious).enabled());
  EXPECT_TRUE(list.control(tk::kJmdNext).enabled());
}

TEST_F(JmdWindowsTest, TheFilterNarrowsTheWholeTable) {
  use_jmd(printers(2500));
  tk::Window list = open(ListKind::kPrinters);
  EXPECT_EQ(list.control(tk::kJmdCount).text(), "1-1,000 of 2,500");
  ASSERT_TRUE(tk.type(list, tk::kJmdFilter, "p02"));
  EXPECT_EQ(list.control(tk::kJmdCount).text(), "1-500 of 500");
  EXPECT_EQ(rows(list).front().substr(0, 6), "P02000");
  EXPECT_FALSE(list.control(tk::kJmdNext).visible());
  ASSERT_TRUE(tk.replace_text(list, tk::kJmdFilter, "nothing"));
  EXPECT_EQ(list.control(tk::kJmdCount).text(), "0 of 0");
}

TEST_F(JmdWindowsTest, TheNewPrinterDialogCutsBeepsAndRefusesADeviceName) {
  use_jmd(kSmallJmd);
  tk::Window list = open(ListKind::kPrinters);
  tk.on_dialog(tk::kPrinterDialog, [&](tk::Window dialog) {
    EXPECT_EQ(dialog.title(), message_label(msg::kPrinterTitle));
    EXPECT_FALSE(dialog.control(tk::kPrinterPriority).enabled());
    EXPECT_EQ(dialog.control(tk::kPrinterDevice).text(), "LPT1");
    EXPECT_EQ(dialog.control(tk::kPrinterId).count(), 1);  // the managed-memory ids
    int beeps = tk.beeps();
    tk.type(dialog, tk::kPrinterName, "NEWPRINTER1");
    EXPECT_EQ(dialog.control(tk::kPrinterName).text(), "NEWPRINTE");
    EXPECT_EQ(tk.beeps(), beeps + 2);
    tk.replace_text(dialog, tk::kPrinterId, "Com3");
    tk.click(dialog, tk::kOk);
    EXPECT_TRUE(dialog.exists());
    EXPECT_EQ(dialog.focused_control(), tk::kPrinterId);
    tk.replace_text(dialog, tk::kPrinterId, "lpt10");
    tk.click(dialog, tk::kOk);
  });
  ASSERT_TRUE(tk.click(list, tk::kJmdNew));
  EXPECT_EQ(op.numbers(), std::vector<int>{msg::kReservedDevice});
  EXPECT_EQ(rows(list).size(), 3u);
  EXPECT_EQ(rows(list)[2].substr(0, 24), "NEWPRINTE     lpt10     ");
  EXPECT_TRUE(jmd_service().modified());
}

TEST_F(JmdWindowsTest, AddManagedMemoryPutsTheNewIdIntoThePrinterDialog) {
  use_jmd(kSmallJmd);
  tk::Window memory = open(ListKind::kMemory);
  tk::Window list = open(ListKind::kPrinters);
  tk.on_dialog(tk::kPrinterDialog, [&](tk::Window dialog) {
    tk.on_dialog(tk::kManagedMemoryDialog, [&](tk::Window nested) {
      EXPECT_EQ(nested.title(), message_label(msg::kMemoryTitle));
      EXPECT_EQ(nested.control(tk::kMemoryAmount).text(), "0");
      tk.type(nested, tk::kMemoryPrinterId, "NEWMEM");
      tk.type(nested, tk::kMemoryAmount, "12a");
      tk.click(nested, tk::kOk);
    });
    ASSERT_TRUE(tk.click(dialog, tk::kPrinterAddMemory));
    EXPECT_EQ(dialog.control(tk::kPrinterId).count(), 2);
    EXPECT_EQ(dialog.control(tk::kPrinterId).text(), "NEWMEM");
    tk.click(dialog, tk::kCancel);
  });
  ASSERT_TRUE(tk.click(list, tk::kJmdNew));
  EXPECT_EQ(rows(memory).size(), 2u);
  EXPECT_EQ(rows(memory)[1].substr(0, 22), "NEWMEM            12  ");
}

TEST_F(JmdWindowsTest, EditingAPriorityDropsWhatIsNotADigit) {
  use_jmd(kSmallJmd);
  tk::Window list = open(ListKind::kPrinters);
  tk.on_dialog(tk::kPrinterDialog, [&](tk::Window dialog) {
    EXPECT_TRUE(dialog.control(tk::kPrinterPriority).enabled());
    int beeps = tk.beeps();
    tk.replace_text(dialog, tk::kPrinterPriority, "");
    tk.type(dialog, tk::kPrinterPriority, "7x");
    EXPECT_EQ(dialog.control(tk::kPrinterPriority).text(), "7");
    EXPECT_EQ(tk.beeps(), beeps + 1);
    tk.click(dialog, tk::kOk);
  });
  ASSERT_TRUE(tk.double_click_row(list, tk::kJmdList, 1));
  EXPECT_EQ(list.control(tk::kJmdList).selected(), 1);
  std::string saved = jmd_service().save(op) ? dir.read("jobs.jmd") : "";
  EXPECT_NE(saved.find("!p LASER2 * LPT2 * 7 *\n"), std::string::npos) << saved;
}

// A quote typed as a flag is saved so that it reads back; a TAB is not taken.
TEST_F(JmdWindowsTest, TheStepDialogsFlagsTakeAQuoteAndBeepAtATab) {
  use_jmd(kSmallJmd);
  tk::Window names = open(ListKind::kJobNames);
  ASSERT_TRUE(tk.double_click_row(names, tk::kJmdList, 1));
  tk::Window job = windows().window(ListKind::kSteps);
  tk.activate(job);
  tk.on_dialog(tk::kJobStepDialog, [&](tk::Window dialog) {
    tk.replace_text(dialog, tk::kStepInFile, "");
    tk.type(dialog, tk::kStepInFile, "\"");
    int beeps = tk.beeps();
    tk.replace_text(dialog, tk::kStepOutFile, "");
    tk.type(dialog, tk::kStepOutFile, "\t");
    EXPECT_EQ(dialog.control(tk::kStepOutFile).text(), "");
    EXPECT_EQ(tk.beeps(), beeps + 1);
    tk.click(dialog, tk::kOk);
  });
  ASSERT_EQ(job.control(tk::kJmdList).selected_rows(), std::vector<int>{0});
  ASSERT_TRUE(tk.click(job, tk::kJmdEdit));
  ASSERT_TRUE(jmd_service().save(op));
  std::string saved = dir.read("jobs.jmd");
  EXPECT_NE(saved.find("!f INVOICE LASER1 inv.mdf * 1 T PXMERGE \"\" * C \"first step\"\n"),
            std::string::npos)
      << saved;
  EditorFixture again(saved);
  std::vector<long> steps = again.editor().job_steps("INVOICE");
  ASSERT_EQ(steps.size(), 2u);
  std::optional<RowForm> form = again.editor().edit_form(ListKind::kSteps, steps[0]);
  ASSERT_TRUE(form);
  EXPECT_EQ(form->text(tk::kStepInFile), "\"");
  EXPECT_EQ(form->text(tk::kStepComment), "first step");
}

TEST_F(JmdWindowsTest, AJobOpensItsStepsAndNewStepsGoBeforeTheSelectedOne) {
  use_jmd(kSmallJmd);
  tk::Window names = open(ListKind::kJobNames);
  ASSERT_TRUE(tk.double_click_row(names, tk::kJmdList, 1));
  tk::Window job = windows().window(ListKind::kSteps);
  ASSERT_TRUE(job.exists());
  EXPECT_FALSE(names.enabled());
  EXPECT_EQ(job.title(), message_label(msg::kEditJobTitle, {"INVOICE"}));
  EXPECT_EQ(job.control(tk::kJobNameField).text(), "INVOICE");
  EXPECT_EQ(rows(job).size(), 3u);  // two steps and the empty row
  EXPECT_EQ(rows(job).back(), "");
  EXPECT_EQ(job.control(tk::kJmdCount).text(), "1-2 of 2");
  EXPECT_EQ(tk.paint(job).size(), 3u);

  tk.activate(job);
  tk.click_row(job, tk::kJmdList, 0);  // unselect the first step
  tk.click_row(job, tk::kJmdList, 1);
  tk.on_dialog(tk::kJobStepDialog, [&](tk::Window dialog) {
    EXPECT_EQ(dialog.control(tk::kStepJobName).text(), "INVOICE");
    tk.type(dialog, tk::kStepFormFile, "mid.mdf");
    tk.click(dialog, tk::kOk);
  });
  ASSERT_TRUE(tk.click(job, tk::kJmdNew));
  std::vector<std::string> steps = rows(job);
  ASSERT_EQ(steps.size(), 4u);
  EXPECT_EQ(steps[1].substr(10, 7), "mid.mdf");
  EXPECT_EQ(job.control(tk::kJmdList).selected_rows(), std::vector<int>{1});
  EXPECT_EQ(job.control(tk::kJmdCount).text(), "1-3 of 3");
  ASSERT_TRUE(tk.click(job, tk::kJobStepDown));
  EXPECT_EQ(rows(job)[2].substr(10, 7), "mid.mdf");
  EXPECT_EQ(job.control(tk::kJmdList).selected_rows(), std::vector<int>{2});
  // Down at the last step does nothing.
  ASSERT_TRUE(tk.click(job, tk::kJobStepDown));
  EXPECT_EQ(rows(job)[2].substr(10, 7), "mid.mdf");

  ASSERT_TRUE(tk.click(job, tk::kJmdClose));
  EXPECT_TRUE(names.enabled());
}

TEST_F(JmdWindowsTest, TheJobWindowsFilterNarrowsTheStepsAndPlacesNone) {
  use_jmd(kSmallJmd);
  windows().open_job("INVOICE", false);
  tk::Window job = windows().window(ListKind::kSteps);
  tk.activate(job);
  ASSERT_TRUE(tk.type(job, tk::kJmdFilter, "LASER2"));
  EXPECT_EQ(rows(job), std::vector<std::string>{"PXMERGE   inv2.mdf             LASER2   "});
  EXPECT_EQ(job.control(tk::kJmdCount).text(), "1-1 of 1");
  tk.click_row(job, tk::kJmdList, 0);
  for (int id : {tk::kJmdNew, tk::kJobStepUp, tk::kJobStepDown}) {
    EXPECT_FALSE(job.control(id).enabled()) << id;
  }
  EXPECT_TRUE(job.control(tk::kJmdEdit).enabled());
  ASSERT_TRUE(windows().edit_command(tk::kCmdCopy));
  EXPECT_FALSE(tk.task_window().menu_enabled(tk::kCmdPaste));
  // Insert places nothing either (no dialog is scripted).
  ASSERT_TRUE(tk.press_key(job, tk::kJmdList, tk::Key::kInsert));
  op.answer_next(0);
  ASSERT_TRUE(tk.click(job, tk::kJmdDelete));
  EXPECT_EQ(job.control(tk::kJmdCount).text(), "0 of 0");

  ASSERT_TRUE(tk.replace_text(job, tk::kJmdFilter, ""));
  EXPECT_EQ(rows(job).size(), 2u);  // the step left and the empty row
  EXPECT_TRUE(job.control(tk::kJmdNew).enabled());
  EXPECT_TRUE(tk.task_window().menu_enabled(tk::kCmdPaste));
}

TEST_F(JmdWindowsTest, StepsNamingAMissingPrinterAreMarked) {
  use_jmd(kSmallJmd);
  tk::Window printers_list = open(ListKind::kPrinters);
  tk.click_row(printers_list, tk::kJmdList, 1);
  op.answer_next(0);
  ASSERT_TRUE(tk.click(printers_list, tk::kJmdDelete));
  windows().open_job("INVOICE", false);
  std::vector<std::string> steps = rows(windows().window(ListKind::kSteps));
  ASSERT_EQ(steps.size(), 3u);
  EXPECT_FALSE(steps[0].ends_with(" !"));
  EXPECT_EQ(steps[1], "PXMERGE   inv2.mdf             LASER2    !");
}

TEST_F(JmdWindowsTest, JobsWithAStepNamingAMissingPrinterAreMarked) {
  use_jmd(kSmallJmd);
  tk::Window names = open(ListKind::kJobNames);
  const std::string cheque = "CHEQUE" + std::string(45, ' ');
  const std::string invoice = "INVOICE" + std::string(44, ' ');
  EXPECT_EQ(rows(names), (std::vector<std::string>{cheque, invoice}));
  // LASER1 is named by INVOICE's first step only; the open list follows.
  tk::Window printers_list = open(ListKind::kPrinters);
  tk.click_row(printers_list, tk::kJmdList, 0);
  op.answer_next(0);
  ASSERT_TRUE(tk.click(printers_list, tk::kJmdDelete));
  // The page shows at once; its marks come a moment later.
  EXPECT_EQ(names.control(tk::kJmdList).row(1), invoice);
  EXPECT_EQ(rows(names), (std::vector<std::string>{cheque, invoice + " !"}));
  // LASER2, which both jobs name, cut and pasted back: marked, then not.
  tk.on_dialog(tk::kPrinterDialog, [&](tk::Window dialog) { tk.click(dialog, tk::kOk); });
  tk.click_row(printers_list, tk::kJmdList, 0);
  ASSERT_TRUE(windows().edit_command(tk::kCmdCut));
  EXPECT_EQ(rows(names), (std::vector<std::string>{cheque + " !", invoice + " !"}));
  ASSERT_TRUE(windows().edit_command(tk::kCmdPaste));
  EXPECT_EQ(rows(names), (std::vector<std::string>{cheque, invoice + " !"}));
}

TEST_F(JmdWindowsTest, DeletingAsksFirst) {
  use_jmd(kSmallJmd);
  tk::Window names = open(ListKind::kJobNames);
  tk.click_row(names, tk::kJmdList, 1);
  op.answer_next(1);  // Cancel
  ASSERT_TRUE(tk.click(names, tk::kJmdDelete));
  EXPECT_EQ(rows(names).size(), 2u);
  EXPECT_FALSE(jmd_service().modified());
  op.answer_next(0);  // Delete
  ASSERT_TRUE(windows().edit_command(tk::kCmdDelete));
  EXPECT_EQ(rows(names), std::vector<std::string>{std::string("CHEQUE") + std::string(45, ' ')});
  EXPECT_EQ(op.numbers(), (std::vector<int>{msg::kDeleteQuestion, msg::kDeleteQuestion}));
  EXPECT_TRUE(jmd_service().modified());
}

TEST_F(JmdWindowsTest, AJobCopiedAndPastedOpensUnderItsNewName) {
  use_jmd(kSmallJmd);
  tk::Window names = open(ListKind::kJobNames);
  tk.click_row(names, tk::kJmdList, 1);
  ASSERT_TRUE(windows().edit_command(tk::kCmdCopy));
  EXPECT_TRUE(tk.task_window().menu_enabled(tk::kCmdPaste));
  tk.on_dialog(tk::kJobNameDialog, [&](tk::Window dialog) {
    tk.type(dialog, tk::kJobNameEdit, "TWO WORDS");
    tk.click(dialog, tk::kOk);
    EXPECT_TRUE(dialog.exists());
    tk.replace_text(dialog, tk::kJobNameEdit, "COPY");
    tk.click(dialog, tk::kOk);
  });
  ASSERT_TRUE(windows().edit_command(tk::kCmdPaste));
  EXPECT_EQ(op.numbers(), std::vector<int>{msg::kJobNameHasBlank});
  tk::Window job = windows().window(ListKind::kSteps);
  ASSERT_TRUE(job.exists());
  EXPECT_EQ(job.title(), message_label(msg::kNewJobTitle, {"COPY"}));
  EXPECT_EQ(rows(job).size(), 3u);
  EXPECT_EQ(rows(names).size(), 3u);
}

// Every edit of a list without the mouse: Insert for New, Enter for Edit,
// the Edit menu's accelerators for Delete, cut, copy and paste.
TEST_F(JmdWindowsTest, EveryEditWorksFromTheKeyboard) {
  use_jmd(kSmallJmd);
  tk::Window list = open(ListKind::kPrinters);
  tk.on_dialog(tk::kPrinterDialog, [&](tk::Window dialog) {
    tk.type(dialog, tk::kPrinterName, "LASER3");
    tk.press_enter(dialog);
  });
  ASSERT_TRUE(tk.press_key(list, tk::kJmdList, tk::Key::kInsert));
  ASSERT_EQ(rows(list).size(), 3u);
  EXPECT_EQ(rows(list)[2].substr(0, 6), "LASER3");

  tk.click_row(list, tk::kJmdList, 2);
  tk.on_dialog(tk::kPrinterDialog, [&](tk::Window dialog) {
    EXPECT_EQ(dialog.control(tk::kPrinterName).text(), "LASER3");
    tk.press_escape(dialog);
  });
  ASSERT_TRUE(tk.press_key(list, tk::kJmdList, tk::Key::kEnter));

  ASSERT_TRUE(tk.press_accelerator(tk.task_window(), "Ctrl+X"));
  EXPECT_EQ(rows(list).size(), 2u);
  tk.on_dialog(tk::kPrinterDialog, [&](tk::Window dialog) {
    EXPECT_EQ(dialog.control(tk::kPrinterName).text(), "LASER3");
    tk.press_enter(dialog);
  });
  ASSERT_TRUE(tk.press_accelerator(tk.task_window(), "Ctrl+V"));
  ASSERT_EQ(rows(list).size(), 3u);

  tk.click_row(list, tk::kJmdList, 0);
  ASSERT_TRUE(tk.press_accelerator(tk.task_window(), "Ctrl+C"));
  op.answer_next(0);  // Delete
  ASSERT_TRUE(tk.press_accelerator(tk.task_window(), "Del"));
  EXPECT_EQ(rows(list).size(), 2u);
  EXPECT_EQ(rows(list)[0].substr(0, 6), "LASER2");
  EXPECT_EQ(op.numbers(), std::vector<int>{msg::kDeleteQuestion});

  // In the job window Insert puts the new step before the selected one.
  windows().open_job("INVOICE", false);
  tk::Window job = windows().window(ListKind::kSteps);
  tk.activate(job);
  tk.on_dialog(tk::kJobStepDialog, [&](tk::Window dialog) {
    tk.type(dialog, tk::kStepFormFile, "first.mdf");
    tk.click(dialog, tk::kOk);
  });
  ASSERT_TRUE(tk.press_key(job, tk::kJmdList, tk::Key::kInsert));
  EXPECT_EQ(rows(job)[0].substr(10, 9), "first.mdf");
}

TEST_F(JmdWindowsTest, APrinterOnTheClipboardDoesNotPasteIntoTasks) {
  use_jmd(kSmallJmd);
  tk::Window printers_list = open(ListKind::kPrinters);
  tk.click_row(printers_list, tk::kJmdList, 0);
  ASSERT_TRUE(windows().edit_command(tk::kCmdCut));
  EXPECT_EQ(rows(printers_list).size(), 1u);
  tk::Window tasks = open(ListKind::kTasks);
  EXPECT_FALSE(windows().editor().can_paste(ListKind::kTasks));
  ASSERT_TRUE(windows().edit_command(tk::kCmdPaste));
  EXPECT_EQ(op.last(), msg::kInternalError);
  tk.activate(printers_list);
  tk.on_dialog(tk::kPrinterDialog, [&](tk::Window dialog) {
    EXPECT_EQ(dialog.control(tk::kPrinterName).text(), "LASER1");
    tk.click(dialog, tk::kOk);
  });
  ASSERT_TRUE(windows().edit_command(tk::kCmdPaste));
  EXPECT_EQ(rows(printers_list).size(), 2u);
  (void)tasks;
}

TEST_F(JmdWindowsTest, AJmdThatCannotBeLoadedLeavesTheListEmpty) {
  use_jmd("not a JMD\n");
  tk::Window list = open(ListKind::kTasks);
  ASSERT_TRUE(list.exists());
  EXPECT_EQ(list.control(tk::kJmdList).count(), 0);
  EXPECT_EQ(list.control(tk::kJmdCount).text(), "0 of 0");
  EXPECT_EQ(op.numbers(), (std::vector<int>{-384, 179}));
}

TEST_F(JmdWindowsTest, ClosingEveryWindowLeavesNoneOpen) {
  use_jmd(kSmallJmd);
  open(ListKind::kJobNames);
  open(ListKind::kMemory);
  windows().open_job("INVOICE", false);
  windows().close_all();
  EXPECT_EQ(tk.open_windows().size(), 1u);  // the task window
  EXPECT_FALSE(windows().edit_command(tk::kCmdCopy));
}

// The windows of a console started read-only (-aro).
class ReadOnlyJmdWindowsTest : public JmdWindowsTest {
 protected:
  void SetUp() override {
    std::vector<std::string> args{"pxcntrl", "-aro"};
    ASSERT_EQ(common_init(args), 0);
    JmdWindowsTest::SetUp();
  }
  void TearDown() override {
    std::vector<std::string> args{"pxcntrl"};
    common_init(args);  // forgets -aro
    JmdWindowsTest::TearDown();
  }
  void expect_off_with_reason(tk::Window window, const std::vector<int>& ids) {
    for (int id : ids) {
      EXPECT_FALSE(window.control(id).enabled()) << id;
      EXPECT_EQ(window.control(id).tip(), read_only_reason()) << id;
    }
  }
};

TEST_F(ReadOnlyJmdWindowsTest, ChangingButtonsAreOffWithTheReasonAndLookingWorks) {
  ASSERT_TRUE(read_only_mode());
  use_jmd(kSmallJmd);
  tk::Window names = open(ListKind::kJobNames);
  tk.click_row(names, tk::kJmdList, 1);
  expect_off_with_reason(names, {tk::kJmdNew, tk::kJmdDelete});
  EXPECT_TRUE(names.control(tk::kJmdEdit).enabled());
  for (int item : {tk::kCmdCut, tk::kCmdPaste, tk::kCmdDelete}) {
    EXPECT_FALSE(tk.task_window().menu_enabled(item)) << item;
    EXPECT_EQ(tk.task_window().menu_tip(item), read_only_reason()) << item;
  }
  EXPECT_TRUE(tk.task_window().menu_enabled(tk::kCmdCopy));
  // The Edit menu's Delete, reached all the same, changes nothing.
  EXPECT_TRUE(windows().edit_command(tk::kCmdDelete));
  EXPECT_EQ(rows(names).size(), 2u);

  // Edit on a job name opens its steps to look at.
  ASSERT_TRUE(tk.double_click_row(names, tk::kJmdList, 1));
  tk::Window job = windows().window(ListKind::kSteps);
  ASSERT_TRUE(job.exists());
  EXPECT_EQ(rows(job).size(), 3u);
  expect_off_with_reason(job, {tk::kJmdNew, tk::kJmdDelete, tk::kJmdEdit, tk::kJobStepUp,
                               tk::kJobStepDown});
  // A double click on a step opens no dialog (none is scripted).
  tk.activate(job);
  tk.double_click_row(job, tk::kJmdList, 0);
  ASSERT_TRUE(tk.click(job, tk::kJmdClose));

  tk::Window printers_list = open(ListKind::kPrinters);
  tk.click_row(printers_list, tk::kJmdList, 0);
  expect_off_with_reason(printers_list, {tk::kJmdNew, tk::kJmdDelete, tk::kJmdEdit});
  EXPECT_FALSE(jmd_service().modified());
  EXPECT_TRUE(op.numbers().empty());
}

}  // namespace
}  // namespace px::editors
