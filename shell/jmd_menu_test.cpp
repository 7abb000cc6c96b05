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
