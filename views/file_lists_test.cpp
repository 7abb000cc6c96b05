#include "views/file_lists.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>

#include "views/view_messages.h"
#include "views/views_test_support.h"

namespace px::views {
namespace {

class FileListsTest : public ViewsTest {
 protected:
  void SetUp() override {
    ViewsTest::SetUp();
    for (const char* d : {"data", "errors", "mail", "mail-errors"}) ::mkdir(dir_.file(d).c_str(), 0755);
    agent_ = dir_.write("agent.ini", "[Paths]\nDataPath=" + dir_.file("mail") +
                                         "\nErrorPath=" + dir_.file("mail-errors") + "\n");
    config_ = dir_.write("north.ini", "[PXEMIO]\nIniFileName=" + agent_ + "\n[Paths]\nErrorPath=" +
                                          dir_.file("errors") + "\n");
  }
  void file(const std::string& name, time_t age) {
    dir_.write(name, "x");
    set_modified(dir_.file(name), age);
  }

  std::string agent_;
  std::string config_;
};

TEST_F(FileListsTest, AgentQueueHasItsStopRequestFirstThenMailOldestFirst) {
  file("mail/b.DAT", 200);
  file("mail/a.dat", 300);
  file("mail/c.dat", 100);
  file("mail/note.txt", 50);
  file("mail/STOPREAD.MSG", 900);
  auto queue = email_queue(config_, op_);
  ASSERT_TRUE(queue);
  EXPECT_TRUE(queue->has_files);
  EXPECT_EQ(queue->caption, msg::kQueueCaption);
  EXPECT_EQ(queue->directory, dir_.file("mail"));
  EXPECT_EQ(queue->rows, (std::vector<std::string>{"STOPREAD.MSG", "c.dat", "b.DAT", "a.dat"}));
}

TEST_F(FileListsTest, EmptyListsHoldTheirMessageRow) {
  file("mail/note.txt", 50);
  auto queue = email_queue(config_, op_);
  ASSERT_TRUE(queue);
  EXPECT_FALSE(queue->has_files);
  EXPECT_EQ(queue->rows, std::vector<std::string>{"[174]Nothing waiting"});
  auto none = rejects(config_, false, op_);
  ASSERT_TRUE(none);
  EXPECT_FALSE(none->has_files);
  EXPECT_EQ(none->rows, std::vector<std::string>{"[169]No rejects"});
  EXPECT_TRUE(op_.shown().empty());
}

TEST_F(FileListsTest, RejectsListEveryFileOfTheirErrorDirectory) {
  file("errors/ORD1.DAT", 1);
  file("errors/pxctrl07.msg", 2);
  file("errors/noext", 3);
  file("mail-errors/m.dat", 3);
  auto server = rejects(config_, false, op_);
  ASSERT_TRUE(server);
  std::vector<std::string> rows = server->rows;
  std::sort(rows.begin(), rows.end());
  EXPECT_EQ(rows, (std::vector<std::string>{"ORD1.DAT", "noext", "pxctrl07.msg"}));
  EXPECT_EQ(server->caption, msg::kRejectsCaption);
  auto agent = rejects(config_, true, op_);
  ASSERT_TRUE(agent);
  EXPECT_EQ(agent->rows, std::vector<std::string>{"m.dat"});
  EXPECT_EQ(*error_directory(config_, true, op_), dir_.file("mail-errors"));
}

TEST_F(FileListsTest, ProblemsAreShownAndCloseTheWindow) {
  EXPECT_FALSE(email_queue(dir_.file("missing.ini"), op_));
  EXPECT_EQ(op_.last(), msg::kIniUnreadable);

  std::string bare = dir_.write("bare.ini", "[Plexar]\n");
  EXPECT_FALSE(email_queue(bare, op_));
  EXPECT_EQ(op_.shown().back(), (ShownMessage{msg::kSettingMissing, {"PXEMIO", bare, "IniFileName"}}));
  EXPECT_FALSE(rejects(bare, false, op_));
  EXPECT_EQ(op_.shown().back(), (ShownMessage{msg::kSettingMissing, {"Paths", bare, "ErrorPath"}}));

  std::string lost = dir_.write("lost.ini", "[PXEMIO]\nIniFileName=" + dir_.file("gone.ini") +
                                                "\n[Paths]\nErrorPath=" + dir_.file("gone") + "\n");
  EXPECT_FALSE(email_queue(lost, op_));
  EXPECT_EQ(op_.last(), msg::kIniUnreadable);
  EXPECT_FALSE(rejects(lost, false, op_));
  EXPECT_EQ(op_.last(), msg::kErrorDirectoryMissing);

  dir_.write("agent.ini", "[Paths]\nDataPath=" + dir_.file("nowhere") + "\n");
  ini::flush_cache();
  EXPECT_FALSE(email_queue(config_, op_));
  EXPECT_EQ(op_.last(), msg::kDirectoryMissing);
}

}  // namespace
}  // namespace px::views
