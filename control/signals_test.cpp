#include "control/signals.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <semaphore.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "config/message_numbers.h"
#include "config/recording_operator.h"
#include "control/test_installation.h"

namespace px {
namespace {

using namespace std::chrono_literals;

constexpr SignalTimes kShortWaits{150, 150, 10};

// How many descriptors this process has open.
size_t open_descriptors() {
  auto entries = std::filesystem::directory_iterator("/proc/self/fd");
  return static_cast<size_t>(std::distance(entries, std::filesystem::directory_iterator()));
}

// How many named semaphores this process has mapped.
size_t mapped_semaphores() {
  std::ifstream maps("/proc/self/maps");
  size_t count = 0;
  for (std::string line; std::getline(maps, line);)
    count += line.find("/dev/shm/sem.") != std::string::npos;
  return count;
}

class SignalsTest : public ::testing::Test {
 protected:
  TestInstallation install_;
  RecordingOperator op_;
};

TEST_F(SignalsTest, SocketNamesFollowThePipeDirectory) {
  std::string pipes = install_.dir().file("pipes");
  EXPECT_EQ(launcher_socket_path(), pipes + "/PxNexa");
  EXPECT_EQ(control_socket_path("north", false), pipes + "/north.ctr");
  EXPECT_EQ(control_socket_path("north", true), pipes + "/north.em/PxEmio.ctr");
  EXPECT_EQ(control_event_name("north", false), "north.ctr");
  EXPECT_EQ(control_event_name("north", true), "north.EM.PxEmio.ctr");
  ::unsetenv("PLEXAR_PIPE_DIR");
  EXPECT_EQ(launcher_socket_path(), "/tmp/Plexar/PxNexa");
}

TEST_F(SignalsTest, KickIsAConnectionWithNothingWritten) {
  UnixListener server(control_socket_path("north", false));
  UnixListener agent(control_socket_path("north", true));
  ASSERT_TRUE(server.ok() && agent.ok());
  EXPECT_TRUE(kick("north", false, op_, kShortWaits));
  EXPECT_TRUE(kick("north", true, op_, kShortWaits));
  EXPECT_TRUE(kick("north", true, op_, kShortWaits));
  EXPECT_EQ(server.read_next(), std::optional<std::string>(""));
  EXPECT_EQ(server.read_next(), std::nullopt);
  EXPECT_EQ(agent.take_connections(), 2);
  EXPECT_TRUE(op_.shown().empty());
}

TEST_F(SignalsTest, KickWithoutListenerReports299AndOtherFailures300) {
  std::string path = control_socket_path("north", false);
  auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(kick("north", false, op_));  // no socket: no waiting at all
  EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
  EXPECT_EQ(op_.shown().back(), (ShownMessage{msg::kSignalWaitFailed, {display_path(path)}}));

  UnixListener stale(path, false);  // the file is there, nobody listens
  EXPECT_FALSE(kick("north", false, op_, kShortWaits));
  EXPECT_EQ(op_.last(), msg::kSignalWaitFailed);

  ::setenv("PLEXAR_PIPE_DIR", ("/tmp/" + std::string(120, 'p')).c_str(), 1);
  EXPECT_FALSE(kick("north", false, op_, kShortWaits));
  EXPECT_EQ(op_.last(), msg::kSignalNotDelivered);
}

TEST_F(SignalsTest, LauncherGetsTheTextWithItsNul) {
  UnixListener launcher(launcher_socket_path());
  EXPECT_TRUE(send_to_launcher("north", op_, kShortWaits));
  EXPECT_TRUE(send_to_launcher("north\\PxEmio", op_, kShortWaits));
  EXPECT_EQ(launcher.read_next(), std::string("north\0", 6));
  EXPECT_EQ(launcher.read_next(), std::string("north\\PxEmio\0", 13));
  EXPECT_TRUE(op_.shown().empty());
}

TEST_F(SignalsTest, LauncherFailures) {
  EXPECT_FALSE(send_to_launcher("north", op_, kShortWaits));
  EXPECT_EQ(op_.shown().back(),
            (ShownMessage{msg::kLauncherNotOpened, {display_path(launcher_socket_path())}}));
  UnixListener busy(launcher_socket_path(), false);
  EXPECT_FALSE(send_to_launcher("north", op_, kShortWaits));
  EXPECT_EQ(op_.last(), msg::kSignalWaitFailed);
}

TEST_F(SignalsTest, BusyLauncherIsWaitedForAndSeesOneConnection) {
  UnixListener launcher(launcher_socket_path(), false);
  std::thread opener([&] {
    std::this_thread::sleep_for(100ms);
    launcher.listen();
  });
  bool sent = send_to_launcher("north", op_, SignalTimes{150, 5000, 10});
  opener.join();
  EXPECT_TRUE(sent);
  EXPECT_EQ(launcher.read_next(), std::string("north\0", 6));
  EXPECT_EQ(launcher.read_next(), std::nullopt);
}

TEST_F(SignalsTest, ClassicBranchPostsNamedSemaphores) {
  ::setenv("PLEXAR_PLATFORM", "classic", 1);
  std::string instance = "north" + std::to_string(::getpid());
  std::string name = "/" + control_event_name(instance, false);
  sem_t* event = ::sem_open(name.c_str(), O_CREAT | O_EXCL, 0600, 0);
  ASSERT_NE(event, SEM_FAILED);
  EXPECT_TRUE(kick(instance, false, op_));
  EXPECT_TRUE(kick(instance, false, op_));
  int value = -1;
  ::sem_getvalue(event, &value);
  EXPECT_EQ(value, 2);
  ::sem_close(event);
  ::sem_unlink(name.c_str());

  // Without its event the server is reported, the agent is kicked silently.
  EXPECT_FALSE(kick(instance, false, op_));
  EXPECT_EQ(op_.shown().back(),
            (ShownMessage{msg::kSignalNotDelivered, {control_event_name(instance, false)}}));
  op_.clear();
  EXPECT_TRUE(kick(instance, true, op_));
  EXPECT_TRUE(op_.shown().empty());
}

TEST_F(SignalsTest, EveryPathClosesItsSocketsAndSemaphores) {
  UnixListener server(control_socket_path("north", false));
  UnixListener busy(launcher_socket_path(), false);
  size_t before = open_descriptors();
  kick("north", false, op_, kShortWaits);       // delivered
  kick("north", true, op_, kShortWaits);        // no socket
  send_to_launcher("north", op_, kShortWaits);  // busy until the wait is over
  ::setenv("PLEXAR_PLATFORM", "classic", 1);
  std::string name = "/north" + std::to_string(::getpid()) + ".ctr";
  ::sem_close(::sem_open(name.c_str(), O_CREAT | O_EXCL, 0600, 0));
  size_t semaphores = mapped_semaphores();
  kick("north" + std::to_string(::getpid()), false, op_);  // posted
  kick("south", false, op_);                               // no semaphore
  EXPECT_EQ(mapped_semaphores(), semaphores);
  ::sem_unlink(name.c_str());
  EXPECT_EQ(open_descriptors(), before);
}

}  // namespace
}  // namespace px
