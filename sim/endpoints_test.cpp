#include "sim/endpoints.h"

#include <gtest/gtest.h>
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "tests/support/test_dir.h"

namespace px::sim {
namespace {

bool exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

bool connect_to(const std::string& path) {
  UniqueFd fd(socket(AF_UNIX, SOCK_STREAM, 0));
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
  return connect(fd.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
}

// Points PLEXAR_PIPE_DIR at a private directory for one test.
class PipeDirTest : public ::testing::Test {
 protected:
  PipeDirTest() {
    const char* old = std::getenv("PLEXAR_PIPE_DIR");
    if (old != nullptr) old_ = old;
    setenv("PLEXAR_PIPE_DIR", dir.file("pipes").c_str(), 1);
  }
  ~PipeDirTest() override {
    if (old_.empty()) {
      unsetenv("PLEXAR_PIPE_DIR");
    } else {
      setenv("PLEXAR_PIPE_DIR", old_.c_str(), 1);
    }
  }

  TestDir dir;
  std::string old_;
};

TEST_F(PipeDirTest, PipeNamesBecomeSocketPaths) {
  EXPECT_EQ(pipe_socket_path(server_pipe_name("north")), dir.file("pipes/north.ctr"));
  EXPECT_EQ(pipe_socket_path(agent_pipe_name("north")), dir.file("pipes/north.em/PxEmio.ctr"));
  EXPECT_EQ(pipe_socket_path(kLauncherPipe), dir.file("pipes/PxNexa"));
  EXPECT_EQ(server_event_name("north"), "north.ctr");
  EXPECT_EQ(agent_event_name("north"), "north.EM.PxEmio.ctr");
  unsetenv("PLEXAR_PIPE_DIR");
  EXPECT_EQ(pipe_socket_path("x.ctr"), "/tmp/Plexar/x.ctr");
}

TEST_F(PipeDirTest, ListenerMakesDirectoriesOpenSocketAndRemovesIt) {
  std::string path = pipe_socket_path(agent_pipe_name("north"));
  {
    std::optional<UnixListener> listener;
    std::string error;
    ASSERT_EQ(UnixListener::open(path, listener, error), UnixListener::Outcome::kListening) << error;
    struct stat info {};
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_TRUE(S_ISSOCK(info.st_mode));
    EXPECT_EQ(info.st_mode & 0777, 0666u);
    EXPECT_FALSE(listener->accept_one().valid());  // nothing waits yet
    EXPECT_TRUE(connect_to(path));
    EXPECT_TRUE(listener->accept_one().valid());
  }
  EXPECT_FALSE(exists(path));
}

TEST_F(PipeDirTest, LiveSocketIsLeftToItsOwnerAndStaleOneReplaced) {
  std::string path = pipe_socket_path("north.ctr");
  std::optional<UnixListener> first, second;
  std::string error;
  ASSERT_EQ(UnixListener::open(path, first, error), UnixListener::Outcome::kListening);
  EXPECT_EQ(UnixListener::open(path, second, error), UnixListener::Outcome::kInUse);
  EXPECT_FALSE(second);

  // A socket file whose program has gone (nothing listens) is replaced.
  UniqueFd stale(socket(AF_UNIX, SOCK_STREAM, 0));
  std::string stale_path = pipe_socket_path("south.ctr");
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, stale_path.c_str(), sizeof address.sun_path - 1);
  ASSERT_EQ(bind(stale.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  stale.reset();
  ASSERT_TRUE(exists(stale_path));
  EXPECT_EQ(UnixListener::open(stale_path, second, error), UnixListener::Outcome::kListening);
  EXPECT_TRUE(connect_to(stale_path));
}

TEST_F(PipeDirTest, ListenerLeavesASuccessorsSocketAlone) {
  std::string path = pipe_socket_path("north.ctr");
  std::optional<UnixListener> first, second;
  std::string error;
  ASSERT_EQ(UnixListener::open(path, first, error), UnixListener::Outcome::kListening);
  unlink(path.c_str());  // someone removed it and started anew
  ASSERT_EQ(UnixListener::open(path, second, error), UnixListener::Outcome::kListening);
  first.reset();
  EXPECT_TRUE(connect_to(path));
}

TEST(Datagrams, ReceivedWithTheirExactBytes) {
  std::string error;
  std::optional<UniqueFd> port;
  int number = 0;
  for (number = 47060; number < 47080 && !port; ++number) port = open_datagram_port(number, error);
  ASSERT_TRUE(port) << error;
  --number;
  UniqueFd sender(socket(AF_INET, SOCK_DGRAM, 0));
  sockaddr_in to{};
  to.sin_family = AF_INET;
  to.sin_port = htons(static_cast<uint16_t>(number));
  to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  std::string from;
  EXPECT_FALSE(receive_datagram(port->get(), from));  // none waiting: no blocking
  const char text[] = "^kick north\r\n";
  ASSERT_EQ(sendto(sender.get(), text, sizeof text - 1, 0, reinterpret_cast<sockaddr*>(&to), sizeof to),
            static_cast<ssize_t>(sizeof text - 1));
  std::optional<std::string> bytes;
  for (int i = 0; i < 100 && !bytes; ++i) {
    bytes = receive_datagram(port->get(), from);
    if (!bytes) usleep(10000);
  }
  ASSERT_TRUE(bytes);
  EXPECT_EQ(*bytes, "^kick north\r\n");
  EXPECT_EQ(from.rfind("127.0.0.1:", 0), 0u);
}

}  // namespace
}  // namespace px::sim
