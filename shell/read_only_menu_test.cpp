// Read-only mode in the console: the items that change something are
// disabled with the reason as their tooltip, the others work, and an action
// that reaches dispatch anyway is refused by its gate.
#include "shell/read_only_menu.h"

#include <gmock/gmock.h>

#include "common/common_init.h"
#include "shell/dispatch.h"
#include "shell/shell_test_support.h"
#include "toolkit/make_event.h"

namespace px::shell {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class ReadOnlyMenuTest : public ShellTest {
 protected:
  void SetUp() override {
    add_instance("north", full_config("north", "[PXEMIO]\nIniFileName=" + dir.file("em.ini") + "\n"));
    add_instance("south", full_config("south"));
  }
  void TearDown() override {
    std::vector<std::string> args{"pxcntrl"};
    common_init(args);  // forgets -aro
    ShellTest::TearDown();
  }
  size_t files_in(const std::string& folder) {
    auto entries = std::filesystem::directory_iterator(dir.file(folder));
    return static_cast<size_t>(std::distance(entries, std::filesystem::directory_iterator()));
  }
};

TEST_F(ReadOnlyMenuTest, ChangingItemsAreDisabledWithTheReasonAndTheRestWork) {
  write_console_ini("ReadOnly=Yes\nPXEMIO=1\n");
  start();
  for (int item : changing_menu_items()) {
    if (!task().has_menu_item(item)) continue;  // 1012 is on no menu bar
    EXPECT_FALSE(task().menu_enabled(item)) << item;
    EXPECT_THAT(task().menu_tip(item), StartsWith("[1701]Not available")) << item;
  }
  for (int item : {tk::kCmdSelectInstance, tk::kCmdServerLog, tk::kCmdServerRejects,
                   tk::kCmdStatusQueue, tk::kCmdEmailLog, tk::kCmdAbout, tk::kCmdExit}) {
    EXPECT_TRUE(task().menu_enabled(item)) << item;
    EXPECT_EQ(task().menu_tip(item), "") << item;
  }
  EXPECT_FALSE(tk.choose_menu(task(), tk::kCmdPauseServer));

  // Choosing another instance keeps the rule.
  tk.on_dialog(tk::kSelectInstanceDialog, [&](tk::Window dialog) {
    tk.click_row(dialog, tk::kSelectInstanceList, 1);
    tk.press_enter(dialog);
  });
  ASSERT_TRUE(tk.choose_menu(task(), tk::kCmdSelectInstance));
  EXPECT_FALSE(task().menu_enabled(tk::kCmdShutDownServer));
  EXPECT_FALSE(task().menu_enabled(tk::kCmdSave));
}

TEST_F(ReadOnlyMenuTest, ActionsThatReachDispatchAreRefusedByTheirGateAndAudited) {
  write_console_ini("AuditLog=" + dir.file("audit.log") + "\n");
  std::vector<std::string> args{"pxcntrl", "-aro"};
  ASSERT_EQ(common_init(args), 0);
  start();
  EXPECT_FALSE(task().menu_enabled(tk::kCmdReloadJmd));
  tk.expect_error("[1700]This console is read-only, so reload-jobs was not done.");
  EXPECT_TRUE(dispatch_command(*console, [&] {
    tk::Event event = tk::command_event(tk::kCmdReloadJmd);
    event.window = task();
    return event;
  }()));
  EXPECT_EQ(files_in("north/data"), 0u);
  EXPECT_THAT(read_text(dir.file("audit.log")),
              HasSubstr("\tpxcntrl\tnorth\treload-jobs\trefused\t1700\n"));
}

TEST_F(ReadOnlyMenuTest, WithoutReadOnlyTheItemsFollowTheirUsualRules) {
  write_console_ini("ReadOnly=No\n");
  start();
  for (int item : {tk::kCmdSave, tk::kCmdPauseServer, tk::kCmdStartServer}) {
    EXPECT_TRUE(task().menu_enabled(item)) << item;
    EXPECT_EQ(task().menu_tip(item), "") << item;
  }
}

}  // namespace
}  // namespace px::shell
