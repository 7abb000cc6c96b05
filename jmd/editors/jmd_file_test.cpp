#include "jmd/editors/jmd_file.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "common/file_util.h"
#include "jmd/editors/editor_messages.h"
#include "jmd/editors/editor_test_support.h"

namespace px::editors {
namespace {

// Does the file steps on the disk, except the one it is told to fail.
class FailingFiles : public FileSystem {
 public:
  explicit FailingFiles(bool fail_sync) : fail_sync_(fail_sync) {}
  bool exists(const std::string& path) override { return real_.exists(path); }
  bool sync(const std::string& path) override { return !fail_sync_ && real_.sync(path); }
  bool keep_copy(const std::string& from, const std::string& to) override {
    return real_.keep_copy(from, to);
  }
  bool rename(const std::string& from, const std::string& to) override {
    return fail_sync_ && real_.rename(from, to);
  }
  bool remove(const std::string& path) override { return real_.remove(path); }

 private:
  bool fail_sync_;
  FileSystem& real_ = system_file_system();
};

TEST(ReplaceJmdFile, AFailedSyncOrRenameLeavesTheOldFileAndNoStrayFile) {
  EditorFixture jmd;
  JmdEditor& editor = jmd.editor();
  ASSERT_EQ(editor.delete_rows(ListKind::kTasks, {editor.find_row(ListKind::kTasks, "PXMERGE")}),
            1);
  std::string path = jmd.file().path();
  std::string directory = std::filesystem::path(path).parent_path();
  for (bool fail_sync : {true, false}) {
    FailingFiles files(fail_sync);
    EXPECT_FALSE(replace_jmd_file(*editor.service().jmd(), path, files));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory),
                            std::filesystem::directory_iterator()),
              1);
  }
  EXPECT_EQ(read_file(path).value_or(""), kSmallJmd);
  std::string saved = jmd.saved();
  EXPECT_EQ(saved.find("!x"), std::string::npos);
  EXPECT_NE(saved.find("!m HP4"), std::string::npos);
}

TEST(ReplaceJmdFile, TheFileKeepsItsPermissions) {
  EditorFixture jmd;
  std::filesystem::permissions(jmd.file().path(), std::filesystem::perms::owner_read |
                                                      std::filesystem::perms::owner_write |
                                                      std::filesystem::perms::group_read);
  jmd.saved();
  EXPECT_EQ(std::filesystem::status(jmd.file().path()).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write |
                std::filesystem::perms::group_read);
}

}  // namespace
}  // namespace px::editors
