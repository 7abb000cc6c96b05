#include "sim/sim_server.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

#include <initializer_list>

#include "sim/test_catalogue.h"
#include "tests/support/test_dir.h"

namespace px::sim {
namespace {

bool exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

std::string first_line(const std::string& text) { return text.substr(0, text.find('\n')); }

// A server instance laid out in a temporary directory.
class ServerTest : public ::testing::Test {
 protected:
  ServerTest() {
    use_test_catalogue();
    for (const char* name : {"data", "errors", "backup"}) mkdir(dir.file(name).c_str(), 0755);
    settings.instance = "north";
    settings.status_file = dir.file("pxserver.sts");
    settings.log_file = dir.file("pxserver.log");
    settings.data_path = dir.file("data");
    settings.control_path = settings.data_path;
    settings.error_path = dir.file("errors");
    settings.backup_path = dir.file("backup");
    settings.file_pattern = "*.DAT";
    settings.jmd_file = dir.file("pxjmd.jmd");
    settings.not_running_text = "Nexa is not running";
    settings.paused_text = "Nexa is paused";
  }

  std::string status() const { return first_line(dir.read("pxserver.sts")); }

  void drop(const std::string& name, std::string_view command, time_t age) {
    std::string path = dir.write("data/" + name, "^job PXCNTRLJOB\n^field CommandString\n" +
                                                     std::string(command) + "\n");
    utimbuf times{age, age};
    utime(path.c_str(), &times);
  }

  TestDir dir;
  ServerSettings settings;
};

TEST_F(ServerTest, StatusLineFollowsTheState) {
  SimServer server(settings);
  server.start();
  EXPECT_EQ(server.state(), ServerState::kRunning);
  std::string running = status();
  EXPECT_EQ(running.find("Nexa is not running"), std::string::npos);
  EXPECT_EQ(running.find("Nexa is paused"), std::string::npos);
  // Three words (date, time, program) come before the text.
  EXPECT_NE(running.find(" pxserver: "), std::string::npos);

  drop("pxctrl00.msg", "Pause Server", 1000);
  EXPECT_EQ(server.take_control_jobs(), 1);
  EXPECT_EQ(server.state(), ServerState::kPaused);
  EXPECT_NE(status().find("Nexa is paused"), std::string::npos);

  drop("pxctrl01.msg", "Resume Server", 1000);
  server.take_control_jobs();
  EXPECT_EQ(server.state(), ServerState::kRunning);
  EXPECT_EQ(status().find("Nexa is paused"), std::string::npos);

  server.shut_down();
  EXPECT_NE(status().find("Nexa is not running"), std::string::npos);
  EXPECT_EQ(dir.read("pxserver.sts").find('\n'), dir.read("pxserver.sts").size() - 1);
}

TEST_F(ServerTest, JobsAreConsumedInOrderAndLogged) {
  SimServer server(settings);
  server.start();
  drop("pxctrl03.msg", "Resume Server", 2000);
  drop("pxctrl07.msg", "Pause Server", 1000);  // older: taken first
  EXPECT_EQ(server.take_control_jobs(), 2);
  EXPECT_EQ(server.state(), ServerState::kRunning);
  EXPECT_FALSE(exists(dir.file("data/pxctrl03.msg")));
  EXPECT_FALSE(exists(dir.file("data/pxctrl07.msg")));
  std::string log = dir.read("pxserver.log");
  size_t pause = log.find("pxctrl07.msg");
  size_t resume = log.find("pxctrl03.msg");
  ASSERT_NE(pause, std::string::npos);
  ASSERT_NE(resume, std::string::npos);
  EXPECT_LT(pause, resume);
}

TEST_F(ServerTest, BadControlJobGoesToTheErrorDirectory) {
  SimServer server(settings);
  server.start();
  dir.write("data/pxctrl04.msg", "^job PXCNTRLJOB\n^field CommandString\nReboot\n");
  EXPECT_EQ(server.take_control_jobs(), 1);
  EXPECT_FALSE(exists(dir.file("data/pxctrl04.msg")));
  EXPECT_TRUE(exists(dir.file("errors/pxctrl04.msg")));
  EXPECT_EQ(server.state(), ServerState::kRunning);
}

TEST_F(ServerTest, ShutDownLeavesLaterJobsForTheNextStart) {
  SimServer server(settings);
  server.start();
  dir.write("data/STOPSERV.MSG", "^job PXCNTRLJOB\n^field CommandString\nShut Down Server\n");
  drop("pxctrl00.msg", "Pause Server", 1000);
  EXPECT_EQ(server.take_control_jobs(), 1);
  EXPECT_EQ(server.state(), ServerState::kNotRunning);
  EXPECT_FALSE(exists(dir.file("data/STOPSERV.MSG")));
  EXPECT_TRUE(exists(dir.file("data/pxctrl00.msg")));
  EXPECT_EQ(server.take_control_jobs(), 0);  // a stopped server reads nothing
  EXPECT_TRUE(exists(dir.file("data/pxctrl00.msg")));
}

TEST_F(ServerTest, ControlJobsComeFromTheControlDirectory) {
  mkdir(dir.file("control").c_str(), 0755);
  settings.control_path = dir.file("control");
  SimServer server(settings);
  server.start();
  drop("pxctrl00.msg", "Pause Server", 1000);  // in DataPath: not a control job here
  dir.write("control/pxctrl00.msg", "^job PXCNTRLJOB\nJob Table Reload\n");
  EXPECT_EQ(server.take_control_jobs(), 1);
  EXPECT_EQ(server.state(), ServerState::kRunning);
  EXPECT_TRUE(exists(dir.file("data/pxctrl00.msg")));
  EXPECT_NE(dir.read("pxserver.log").find(settings.jmd_file), std::string::npos);
}

TEST_F(ServerTest, ScanCollectsOneMatchingFileOldestFirst) {
  settings.backup_files = true;
  SimServer server(settings);
  server.start();
  std::string young = dir.write("data/b.dat", "^job INVOICE\n^field Amount\n10\n");
  std::string old = dir.write("data/A.Dat", "^job DELIVERY\n");
  dir.write("data/c.txt", "^job INVOICE\n");  // does not match *.DAT
  utimbuf old_time{1000, 1000}, young_time{2000, 2000};
  utime(old.c_str(), &old_time);
  utime(young.c_str(), &young_time);

  server.scan();
  EXPECT_TRUE(exists(dir.file("backup/A.Dat")));
  EXPECT_TRUE(exists(dir.file("data/b.dat")));
  EXPECT_EQ(server.collected(), 1);
  server.scan();
  EXPECT_TRUE(exists(dir.file("backup/b.dat")));
  server.scan();
  EXPECT_TRUE(exists(dir.file("data/c.txt")));
  EXPECT_EQ(server.collected(), 2);
  EXPECT_NE(dir.read("pxserver.log").find("DELIVERY"), std::string::npos);
}

TEST_F(ServerTest, BadTransactionGoesToErrorsAndGoodOneIsDeletedWithoutBackup) {
  SimServer server(settings);
  server.start();
  std::string bad = dir.write("data/scan.DAT", "no job card here\n");
  std::string good = dir.write("data/ord.DAT", "^job INVOICE\n");
  utimbuf old_time{1000, 1000}, young_time{2000, 2000};
  utime(bad.c_str(), &old_time);
  utime(good.c_str(), &young_time);
  server.scan();
  EXPECT_TRUE(exists(dir.file("errors/scan.DAT")));
  server.scan();
  EXPECT_FALSE(exists(good));
  EXPECT_FALSE(exists(dir.file("backup/ord.DAT")));
  EXPECT_EQ(server.collected(), 1);
}

TEST_F(ServerTest, PausedServerLeavesTheQueueAlone) {
  SimServer server(settings);
  server.start();
  drop("pxctrl00.msg", "Pause Server", 1000);
  dir.write("data/ord.DAT", "^job INVOICE\n");
  server.scan();  // takes the pause, then collects nothing
  EXPECT_EQ(server.state(), ServerState::kPaused);
  server.scan();
  EXPECT_TRUE(exists(dir.file("data/ord.DAT")));
  EXPECT_EQ(server.collected(), 0);
}

TEST_F(ServerTest, NotRunningServerSaysSoAndDoesNothing) {
  SimServer server(settings);
  drop("pxctrl00.msg", "Pause Server", 1000);
  server.mark_not_running();
  server.scan();
  EXPECT_NE(status().find("Nexa is not running"), std::string::npos);
  EXPECT_TRUE(exists(dir.file("data/pxctrl00.msg")));
  EXPECT_FALSE(exists(dir.file("pxserver.log")));  // marking is not an event
}

}  // namespace
}  // namespace px::sim
