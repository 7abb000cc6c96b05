// The Configuration menu: "Configure Nexa and Agents..." opens the process
// list of the current instance and, from it, the process's editor.
#include "shell/shell_test_support.h"

namespace px::shell {
namespace {

class ConfigureMenuTest : public ShellTest {};

TEST_F(ConfigureMenuTest, OpensTheProcessListAndTheServerDialog) {
  write_console_ini();
  add_instance("north", full_config("north", "[Processes]\nPXSERVER=Plexar Nexa Server\n"
                                             "PXMERGE=Plexar Print Agent\n"));
  start();
  tk.on_dialog(tk::kConfigureDialog, [&](tk::Window d) {
    ASSERT_EQ(d.control(tk::kConfigureList).count(), 3);
    EXPECT_EQ(d.control(tk::kConfigureList).row(2), "Print Agent");
    EXPECT_TRUE(tk.double_click_row(d, tk::kConfigureList, 1));
  });
  tk.on_dialog(tk::kServerConfigDialog, [&](tk::Window s) {
    EXPECT_EQ(s.title(), "Main Configuration for north");
    EXPECT_EQ(s.control(tk::kServerScanTime).text(), "5");
    EXPECT_TRUE(s.control(tk::kServerSeconds).checked());
    EXPECT_TRUE(tk.click(s, tk::kCancel));
  });
  ASSERT_TRUE(tk.choose_menu(task(), tk::kCmdConfigure));
}

TEST_F(ConfigureMenuTest, TheInstanceListFollowsIntoTheMenu) {
  write_console_ini();
  add_instance("north", full_config("north", "[Processes]\nPXSERVER=Plexar Nexa Server\n"));
  add_instance("south", full_config("south", "[Processes]\nPXSERVER=Plexar Nexa Server\n"));
  start();
  ASSERT_TRUE(task().menu_enabled(tk::kCmdSelectInstance));
  tk.on_dialog(tk::kConfigureDialog, [&](tk::Window d) { EXPECT_TRUE(tk.click(d, tk::kOk)); });
  tk.on_dialog(tk::kInstanceConfigDialog, [&](tk::Window i) {
    EXPECT_TRUE(tk.click_row(i, tk::kInstanceList, 1));
    EXPECT_TRUE(tk.click(i, tk::kInstanceDelete));
    EXPECT_TRUE(tk.click(i, tk::kInstanceOk));
  });
  ASSERT_TRUE(tk.choose_menu(task(), tk::kCmdConfigure));
  EXPECT_FALSE(task().menu_enabled(tk::kCmdSelectInstance));
  EXPECT_EQ(read_text(dir.file("plexar.ini")).find("south="), std::string::npos);
}

}  // namespace
}  // namespace px::shell
