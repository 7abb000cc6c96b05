#include "config/dialogs/server_dialogs.h"

#include <filesystem>

#include "config/dialogs/dialog_test_support.h"

namespace px::dialogs {
namespace {

class ServerDialogTest : public DialogTest {
 protected:
  std::string config() { return dir.file("north.ini"); }
};

TEST_F(ServerDialogTest, LoadsTypesStepsAndSavesInOrder) {
  dir.write("north.ini", "; north\n[Options]\nPauseTime=120\nBackupFiles=yes\nKeep=1\n[Plexar]\n");
  tk.on_dialog(134, [&](tk::Window d) {
    EXPECT_EQ(d.title(), "Main Configuration for north");
    EXPECT_EQ(text(d, 5), "2");
    EXPECT_TRUE(d.control(23).checked());
    EXPECT_FALSE(d.control(24).checked());
    EXPECT_TRUE(d.control(10).checked());
    EXPECT_EQ(text(d, 9), "DA*");
    EXPECT_EQ(text(d, 20), "100000");
    EXPECT_EQ(text(d, 17), "-10");
    EXPECT_FALSE(d.control(13).visible());
    EXPECT_EQ(d.control(14).range().maximum, 999);
    EXPECT_EQ(d.control(14).position(), 2);

    EXPECT_TRUE(tk.replace_text(d, 5, "999"));
    int beeps = tk.beeps();
    EXPECT_TRUE(tk.scroll(d, 14, tk::ScrollAction::kLineUp));
    EXPECT_EQ(text(d, 5), "999");
    EXPECT_EQ(tk.beeps(), beeps + 1);
    EXPECT_EQ(text(d, 27), "The scan time is a whole number from 1 to 999.");
    EXPECT_TRUE(tk.replace_text(d, 20, "5x0"));
    EXPECT_EQ(text(d, 20), "50");
    EXPECT_EQ(text(d, 27), "This field takes digits only (a minus sign may come first).");
    EXPECT_TRUE(tk.replace_text(d, 20, "500"));
    EXPECT_EQ(text(d, 27), "");
    EXPECT_TRUE(tk.click(d, 10));  // unchecks
    EXPECT_TRUE(tk.click(d, 26));  // Changes...
    EXPECT_EQ(op.last(), 1612);
    EXPECT_EQ(op.shown().back().args.at(0),
              "\nPauseTime: 120 -> 59940\nBackupFiles: yes -> No\nLogFile: (none) -> \n"
              "LogFileSize: (none) -> 500\nVerbosity: (none) -> -10\nFileSpec: (none) -> *.DAT\n"
              "DeleteExt: (none) -> DA*");
    EXPECT_TRUE(tk.click(d, 1));
  });
  ASSERT_TRUE(run_server_dialog(context, config()));
  EXPECT_EQ(dir.read("north.ini"),
            "; north\n[Options]\nPauseTime=59940\nBackupFiles=No\nKeep=1\nFileSpec=*.DAT\n"
            "DeleteExt=DA*\n[Plexar]\nLogFile=\nLogFileSize=500\nVerbosity=-10\n");
}

TEST_F(ServerDialogTest, CancelWritesNothingAndBrowseFillsTheLogFile) {
  std::string before = "[Options]\nPauseTime=90\n";
  dir.write("north.ini", before);
  tk.answer_file_dialog(dir.file("logs/Server.LOG"));
  tk.on_dialog(134, [&](tk::Window d) {
    EXPECT_EQ(text(d, 5), "90");
    EXPECT_TRUE(d.control(24).checked());
    EXPECT_TRUE(tk.click(d, 25));
    EXPECT_EQ(text(d, 12), dir.file("logs/Server.LOG"));  // the case is kept
    EXPECT_TRUE(tk.click(d, 2));
  });
  ASSERT_TRUE(run_server_dialog(context, config()));
  EXPECT_EQ(dir.read("north.ini"), before);
  ASSERT_EQ(tk.file_requests().size(), 1u);
  EXPECT_EQ(tk.file_requests()[0].prompt, "Choose the log file");
}

TEST_F(ServerDialogTest, NetworkDialogNeverLoadsAndEnablesWithItsCheckBox) {
  dir.write("north.ini", "[Options]\nNetworkQueues=Yes\nNetworkCaptureCmd=old\n");
  tk.on_dialog(136, [&](tk::Window d) {
    EXPECT_FALSE(d.control(3).checked());
    EXPECT_EQ(text(d, 5), "");
    EXPECT_FALSE(d.control(5).enabled());
    EXPECT_FALSE(d.control(4).enabled());
    EXPECT_FALSE(tk.replace_text(d, 5, "refused while disabled"));
    EXPECT_TRUE(tk.click(d, 3));
    EXPECT_TRUE(d.control(11).enabled());
    EXPECT_TRUE(tk.replace_text(d, 5, "capture"));
    EXPECT_TRUE(tk.click(d, 1));
  });
  ASSERT_TRUE(run_network_dialog(context, config()));
  EXPECT_EQ(dir.read("north.ini"),
            "[Options]\nNetworkQueues=Yes\nNetworkCaptureCmd=capture\nNetworkLocalDevice=\n"
            "NetworkExcludeQueues=\nNetworkIncludeQueues=\n");
}

TEST_F(ServerDialogTest, FileLocationsBrowseForADirectory) {
  std::filesystem::create_directories(dir.file("in/today"));
  dir.write("north.ini", "[Paths]\nDataPath=" + dir.file("in") + "\n");
  drives = {{"/", "/", true}};
  tk.on_dialog(134, [&](tk::Window d) {
    tk.on_dialog(147, [&](tk::Window l) {
      EXPECT_EQ(l.title(), "Nexa File Locations for north");
      tk.on_dialog(150, [&](tk::Window b) {
        EXPECT_EQ(text(b, 4), dir.file("in"));
        ASSERT_EQ(b.control(5).count(), 2);
        EXPECT_EQ(b.control(5).row(1), "today");
        EXPECT_EQ(b.control(6).row(0), "/");
        EXPECT_TRUE(tk.double_click_row(b, 5, 1));
        EXPECT_EQ(text(b, 4), dir.file("in/today"));
        EXPECT_TRUE(tk.click(b, 1));
      });
      EXPECT_TRUE(tk.click(l, 11));
      EXPECT_EQ(text(l, 3), dir.file("in/today"));
      EXPECT_TRUE(tk.click(l, 10));
    });
    EXPECT_TRUE(tk.click(d, 15));
    EXPECT_TRUE(tk.click(d, 2));
  });
  ASSERT_TRUE(run_server_dialog(context, config()));
  EXPECT_EQ(dir.read("north.ini"), "[Paths]\nDataPath=" + dir.file("in/today") +
                                       "\nMSTPath=\nBackupPath=\nErrorPath=\n");
}

TEST_F(ServerDialogTest, AFileChangedOnDiskIsReloadedOverwrittenOrLeft) {
  dir.write("north.ini", "[Options]\nFileSpec=*.DAT\n");
  tk.on_dialog(134, [&](tk::Window d) {
    EXPECT_TRUE(tk.replace_text(d, 7, "*.TXT"));
    dir.write("north.ini", "[Options]\nFileSpec=*.NEW\nOther=writer\n");
    op.answer_next(2);  // Cancel: back to the dialog, nothing written
    EXPECT_TRUE(tk.click(d, 1));
    EXPECT_TRUE(d.exists());
    op.answer_next(0);  // Reload: the fields show the file again
    EXPECT_TRUE(tk.click(d, 1));
    EXPECT_EQ(text(d, 7), "*.NEW");
    EXPECT_TRUE(tk.replace_text(d, 7, "*.TXT"));
    dir.write("north.ini", "[Options]\nFileSpec=*.NEWER\nOther=writer\n");
    op.answer_next(1);  // Overwrite
    EXPECT_TRUE(tk.click(d, 1));
    EXPECT_FALSE(d.exists());
  });
  ASSERT_TRUE(run_server_dialog(context, config()));
  EXPECT_EQ(op.numbers(), (std::vector<int>{1603, 1603, 1603}));
  EXPECT_NE(dir.read("north.ini").find("FileSpec=*.TXT\nOther=writer\n"), std::string::npos);
}

}  // namespace
}  // namespace px::dialogs
