// Menu commands carried to their actions: control jobs written for a live
// stand-in server, the Printer Reload dialog, About, the documentation, and
// Save.
#include <gmock/gmock.h>
#include <signal.h>

#include <fstream>

#include "shell/about_dialog.h"
#include "shell/dispatch.h"
#include "shell/documentation.h"
#include "shell/shell_test_support.h"
#include "tests/live_installation.h"
#include "toolkit/make_event.h"

namespace px::shell {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

// The console on a demo installation that pxserver-sim serves; the
// simulator is held stopped while a test looks at the control job it was
// sent, and then let go. The console works in the installation's directory,
// where it writes the scratch copy of each control job, as in the demo.
class LiveDispatchTest : public ShellTest {
 protected:
  LiveDispatchTest() : old_directory_(std::filesystem::current_path()) {
    std::filesystem::current_path(live.path(""));
  }
  ~LiveDispatchTest() override { std::filesystem::current_path(old_directory_); }

  void SetUp() override {
    ASSERT_TRUE(live.start_simulator({"--port", "0", "--stopped", "south", "north", "south"}))
        << live.simulator_log();
    // The simulator listens before it has started its servers.
    ASSERT_TRUE(eventually([&] { return live.state() == "3\trunning"; })) << live.state();
    use_console_ini(live.path("pxcntrl.ini"));
    start();
    live.signal_simulator(SIGSTOP);
  }
  void TearDown() override {
    live.signal_simulator(SIGCONT);
    ShellTest::TearDown();
  }

  std::string control_job() const { return live.read("north/data/pxctrl00.msg"); }

  LiveInstallation live;

 private:
  std::filesystem::path old_directory_;
};

TEST_F(LiveDispatchTest, PauseFromTheMenuWritesTheControlJobAndNexaPauses) {
  tk.expect_note("[157]");
  ASSERT_TRUE(tk.choose_menu(task(), tk::kCmdPauseServer));
  EXPECT_THAT(control_job(), HasSubstr("^job PXCNTRLJOB\n^field CommandString\nPause Server\n"));
  EXPECT_THAT(control_job(), HasSubstr("\nPXCNTRL\n"));
  live.signal_simulator(SIGCONT);
  EXPECT_TRUE(eventually([&] { return live.state() == "2\tpaused"; })) << live.state();
}

TEST_F(LiveDispatchTest, PrinterReloadNamesThePrintersChosenInTheDialog) {
  tk.on_dialog(tk::kReloadPrinterDialog, [&](tk::Window dialog) {
    EXPECT_EQ(dialog.title(), "Reload Printer for Nexa North - orders and invoices");
    tk::Control list = dialog.control(tk::kReloadPrinterList);
    ASSERT_EQ(list.count(), 6);
    EXPECT_EQ(list.row(0), "CHEQUE1  ");
    EXPECT_THAT(list.selected_rows(), ElementsAre(0));
    EXPECT_EQ(dialog.focused_control(), tk::kReloadPrinterList);
    tk.click_row(dialog, tk::kReloadPrinterList, 2);
    tk.type(dialog, tk::kReloadPrinterForm, "forms/acknow.mdf");
    tk.press_enter(dialog);
  });
  tk.expect_note("[150]");
  tk.choose_menu(task(), tk::kCmdReloadPrinter);
  EXPECT_THAT(control_job(),
              HasSubstr("^field LogicalPrinter\nCHEQUE1  \nLASER1   \n^field MDFFileName\n"
                        "forms/acknow.mdf\n"));
}

TEST_F(LiveDispatchTest, PrinterReloadRefusesAnEmptyFormAndTakesAllOfBoth) {
  tk.on_dialog(tk::kReloadPrinterDialog, [&](tk::Window dialog) {
    tk.click(dialog, tk::kReloadAllPrinters);
    EXPECT_FALSE(dialog.control(tk::kReloadPrinterList).enabled());
    tk.expect_error("[256]");
    tk.press_enter(dialog);
    ASSERT_TRUE(dialog.exists());
    EXPECT_EQ(dialog.focused_control(), tk::kReloadPrinterForm);
    tk.click(dialog, tk::kReloadAllForms);
    EXPECT_FALSE(dialog.control(tk::kReloadPrinterForm).enabled());
    tk.expect_note("[150]");  // once the dialog has closed
    tk.click(dialog, tk::kOk);
  });
  tk.choose_menu(task(), tk::kCmdReloadPrinter);
  EXPECT_THAT(control_job(), HasSubstr("^field LogicalPrinter\n*\n^field MDFFileName\n*\n"));
}

TEST_F(LiveDispatchTest, ACancelledPrinterReloadWritesNothing) {
  tk.on_dialog(tk::kReloadPrinterDialog, [&](tk::Window dialog) { tk.close(dialog); });
  tk.choose_menu(task(), tk::kCmdReloadPrinter);
  EXPECT_FALSE(std::filesystem::exists(live.path("north/data/pxctrl00.msg")));
  EXPECT_TRUE(tk.boxes().empty());
}

class CommandTest : public ShellTest {
 protected:
  void SetUp() override {
    write_console_ini();
    add_instance("north", full_config("north"));
    start(dir.file("bin/pxcntrl"));
  }
};

TEST_F(CommandTest, AboutShowsTheBuildsVersion) {
  tk.on_dialog(tk::kAboutDialog, [&](tk::Window dialog) {
    EXPECT_EQ(dialog.control(tk::kAboutVersion).text(), std::string("Version ") + PX_VERSION);
    EXPECT_EQ(dialog.control(tk::kAboutProduct).text(), "Nexa Control");
    tk.press_enter(dialog);
  });
  tk.choose_menu(task(), tk::kCmdAbout);
}

TEST_F(CommandTest, TheManualAndTheKnowledgeBaseOpenWithTheDesktopHandler) {
  tk.choose_menu(task(), tk::kCmdViewDocumentation);
  tk::Event knowledge_base = tk::command_event(tk::kCmdKnowledgeBase);  // on no menu bar
  knowledge_base.window = task();
  EXPECT_TRUE(dispatch_command(*console, knowledge_base));
  ASSERT_EQ(runner.launches().size(), 2u);
  EXPECT_EQ(runner.launches()[0].command_line, "xdg-open \"" + dir.file("bin/control.pdf") + "\"");
  EXPECT_EQ(runner.launches()[1].command_line, desktop_open_command(kKnowledgeBaseAddress));
  EXPECT_EQ(documentation_path("pxcntrl"), "control.pdf");
}

TEST_F(CommandTest, SaveWritesTheEditedJmd) {
  ASSERT_NE(jmd_service().open(console->op()), nullptr);
  jmd_service().set_modified(true);
  ASSERT_TRUE(task().menu_enabled(tk::kCmdSave));
  tk.choose_menu(task(), tk::kCmdSave);
  EXPECT_FALSE(jmd_service().modified());
  EXPECT_TRUE(std::filesystem::exists(dir.file("north/pxjmd.JBK")));
}

}  // namespace
}  // namespace px::shell

namespace px::shell {
namespace {

// The Display menu on the live demo installation: each item opens its view.
TEST_F(LiveDispatchTest, DisplayMenuOpensTheMonitoringViews) {
  live.signal_simulator(SIGCONT);
  ASSERT_TRUE(tk.choose_menu(task(), tk::kCmdStatusQueue));
  tk::Window status = tk.find_window(tk::kStatusQueueWindow);
  ASSERT_TRUE(status.exists());
  EXPECT_THAT(status.control(tk::kStatusList).row(0), HasSubstr("Nexa North"));
  ASSERT_TRUE(tk.choose_menu(task(), tk::kCmdStatusQueue));  // the same window, refilled
  EXPECT_EQ(tk.find_window(tk::kStatusQueueWindow).id(), status.id());

  ASSERT_TRUE(tk.choose_menu(task(), tk::kCmdServerRejects));
  EXPECT_TRUE(tk.find_window(tk::kRejectsWindow).exists());
  ASSERT_TRUE(tk.choose_menu(task(), tk::kCmdEmailQueue));
  EXPECT_TRUE(tk.find_window(tk::kEmailQueueWindow).exists());
  std::ofstream(live.path("north/logs/pxemio.log")) << "mail\n";
  ASSERT_TRUE(tk.choose_menu(task(), tk::kCmdEmailLog));
  tk::Window log = tk.find_window(tk::kLogWindow);
  ASSERT_TRUE(log.exists());
  EXPECT_EQ(log.control(tk::kLogText).paragraph(0), "mail");
  EXPECT_TRUE(tk.boxes().empty());
}

}  // namespace
}  // namespace px::shell

namespace px::shell {
namespace {

// The task window shows one line per instance, and follows the queue on
// its timer.
TEST_F(LiveDispatchTest, TaskWindowShowsEveryInstancesStateAndQueue) {
  live.signal_simulator(SIGCONT);
  // The stopped server's status file says so once the simulator wrote it.
  ASSERT_TRUE(eventually([&] { return !live.read("south/pxserver.sts").empty(); }));
  // The listing runs beside the GUI thread: each timer tick (the demo's
  // QueueRefreshCycle) shows the listing that is ready by then.
  auto shows = [&](const std::string& second_line) {
    return eventually([&] {
      tk.advance_time(5000);
      std::vector<std::string> lines = tk.paint(task());
      return lines.size() == 2 && lines[1].find(second_line) != std::string::npos;
    });
  };
  ASSERT_TRUE(shows("not running   0 waiting"));
  std::vector<std::string> lines = tk.paint(task());
  EXPECT_THAT(lines[0], HasSubstr("Nexa North"));
  EXPECT_THAT(lines[0], HasSubstr("running"));
  std::ofstream(live.path("south/data/STM1.DAT")) << "^job STATEMENT\n";
  EXPECT_TRUE(shows("not running   1 waiting"));
}

}  // namespace
}  // namespace px::shell
