#include "control/agents.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <filesystem>

#include "common/file_replace.h"
#include "common/run_command.h"
#include "config/message_numbers.h"
#include "config/recording_operator.h"
#include "control/node.h"
#include "control/test_installation.h"

namespace px {
namespace {

class AgentsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    agent_ini_ = install_.dir().write(
        "pxemio.ini", "[Plexar]\nStatusFile=" + install_.dir().file("agent.status") +
                          "\n[Paths]\nDataPath=" + install_.dir().file("mail") + "\n");
    std::filesystem::create_directories(install_.dir().file("mail"));
    std::filesystem::create_directories(install_.dir().file("bin"));
    configure("");
  }
  // The standard configuration with an E-mail Agent section holding more.
  void configure(const std::string& more) {
    install_.write_config(install_.standard_config() + "[PXEMIO]\nIniFileName=" + agent_ini_ +
                          "\n" + more);
  }
  void agent_runs() { install_.dir().write("agent.status", "230101 10:00:00 pxemio: up\n"); }
  ControlContext context() {
    return ControlContext{install_.instance,         op_, clock_, runner_, {},
                          SignalTimes{150, 150, 10}, {}};
  }
  std::string cwd() {
    char here[4096];
    return ::getcwd(here, sizeof here) ? here : "";
  }

  TestInstallation install_;
  std::string agent_ini_;
  RecordingOperator op_;
  FixedClock clock_{std::tm{}};
  RecordingProgramRunner runner_;
};

TEST_F(AgentsTest, StartServerThroughTheLauncher) {
  UnixListener launcher(launcher_socket_path());
  install_.set_stopped();
  EXPECT_EQ(start_server(context()), Outcome::kDone);
  EXPECT_EQ(launcher.read_next(), std::string("north\0", 6));

  install_.set_running();
  EXPECT_EQ(start_server(context()), Outcome::kFailed);
  install_.set_paused();
  EXPECT_EQ(start_server(context()), Outcome::kFailed);
  EXPECT_EQ(op_.numbers(),
            (std::vector<int>{msg::kServerAlreadyRunning, msg::kServerAlreadyRunning}));
  EXPECT_EQ(launcher.read_next(), std::nullopt);
}

TEST_F(AgentsTest, StartEmailAgentThroughTheLauncher) {
  UnixListener launcher(launcher_socket_path());
  EXPECT_EQ(start_email_agent(context()), Outcome::kDone);
  EXPECT_EQ(launcher.read_next(), std::string("north\\PxEmio\0", 13));
  agent_runs();
  EXPECT_EQ(start_email_agent(context()), Outcome::kFailed);
  EXPECT_EQ(op_.numbers(), std::vector<int>{msg::kEmailAlreadyRunning});
}

TEST_F(AgentsTest, UnreadableConfigurationStopsEveryStart) {
  Instance lost = install_.instance;
  lost.config_file = install_.dir().file("lost.ini");
  ControlContext bad{lost, op_, clock_, runner_, {}, {}, {}};
  EXPECT_EQ(start_server(bad), Outcome::kFailed);
  EXPECT_EQ(start_email_agent(bad), Outcome::kFailed);
  EXPECT_EQ(stop_email_agent(bad), Outcome::kFailed);
  ShownMessage unreadable{msg::kIniUnreadable, {display_path(lost.config_file)}};
  EXPECT_EQ(op_.shown(), (std::vector<ShownMessage>{unreadable, unreadable, unreadable}));
}

TEST_F(AgentsTest, StopEmailAgentLeavesOneStopFileAndSignalsEachTime) {
  EXPECT_EQ(stop_email_agent(context()), Outcome::kFailed);
  EXPECT_EQ(op_.numbers(), std::vector<int>{msg::kEmailNotRunning});

  agent_runs();
  op_.clear();
  // Nobody listens: the stop file is left all the same, and says so.
  EXPECT_EQ(stop_email_agent(context()), Outcome::kDeliveredNotWoken);
  EXPECT_EQ(op_.numbers(), (std::vector<int>{msg::kSignalWaitFailed, msg::kEmailStopSent}));
  EXPECT_TRUE(std::filesystem::exists(install_.dir().file("mail/stopread.msg")));

  UnixListener agent(control_socket_path("north", true));
  op_.clear();
  EXPECT_EQ(stop_email_agent(context()), Outcome::kDone);
  EXPECT_EQ(stop_email_agent(context()), Outcome::kDone);
  EXPECT_EQ(op_.numbers(), (std::vector<int>{msg::kEmailStopSent, msg::kEmailStopSent}));
  EXPECT_EQ(agent.take_connections(), 2);
  EXPECT_TRUE(std::filesystem::exists(install_.dir().file("mail/stopread.msg")));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(install_.dir().file("mail")),
                          std::filesystem::directory_iterator()),
            1);
}

TEST_F(AgentsTest, StopEmailAgentNeedsTheAgentsDataPath) {
  agent_runs();
  install_.write_ini("pxemio.ini",
                     "[Plexar]\nStatusFile=" + install_.dir().file("agent.status") + "\n");
  EXPECT_EQ(stop_email_agent(context()), Outcome::kFailed);
  EXPECT_EQ(op_.shown().back(),
            (ShownMessage{msg::kSettingMissing, {"Paths", display_path(agent_ini_), "DataPath"}}));

  install_.write_ini("pxemio.ini", "[Plexar]\nStatusFile=" + install_.dir().file("agent.status") +
                                       "\n[Paths]\nDataPath=" + install_.dir().file("nomail") +
                                       "\n");
  EXPECT_EQ(stop_email_agent(context()), Outcome::kFailed);
  // Why first (no file can be made in a directory that is not there), then 177.
  EXPECT_EQ(op_.numbers().end()[-2], kMsgTempNotCreated);
  EXPECT_EQ(op_.shown().back(),
            (ShownMessage{msg::kFileNotOpened,
                          {display_path(install_.dir().file("nomail/stopread.msg"))}}));
}

TEST_F(AgentsTest, ClassicStartRunsTheProgramFromItsDirectory) {
  ::setenv("PLEXAR_PLATFORM", "classic", 1);
  std::string bin = install_.dir().file("bin");
  std::string config = install_.standard_config();
  install_.write_config(config.replace(config.find("[Paths]\n") + 8, 0, "ExePath=" + bin + "\n") +
                        "[PXEMIO]\nIniFileName=" + agent_ini_ + "\nExePath=" + bin + "\n");
  install_.set_stopped();
  std::string before = cwd();
  set_start_minimised(0);
  EXPECT_EQ(start_server(context()), Outcome::kDone);
  EXPECT_EQ(start_email_agent(context()), Outcome::kDone);
  EXPECT_EQ(cwd(), before);
  EXPECT_EQ(start_minimised(), 1u);
  ASSERT_EQ(runner_.launches().size(), 2u);
  EXPECT_EQ(runner_.launches()[0].command_line, "pxserver -aii" + install_.instance.config_file);
  EXPECT_EQ(runner_.launches()[1].command_line, "pxemio -aii" + agent_ini_);
  EXPECT_EQ(runner_.launches()[0].directory, std::filesystem::canonical(bin).string());
  EXPECT_TRUE(op_.shown().empty());

  runner_.set_result(false);
  EXPECT_EQ(start_server(context()), Outcome::kFailed);
  EXPECT_EQ(start_email_agent(context()), Outcome::kFailed);
  EXPECT_EQ(op_.numbers(), (std::vector<int>{msg::kServerStartFailed, msg::kEmailStartFailed}));
}

TEST_F(AgentsTest, ClassicStartNeedsAUsableExePath) {
  ::setenv("PLEXAR_PLATFORM", "classic", 1);
  install_.set_stopped();
  EXPECT_EQ(start_server(context()), Outcome::kFailed);
  EXPECT_EQ(start_email_agent(context()), Outcome::kFailed);
  std::string shown_config = display_path(install_.instance.config_file);
  EXPECT_EQ(op_.shown(),
            (std::vector<ShownMessage>{{msg::kExePathUnusable, {"Paths", shown_config}},
                                       {msg::kExePathUnusable, {"PXEMIO", shown_config}}}));
  std::string nowhere = install_.dir().file("nowhere");
  configure("ExePath=" + nowhere + "\n");
  op_.clear();
  EXPECT_EQ(start_email_agent(context()), Outcome::kFailed);
  EXPECT_EQ(op_.shown(),
            (std::vector<ShownMessage>{{msg::kCannotEnterDirectory, {display_path(nowhere)}}}));
  EXPECT_TRUE(runner_.launches().empty());
}

TEST_F(AgentsTest, ClassicStartOfARemoteInstanceSendsADatagram) {
  ::setenv("PLEXAR_PLATFORM", "classic", 1);
  install_.set_stopped();
  UniqueFd node(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  sockaddr_in at{};
  at.sin_family = AF_INET;
  at.sin_port = node_port();
  at.sin_addr.s_addr = ::inet_addr("127.0.9.41");
  if (::bind(node.get(), reinterpret_cast<sockaddr*>(&at), sizeof at) != 0) {
    GTEST_SKIP() << "the node port is taken";
  }
  std::string config = install_.standard_config();
  install_.write_config(
      config.replace(config.find("Node=alpha"), 10, "Node=127.0.9.41\nRemoteAccess=yes"));
  EXPECT_EQ(start_server(context()), Outcome::kDone);
  pollfd p{node.get(), POLLIN, 0};
  ASSERT_EQ(::poll(&p, 1, 2000), 1);
  char data[64];
  ssize_t n = ::recv(node.get(), data, sizeof data, 0);
  EXPECT_EQ(std::string(data, static_cast<size_t>(n)), "^start north\r\n");

  config = install_.standard_config();
  install_.write_config(
      config.replace(config.find("Node=alpha"), 10, "Node=no-such-host.invalid\nRemoteAccess=yes"));
  EXPECT_EQ(start_server(context()), Outcome::kFailed);
  EXPECT_EQ(op_.numbers(), std::vector<int>{msg::kServerStartFailed});
  EXPECT_TRUE(runner_.launches().empty());
}

}  // namespace
}  // namespace px
