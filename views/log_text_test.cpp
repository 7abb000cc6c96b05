#include "views/log_text.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "views/log_source.h"
#include "views/view_messages.h"
#include "views/views_test_support.h"

namespace px::views {
namespace {

std::vector<std::string> wrapped(std::string_view line, int width, int indent) {
  std::vector<std::string> rows;
  wrap_line(line, {width, indent}, rows);
  return rows;
}

TEST(LogTextTest, WrapsLongLinesWithIndentedContinuations) {
  std::string line;
  for (int i = 0; i < 200; ++i) line.push_back(static_cast<char>('a' + i % 26));
  std::vector<std::string> rows = wrapped(line, 80, 16);
  ASSERT_EQ(rows.size(), 3u);
  EXPECT_EQ(rows[0], line.substr(0, 80));
  EXPECT_EQ(rows[1], std::string(16, ' ') + line.substr(80, 64));
  EXPECT_EQ(rows[2], std::string(16, ' ') + line.substr(144, 56));

  EXPECT_EQ(wrapped(line.substr(0, 80), 80, 16).size(), 1u);
  EXPECT_EQ(wrapped(line, 0, 16), std::vector<std::string>{line});
  EXPECT_EQ(wrapped(line, 80, 80), std::vector<std::string>{line});  // no room: no wrapping
  EXPECT_EQ(wrapped(line, 80, 95), std::vector<std::string>{line});
  EXPECT_EQ(wrapped("", 80, 16), std::vector<std::string>{""});
}

TEST(LogTextTest, LogsOfTenThousandLinesOrMoreArePaged) {
  TestDir dir;
  std::string text;
  for (int i = 0; i < 9999; ++i) text += std::to_string(i) + "\n";
  LogIndex small(dir.write("small.log", text));
  ASSERT_TRUE(small.build());
  EXPECT_TRUE(shown_whole(small));
  LogIndex large(dir.write("large.log", text + "9999\n"));
  ASSERT_TRUE(large.build());
  EXPECT_FALSE(shown_whole(large));
  EXPECT_EQ(last_page(large), 9970);
  EXPECT_EQ(large.read_lines(last_page(large), kPageLines)->front(), "9970");

  LogIndex tiny(dir.write("tiny.log", "one\n"));
  ASSERT_TRUE(tiny.build());
  EXPECT_EQ(last_page(tiny), 0);
}

class LogSourceTest : public ViewsTest {};

TEST_F(LogSourceTest, ProcessesWithoutTheirOwnLogShowTheServers) {
  std::string agent = dir_.write("agent.ini", "[Plexar]\nLogFile=/logs/agent.log\n");
  std::string config = dir_.write(
      "north.ini", "[Plexar]\nLogFile=/logs/server.log\n[Processes]\nPXSERVER=Server\n"
                   "PXEMIO=Agent\nPXMERGE=Print\n[PXEMIO]\nIniFileName=" + agent +
                       "\nLogFile=/logs/x.log\n[PXMERGE]\nLogFile=/logs/merge.log\n");
  auto logs = log_processes(config, op_);
  ASSERT_TRUE(logs);
  EXPECT_EQ(logs->server_log, "/logs/server.log");
  ASSERT_EQ(logs->processes.size(), 2u);
  EXPECT_EQ(logs->processes[0].section, "PXSERVER");
  EXPECT_EQ(logs->processes[0].name, "Server");
  EXPECT_EQ(logs->processes[0].log, "/logs/server.log");
  EXPECT_EQ(logs->processes[1].log, "/logs/merge.log");
  EXPECT_EQ(*process_log_file(config, "PXSERVER", op_), "/logs/server.log");
  EXPECT_EQ(*process_log_file(config, "PXMERGE", op_), "/logs/merge.log");
  EXPECT_EQ(*agent_log_file(config, op_), "/logs/agent.log");
  EXPECT_TRUE(op_.shown().empty());
}

TEST_F(LogSourceTest, AProcessListLongerThanItsRoomOffersTheProcessesThatFit) {
  std::string processes;
  for (int i = 0; i < 80; ++i) processes += "PXPROCESSNUMBER" + std::to_string(10000 + i) + "=P\n";
  std::string config = dir_.write(
      "many.ini", "[Plexar]\nLogFile=/logs/server.log\n[Processes]\n" + processes);
  auto logs = log_processes(config, op_);
  ASSERT_TRUE(logs);
  // 21 characters a key with its NUL: 48 of them fit in 1023.
  ASSERT_EQ(logs->processes.size(), 48u);
  EXPECT_EQ(logs->processes.front().section, "PXPROCESSNUMBER10000");
  EXPECT_EQ(logs->processes.back().log, "/logs/server.log");
  EXPECT_TRUE(op_.shown().empty());
}

TEST_F(LogSourceTest, MissingSettingsAreShown) {
  std::string config = dir_.write("bare.ini", "[Processes]\nPXMERGE=Print\n");
  auto logs = log_processes(config, op_);
  ASSERT_TRUE(logs);
  EXPECT_TRUE(logs->processes.empty());  // no log of its own and no server log
  EXPECT_FALSE(process_log_file(config, "PXMERGE", op_));
  EXPECT_EQ(op_.shown().back(), (ShownMessage{msg::kSettingMissing, {"PXMERGE", config, "LogFile"}}));
  EXPECT_FALSE(agent_log_file(config, op_));
  EXPECT_EQ(op_.shown().back(), (ShownMessage{msg::kSettingMissing, {"PXEMIO", config, "IniFileName"}}));

  std::string none = dir_.write("none.ini", "[Plexar]\nLogFile=/l.log\n");
  EXPECT_FALSE(log_processes(none, op_));
  EXPECT_EQ(op_.shown().back(), (ShownMessage{msg::kNoProcesses, {"Processes", none}}));
  EXPECT_FALSE(log_processes(dir_.file("missing.ini"), op_));
  EXPECT_EQ(op_.last(), msg::kIniUnreadable);
}

TEST_F(LogSourceTest, WholeLogsAndFilesReadEveryLine) {
  std::string path = dir_.write("w.log", std::string(100, 'a') + "\nshort\n");
  EXPECT_EQ(*whole_log(path, {60, 10}),
            (std::vector<std::string>{std::string(60, 'a'), std::string(10, ' ') + std::string(40, 'a'),
                                      "short"}));
  EXPECT_FALSE(whole_log(dir_.file("none.log"), {}));
  EXPECT_EQ(*file_lines(path, op_), (std::vector<std::string>{std::string(100, 'a'), "short"}));
  EXPECT_FALSE(file_lines(dir_.file("none.dat"), op_));
  EXPECT_EQ(op_.last(), msg::kFileNotOpened);
  LogIndex index(dir_.file("none.log"));
  EXPECT_FALSE(index_log(index, op_));
  EXPECT_EQ(op_.numbers().size(), 2u);
}

TEST_F(LogSourceTest, ADirectoryIsAFileThatDoesNotOpen) {
  std::string directory = dir_.file("sub.dat");
  ASSERT_EQ(::mkdir(directory.c_str(), 0755), 0);
  EXPECT_FALSE(file_lines(directory, op_));
  EXPECT_EQ(op_.shown().back(), (ShownMessage{msg::kFileNotOpened, {directory}}));
  EXPECT_FALSE(whole_log(directory, {}));
  LogIndex index(directory);
  EXPECT_FALSE(index_log(index, op_));
  EXPECT_EQ(op_.numbers().size(), 2u);
  // A FIFO with no writer would block the open: it does not open either.
  std::string fifo = dir_.file("fifo.log");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  EXPECT_FALSE(file_lines(fifo, op_));
  LogIndex fifo_index(fifo);
  EXPECT_FALSE(index_log(fifo_index, op_));
  EXPECT_EQ(op_.numbers().size(), 4u);
}

}  // namespace
}  // namespace px::views
