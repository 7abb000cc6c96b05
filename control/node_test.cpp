#include "control/node.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <random>

#include "control/test_installation.h"

namespace px {
namespace {

class NodeTest : public ::testing::Test {
 protected:
  void TearDown() override { set_socket_library_missing(false); }

  // The instance's Plexar section with other settings.
  void plexar(const std::string& lines, const std::string& more = "") {
    install_.write_config("[Plexar]\n" + lines + "\n" + more);
  }
  unsigned word() { return location("north"); }

  TestInstallation install_;
  RecordingProgramRunner runner_;
};

// A UDP socket on a loopback address of its own, on the node port.
class DatagramReceiver {
 public:
  DatagramReceiver() {
    std::random_device random;
    address_ =
        "127.0." + std::to_string(random() % 200 + 20) + "." + std::to_string(random() % 200 + 20);
    fd_.reset(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    sockaddr_in at{};
    at.sin_family = AF_INET;
    at.sin_port = node_port();
    at.sin_addr.s_addr = ::inet_addr(address_.c_str());
    bound_ = ::bind(fd_.get(), reinterpret_cast<sockaddr*>(&at), sizeof at) == 0;
  }
  bool bound() const { return bound_; }
  const std::string& address() const { return address_; }
  // The next datagram's bytes, waiting up to two seconds.
  std::string next() {
    pollfd p{fd_.get(), POLLIN, 0};
    if (::poll(&p, 1, 2000) != 1) return "(nothing)";
    char data[512];
    ssize_t n = ::recv(fd_.get(), data, sizeof data, 0);
    return n < 0 ? "(error)" : std::string(data, static_cast<size_t>(n));
  }

 private:
  std::string address_;
  UniqueFd fd_;
  bool bound_ = false;
};

TEST_F(NodeTest, LocationWordRules) {
  plexar("Node=alpha");
  EXPECT_EQ(word(), kLocationStartable);
  plexar("Node=ALPHA\nRemoteAccess=no");
  EXPECT_EQ(word(), kLocationStartable);
  plexar("Node=beta");
  EXPECT_EQ(word(), kLocationOtherNode);
  plexar("WindowTitle=no node");
  EXPECT_EQ(word(), kLocationOtherNode);
  plexar("Node=alpha\nRemoteAccess=YES");
  EXPECT_EQ(word(), kLocationRemoteAccess | kLocationNetwork | kLocationStartable);
  plexar("Node=beta\nRemoteAccess=yes");
  EXPECT_EQ(word(), 15u);
  plexar("Node=beta\nRemoteAccess=y");
  EXPECT_EQ(word(), kLocationOtherNode);

  // Without the socket library a remote-access instance cannot be started.
  set_socket_library_missing(true);
  plexar("Node=beta\nRemoteAccess=Yes");
  EXPECT_EQ(word(), kLocationRemoteAccess | kLocationOtherNode);
  EXPECT_EQ(start_server_on_node("north", runner_), kNodeNotStartable);
  plexar("Node=alpha\nRemoteAccess=Yes");
  EXPECT_EQ(word(), kLocationRemoteAccess);
  EXPECT_TRUE(runner_.launches().empty());

  // An instance the install file does not know lives nowhere near.
  EXPECT_EQ(location("east"), kLocationOtherNode);
}

TEST_F(NodeTest, EmptyNodeNamesMatch) {
  install_.write_ini("install.ini",
                     "[Configuration]\nnorth=" + install_.dir().file("north.ini") + "\n");
  plexar("WindowTitle=North");
  EXPECT_EQ(word(), kLocationStartable);
}

TEST_F(NodeTest, LocalStartLaunchesTheProgram) {
  std::string config = install_.dir().file("north.ini");
  plexar("Node=alpha", "[pxemio]\nIniFileName=/etc/plexar/pxemio.ini\n");
  EXPECT_EQ(start_server_on_node("north", runner_), kNodeOk);
  EXPECT_EQ(start_email_agent_on_node("north", runner_), kNodeOk);
  ASSERT_EQ(runner_.launches().size(), 2u);
  EXPECT_EQ(runner_.launches()[0].command_line, "pxserver -aii" + config);
  EXPECT_EQ(runner_.launches()[1].command_line, "pxemio -aii/etc/plexar/pxemio.ini");

  runner_.set_result(false);
  EXPECT_EQ(start_server_on_node("north", runner_), kNodeLaunchFailed);
  plexar("Node=beta");
  EXPECT_EQ(start_server_on_node("north", runner_), kNodeNotStartable);
  EXPECT_EQ(runner_.launches().size(), 3u);
}

TEST_F(NodeTest, DatagramTexts) {
  EXPECT_EQ(start_server_text("north@host2"), "^start north\r\n");
  EXPECT_EQ(start_email_agent_text("north@host2@x"), "^start north pxemio\r\n");
  EXPECT_EQ(kick_text("north"), "^kick north\r\n");
  EXPECT_EQ(kick_text("@host"), "^kick \r\n");
}

TEST_F(NodeTest, DatagramsReachTheNodeByteForByte) {
  DatagramReceiver node;
  if (!node.bound()) GTEST_SKIP() << "the node port is taken on every address";
  install_.write_ini("install.ini", "[Plexar]\nNode=alpha\n[Configuration]\nnorth@host2=" +
                                        install_.dir().file("north.ini") + "\n");
  plexar("Node=" + node.address() + "\nRemoteAccess=yes");
  EXPECT_EQ(start_server_on_node("north@host2", runner_), kNodeOk);
  EXPECT_EQ(node.next(), "^start north\r\n");
  EXPECT_EQ(start_email_agent_on_node("north@host2", runner_), kNodeOk);
  EXPECT_EQ(node.next(), "^start north pxemio\r\n");
  EXPECT_EQ(kick_on_node("north@host2"), kNodeOk);
  EXPECT_EQ(node.next(), "^kick north\r\n");
  EXPECT_TRUE(runner_.launches().empty());
}

TEST_F(NodeTest, SendFailures) {
  std::string config = install_.dir().file("north.ini");
  plexar("Node=no-such-host.invalid\nRemoteAccess=yes");
  EXPECT_EQ(send_to_node("^start north\r\n", config), kNodeUnresolved);
  EXPECT_EQ(start_server_on_node("north", runner_), kNodeUnresolved);

  // The broadcast address refuses a datagram from a socket not allowed to
  // broadcast: a start fails, a kick still counts as sent.
  plexar("Node=255.255.255.255\nRemoteAccess=yes");
  EXPECT_EQ(send_to_node("^start north\r\n", config), kNodeNotSentWhole);
  EXPECT_EQ(send_to_node("^kick north\r\n", config), kNodeOk);
  EXPECT_EQ(kick_on_node("north"), kNodeOk);

  // No kick is sent to a node not reachable over the network.
  plexar("Node=no-such-host.invalid");
  EXPECT_EQ(kick_on_node("north"), kNodeOk);
}

}  // namespace
}  // namespace px
