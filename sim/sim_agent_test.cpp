#include "sim/sim_agent.h"

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

class AgentTest : public ::testing::Test {
 protected:
  AgentTest() {
    use_test_catalogue();
    for (const char* name : {"mail", "mail-errors", "queue"}) mkdir(dir.file(name).c_str(), 0755);
    settings.status_file = dir.file("pxemio.sts");
    settings.log_file = dir.file("pxemio.log");
    settings.data_path = dir.file("mail");
    settings.error_path = dir.file("mail-errors");
    settings.status_text = "10 E-mail Agent is reading mail";
  }

  SimAgent make_agent() const { return SimAgent("north", settings, dir.file("queue")); }

  TestDir dir;
  AgentSettings settings;
};

TEST_F(AgentTest, RunningStatusHoldsMessage105AfterThreeWords) {
  SimAgent agent = make_agent();
  agent.start();
  std::string line = dir.read("pxemio.sts");
  // "<date> <time> pxemio: <text>\n"
  size_t third = line.find(" pxemio: ");
  ASSERT_NE(third, std::string::npos);
  EXPECT_EQ(line.substr(third + 9), "10 E-mail Agent is reading mail\n");
  EXPECT_EQ(line.find(' '), 6u);
}

TEST_F(AgentTest, StopFileStopsTheAgentAndIsRemoved) {
  SimAgent agent = make_agent();
  agent.start();
  dir.write("mail/STOPREAD.MSG", "");  // another file on this system: the name is exact
  dir.write("mail/stopread.msg", "");
  agent.cycle();
  EXPECT_FALSE(agent.running());
  EXPECT_FALSE(exists(dir.file("mail/stopread.msg")));
  EXPECT_FALSE(exists(dir.file("pxemio.sts")));  // both console probes now say stopped
  std::string log = dir.read("pxemio.log");
  EXPECT_NE(log.find("stopread.msg"), std::string::npos);
  agent.cycle();  // a stopped agent reads nothing
  EXPECT_TRUE(exists(dir.file("mail/STOPREAD.MSG")));
}

TEST_F(AgentTest, StopFileWinsOverWaitingMail) {
  SimAgent agent = make_agent();
  agent.start();
  dir.write("mail/m1.dat", "^job ACKNOWLEDGE\n");
  dir.write("mail/stopread.msg", "");
  agent.cycle();
  EXPECT_FALSE(agent.running());
  EXPECT_TRUE(exists(dir.file("mail/m1.dat")));
}

TEST_F(AgentTest, MailIsPassedToTheServerOnePerCycle) {
  SimAgent agent = make_agent();
  agent.start();
  std::string first = dir.write("mail/M1.DAT", "^job ACKNOWLEDGE\n");
  std::string second = dir.write("mail/note.dat", "no job card\n");
  utimbuf old_time{1000, 1000}, young_time{2000, 2000};
  utime(first.c_str(), &old_time);
  utime(second.c_str(), &young_time);
  agent.cycle();
  EXPECT_TRUE(exists(dir.file("queue/M1.DAT")));
  EXPECT_TRUE(exists(second));
  agent.cycle();
  EXPECT_TRUE(exists(dir.file("mail-errors/note.dat")));
  EXPECT_TRUE(agent.running());
}

TEST_F(AgentTest, StoppingRemovesTheStatusFile) {
  SimAgent agent = make_agent();
  agent.start();
  EXPECT_TRUE(exists(dir.file("pxemio.sts")));
  agent.stop();
  EXPECT_FALSE(exists(dir.file("pxemio.sts")));
  EXPECT_NE(dir.read("pxemio.log").find("[1234]"), std::string::npos);
}

}  // namespace
}  // namespace px::sim
