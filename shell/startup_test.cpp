// The console's start: menu bar, current instance, title, the menu rules
// that depend on the instance, the splash, and start-ups on broken
// installations that must show their messages and keep running.
#include <gmock/gmock.h>

#include "config/instances.h"
#include "shell/shell_test_support.h"
#include "shell/splash.h"
#include "shell/title.h"

namespace px::shell {
namespace {

using ::testing::HasSubstr;

constexpr int kEmailItems[] = {tk::kCmdStartEmail, tk::kCmdShutDownEmail, tk::kCmdEmailQueue,
                               tk::kCmdEmailRejects, tk::kCmdEmailLog};

class StartupTest : public ShellTest {};

TEST_F(StartupTest, FirstInstanceBecomesCurrentAndTitlesTheTaskWindow) {
  write_console_ini();
  add_instance("north", full_config("north"));
  add_instance("south", full_config("south"));
  start();
  EXPECT_TRUE(tk.running());
  EXPECT_EQ(current_instance().name, "north");
  EXPECT_EQ(task().title(), "Velmar Nexa Output Server - Nexa Control-Nexa north");
  EXPECT_TRUE(task().menu_enabled(tk::kCmdSelectInstance));
  EXPECT_TRUE(task().menu_enabled(tk::kCmdStartServer));
  for (int item : {tk::kCmdCut, tk::kCmdCopy, tk::kCmdPaste, tk::kCmdDelete}) {
    EXPECT_FALSE(task().menu_enabled(item)) << item;
  }
}

TEST_F(StartupTest, ASingleInstanceCannotBeSwitched) {
  write_console_ini();
  add_instance("north", full_config("north"));
  start();
  EXPECT_FALSE(task().menu_enabled(tk::kCmdSelectInstance));
}

TEST_F(StartupTest, WithoutPxemioTheBaseBarIsUsedAndTheAgentRuleSkipped) {
  write_console_ini("PXEMIO=0\n");  // ahead of the shipped PXEMIO=1: the first key wins
  add_instance("north", full_config("north"));
  start();
  EXPECT_FALSE(task().has_menu_item(tk::kCmdEmailLog));
  EXPECT_FALSE(task().has_menu_item(tk::kCmdStartEmail));
  EXPECT_TRUE(task().has_menu_item(tk::kCmdServerLog));
}

TEST_F(StartupTest, AgentItemsFollowThePxemioSectionOfTheInstance) {
  write_console_ini();
  add_instance("north", full_config("north", "[PXEMIO]\nIniFileName=" + dir.file("pxemio.ini") + "\n"));
  start();
  for (int item : kEmailItems) EXPECT_TRUE(task().menu_enabled(item)) << item;
}

TEST_F(StartupTest, AgentItemsAreDisabledWhenTheInstanceHasNoAgent) {
  write_console_ini();
  add_instance("north", full_config("north"));
  start();
  ASSERT_TRUE(task().has_menu_item(tk::kCmdEmailLog));
  for (int item : kEmailItems) EXPECT_FALSE(task().menu_enabled(item)) << item;
}

TEST_F(StartupTest, NoInstallFileShows164AndKeepsRunning) {
  write_console_ini();  // its install file is never written
  tk.expect_error("[164]");
  start();
  EXPECT_TRUE(tk.running());
  EXPECT_EQ(task().title(), tk::find_window_def(tk::kTaskWindow)->title);
  EXPECT_TRUE(current_instance().name.empty());
  ASSERT_EQ(tk.boxes().size(), 1u);
  EXPECT_EQ(tk.boxes()[0].caption, "Nexa Control");
}

TEST_F(StartupTest, InstanceWithoutConfigurationShows165AndKeepsRunning) {
  write_console_ini();
  add_instance("north", "");
  add_instance("south", full_config("south"));
  tk.expect_error("[165]");
  start();
  EXPECT_TRUE(tk.running());
  EXPECT_THAT(box_texts()[0], HasSubstr("north"));
  EXPECT_EQ(task().title(), task_title(" "));
}

TEST_F(StartupTest, WithoutAMessageCatalogueTheNumbersStillShow) {
  write_console_ini("", false);
  tk.expect_error("164");
  start();
  EXPECT_TRUE(tk.running());
}

TEST_F(StartupTest, SplashIsCentredAndClosesWhenItsTimeIsUp) {
  write_console_ini("SplashTime=3\n");
  add_instance("north", full_config("north"));
  start();
  tk::Window splash = tk.find_window(tk::kSplashWindow);
  ASSERT_TRUE(splash.exists());
  tk::Rect frame = splash.frame();
  EXPECT_EQ(frame.width, 500);
  EXPECT_EQ(frame.height, 320 + 24 - 1);
  EXPECT_EQ(frame.x, (1280 - 500) / 2);
  EXPECT_EQ(frame.y, (1024 - 343) / 2);
  EXPECT_EQ(tk.mouse_capture(), splash.id());
  tk.advance_time(2999);
  EXPECT_TRUE(splash.exists());
  tk.advance_time(1);
  EXPECT_FALSE(splash.exists());
  EXPECT_EQ(tk.mouse_capture(), 0u);
}

TEST_F(StartupTest, AClickClosesTheSplashEarly) {
  write_console_ini("SplashTime=3\n");
  add_instance("north", full_config("north"));
  start();
  tk::Window splash = tk.find_window(tk::kSplashWindow);
  ASSERT_TRUE(splash.exists());
  tk.mouse(splash, {10, 10});
  EXPECT_FALSE(splash.exists());
}

TEST_F(StartupTest, NoSplashWithoutAPositiveSplashTime) {
  add_instance("north", full_config("north"));
  for (const char* options : {"", "SplashTime=0\n", "SplashTime=-2\n"}) {
    write_console_ini(options);
    start();
    EXPECT_FALSE(tk.find_window(tk::kSplashWindow).exists()) << options;
    tk.shut_down();
  }
}

TEST_F(StartupTest, SplashDrawsTheImageBesideTheProgramWhenThereIsOne) {
  write_console_ini("SplashTime=1\n");
  add_instance("north", full_config("north"));
  std::filesystem::create_directories(dir.file("bin"));
  start(dir.file("bin/pxcntrl"));
  tk::Window splash = tk.find_window(tk::kSplashWindow);
  tk.paint(splash);
  EXPECT_TRUE(tk.last_drawing(splash).empty()) << "no image: the window stays blank";
  dir.write("bin/ssplash.bmp", "BM");
  tk.paint(splash);
  const std::vector<tk::DrawOp>& ops = tk.last_drawing(splash);
  ASSERT_EQ(ops.size(), 2u);
  EXPECT_EQ(ops[0].kind, tk::DrawOp::Kind::kClear);
  EXPECT_EQ(ops[1].kind, tk::DrawOp::Kind::kImage);
  EXPECT_EQ(ops[1].text, dir.file("bin/ssplash.bmp"));
}

}  // namespace
}  // namespace px::shell
