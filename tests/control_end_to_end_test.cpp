// pxctl's control commands against pxserver-sim serving a private demo
// installation: the files they write, the signals they send, and what the
// stand-in server makes of them.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "control/node.h"
#include "common/unique_fd.h"
#include "tests/live_installation.h"

namespace px {
namespace {

bool has_message(const ProgramResult& result, int n) {
  return result.err.find("[" + std::to_string(n) + "]") != std::string::npos;
}

// The control jobs waiting in a directory.
std::vector<std::string> control_jobs(const std::string& directory) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(directory)) {
    std::string name = entry.path().filename().string();
    if (name.ends_with(".msg")) names.push_back(name);
  }
  return names;
}

class ControlEndToEnd : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(live.start_simulator({"--port", "0", "--stopped", "south", "north", "south"}))
        << live.simulator_log();
    // The simulator listens before its status files say running.
    ASSERT_TRUE(state_becomes("3\trunning"));
  }

  bool state_becomes(const std::string& expected, const std::string& instance = "") {
    return eventually([&] { return live.state(instance) == expected; });
  }

  bool log_shows(const std::string& text) {
    return eventually([&] { return live.read("north/logs/pxserver.log").find(text) != std::string::npos; });
  }

  LiveInstallation live;
};

TEST_F(ControlEndToEnd, PauseThenASecondPauseIsRefusedWithoutWriting) {
  ProgramResult pause = live.run_pxctl({"pause"});
  EXPECT_EQ(pause.status, 0) << pause.err;
  EXPECT_TRUE(has_message(pause, 157)) << pause.err;
  ASSERT_TRUE(state_becomes("2\tpaused"));
  EXPECT_TRUE(control_jobs(live.path("north/data")).empty());  // taken by the server

  ProgramResult again = live.run_pxctl({"pause"});
  EXPECT_EQ(again.status, 1);
  EXPECT_TRUE(has_message(again, 239)) << again.err;
  EXPECT_TRUE(control_jobs(live.path("north/data")).empty());
  EXPECT_FALSE(exists(live.path("pxcntrl.$$$")));
  EXPECT_EQ(live.state(), "2\tpaused");
}

TEST_F(ControlEndToEnd, ResumeAndBothReloadsReachTheServer) {
  ASSERT_EQ(live.run_pxctl({"pause"}).status, 0);
  ASSERT_TRUE(state_becomes("2\tpaused"));
  ProgramResult resume = live.run_pxctl({"resume"});
  EXPECT_EQ(resume.status, 0) << resume.err;
  EXPECT_TRUE(has_message(resume, 161));
  EXPECT_TRUE(state_becomes("3\trunning"));
  EXPECT_TRUE(has_message(live.run_pxctl({"resume"}), 238));  // already running

  ProgramResult jobs = live.run_pxctl({"reload-jobs"});
  EXPECT_EQ(jobs.status, 0) << jobs.err;
  EXPECT_TRUE(has_message(jobs, 154));
  EXPECT_TRUE(log_shows("Job table reloaded from " + live.path("north/pxjmd.jmd")));

  ProgramResult printers =
      live.run_pxctl({"reload-printer", "--printer", "LASER1", "--form", "forms/invoice.mdf"});
  EXPECT_EQ(printers.status, 0) << printers.err;
  EXPECT_TRUE(has_message(printers, 150));
  EXPECT_TRUE(log_shows("Printers reloaded: LASER1 with form forms/invoice.mdf"));
  EXPECT_TRUE(control_jobs(live.path("north/data")).empty());
}

TEST_F(ControlEndToEnd, PendingShutdownBlocksASecondOne) {
  // While the server is held, the kick waits in the socket's backlog and
  // stopserv.msg stays where the console put it.
  live.signal_simulator(SIGSTOP);
  ProgramResult first = live.run_pxctl({"shutdown"});
  EXPECT_EQ(first.status, 0) << first.err;
  EXPECT_TRUE(has_message(first, 156));
  EXPECT_TRUE(exists(live.path("north/data/stopserv.msg")));
  std::string pending = live.read("north/data/stopserv.msg");

  ProgramResult second = live.run_pxctl({"shutdown"});
  EXPECT_EQ(second.status, 1);
  EXPECT_TRUE(has_message(second, 155)) << second.err;
  EXPECT_EQ(live.read("north/data/stopserv.msg"), pending);
  EXPECT_FALSE(exists(live.path("stopserv.$$$")));

  live.signal_simulator(SIGCONT);
  EXPECT_TRUE(state_becomes("1\tnot running"));
  EXPECT_FALSE(exists(live.path("north/data/stopserv.msg")));
  EXPECT_TRUE(eventually([&] { return !exists(live.pipe_directory() + "/north.ctr"); }));
  EXPECT_TRUE(has_message(live.run_pxctl({"pause"}), 234));  // nothing runs any more
}

TEST_F(ControlEndToEnd, ServerWithoutListenerGives299) {
  ASSERT_EQ(live.stop_simulator(), 0);
  EXPECT_EQ(live.state(), "1\tnot running");  // a clean stop says so
  // A server that vanished without a word: its status still says running,
  // but nothing listens for the signal any more.
  std::ofstream(live.path("north/pxserver.sts")) << "240628 10:00:00 pxserver: Nexa is running\n";
  ASSERT_TRUE(state_becomes("3\trunning"));
  // The job is delivered; only the wake-up failed, so the command succeeded.
  ProgramResult pause = live.run_pxctl({"pause"});
  EXPECT_EQ(pause.status, 0);
  EXPECT_TRUE(has_message(pause, 299)) << pause.err;
  EXPECT_TRUE(exists(live.path("north/data/pxctrl00.msg")));
}

TEST_F(ControlEndToEnd, LauncherStartBringsAStoppedInstanceToRunning) {
  ASSERT_TRUE(state_becomes("1\tnot running", "south"));
  ProgramResult start = live.run_pxctl({"--instance", "south", "start"});
  EXPECT_EQ(start.status, 0) << start.err;
  EXPECT_TRUE(state_becomes("3\trunning", "south"));
  EXPECT_TRUE(exists(live.pipe_directory() + "/south.ctr"));
  EXPECT_TRUE(has_message(live.run_pxctl({"--instance", "south", "start"}), 235));
  // The started instance answers control jobs in its own control directory.
  EXPECT_EQ(live.run_pxctl({"--instance", "south", "pause"}).status, 0);
  EXPECT_TRUE(state_becomes("2\tpaused", "south"));
  EXPECT_TRUE(control_jobs(live.path("south/control")).empty());
}

TEST_F(ControlEndToEnd, EmailAgentStopsOnItsStopFileAndStartsThroughTheLauncher) {
  ASSERT_TRUE(eventually([&] { return exists(live.path("north/pxemio.sts")); }));
  ProgramResult stop = live.run_pxctl({"stop-email"});
  EXPECT_EQ(stop.status, 0) << stop.err;
  EXPECT_TRUE(has_message(stop, 231));
  EXPECT_TRUE(eventually([&] { return !exists(live.path("north/pxemio.sts")); }));
  EXPECT_FALSE(exists(live.path("north/email/data/stopread.msg")));
  EXPECT_TRUE(has_message(live.run_pxctl({"stop-email"}), 237));  // not running

  ProgramResult start = live.run_pxctl({"start-email"});
  EXPECT_EQ(start.status, 0) << start.err;
  EXPECT_TRUE(eventually([&] { return exists(live.path("north/pxemio.sts")); }));
  EXPECT_TRUE(eventually([&] { return exists(live.pipe_directory() + "/north.em/PxEmio.ctr"); }));
}

// The datagram port is the one pxctl sends to: "plexar" of the services
// database, else 1706. The test is skipped when another program holds it.
TEST(NodeDatagrams, StartDatagramReachesTheSimulatorWithItsExactBytes) {
  int port = ntohs(node_port());
  {
    UniqueFd probe(socket(AF_INET, SOCK_DGRAM, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(probe.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
      GTEST_SKIP() << "UDP port " << port << " is in use";
    }
  }
  LiveInstallation live;
  // An instance reached through remote access on the node 127.0.0.1.
  live.add_instance("east@far", "north",
                    {{"RemoteAccess=no", "RemoteAccess=yes"}, {"Node=localhost", "Node=127.0.0.1"}});
  ASSERT_TRUE(live.start_simulator({"--port", std::to_string(port), "--stopped", "east@far",
                                    "north", "east@far"}))
      << live.simulator_log();
  if (live.simulator_log().find("[1206]") != std::string::npos) {
    GTEST_SKIP() << "UDP port " << port << " was taken meanwhile";
  }
  ASSERT_EQ(live.state("east@far"), "1\tnot running");

  // The classic branch starts a remote instance by datagram.
  ProgramResult start =
      live.run_pxctl({"--instance", "east@far", "start"}, {"PLEXAR_PLATFORM=classic"});
  EXPECT_EQ(start.status, 0) << start.err;
  EXPECT_TRUE(eventually([&] { return live.state("east@far") == "3\trunning"; }));
  std::string log = live.simulator_log();
  EXPECT_NE(log.find(" with 13 bytes: ^start east\\r\\n\n"), std::string::npos) << log;
}

TEST(ClassicBranch, ControlSignalIsTheNamedSemaphore) {
  // Semaphore names are shared by the whole machine: the instance name is
  // made unique to this run.
  std::string name = "pxtest" + std::to_string(getpid());
  LiveInstallation live;
  live.add_instance(name, "north");
  ASSERT_TRUE(live.start_simulator({"--port", "0", name}, {"PLEXAR_PLATFORM=classic"}))
      << live.simulator_log();
  ASSERT_TRUE(eventually([&] { return exists("/dev/shm/sem." + name + ".ctr"); }));
  // The semaphore is made before the server runs: a pause must find it running.
  ASSERT_TRUE(eventually([&] { return live.state(name) == "3\trunning"; })) << live.state(name);
  std::vector<std::string> classic{"PLEXAR_PLATFORM=classic"};
  ProgramResult pause = live.run_pxctl({"--instance", name, "pause"}, classic);
  EXPECT_EQ(pause.status, 0) << pause.err;
  EXPECT_TRUE(eventually([&] { return live.state(name) == "2\tpaused"; }));
  EXPECT_EQ(live.stop_simulator(), 0);
  EXPECT_FALSE(exists("/dev/shm/sem." + name + ".ctr"));  // removed on the way out
  EXPECT_EQ(live.state(name), "1\tnot running");
}

}  // namespace
}  // namespace px
