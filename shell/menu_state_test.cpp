// The menu-state rules, and "Select Instance of Nexa" switching the console
// to another instance.
#include <gmock/gmock.h>

#include "config/instances.h"
#include "control/node.h"
#include "shell/menu_state.h"
#include "shell/shell_test_support.h"
#include "shell/title.h"

namespace px::shell {
namespace {

using ::testing::ElementsAre;

class MenuStateTest : public ShellTest {
 protected:
  void SetUp() override { write_console_ini(); }

  MenuState state_for(const std::string& config, unsigned location) {
    ini::drop_file(dir.file("instance.ini"));
    return menu_state(dir.write("instance.ini", config), location);
  }
  static std::string without(std::string text, const std::string& line) {
    replace_all(text, line, "");
    return text;
  }
};

constexpr unsigned kHere = kLocationStartable;

TEST_F(MenuStateTest, EveryItemIsEnabledForACompleteLocalInstance) {
  MenuState state = state_for(full_config("north"), kHere);
  EXPECT_TRUE(state.save);
  EXPECT_TRUE(state.log);
  EXPECT_TRUE(state.rejects);
  EXPECT_TRUE(state.control);
  EXPECT_TRUE(state.start);
}

TEST_F(MenuStateTest, EachMissingSettingDisablesItsItems) {
  std::string full = full_config("north");
  MenuState no_jmd = state_for(without(full, "JMDFileName=" + dir.file("north/pxjmd.jmd")), kHere);
  EXPECT_FALSE(no_jmd.save);
  EXPECT_FALSE(no_jmd.start);
  EXPECT_TRUE(no_jmd.control);

  MenuState no_errors = state_for(without(full, "ErrorPath=" + dir.file("north/errors")), kHere);
  EXPECT_FALSE(no_errors.rejects);
  EXPECT_FALSE(no_errors.start);

  MenuState no_data = state_for(without(full, "DataPath=" + dir.file("north/data")), kHere);
  EXPECT_FALSE(no_data.control);
  EXPECT_FALSE(no_data.start);
  EXPECT_TRUE(no_data.rejects);

  EXPECT_FALSE(state_for(without(full, "ExePath=" + dir.path()), kHere).start);
  EXPECT_FALSE(state_for(without(full, "BackupPath=" + dir.file("north/backup")), kHere).start);
}

TEST_F(MenuStateTest, ALogOnStandardOutputCannotBeShown) {
  std::string config = full_config("north");
  replace_all(config, "LogFile=" + dir.file("north/pxserver.log"), "LogFile=stdout");
  EXPECT_FALSE(state_for(config, kHere).log);
  replace_all(config, "LogFile=stdout", "LogFile=");
  EXPECT_FALSE(state_for(config, kHere).log);
}

TEST_F(MenuStateTest, StartDependsOnWhereTheInstanceLives) {
  std::string bare = "[Paths]\nDataPath=" + dir.path() + "\n";
  EXPECT_TRUE(state_for(bare, kLocationNetwork | kLocationStartable | kLocationRemoteAccess).start)
      << "a remote-access instance is started by its node, whatever its paths";
  EXPECT_FALSE(state_for(full_config("north"), kLocationOtherNode).start)
      << "another node without remote access cannot be started from here";
  EXPECT_FALSE(state_for(full_config("north"), kLocationOtherNode | kLocationRemoteAccess).start)
      << "remote access without the socket library";
}

TEST_F(MenuStateTest, SelectingAnotherInstanceRetitlesAndRefreshesTheMenus) {
  add_instance("north", full_config("north"));
  add_instance("south", "[Plexar]\nWindowTitle=Nexa south\nLogFile=stdout\n[Paths]\nDataPath=" +
                            dir.path() + "\n");
  start();
  EXPECT_TRUE(task().menu_enabled(tk::kCmdSave));
  tk.on_dialog(tk::kSelectInstanceDialog, [&](tk::Window dialog) {
    tk::Control list = dialog.control(tk::kSelectInstanceList);
    EXPECT_EQ(list.count(), 2);
    EXPECT_EQ(list.row(0), "Nexa north");
    EXPECT_THAT(list.selected_rows(), ElementsAre(0)) << "the current instance";
    EXPECT_EQ(dialog.focused_control(), tk::kSelectInstanceList);
    tk.double_click_row(dialog, tk::kSelectInstanceList, 1);
  });
  tk.choose_menu(task(), tk::kCmdSelectInstance);
  EXPECT_EQ(current_instance().name, "south");
  EXPECT_EQ(task().title(), task_title("Nexa south"));
  EXPECT_FALSE(task().menu_enabled(tk::kCmdSave));
  EXPECT_FALSE(task().menu_enabled(tk::kCmdServerLog));
  EXPECT_FALSE(task().menu_enabled(tk::kCmdServerRejects));
  EXPECT_FALSE(task().menu_enabled(tk::kCmdStartServer));
  EXPECT_TRUE(task().menu_enabled(tk::kCmdPauseServer));
}

TEST_F(MenuStateTest, CancelKeepsTheCurrentInstance) {
  add_instance("north", full_config("north"));
  add_instance("south", full_config("south"));
  start();
  tk.on_dialog(tk::kSelectInstanceDialog, [&](tk::Window dialog) {
    tk.click_row(dialog, tk::kSelectInstanceList, 1);
    tk.press_escape(dialog);
  });
  tk.choose_menu(task(), tk::kCmdSelectInstance);
  EXPECT_EQ(current_instance().name, "north");
}

TEST_F(MenuStateTest, AnInstanceWithoutConfigurationCanBeChosenWith165) {
  add_instance("north", full_config("north"));
  add_instance("south", "");
  start();
  tk.on_dialog(tk::kSelectInstanceDialog, [&](tk::Window dialog) {
    EXPECT_EQ(dialog.control(tk::kSelectInstanceList).row(1), " ");
    tk.click_row(dialog, tk::kSelectInstanceList, 1);
    tk.expect_error("[165]");
    tk.press_enter(dialog);
  });
  tk.choose_menu(task(), tk::kCmdSelectInstance);
  EXPECT_EQ(current_instance().name, "south");
  EXPECT_FALSE(task().menu_enabled(tk::kCmdPauseServer));
}

TEST_F(MenuStateTest, SelectingWithNoInstanceShows166) {
  tk.expect_error("[164]");
  start();
  tk.expect_error("[166]");
  tk.choose_menu(task(), tk::kCmdSelectInstance);  // the dialog closes on its own
  EXPECT_TRUE(tk.running());
}

}  // namespace
}  // namespace px::shell
