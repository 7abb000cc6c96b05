#include "toolkit/resources/catalog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "toolkit/resources/resource_ids.h"

namespace px::tk {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

std::set<int> command_ids(std::span<const MenuItemDef> items) {
  std::set<int> ids;
  for (const MenuItemDef& item : items) {
    if (item.kind == MenuItemKind::kCommand) ids.insert(item.id);
    if (item.kind == MenuItemKind::kSubmenu) ids.merge(command_ids(item.submenu));
  }
  return ids;
}

std::set<int> command_ids(const MenuBarDef& bar) {
  std::set<int> ids;
  for (const MenuDef& menu : bar.menus) ids.merge(command_ids(menu.items));
  return ids;
}

TEST(CatalogTest, EveryResourceIsSound) {
  for (const WindowDef* def : all_window_defs()) {
    EXPECT_THAT(check_window_def(*def), IsEmpty()) << "resource " << def->id;
  }
  for (const MenuBarDef* bar : all_menu_bars()) {
    EXPECT_THAT(check_menu_bar(*bar), IsEmpty()) << "menu bar " << bar->id;
  }
  int previous = 0;
  for (const WindowDef* def : all_window_defs()) {
    EXPECT_LT(previous, def->id) << "ids are sorted and unique";
    previous = def->id;
  }
}

TEST(CatalogTest, EmailBarIsTheBaseBarWithTheFiveAgentItems) {
  const MenuBarDef* base = find_menu_bar(kMenuBarBase);
  const MenuBarDef* email = find_menu_bar(kMenuBarEmail);
  ASSERT_NE(base, nullptr);
  ASSERT_NE(email, nullptr);
  std::set<int> expected{kCmdSelectInstance, kCmdSave,          kCmdJobs,           kCmdTasks,
                         kCmdPrinters,       kCmdManagedMemory, kCmdExit,           kCmdCut,
                         kCmdCopy,           kCmdPaste,         kCmdDelete,         kCmdStatusQueue,
                         kCmdServerLog,      kCmdServerRejects, kCmdReloadPrinter,  kCmdReloadJmd,
                         kCmdStartServer,    kCmdPauseServer,   kCmdResumeServer,   kCmdShutDownServer,
                         kCmdConfigure,      kCmdViewDocumentation, kCmdAbout,
                         kCmdUndo,           kCmdRedo};
  EXPECT_EQ(command_ids(*base), expected);
  expected.insert({kCmdEmailLog, kCmdEmailQueue, kCmdEmailRejects, kCmdStartEmail, kCmdShutDownEmail});
  EXPECT_EQ(command_ids(*email), expected);
  const MenuItemDef* cut = find_menu_command(*base, kCmdCut);
  ASSERT_NE(cut, nullptr);
  EXPECT_EQ(cut->accelerator, "Ctrl+X");
  EXPECT_EQ(find_menu_command(*base, kCmdManagedMemory)->label, "&Managed Memory...");
  EXPECT_EQ(find_menu_command(*base, kCmdEmailLog), nullptr);
}

TEST(CatalogTest, LookupsFindTheShellResources) {
  ASSERT_NE(find_window_def(kSelectInstanceDialog), nullptr);
  EXPECT_EQ(find_window_def(kSelectInstanceDialog)->title, "Select Instance of Nexa");
  EXPECT_EQ(find_window_def(kAboutDialog)->controls[2].label, "Version 1.00 (A1)");
  EXPECT_EQ(find_window_def(kTaskWindow)->kind, WindowKind::kTask);
  EXPECT_EQ(find_window_def(4242), nullptr);
  EXPECT_EQ(find_menu_bar(1), nullptr);
}

// Every window and dialog the console opens is registered with its kind, and
// in each dialog Enter and Escape press buttons whose ids its handler answers.
TEST(CatalogTest, EveryWindowAndDialogIsListedWithEnterAndEscape) {
  for (int id : {kLogWindow, kStatusQueueWindow, kRejectsWindow, kJmdListWindow, kEmailQueueWindow,
                 kJobWindow}) {
    ASSERT_NE(find_window_def(id), nullptr) << id;
    EXPECT_EQ(find_window_def(id)->kind, WindowKind::kDocument) << id;
  }
  const std::set<int> dialogs{
      kSelectInstanceDialog,   kJobStepDialog,       kPrinterDialog,        kLogProcessDialog,
      kInstanceConfigDialog,   kConfigureDialog,     kInstanceRecordDialog, kTaskDialog,
      kManagedMemoryDialog,    kJobNameDialog,       kReloadPrinterDialog,  kAboutDialog,
      kEmailConfigDialog,      kServerConfigDialog,  kNetworkCommandDialog, kPrintAgentConfigDialog,
      kCurrencyDialog,         kSpecialCharactersDialog, kServerLocationsDialog,
      kEmailLocationsDialog,   kJobCardDialog,       kSelectDirectoryDialog};
  std::set<int> listed;
  for (const WindowDef* def : all_window_defs()) {
    if (def->kind == WindowKind::kDialog) listed.insert(def->id);
  }
  EXPECT_EQ(listed, dialogs);
  for (int id : dialogs) {
    const WindowDef* def = find_window_def(id);
    ASSERT_NE(def, nullptr) << id;
    int enter = 0;
    int escape = 0;
    for (const ControlDef& c : def->controls) {
      if ((c.style & kDefaultButton) && !(c.style & (kHidden | kDisabled))) enter = c.id;
      if ((c.style & kCancelButton) && !(c.style & (kHidden | kDisabled))) escape = c.id;
    }
    int ok = id == kInstanceConfigDialog ? kInstanceOk : id == kServerLocationsDialog ? kLocationsOk : kOk;
    EXPECT_EQ(enter, ok) << "dialog " << id;
    EXPECT_EQ(escape, id == kAboutDialog ? kOk : kCancel) << "dialog " << id;
  }
}

TEST(CatalogTest, ChecksCatchTableMistakes) {
  using K = ControlKind;
  constexpr ControlDef bad[] = {
      {kNoId, K::kEdit, "", {0, 0, 10, 10}},                  // a field without id
      {3, K::kButton, "&Go", {20, 0, 10, 10}, kDefaultButton},
      {3, K::kButton, "&Get", {40, 0, 10, 10}, kDefaultButton},  // id, mnemonic, default twice
      {4, K::kListBox, "", {45, 5, 10, 10}, kPassword},       // overlaps 3, wrong style
      {5, K::kStatic, "", {90, 90, 20, 20}},                  // outside
      {6, K::kStatic, "&Last:", {0, 30, 10, 10}},             // labels nothing
  };
  WindowDef def{800, WindowKind::kDialog, "Bad", {100, 100}, bad};
  EXPECT_THAT(check_window_def(def), SizeIs(8));

  static constexpr MenuItemDef items[] = {separator(), command(1, "&Open"), command(1, "&Other"), separator(),
                                   separator()};
  static constexpr MenuDef menus[] = {{"&File", items}, {"&Find", {}}};
  MenuBarDef bar{801, menus};
  EXPECT_THAT(check_menu_bar(bar), SizeIs(7));
}

TEST(CatalogTest, MnemonicsAreReadAsTheToolkitShowsThem) {
  EXPECT_EQ(mnemonic_letter("E&xit"), 'x');
  EXPECT_EQ(mnemonic_letter("Co&nfiguration"), 'n');
  EXPECT_EQ(mnemonic_letter("A&&B"), 0);
  EXPECT_EQ(mnemonic_letter("Select Instance of Nexa..."), 0);
  EXPECT_EQ(strip_mnemonic("Shut &Down Nexa"), "Shut Down Nexa");
  EXPECT_EQ(strip_mnemonic("A&&B"), "A&B");
}

}  // namespace
}  // namespace px::tk
