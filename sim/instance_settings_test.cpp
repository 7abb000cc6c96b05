#include "sim/instance_settings.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "sim/sim_report.h"
#include "tests/support/test_dir.h"

namespace px::sim {
namespace {

class SettingsTest : public ::testing::Test {
 protected:
  std::string config(std::string_view extra_options = "", std::string_view extra_paths = "") {
    return dir.write("pxserver.ini",
                     "[Plexar]\nStatusFile=" + dir.file("pxserver.sts") + "\nLogFile=" +
                         dir.file("pxserver.log") + "\n\n[Options]\n" + std::string(extra_options) +
                         "\n[Paths]\nDataPath=" + dir.file("data") + "\nErrorPath=" +
                         dir.file("errors") + "\n" + std::string(extra_paths) +
                         "\n[Messages]\nMsg310=10 Nexa is not running\nMsg315=10   Nexa is paused\n");
  }

  std::optional<InstanceSettings> load(const std::string& file) {
    return load_instance_file("north", file, problem, agent_problem);
  }

  TestDir dir;
  SettingsProblem problem, agent_problem;
};

TEST_F(SettingsTest, ReadsTheServerSettingsWithDefaults) {
  auto settings = load(config());
  ASSERT_TRUE(settings);
  const ServerSettings& s = settings->server;
  EXPECT_EQ(s.status_file, dir.file("pxserver.sts"));
  EXPECT_EQ(s.control_path, dir.file("data"));  // no ControlPath: DataPath
  EXPECT_EQ(s.file_pattern, "*.DAT");
  EXPECT_EQ(s.pause_seconds, 5);
  EXPECT_FALSE(s.backup_files);
  EXPECT_EQ(s.not_running_text, "Nexa is not running");
  EXPECT_EQ(s.paused_text, "Nexa is paused");
  EXPECT_FALSE(settings->agent);
  EXPECT_EQ(agent_problem.message, 0);
}

TEST_F(SettingsTest, FileSpecKeepsItsFirstPatternOnly) {
  auto settings = load(config("FileSpec=*.TXT;*.DAT\nPauseTime=0\nBackupFiles=yes\n"));
  ASSERT_TRUE(settings);
  EXPECT_EQ(settings->server.file_pattern, "*.TXT");
  EXPECT_EQ(settings->server.pause_seconds, 1);  // never scans in a tight loop
  EXPECT_TRUE(settings->server.backup_files);
}

TEST_F(SettingsTest, ControlPathIsUsedOnlyWhenItExists) {
  std::string file = config("", "ControlPath=" + dir.file("control") + "\n");
  auto missing = load(file);
  ASSERT_TRUE(missing);
  EXPECT_EQ(missing->server.control_path, dir.file("data"));
  mkdir(dir.file("control").c_str(), 0755);
  auto present = load(file);
  ASSERT_TRUE(present);
  EXPECT_EQ(present->server.control_path, dir.file("control"));
}

TEST_F(SettingsTest, MissingStatusFileIsReportedWithSectionAndKey) {
  std::string file = dir.write("bad.ini", "[Paths]\nDataPath=/tmp\n");
  EXPECT_FALSE(load(file));
  EXPECT_EQ(problem.message, kMsgSettingMissing);
  EXPECT_EQ(problem.args, (std::vector<std::string>{"north", file, "StatusFile", "Plexar"}));
}

TEST_F(SettingsTest, StatusMessagesAreRequired) {
  std::string file = dir.write("bad.ini", "[Plexar]\nStatusFile=/tmp/x.sts\n[Paths]\nDataPath=/tmp\n"
                                          "ErrorPath=/tmp\n[Messages]\nMsg310=10 Down\n");
  EXPECT_FALSE(load(file));
  EXPECT_EQ(problem.args[2], "Msg315");
}

TEST_F(SettingsTest, AgentSettingsComeFromItsOwnIniFile) {
  auto agent_ini = [&](std::string_view options) {
    return dir.write("pxemio.ini", "[Plexar]\nStatusFile=" + dir.file("pxemio.sts") +
                                       "\n[Options]\n" + std::string(options) + "[Paths]\nDataPath=" +
                                       dir.file("mail") + "\nErrorPath=" + dir.file("mail-errors") +
                                       "\n[Messages]\nMsg105=10 Reading mail\n");
  };
  std::string file = config();
  dir.write("pxserver.ini",
            dir.read("pxserver.ini") + "[PXEMIO]\nIniFileName=" + agent_ini("CycleTime=2\n") + "\n");
  auto settings = load(file);
  ASSERT_TRUE(settings);
  ASSERT_TRUE(settings->agent);
  EXPECT_EQ(settings->agent->cycle_seconds, 120);  // minutes unless Seconds says yes
  EXPECT_EQ(settings->agent->status_text, "10 Reading mail");  // whole value, level included
  EXPECT_EQ(settings->agent->data_path, dir.file("mail"));
  EXPECT_TRUE(settings->agent->log_file.empty());

  agent_ini("CycleTime=2\nSeconds=yes\n");
  EXPECT_EQ(load(file)->agent->cycle_seconds, 2);  // each load reads the files afresh
}

TEST_F(SettingsTest, IncompleteAgentIsLeftOutButTheServerIsServed) {
  std::string agent_ini = dir.write("pxemio.ini", "[Plexar]\nStatusFile=/tmp/x.sts\n");
  std::string file = config();
  dir.write("pxserver.ini", dir.read("pxserver.ini") + "[PXEMIO]\nIniFileName=" + agent_ini + "\n");
  auto settings = load(file);
  ASSERT_TRUE(settings);
  EXPECT_FALSE(settings->agent);
  EXPECT_EQ(agent_problem.message, kMsgAgentSettingMissing);
  EXPECT_EQ(agent_problem.args[2], "DataPath");
}

TEST(StatusText, TextAfterTheFirstWord) {
  EXPECT_EQ(text_after_first_word("10 Nexa is paused"), "Nexa is paused");
  EXPECT_EQ(text_after_first_word("  10\tNexa  "), "Nexa");
  EXPECT_EQ(text_after_first_word("10"), "");
}

}  // namespace
}  // namespace px::sim
