#include "config/state_probes.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdio>

#include "common/ini_profile.h"
#include "config/message_numbers.h"
#include "config/recording_operator.h"
#include "tests/support/test_dir.h"

namespace px {
namespace {

// A bound Unix socket file, removed with the object.
class UnixListener {
 public:
  explicit UnixListener(const std::string& path) : path_(path) {
    fd_ = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "%s", path.c_str());
    EXPECT_EQ(::bind(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0) << path;
  }
  ~UnixListener() {
    ::close(fd_);
    ::unlink(path_.c_str());
  }

 private:
  std::string path_;
  int fd_;
};

class StateProbesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    agent_ = dir_.write("pxemio.ini", "[Plexar]\nStatusFile=" + dir_.file("agent.status") +
                                          "\n[Messages]\nMsg105=10 Reading mailbox\n"
                                          "Msg132=10 Waiting for mail\nMsg133=10 Mailbox closed\n");
    config_ = dir_.write("north.ini", "[Plexar]\nStatusFile=" + dir_.file("north.status") +
                                          "\n[PXEMIO]\nIniFileName=" + agent_ +
                                          "\n[Messages]\nMsg310=10  Nexa is not running\n"
                                          "Msg315=10 Nexa is paused\n");
  }
  void TearDown() override { ini::flush_cache(); }

  ServerState state_with_line(const std::string& line) {
    dir_.write("north.status", line);
    return server_state(config_, op_);
  }

  TestDir dir_;
  std::string agent_;
  std::string config_;
  RecordingOperator op_;
};

TEST_F(StateProbesTest, ServerStateFromFirstLine) {
  EXPECT_EQ(server_state(config_, op_), ServerState::kNotRunning);  // no status file
  EXPECT_EQ(state_with_line("230101 10:00 Nexa is not running\n"), ServerState::kNotRunning);
  EXPECT_EQ(state_with_line("230101 10:00 Nexa is paused (2 jobs)\n"), ServerState::kPaused);
  EXPECT_EQ(state_with_line("230101 10:00 Nexa is processing\n"), ServerState::kRunning);
  // Only the first line counts, and the level word is not part of the text.
  EXPECT_EQ(state_with_line("Nexa is up\nNexa is paused\n"), ServerState::kRunning);
  EXPECT_EQ(state_with_line("10 Nexa is paused"), ServerState::kPaused);
  EXPECT_EQ(state_with_line("nexa is paused"), ServerState::kRunning);
  EXPECT_TRUE(op_.shown().empty());
  EXPECT_STREQ(server_state_name(ServerState::kPaused), "paused");
  EXPECT_STREQ(server_state_name(ServerState::kUnknown), "unknown");
}

TEST_F(StateProbesTest, UnreadableStateIsUnknownAndReported) {
  std::string bare = dir_.write("bare.ini", "[Plexar]\nStatusFile=x\n");
  EXPECT_EQ(server_state(bare, op_), ServerState::kUnknown);
  EXPECT_EQ(op_.shown().back(),
            (ShownMessage{msg::kSettingMissing, {"Plexar", display_path(bare), "StatusFile"}}));
  // A status file that exists but cannot be opened (a socket, even for root).
  std::string socket_path = dir_.file("status.sock");
  UnixListener listener(socket_path);
  std::string odd = dir_.write("odd.ini", "[Plexar]\nStatusFile=" + socket_path + "\n");
  EXPECT_EQ(server_state(odd, op_), ServerState::kUnknown);
  EXPECT_EQ(op_.shown().back(), (ShownMessage{msg::kFileNotOpened, {display_path(socket_path)}}));
  // A directory is a file that cannot be opened, not an empty status line.
  std::string folder = dir_.file("status.d");
  ASSERT_EQ(::mkdir(folder.c_str(), 0755), 0);
  std::string foldered = dir_.write("folder.ini", "[Plexar]\nStatusFile=" + folder + "\n");
  EXPECT_EQ(server_state(foldered, op_), ServerState::kUnknown);
  EXPECT_EQ(op_.shown().back(), (ShownMessage{msg::kFileNotOpened, {display_path(folder)}}));
  // Without a configuration file nothing is read from the console's own.
  EXPECT_EQ(server_state("", op_), ServerState::kUnknown);
  EXPECT_EQ(op_.last(), msg::kSettingMissing);
}

TEST_F(StateProbesTest, EmailStatusLine) {
  EXPECT_TRUE(email_status_line_matches("230101 10:00:00 pxemio: 10 Reading mailbox 3", config_));
  EXPECT_TRUE(email_status_line_matches("a b c 10 Waiting for mail", config_));
  EXPECT_FALSE(email_status_line_matches("a b c Reading mailbox", config_));
  EXPECT_FALSE(email_status_line_matches("a b 10 Reading mailbox", config_));
  EXPECT_FALSE(email_status_line_matches("a b c 10 Reading mail", config_));
  // Each text is compared over its own length, so an empty one matches any line.
  ini::drop_file(agent_);
  dir_.write("pxemio.ini", "[Messages]\nMsg105=10 Reading mailbox\nMsg133=\n");
  EXPECT_TRUE(email_status_line_matches("a b c anything", config_));
  std::string no_agent = dir_.write("solo.ini", "[Plexar]\nStatusFile=s\n");
  EXPECT_FALSE(email_status_line_matches("a b c 10 Reading mailbox", no_agent));
}

TEST_F(StateProbesTest, EmailStatusFilePresence) {
  EXPECT_FALSE(email_status_file_present(config_, op_));
  dir_.write("agent.status", "running\n");
  EXPECT_TRUE(email_status_file_present(config_, op_));
  EXPECT_TRUE(op_.shown().empty());

  // Missing settings answer yes after saying which one is missing.
  std::string solo = dir_.write("solo.ini", "[Plexar]\nStatusFile=s\n");
  EXPECT_TRUE(email_status_file_present(solo, op_));
  EXPECT_EQ(op_.shown().back(),
            (ShownMessage{msg::kSettingMissing, {"PXEMIO", display_path(solo), "IniFileName"}}));
  std::string agentless = dir_.write("agentless.ini", "[Messages]\nMsg1=1 x\n");
  std::string pointing = dir_.write("pointing.ini", "[PXEMIO]\nIniFileName=" + agentless + "\n");
  EXPECT_TRUE(email_status_file_present(pointing, op_));
  EXPECT_EQ(op_.shown().back(), (ShownMessage{msg::kSettingMissing,
                                              {"Plexar", display_path(agentless), "StatusFile"}}));
}

}  // namespace
}  // namespace px
