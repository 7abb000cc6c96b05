// pxcntrl as an operator meets it: started on a private demo installation
// with pxserver-sim serving it, under the X server of xvfb-run. The test
// finds the console's window by its title, pauses Nexa through the Control
// menu's mnemonics, opens the help with F1, opens and closes About and Select
// Instance, and leaves through File, Exit. Screenshots of the console go to
// PX_SCREENSHOT_DIR for people to look at.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/live_installation.h"

namespace px {
namespace {

constexpr const char* kTitleStart = "Velmar Nexa Output Server - ";

// Runs xdotool with args; its standard output without the last line end.
std::string xdotool(const std::vector<std::string>& args) {
  ProgramResult result = run_program("/usr/bin/xdotool", args, ".");
  std::string out = result.out;
  while (!out.empty() && (out.back() == '\n' || out.back() == '\r')) out.pop_back();
  return out;
}

// Grabs the whole screen into PX_SCREENSHOT_DIR/name.
bool screenshot(const std::string& name) {
  std::filesystem::create_directories(PX_SCREENSHOT_DIR);
  QScreen* screen = QGuiApplication::primaryScreen();
  return screen != nullptr &&
         screen->grabWindow(0).save(QString::fromStdString(std::string(PX_SCREENSHOT_DIR "/") + name));
}

class PxcntrlUnderX : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(std::getenv("DISPLAY"), nullptr) << "run under xvfb-run";
    ASSERT_TRUE(live.start_simulator({"--port", "0", "--stopped", "south", "north", "south"}))
        << live.simulator_log();
    // The launcher listens before the servers are started: wait for north.
    ASSERT_TRUE(eventually([&] { return live.state() == "3\trunning"; })) << live.state();
  }

  void TearDown() override {
    if (console_ > 0) {
      kill(console_, SIGTERM);
      waitpid(console_, nullptr, 0);
    }
  }

  // Starts pxcntrl in the installation's directory, with option when given.
  void start_console(const std::string& option = "") {
    std::filesystem::copy_file(PX_SOURCE_DIR "/demo/pxcntrl.html", live.path("pxcntrl.html"));
    std::string program = PXCNTRL_PATH;
    std::string ini = "-aii" + live.path("pxcntrl.ini");
    std::string directory = live.path("");
    console_ = fork();
    if (console_ == 0) {
      if (chdir(directory.c_str()) != 0) _exit(126);
      if (option.empty()) {
        execl(program.c_str(), program.c_str(), ini.c_str(), static_cast<char*>(nullptr));
      } else {
        execl(program.c_str(), program.c_str(), ini.c_str(), option.c_str(), static_cast<char*>(nullptr));
      }
      _exit(127);
    }
    ASSERT_GT(console_, 0);
  }

  // The console's exit status once it has ended within the time; -1 if not.
  int wait_for_end() {
    int status = 0;
    bool ended = eventually([&] { return waitpid(console_, &status, WNOHANG) == console_; },
                            std::chrono::seconds(10));
    if (!ended) return -1;
    console_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  // Focuses the window and types each key, as xdotool's key names give them.
  void keys(const std::string& window, const std::vector<std::string>& names) {
    xdotool({"windowfocus", "--sync", window});
    for (const std::string& name : names) {
      xdotool({"key", "--clearmodifiers", name});
      usleep(200 * 1000);
    }
  }

  // The first visible window whose title matches pattern, once one shows
  // within limit; "" if none does.
  std::string shown_window(const std::string& pattern,
                           std::chrono::milliseconds limit = std::chrono::seconds(5)) {
    std::string found;
    eventually([&] {
      found = xdotool({"search", "--onlyvisible", "--name", pattern});
      return !found.empty();
    }, limit);
    return found.substr(0, found.find('\n'));
  }

  // The console's task window, given the time pxcntrl takes to start.
  std::string console_window() {
    return shown_window(std::string("^") + kTitleStart, std::chrono::seconds(15));
  }

  // True once no visible window's title matches pattern.
  bool window_gone(const std::string& pattern) {
    return eventually(
        [&] { return xdotool({"search", "--onlyvisible", "--name", pattern}).empty(); });
  }

  LiveInstallation live;
  pid_t console_ = -1;
};

TEST_F(PxcntrlUnderX, ShowsTheInstanceInItsTitleAndPausesNexaFromTheMenu) {
  start_console();
  std::string window = console_window();
  ASSERT_FALSE(window.empty()) << "no console window";
  EXPECT_EQ(xdotool({"getwindowname", window}),
            std::string(kTitleStart) + "Nexa Control-Nexa North - orders and invoices");
  usleep(500 * 1000);  // let it draw before the first picture
  EXPECT_TRUE(screenshot("pxcntrl.png"));

  // Control (Alt+C), a picture of the open menu, then "P&ause Nexa".
  keys(window, {"alt+c"});
  EXPECT_TRUE(screenshot("pxcntrl-control-menu.png"));
  keys(window, {"a"});
  EXPECT_TRUE(eventually([&] { return live.state() == "2\tpaused"; }))
      << "state: " << live.state() << "\nsimulator: " << live.simulator_log();
  EXPECT_TRUE(eventually([&] {
    return live.read("north/logs/pxserver.log").find("Pause Server") != std::string::npos;
  })) << "the server never read the control job";

  // The note "Pause Server was sent" is up; a picture, then Enter closes it.
  std::string box = shown_window("^Nexa Control$");
  EXPECT_FALSE(box.empty()) << "no message box";
  EXPECT_TRUE(screenshot("pxcntrl-pause.png"));
  if (!box.empty()) keys(box, {"Return"});
  EXPECT_TRUE(window_gone("^Nexa Control$")) << "Enter did not close the message box";

  // F1 opens the help file of the console's directory.
  keys(window, {"F1"});
  EXPECT_FALSE(shown_window("^Nexa Control$").empty()) << "no help window";
  usleep(300 * 1000);
  EXPECT_TRUE(screenshot("pxcntrl-help.png"));

  // File (Alt+F), "E&xit": with no unsaved edits the console ends.
  keys(window, {"alt+f", "x"});
  EXPECT_EQ(wait_for_end(), 0);
}

// Read-only mode: the Control menu's items are shown disabled and their
// accelerators do nothing.
TEST_F(PxcntrlUnderX, ReadOnlyConsoleShowsControlItemsDisabled) {
  start_console("-aro");
  std::string window = console_window();
  ASSERT_FALSE(window.empty()) << "no console window";
  usleep(500 * 1000);
  keys(window, {"alt+c"});
  xdotool({"mousemove", "200", "97"});  // resting on Pause Nexa shows why it is disabled
  usleep(1500 * 1000);
  EXPECT_TRUE(screenshot("pxcntrl-read-only-control-menu.png"));
  keys(window, {"a", "Escape", "Escape"});
  usleep(500 * 1000);
  EXPECT_EQ(live.state(), "3\trunning");
  EXPECT_EQ(live.read("north/data/pxctrl00.msg"), "");
  keys(window, {"alt+f", "x"});
  EXPECT_EQ(wait_for_end(), 0);
}

// About and Select Instance on the Qt back end: Escape presses About's OK;
// in Select Instance Escape cancels and Enter chooses the selected row.
TEST_F(PxcntrlUnderX, AboutAndSelectInstanceCloseAsTheOperatorExpects) {
  start_console();
  std::string window = console_window();
  ASSERT_FALSE(window.empty()) << "no console window";
  usleep(500 * 1000);

  keys(window, {"alt+h", "a"});
  std::string about = shown_window("^About Nexa Control$");
  ASSERT_FALSE(about.empty()) << "no About dialog";
  EXPECT_TRUE(screenshot("pxcntrl-about.png"));
  keys(about, {"Escape"});
  EXPECT_TRUE(window_gone("^About Nexa Control$"));

  keys(window, {"alt+f", "Return"});
  std::string select = shown_window("^Select Instance of Nexa$");
  ASSERT_FALSE(select.empty()) << "no Select Instance dialog";
  EXPECT_TRUE(screenshot("pxcntrl-select-instance.png"));
  keys(select, {"Down", "Escape"});
  EXPECT_TRUE(window_gone("^Select Instance of Nexa$"));
  EXPECT_NE(xdotool({"getwindowname", window}).find("Nexa North"), std::string::npos);

  keys(window, {"alt+f", "Return"});
  select = shown_window("^Select Instance of Nexa$");
  ASSERT_FALSE(select.empty()) << "Select Instance did not open again";
  keys(select, {"Down", "Return"});
  EXPECT_TRUE(window_gone("^Select Instance of Nexa$"));
  EXPECT_NE(xdotool({"getwindowname", window}).find("Nexa South"), std::string::npos)
      << xdotool({"getwindowname", window});

  keys(window, {"alt+f", "x"});
  EXPECT_EQ(wait_for_end(), 0);
}

}  // namespace
}  // namespace px

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  QGuiApplication app(argc, argv);  // for the screenshots
  return RUN_ALL_TESTS();
}
