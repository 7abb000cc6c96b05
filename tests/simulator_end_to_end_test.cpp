// pxserver-sim on its own: the launcher, datagram and signal paths exercised
// with raw sockets, without pxctl in between.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <string>

#include "common/unique_fd.h"
#include "tests/live_installation.h"

namespace px {
namespace {


// A loopback UDP port that was free a moment ago.
int free_udp_port() {
  UniqueFd probe(socket(AF_INET, SOCK_DGRAM, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  EXPECT_EQ(bind(probe.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  socklen_t size = sizeof address;
  getsockname(probe.get(), reinterpret_cast<sockaddr*>(&address), &size);
  return ntohs(address.sin_port);
}

void send_datagram(int port, std::string_view text) {
  UniqueFd fd(socket(AF_INET, SOCK_DGRAM, 0));
  sockaddr_in to{};
  to.sin_family = AF_INET;
  to.sin_port = htons(static_cast<uint16_t>(port));
  to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  sendto(fd.get(), text.data(), text.size(), 0, reinterpret_cast<sockaddr*>(&to), sizeof to);
}

UniqueFd connect_to(const std::string& path) {
  UniqueFd fd(socket(AF_UNIX, SOCK_STREAM, 0));
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
  if (connect(fd.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) fd.reset();
  return fd;
}

bool status_says(const LiveInstallation& live, const std::string& instance, std::string_view text) {
  return eventually([&] {
    std::string status = live.read(instance + "/pxserver.sts");
    return status.find(text) != std::string::npos;
  });
}

class SimulatorEndToEnd : public ::testing::Test {
 protected:
  void SetUp() override {
    port = free_udp_port();
    ASSERT_TRUE(live.start_simulator({"--port", std::to_string(port), "--stopped", "south"}))
        << live.simulator_log();
    ASSERT_TRUE(status_says(live, "north", "Nexa is running"));
  }

  LiveInstallation live;
  int port = 0;
};

TEST_F(SimulatorEndToEnd, LauncherTextMayArriveInPieces) {
  ASSERT_TRUE(status_says(live, "south", "Nexa is not running"));
  UniqueFd launcher = connect_to(live.pipe_directory() + "/PxNexa");
  ASSERT_TRUE(launcher.valid());
  ASSERT_EQ(write(launcher.get(), "sou", 3), 3);
  usleep(50000);
  ASSERT_EQ(write(launcher.get(), "th\0", 3), 3);
  launcher.reset();
  EXPECT_TRUE(status_says(live, "south", "Nexa is running"));
  EXPECT_TRUE(exists(live.pipe_directory() + "/south.ctr"));
}

TEST_F(SimulatorEndToEnd, LauncherIgnoresWhatItDoesNotServe) {
  UniqueFd launcher = connect_to(live.pipe_directory() + "/PxNexa");
  ASSERT_EQ(write(launcher.get(), "west\0", 5), 5);
  launcher.reset();
  EXPECT_TRUE(eventually([&] { return live.simulator_log().find("[1211]") != std::string::npos; }));
  UniqueFd silent = connect_to(live.pipe_directory() + "/PxNexa");  // closes without a word
  silent.reset();
  EXPECT_TRUE(status_says(live, "south", "Nexa is not running"));
  EXPECT_TRUE(status_says(live, "north", "Nexa is running"));
}

TEST_F(SimulatorEndToEnd, KickDatagramTakesTheControlJobsAtOnce) {
  std::string job = "^job PXCNTRLJOB\n^field CommandString\nPause Server\n";
  std::ofstream(live.path("north/data/pxctrl00.msg")) << job;
  send_datagram(port, "^kick north\r\n");
  // Well before the next timed scan (PauseTime 5 seconds).
  EXPECT_TRUE(eventually([&] { return live.read("north/pxserver.sts").find("Nexa is paused") !=
                                      std::string::npos; },
                         std::chrono::seconds(2)));
  EXPECT_FALSE(exists(live.path("north/data/pxctrl00.msg")));
  std::string log = live.simulator_log();
  EXPECT_NE(log.find("with 13 bytes: ^kick north\\r\\n\n"), std::string::npos) << log;
}

TEST_F(SimulatorEndToEnd, StartDatagramsForServerAndAgent) {
  send_datagram(port, "^start south\r\n");
  EXPECT_TRUE(status_says(live, "south", "Nexa is running"));
  EXPECT_FALSE(exists(live.path("south/pxemio.sts")));
  send_datagram(port, "^start south pxemio\r\n");
  EXPECT_TRUE(eventually([&] { return exists(live.path("south/pxemio.sts")); }));
  send_datagram(port, "^reboot south\r\n");
  EXPECT_TRUE(eventually([&] { return live.simulator_log().find("[1210]") != std::string::npos; }));
}

// A transaction that includes a device or a FIFO is one whose job cannot be
// read: it goes to the error directory, and the simulator stays responsive.
TEST_F(SimulatorEndToEnd, TransactionIncludingADeviceIsRefusedNotRead) {
  ASSERT_EQ(mkfifo(live.path("pipe").c_str(), 0600), 0);
  std::ofstream(live.path("north/data/zero.dat")) << "^file /dev/zero\n^job ZERO\n";
  std::ofstream(live.path("north/data/fifo.dat")) << "^file " << live.path("pipe") << "\n^job F\n";
  // Each scan collects one transaction.
  auto refused = [&] {
    return exists(live.path("north/errors/zero.dat")) + exists(live.path("north/errors/fifo.dat"));
  };
  for (int count = 1; count <= 2; ++count) {
    send_datagram(port, "^kick north\r\n");
    // A kick that arrives during a scan waits for the next timed scan.
    EXPECT_TRUE(eventually([&] { return refused() == count; }, std::chrono::seconds(15)))
        << live.simulator_log();
  }
  std::ofstream(live.path("north/data/pxctrl00.msg"))
      << "^job PXCNTRLJOB\n^field CommandString\nPause Server\n";
  send_datagram(port, "^kick north\r\n");
  EXPECT_TRUE(status_says(live, "north", "Nexa is paused"));
  EXPECT_EQ(live.stop_simulator(), 0);
}

TEST_F(SimulatorEndToEnd, TerminationLeavesEverythingNotRunning) {
  // The E-mail Agent writes its status file just after the server does.
  ASSERT_TRUE(eventually([&] { return exists(live.path("north/pxemio.sts")); }));
  EXPECT_EQ(live.stop_simulator(), 0);
  EXPECT_NE(live.read("north/pxserver.sts").find("Nexa is not running"), std::string::npos);
  EXPECT_NE(live.read("south/pxserver.sts").find("Nexa is not running"), std::string::npos);
  EXPECT_FALSE(exists(live.path("north/pxemio.sts")));
  EXPECT_FALSE(exists(live.pipe_directory() + "/north.ctr"));
  EXPECT_FALSE(exists(live.pipe_directory() + "/north.em/PxEmio.ctr"));
  EXPECT_FALSE(exists(live.pipe_directory() + "/PxNexa"));
  EXPECT_NE(live.simulator_log().find("[1212]"), std::string::npos);
}

TEST(SimulatorStartUp, RefusesAnInstanceTheInstallFileDoesNotList) {
  LiveInstallation live;
  EXPECT_FALSE(live.start_simulator({"--port", "0", "west"}));
  EXPECT_NE(live.simulator_log().find("[1201]"), std::string::npos);
  EXPECT_FALSE(exists(live.path("north/pxserver.sts")));
}

TEST(SimulatorStartUp, SecondSimulatorOnTheSameSocketsGivesWay) {
  LiveInstallation live;
  ASSERT_TRUE(live.start_simulator({"--port", "0", "north"}));
  ProgramResult second = run_program(
      PXSERVER_SIM_PATH, {"-aii" + live.path("pxcntrl.ini"), "--port", "0", "north"}, live.path(""));
  EXPECT_EQ(second.status, 1);
  EXPECT_NE(second.err.find("[1205]"), std::string::npos) << second.err;
  EXPECT_TRUE(exists(live.pipe_directory() + "/PxNexa"));  // the first one keeps serving
}

TEST(SimulatorStartUp, HelpSaysItIsNotTheServer) {
  ProgramResult help = run_program(PXSERVER_SIM_PATH, {"--help"}, ".");
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.out.find("TEST AND DEMO STAND-IN"), std::string::npos);
  EXPECT_NE(help.out.find("It is not the server"), std::string::npos);
  ProgramResult bad = run_program(PXSERVER_SIM_PATH, {"--frobnicate"}, ".");
  EXPECT_EQ(bad.status, 2);
}

}  // namespace
}  // namespace px
