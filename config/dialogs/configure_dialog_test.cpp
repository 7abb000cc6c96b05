#include "config/dialogs/configure_dialog.h"

#include "config/dialogs/dialog_test_support.h"
#include "config/operator_action.h"

namespace px::dialogs {
namespace {

class ConfigureDialogTest : public DialogTest {
 protected:
  Instance north(const std::string& extra = "") {
    std::string file = dir.write(
        "north.ini", "[Plexar]\nWindowTitle=North\n[Processes]\nPXSERVER=Plexar Nexa Server\n"
                     "PXEMIO=Plexar E-Mail Agent\nRELAY=Ortane Relay Relay\n" + extra);
    dir.write("install.ini", "[Configuration]\nnorth=" + file + "\n");
    return {"north", "North", file};
  }
};

TEST_F(ConfigureDialogTest, ListsProcessesAndOpensTheServerEditor) {
  Instance instance = north();
  tk.on_dialog(123, [&](tk::Window d) {
    EXPECT_EQ(d.title(), "Configure Nexa and Agents");
    EXPECT_EQ(text(d, 1), "Edit File...");
    ASSERT_EQ(d.control(3).count(), 4);
    EXPECT_EQ(d.control(3).row(0), "Nexa Control (instances of Nexa)");
    EXPECT_EQ(d.control(3).row(1), "Nexa Server");
    EXPECT_EQ(d.control(3).row(3), "Relay");
    EXPECT_EQ(d.control(3).selected(), 0);
    EXPECT_TRUE(tk.double_click_row(d, 3, 1));
  });
  tk.on_dialog(134, [&](tk::Window s) { EXPECT_TRUE(tk.click(s, 2)); });
  ASSERT_TRUE(run_configure_dialog(context, instance, false));
}

TEST_F(ConfigureDialogTest, RowZeroOpensTheInstanceList) {
  Instance instance = north();
  tk.on_dialog(123, [&](tk::Window d) { EXPECT_TRUE(tk.click(d, 1)); });
  tk.on_dialog(121, [&](tk::Window i) { EXPECT_TRUE(tk.click(i, 2)); });
  ASSERT_TRUE(run_configure_dialog(context, instance, false));
}

TEST_F(ConfigureDialogTest, EditCfgRtnRunsInsteadOfTheBuiltInEditor) {
  Instance instance = north("[PXSERVER]\nEditCfgRtn=myeditor %s\n");
  tk.on_dialog(123, [&](tk::Window d) {
    EXPECT_TRUE(tk.click_row(d, 3, 1));
    EXPECT_TRUE(tk.click(d, 1));
  });
  ASSERT_TRUE(run_configure_dialog(context, instance, false));
  EXPECT_EQ(commands, (std::vector<std::string>{"myeditor " + instance.config_file}));
  EXPECT_TRUE(op.shown().empty());

  command_status = kRunFailed;
  tk.on_dialog(123, [&](tk::Window d) { EXPECT_TRUE(tk.double_click_row(d, 3, 1)); });
  ASSERT_TRUE(run_configure_dialog(context, instance, false));
  EXPECT_EQ(op.last(), 187);
}

TEST_F(ConfigureDialogTest, MissingSettingsAndOtherNodes) {
  Instance instance = north();
  tk.on_dialog(123, [&](tk::Window d) { EXPECT_TRUE(tk.double_click_row(d, 3, 3)); });
  ASSERT_TRUE(run_configure_dialog(context, instance, false));
  EXPECT_EQ(op.shown().back().args.back(), "IniFileName");  // RELAY has none

  tk.on_dialog(123, [&](tk::Window d) {
    EXPECT_EQ(d.control(3).count(), 1);
    EXPECT_TRUE(tk.click(d, 2));
  });
  ASSERT_TRUE(run_configure_dialog(context, instance, true));

  dir.write("north.ini", "[Plexar]\n");
  ASSERT_TRUE(run_configure_dialog(context, instance, false));  // closes itself
  EXPECT_EQ(op.last(), 175);
}

TEST_F(ConfigureDialogTest, ReadOnlyRefusesEditCfgRtnButOpensTheBuiltInEditors) {
  Instance instance = north("[PXSERVER]\nEditCfgRtn=myeditor %s\n");
  ASSERT_TRUE(ini::write_string("Options", "ReadOnly", "Yes"));
  tk.on_dialog(123, [&](tk::Window d) { EXPECT_TRUE(tk.double_click_row(d, 3, 1)); });
  ASSERT_TRUE(run_configure_dialog(context, instance, false));
  EXPECT_TRUE(commands.empty());
  EXPECT_EQ(op.numbers(), (std::vector<int>{msg::kReadOnlyRefused}));
  EXPECT_EQ(op.shown().back().args.at(0), "config edit PXSERVER");

  tk.on_dialog(123, [&](tk::Window d) { EXPECT_TRUE(tk.double_click_row(d, 3, 0)); });
  tk.on_dialog(121, [&](tk::Window i) { EXPECT_TRUE(tk.click(i, 2)); });
  ASSERT_TRUE(run_configure_dialog(context, instance, false));
}

}  // namespace
}  // namespace px::dialogs
