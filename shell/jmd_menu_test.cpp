// File > Job Management Database and the Edit menu reach the JMD editor
// windows; ending the console asks about their unsaved edits and closes them.
#include "jmd/editors/jmd_windows.h"
#include "shell/shell_test_support.h"

namespace px::shell {
namespace {

class JmdMenuTest : public ShellTest {
 protected:
  void SetUp() override {
    write_console_ini();
    add_instance("north", full_config("north"));
    start();
  }
  ~JmdMenuTest() override { editors::jmd_windows().close_all(); }
};

TEST_F(JmdMenuTest, TheSubmenuOpensOneListWindowPerTable) {
  for (int command : {tk::kCmdJobs, tk::kCmdTasks, tk::kCmdPrinters, tk::kCmdManagedMemory}) {
    ASSERT_TRUE(tk.choose_menu(task(), command));
  }
  ASSERT_TRUE(tk.choose_menu(task(), tk::kCmdPrinters));
  EXPECT_EQ(tk.open_windows().size(), 5u);
  tk::Window jobs = editors::jmd_windows().window(editors::ListKind::kJobNames);
  EXPECT_GT(jobs.control(tk::kJmdList).count(), 10);
  // Cut, Copy and Paste act only on a focused JMD window.
  tk.activate(task());
  EXPECT_FALSE(editors::jmd_windows().edit_command(tk::kCmdCut));
}

TEST_F(JmdMenuTest, TheEditMenuActsOnTheJmdWindowLastWorkedIn) {
  ASSERT_TRUE(tk.choose_menu(task(), tk::kCmdTasks));
  tk::Window tasks = editors::jmd_windows().window(editors::ListKind::kTasks);
  tk.activate(tasks);
  tk.click_row(tasks, tk::kJmdList, 0);
  EXPECT_TRUE(task().menu_enabled(tk::kCmdCopy));
  // Reaching the menu bar makes the task window the focused one.
  tk.activate(task());
  ASSERT_TRUE(tk.choose_menu(task(), tk::kCmdCopy));
  EXPECT_TRUE(editors::jmd_windows().editor().can_paste(editors::ListKind::kTasks));
}

TEST_F(JmdMenuTest, UndoAndRedoTakeBackADeleteInTheOpenList) {
  ASSERT_TRUE(tk.choose_menu(task(), tk::kCmdPrinters));
  tk::Window printers = editors::jmd_windows().window(editors::ListKind::kPrinters);
  int rows = printers.control(tk::kJmdList).count();
  tk.activate(printers);
  tk.click_row(printers, tk::kJmdList, 0);
  tk.answer_ask(tk::Answer::kFirst, "[290]");
  ASSERT_TRUE(tk.press_accelerator(task(), "Del"));
  EXPECT_EQ(printers.control(tk::kJmdList).count(), rows - 1);
  ASSERT_TRUE(tk.press_accelerator(task(), "Ctrl+Z"));
  EXPECT_EQ(printers.control(tk::kJmdList).count(), rows);
  ASSERT_TRUE(tk.press_accelerator(task(), "Ctrl+Y"));
  EXPECT_EQ(printers.control(tk::kJmdList).count(), rows - 1);
  ASSERT_TRUE(tk.choose_menu(task(), tk::kCmdSave));
  tk.expect_note("[1509]");
  ASSERT_TRUE(tk.choose_menu(task(), tk::kCmdUndo));
  EXPECT_EQ(printers.control(tk::kJmdList).count(), rows - 1);
}

// The operator's walk on the demo JMD: a printer added, a job with two steps
// whose order is changed, the job cut and pasted under another name, Save,
// and the saved file holds it all.
TEST_F(JmdMenuTest, APrinterAndAJobAddedReorderedMovedAndSaved) {
  auto step_dialog = [&](const char* form) {
    tk.on_dialog(tk::kJobStepDialog, [&, form](tk::Window dialog) {
      tk.type(dialog, tk::kStepFormFile, form);
      tk.replace_text(dialog, tk::kStepPrinterName, "LAB9");
      tk.click(dialog, tk::kOk);
    });
  };
  auto lines = [](tk::Window window) {
    std::vector<std::string> all;
    tk::Control list = window.control(tk::kJmdList);
    for (int i = 0; i < list.count(); ++i) all.push_back(list.row(i));
    return all;
  };
  ASSERT_TRUE(tk.choose_menu(task(), tk::kCmdPrinters));
  tk::Window printers = editors::jmd_windows().window(editors::ListKind::kPrinters);
  tk.on_dialog(tk::kPrinterDialog, [&](tk::Window dialog) {
    tk.type(dialog, tk::kPrinterName, "LAB9");
    tk.replace_text(dialog, tk::kPrinterId, "LABJET");
    tk.click(dialog, tk::kOk);
  });
  ASSERT_TRUE(tk.click(printers, tk::kJmdNew));

  ASSERT_TRUE(tk.choose_menu(task(), tk::kCmdJobs));
  tk::Window names = editors::jmd_windows().window(editors::ListKind::kJobNames);
  tk.on_dialog(tk::kJobNameDialog, [&](tk::Window dialog) {
    tk.type(dialog, tk::kJobNameEdit, "WALK");
    tk.click(dialog, tk::kOk);
  });
  ASSERT_TRUE(tk.click(names, tk::kJmdNew));
  tk::Window job = editors::jmd_windows().window(editors::ListKind::kSteps);
  ASSERT_TRUE(job.exists());
  step_dialog("first.mdf");
  ASSERT_TRUE(tk.click(job, tk::kJmdNew));
  // A new step goes before the selected one (the step just added).
  step_dialog("second.mdf");
  ASSERT_TRUE(tk.click(job, tk::kJmdNew));
  EXPECT_EQ(lines(job).at(0).substr(10, 10), "second.mdf");
  EXPECT_EQ(job.control(tk::kJmdList).selected_rows(), std::vector<int>{0});
  ASSERT_TRUE(tk.click(job, tk::kJobStepDown));
  EXPECT_EQ(lines(job).at(0).substr(10, 9), "first.mdf");
  EXPECT_EQ(lines(job).at(1).substr(10, 10), "second.mdf");
  ASSERT_TRUE(tk.click(job, tk::kJmdClose));

  // WALK cut from the list and pasted back as MOVED.
  editors::JmdEditor& editor = editors::jmd_windows().editor();
  // The demo lists more than a page of jobs: the filter finds it.
  tk.activate(names);
  tk.type(names, tk::kJmdFilter, "walk");
  ASSERT_EQ(lines(names).size(), 1u);
  EXPECT_TRUE(lines(names)[0].starts_with("WALK "));
  tk.click_row(names, tk::kJmdList, 0);
  ASSERT_TRUE(tk.press_accelerator(task(), "Ctrl+X"));
  EXPECT_EQ(editor.find_row(editors::ListKind::kJobNames, "WALK"), 0);
  tk.on_dialog(tk::kJobNameDialog, [&](tk::Window dialog) {
    tk.type(dialog, tk::kJobNameEdit, "MOVED");
    tk.click(dialog, tk::kOk);
  });
  ASSERT_TRUE(tk.press_accelerator(task(), "Ctrl+V"));
  ASSERT_TRUE(editors::jmd_windows().window(editors::ListKind::kSteps).exists());
  EXPECT_EQ(lines(editors::jmd_windows().window(editors::ListKind::kSteps)).size(), 3u);
  editors::jmd_windows().window(editors::ListKind::kSteps).destroy();

  ASSERT_TRUE(tk.choose_menu(task(), tk::kCmdSave));
  EXPECT_FALSE(jmd_service().modified());
  std::string saved = read_text(dir.file("north/pxjmd.jmd"));
  EXPECT_NE(saved.find("\n!p LAB9 LABJET LPT1 "), std::string::npos) << saved.substr(0, 300);
  size_t first = saved.find("\n!f MOVED LAB9 first.mdf ");
  size_t second = saved.find("\n!f MOVED LAB9 second.mdf ");
  ASSERT_NE(first, std::string::npos);
  ASSERT_NE(second, std::string::npos);
  EXPECT_LT(first, second);
  EXPECT_EQ(saved.find("\n!f WALK "), std::string::npos);
}

TEST_F(JmdMenuTest, ExitAsksAboutTheEditsAndClosesTheWindows) {
  ASSERT_TRUE(tk.choose_menu(task(), tk::kCmdManagedMemory));
  tk::Window memory = editors::jmd_windows().window(editors::ListKind::kMemory);
  tk.activate(memory);
  tk.click_row(memory, tk::kJmdList, 0);
  tk.answer_ask(tk::Answer::kFirst, "[290]");
  ASSERT_TRUE(tk.click(memory, tk::kJmdDelete));
  EXPECT_TRUE(jmd_service().modified());

  tk.answer_ask(tk::Answer::kThird, "[291]");
  ASSERT_TRUE(tk.choose_menu(task(), tk::kCmdExit));
  EXPECT_TRUE(tk.running());
  EXPECT_TRUE(memory.exists());

  tk.answer_ask(tk::Answer::kSecond, "[291]");
  ASSERT_TRUE(tk.choose_menu(task(), tk::kCmdExit));
  EXPECT_FALSE(memory.exists());
  EXPECT_FALSE(jmd_service().is_open());
}

}  // namespace
}  // namespace px::shell
