#include "config/dialogs/instance_dialogs.h"

#include "config/dialogs/dialog_test_support.h"

namespace px::dialogs {
namespace {

class InstanceDialogTest : public DialogTest {
 protected:
  void SetUp() override {
    north_ = dir.write("north.ini", "[Plexar]\nWindowTitle=North\n");
    south_ = dir.write("south.ini", "[Plexar]\nWindowTitle=South\n");
    dir.write("install.ini", "[Configuration]\nnorth=" + north_ + "\nsouth=" + south_ + "\n");
  }
  std::string north_;
  std::string south_;
};

TEST_F(InstanceDialogTest, EditMakeDefaultAndOkRewriteTheList) {
  tk.on_dialog(121, [&](tk::Window d) {
    ASSERT_EQ(d.control(7).count(), 2);
    EXPECT_EQ(d.control(7).row(1), "South");
    EXPECT_TRUE(d.control(3).visible());
    EXPECT_TRUE(tk.click(d, 4));  // nothing selected
    tk.on_dialog(124, [&](tk::Window r) {
      EXPECT_EQ(text(r, 4), "south");
      EXPECT_EQ(text(r, 8), south_);
      EXPECT_EQ(r.control(4).limit(), 74);
      EXPECT_TRUE(tk.replace_text(r, 6, "South office"));
      EXPECT_TRUE(tk.click(r, 1));
    });
    EXPECT_TRUE(tk.double_click_row(d, 7, 1));
    EXPECT_EQ(d.control(7).row(1), "South office");
    EXPECT_TRUE(tk.click(d, 4));
    EXPECT_EQ(d.control(7).row(0), "South office");
    EXPECT_EQ(d.control(7).selected(), 0);
    EXPECT_TRUE(tk.click(d, 5));
  });
  ASSERT_TRUE(run_instance_config_dialog(context));
  EXPECT_EQ(op.numbers(), (std::vector<int>{214}));
  EXPECT_EQ(dir.read("install.ini"), "[Configuration]\nsouth=" + south_ + "\nnorth=" + north_ + "\n");
  EXPECT_EQ(dir.read("south.ini"), "[Plexar]\nWindowTitle=South office\n");
}

TEST_F(InstanceDialogTest, DeleteAndCancel) {
  std::string before = dir.read("install.ini");
  tk.on_dialog(121, [&](tk::Window d) {
    EXPECT_TRUE(tk.click_row(d, 7, 0));
    EXPECT_TRUE(tk.click(d, 3));
    EXPECT_EQ(d.control(7).count(), 1);
    EXPECT_TRUE(tk.click(d, 2));
  });
  ASSERT_TRUE(run_instance_config_dialog(context));
  EXPECT_EQ(dir.read("install.ini"), before);

  tk.on_dialog(121, [&](tk::Window d) {
    EXPECT_TRUE(tk.click_row(d, 7, 0));
    EXPECT_TRUE(tk.click(d, 3));
    EXPECT_TRUE(tk.click(d, 5));
  });
  ASSERT_TRUE(run_instance_config_dialog(context));
  EXPECT_EQ(dir.read("install.ini"), "[Configuration]\nsouth=" + south_ + "\n");
}

TEST_F(InstanceDialogTest, RecordRefusesADuplicateName) {
  tk.on_dialog(121, [&](tk::Window d) {
    tk.on_dialog(124, [&](tk::Window r) {
      EXPECT_TRUE(tk.replace_text(r, 4, "NORTH"));
      EXPECT_TRUE(tk.click(r, 1));
      EXPECT_TRUE(r.exists());
      EXPECT_TRUE(tk.click(r, 2));
    });
    EXPECT_TRUE(tk.double_click_row(d, 7, 1));
    EXPECT_TRUE(tk.click(d, 2));
  });
  ASSERT_TRUE(run_instance_config_dialog(context));
  EXPECT_EQ(op.numbers(), (std::vector<int>{1608}));
}

}  // namespace
}  // namespace px::dialogs
