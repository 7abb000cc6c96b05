#include "jmd/editors/jmd_file.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "common/file_util.h"
#include "jmd/editors/editor_messages.h"
#include "jmd/editors/editor_test_support.h"

namespace px::editors {
namespace {

// A save keeps the file's permission bits (its failures are the JMD
// writer's, tested with the file-step seam).
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
