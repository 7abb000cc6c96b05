#include "config/dialogs/select_directory_dialog.h"

#include <filesystem>

#include "config/dialogs/dialog_test_support.h"

namespace px::dialogs {
namespace {

class SelectDirectoryTest : public DialogTest {};

TEST_F(SelectDirectoryTest, WalksDrivesAndDirectoriesOverAFakeMountTable) {
  std::filesystem::create_directories(dir.file("disk/Orders"));
  std::filesystem::create_directories(dir.file("share/out"));
  std::vector<forms::Drive> table = {
      {"/", "/", true},
      {dir.file("disk"), dir.file("disk"), true},
      {dir.file("share"), dir.file("share") + "  fileserver:/export", true}};
  tk.on_dialog(150, [&](tk::Window d) {
    EXPECT_EQ(text(d, 4), dir.file("disk/Orders"));
    ASSERT_EQ(d.control(6).count(), 3);
    EXPECT_EQ(d.control(6).row(2), dir.file("share") + "  fileserver:/export");
    EXPECT_EQ(d.control(6).selected(), 1);
    EXPECT_EQ(d.control(5).row(0), "..");
    EXPECT_TRUE(tk.click_row(d, 6, 2));
    EXPECT_EQ(text(d, 4), dir.file("share"));
    EXPECT_EQ(d.control(5).row(1), "out");
    EXPECT_TRUE(tk.double_click_row(d, 5, 1));
    EXPECT_TRUE(tk.click(d, 1));
  });
  std::optional<std::string> chosen = select_directory(tk, op, dir.file("disk/Orders"), table);
  EXPECT_EQ(chosen, dir.file("share/out"));

  tk.on_dialog(150, [&](tk::Window d) { EXPECT_TRUE(tk.click(d, 2)); });
  EXPECT_FALSE(select_directory(tk, op, "", table).has_value());
}

}  // namespace
}  // namespace px::dialogs
