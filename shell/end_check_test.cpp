// The may-the-program-end check: closing, quitting, Exit and changing the
// instance never drop unsaved JMD edits without the operator's answer.
#include <gmock/gmock.h>

#include "shell/shell_test_support.h"

namespace px::shell {
namespace {

using ::testing::ElementsAre;

class EndCheckTest : public ShellTest {
 protected:
  void SetUp() override {
    write_console_ini();
    add_instance("north", full_config("north"));
    add_instance("south", full_config("south"));
    start();
  }

  // The operator has edited the JMD and not saved it yet.
  void edit_jmd() {
    ASSERT_NE(jmd_service().open(console->op()), nullptr);
    jmd_service().set_modified(true);
  }

  std::string backup() const { return dir.file("north/pxjmd.JBK"); }
};

TEST_F(EndCheckTest, WithoutEditsTheConsoleClosesWithoutAsking) {
  EXPECT_TRUE(tk.close(task()));
  EXPECT_FALSE(tk.running());
  EXPECT_TRUE(tk.boxes().empty());
}

TEST_F(EndCheckTest, SaveWritesTheJmdWithItsBackupAndEnds) {
  edit_jmd();
  tk.answer_ask(tk::Answer::kFirst, "[291]");
  tk.close(task());
  EXPECT_FALSE(tk.running());
  ASSERT_EQ(tk.boxes().size(), 1u);
  EXPECT_THAT(tk.boxes()[0].buttons, ElementsAre("Save", "Discard", "Cancel"));
  EXPECT_TRUE(std::filesystem::exists(backup()));
  EXPECT_FALSE(jmd_service().modified());
  EXPECT_FALSE(jmd_service().is_open());
}

TEST_F(EndCheckTest, DiscardDropsTheEditsAndEnds) {
  edit_jmd();
  tk.answer_ask(tk::Answer::kSecond, "[291]");
  tk.close(task());
  EXPECT_FALSE(tk.running());
  EXPECT_FALSE(std::filesystem::exists(backup()));
  EXPECT_FALSE(jmd_service().modified());
  EXPECT_FALSE(jmd_service().is_open());
}

TEST_F(EndCheckTest, CancelKeepsTheConsoleAndTheEdits) {
  edit_jmd();
  tk.answer_ask(tk::Answer::kThird, "[291]");
  tk.close(task());
  EXPECT_TRUE(tk.running());
  EXPECT_TRUE(jmd_service().modified());
  EXPECT_TRUE(jmd_service().is_open());
}

TEST_F(EndCheckTest, AQuitQueryIsAllowedOnlyWhenTheCheckPasses) {
  edit_jmd();
  tk.answer_ask(tk::Answer::kThird, "[291]");
  EXPECT_FALSE(tk.send_quit(true));
  EXPECT_TRUE(tk.running());
  tk.answer_ask(tk::Answer::kSecond, "[291]");
  EXPECT_TRUE(tk.send_quit(true));
}

TEST_F(EndCheckTest, APlainQuitEndsAtOnceWithoutAsking) {
  edit_jmd();
  EXPECT_TRUE(tk.send_quit(false));
  EXPECT_FALSE(tk.running());
  EXPECT_TRUE(tk.boxes().empty());
}

TEST_F(EndCheckTest, ExitAsksFirstAndACancelKeepsTheConsoleRunning) {
  edit_jmd();
  tk.answer_ask(tk::Answer::kThird, "[291]");
  EXPECT_TRUE(tk.choose_menu(task(), tk::kCmdExit));
  EXPECT_TRUE(tk.running());
  tk.answer_ask(tk::Answer::kSecond, "[291]");
  tk.choose_menu(task(), tk::kCmdExit);
  EXPECT_FALSE(tk.running());
}

TEST_F(EndCheckTest, ChangingTheInstanceIsRefusedWhileTheEditsAreKept) {
  edit_jmd();
  tk.answer_ask(tk::Answer::kThird, "[291]");
  tk.choose_menu(task(), tk::kCmdSelectInstance);  // no dialog may open
  EXPECT_EQ(current_instance().name, "north");
  EXPECT_TRUE(jmd_service().modified());
}

}  // namespace
}  // namespace px::shell
