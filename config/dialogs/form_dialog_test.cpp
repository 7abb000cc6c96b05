// What every configuration dialog's OK does beyond its form: a save whose
// rewrite failed is reported and leaves the dialog open on what was typed;
// a save is an audited operator action; read-only mode shows the settings
// with OK disabled and the reason as its tooltip.
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "config/dialogs/instance_dialogs.h"
#include "config/dialogs/server_dialogs.h"
#include "config/dialogs/dialog_test_support.h"
#include "config/forms/form_messages.h"
#include "config/operator_action.h"
#include "tests/support/faulty_file_system.h"

namespace px::dialogs {
namespace {

constexpr int kPauseTime = 5;
constexpr int kOk = 1;
constexpr int kCancel = 2;

const std::string kNorth = "; north\r\n[Options]\r\nPauseTime=120\r\nKeep=1\r\n[Plexar]\r\n";

class FormDialogTest : public DialogTest {
 protected:
  void SetUp() override { north_ = dir.write("north.ini", kNorth); }
  void use_options(const std::string& key, const std::string& value) {
    ASSERT_TRUE(ini::write_string("Options", key, value));
  }
  std::string north_;
};

TEST_F(FormDialogTest, AFailedSaveShowsWhyAndKeepsTheDialogOpen) {
  for (auto [step, message] : kRewriteFaults) {
    for (int error : kRewriteErrors) {
      FaultyFileSystem files(step, error);
      context.files = &files;
      op.clear();
      tk.on_dialog(134, [&](tk::Window d) {
        EXPECT_TRUE(tk.replace_text(d, kPauseTime, "45"));
        EXPECT_TRUE(tk.click(d, kOk));
        EXPECT_TRUE(d.exists());
        EXPECT_EQ(text(d, kPauseTime), "45");
        EXPECT_TRUE(tk.click(d, kCancel));
      });
      ASSERT_TRUE(run_server_dialog(context, north_));
      EXPECT_EQ(op.numbers(), (std::vector<int>{message, forms::kMsgNotSaved})) << step;
      EXPECT_EQ(op.shown().at(0).args.at(0), north_);
      EXPECT_EQ(dir.read("north.ini"), kNorth);
      EXPECT_FALSE(std::filesystem::exists(north_ + ".bak"));
    }
  }

  // The real file steps: saved, audited, the old file kept as the backup.
  context.files = nullptr;
  op.clear();
  std::string audit = dir.file("audit.log");
  use_options("AuditLog", audit);
  tk.on_dialog(134, [&](tk::Window d) {
    EXPECT_TRUE(tk.replace_text(d, kPauseTime, "45"));
    EXPECT_TRUE(tk.click(d, kOk));
  });
  ASSERT_TRUE(run_server_dialog(context, north_));
  EXPECT_TRUE(op.numbers().empty());
  EXPECT_EQ(dir.read("north.ini.bak"), kNorth);
  EXPECT_NE(dir.read("north.ini").find("PauseTime=2700\n"), std::string::npos);
  std::string record = dir.read("audit.log");
  EXPECT_NE(record.find("config set PXSERVER"), std::string::npos) << record;
  EXPECT_NE(record.find("done"), std::string::npos) << record;
}

TEST_F(FormDialogTest, ReadOnlyShowsTheSettingsWithOkDisabled) {
  use_options("ReadOnly", "Yes");
  ASSERT_TRUE(read_only_mode());
  tk.on_dialog(134, [&](tk::Window d) {
    EXPECT_EQ(text(d, kPauseTime), "2");
    EXPECT_FALSE(d.control(kOk).enabled());
    EXPECT_EQ(d.control(kOk).tip(), read_only_reason());
    EXPECT_FALSE(read_only_reason().empty());
    EXPECT_TRUE(tk.replace_text(d, kPauseTime, "45"));
    EXPECT_FALSE(tk.click(d, kOk));
    EXPECT_TRUE(tk.click(d, kCancel));
  });
  ASSERT_TRUE(run_server_dialog(context, north_));
  EXPECT_EQ(dir.read("north.ini"), kNorth);

  // The instance list opens and its record dialog shows the instance, but
  // nothing that would change the list can be pressed.
  std::string install = "[Configuration]\nnorth=" + north_ + "\nsouth=\n";
  dir.write("install.ini", install);
  tk.on_dialog(121, [&](tk::Window d) {
    ASSERT_EQ(d.control(7).count(), 2);
    for (int changes : {5, 4, 3}) {
      EXPECT_FALSE(d.control(changes).enabled()) << changes;
      EXPECT_EQ(d.control(changes).tip(), read_only_reason()) << changes;
    }
    EXPECT_TRUE(d.control(1).enabled());  // Edit... shows the record
    tk.on_dialog(124, [&](tk::Window r) {
      EXPECT_EQ(text(r, 4), "south");
      EXPECT_FALSE(r.control(1).enabled());
      EXPECT_TRUE(tk.click(r, kCancel));
    });
    EXPECT_TRUE(tk.double_click_row(d, 7, 1));
    EXPECT_FALSE(tk.click(d, 5));
    EXPECT_TRUE(tk.click(d, kCancel));
  });
  ASSERT_TRUE(run_instance_config_dialog(context));
  EXPECT_EQ(dir.read("install.ini"), install);
}

}  // namespace
}  // namespace px::dialogs
