// A form's save and the instance list's OK with each file step of the
// rewrite failed: the old file stays byte for byte, no temporary file is
// left, the result names the message to show, and a later save that works
// keeps the old file as the backup and touches no other line.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "common/ini_profile.h"
#include "config/forms/form.h"
#include "config/forms/instance_list.h"
#include "tests/support/faulty_file_system.h"
#include "tests/support/test_dir.h"

namespace px::forms {
namespace {

// CRLF and LF lines, comments, blank lines and keys no form writes.
const std::string kServerFile =
    "; the north server\r\n[Options]\r\nPauseTime=120\r\n;  keep this comment\r\n"
    "Other=1\r\n\r\n[Plexar]\nNode=here\nVerbosity=3\n[Tail]\nz=\n";

class FormSaveTest : public ::testing::Test {
 protected:
  ~FormSaveTest() override { ini::flush_cache(); }

  // The names in the directory that begin with prefix.
  int count_starting(const std::string& prefix) const {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dir_.path())) {
      if (entry.path().filename().string().starts_with(prefix)) ++count;
    }
    return count;
  }

  TestDir dir_;
};

TEST_F(FormSaveTest, EveryFailedStepLeavesTheFileWholeAndNamesTheMessage) {
  std::string file = dir_.write("north.ini", kServerFile);
  int injected = 0;
  int whole = 0;
  for (RewriteFault fault : kRewriteFaults) {
    for (int error : kRewriteErrors) {
      std::string what = std::to_string(fault.step) + "/" + std::to_string(error);
      Form form(form_def(FormKind::kServer), file);
      form.load();
      form.type(static_cast<std::size_t>(form.index_of("PauseTime")), "45");
      FaultyFileSystem files(fault.step, error);
      FileResult result = form.save(&files);
      ++injected;
      EXPECT_FALSE(result) << what;
      EXPECT_GT(files.failures(), 0) << what;
      EXPECT_EQ(result.error, error) << what;
      FileMessage message = failure_message(result, file);
      EXPECT_EQ(message.number, fault.message) << what;
      EXPECT_EQ(message.args.at(0), file) << what;
      bool intact = dir_.read("north.ini") == kServerFile;
      EXPECT_TRUE(intact) << what;
      whole += intact ? 1 : 0;
      EXPECT_EQ(count_starting(".north.ini"), 0) << what;  // no temporary left
      EXPECT_FALSE(std::filesystem::exists(file + ".bak")) << what;
      // The form still holds what was typed and still sees the file as read.
      EXPECT_EQ(form.text(static_cast<std::size_t>(form.index_of("PauseTime"))), "45");
      EXPECT_FALSE(form.changed_on_disk()) << what;
    }
  }
  std::printf("form save fault injection: %d faults injected (5 steps x ENOSPC, EIO, EACCES), "
              "%d left the file whole\n", injected, whole);

  // The same save with the real steps: the backup is the old file, the
  // form's keys are written (in minutes: 120 showed as 2 minutes), and
  // every other line keeps its bytes, blank lines and line ends included.
  Form form(form_def(FormKind::kServer), file);
  form.load();
  form.type(static_cast<std::size_t>(form.index_of("PauseTime")), "45");
  ASSERT_TRUE(form.save());
  EXPECT_EQ(dir_.read("north.ini.bak"), kServerFile);
  EXPECT_EQ(dir_.read("north.ini"),
            "; the north server\r\n[Options]\r\nPauseTime=2700\n;  keep this comment\r\n"
            "Other=1\r\nBackupFiles=No\nFileSpec=*.DAT\nDeleteExt=DA*\n\r\n[Plexar]\n"
            "Node=here\nVerbosity=3\nLogFile=\nLogFileSize=100000\n[Tail]\nz=\n");
  EXPECT_EQ(count_starting(".north.ini"), 0);
}

TEST_F(FormSaveTest, AFailedInstanceListOkNamesTheFileItCouldNotWrite) {
  ini::set_file(dir_.write("pxcntrl.ini", "[Plexar]\nInstall=" + dir_.file("install.ini") + "\n"));
  std::string north = dir_.write("north.ini", "; north\n[Plexar]\nWindowTitle=North\n");
  const std::string install = "; install\r\n[Configuration]\r\nnorth=" + north +
                              "\r\nbare=\r\n\r\n[Directories-north]\r\n/a=/b\r\n";
  std::string install_file = dir_.write("install.ini", install);
  for (RewriteFault fault : kRewriteFaults) {
    for (int error : kRewriteErrors) {
      InstanceList list;
      list.load();
      list.make_default(1);
      FaultyFileSystem files(fault.step, error,
                             [&](const std::string& path) { return path != north; });
      InstanceList::Applied applied = list.apply(&files);
      EXPECT_FALSE(applied);
      EXPECT_EQ(applied.file, install_file);
      EXPECT_EQ(failure_message(applied.result, applied.file).number, fault.message);
      EXPECT_EQ(dir_.read("install.ini"), install);
      EXPECT_EQ(count_starting(".install.ini"), 0);
    }
  }
  // The install file written, the configuration file's title not.
  InstanceList list;
  list.load();
  list.make_default(1);
  FaultyFileSystem files(FaultyFileSystem::kRename, ENOSPC,
                         [&](const std::string& path) { return path == north; });
  InstanceList::Applied applied = list.apply(&files);
  EXPECT_FALSE(applied);
  EXPECT_EQ(applied.file, north);
  EXPECT_EQ(dir_.read("north.ini"), "; north\n[Plexar]\nWindowTitle=North\n");
  EXPECT_EQ(dir_.read("install.ini.bak"), install);
  EXPECT_EQ(dir_.read("install.ini"), "; install\r\n[Configuration]\r\nbare=\nnorth=" + north +
                                          "\n\r\n[Directories-north]\r\n/a=/b\r\n");
}

}  // namespace
}  // namespace px::forms
