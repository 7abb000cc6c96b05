// Runs pxctl's server-control commands on a private installation, with this
// test standing in for the server's control socket and launcher.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <optional>

#include "cli/pxctl_test_fixture.h"

namespace px {
namespace {

// A listening Unix socket that counts the connections made to it and keeps
// what the first one sent.
class Listener {
 public:
  explicit Listener(const std::string& path) : path_(path) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    fd_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "%s", path.c_str());
    EXPECT_EQ(::bind(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0) << path;
    ::listen(fd_, 8);
  }
  ~Listener() {
    ::close(fd_);
    ::unlink(path_.c_str());
  }
  // Everything each waiting connection sent, in order.
  std::vector<std::string> take() {
    std::vector<std::string> texts;
    for (int c; (c = ::accept(fd_, nullptr, nullptr)) >= 0; ::close(c)) {
      std::string text;
      char chunk[256];
      for (ssize_t n; (n = ::read(c, chunk, sizeof chunk)) > 0;) text.append(chunk, static_cast<size_t>(n));
      texts.push_back(text);
    }
    return texts;
  }

 private:
  std::string path_;
  int fd_;
};

class PxctlControlTest : public PxctlFixture {
 protected:
  void SetUp() override {
    ini_ = dir_.write("pxcntrl.ini", "[Plexar]\nInstall=" + dir_.file("install.ini") + "\n");
    dir_.write("install.ini",
               "[Plexar]\nNode=alpha\n[Configuration]\nnorth=" + dir_.file("north.ini") +
                   "\nsouth=" + dir_.file("south.ini") + "\n");
    dir_.write("north.ini",
               "[Plexar]\nWindowTitle=North office\nNode=alpha\nStatusFile=" +
                   dir_.file("north.sts") + "\n[Options]\nJMDFileName=" + dir_.file("north.jmd") +
                   "\n[Paths]\nDataPath=" + dir_.file("data") +
                   "\n[Messages]\nMsg310=10 Nexa is not running\nMsg315=10 Nexa is paused\n"
                   "[PXCNTRLJOB]\nA=^job PXCNTRLJOB\nB=!CommandString\nC=!LogicalPrinter\n"
                   "D=!MDFFileName\nE=!RequestorID\n");
    dir_.write("south.ini", "[Plexar]\nWindowTitle=South office\nNode=beta\n");
    dir_.write("north.jmd",
               "# Plexar Job Management Database (JMD) file\n!p PRN1 * LPT1 * 50 *\n"
               "!p LASER2 * LPT2 * 50 *\n");
    std::filesystem::create_directories(dir_.file("data"));
    ::setenv("PLEXAR_PIPE_DIR", dir_.file("pipes").c_str(), 1);
  }
  void TearDown() override { ::unsetenv("PLEXAR_PIPE_DIR"); }

  void status(const std::string& line) { dir_.write("north.sts", line + "\n"); }
  std::vector<std::string> jobs() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(dir_.file("data"))) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }
};

TEST_F(PxctlControlTest, InstancesStateAndLocation) {
  ProgramResult list = pxctl({"instances"});
  EXPECT_EQ(list.status, 0);
  EXPECT_EQ(list.out, "north\tNorth office\t" + dir_.file("north.ini") + "\nsouth\tSouth office\t" +
                          dir_.file("south.ini") + "\n");

  EXPECT_EQ(pxctl({"state"}).out, "1\tnot running\n");
  status("240601 06:00:00 pxserver: Nexa is paused");
  EXPECT_EQ(pxctl({"state"}).out, "2\tpaused\n");
  status("240601 06:00:00 pxserver: Nexa is collecting");
  EXPECT_EQ(pxctl({"state"}).out, "3\trunning\n");
  ProgramResult unknown = pxctl({"--instance", "south", "state"});
  EXPECT_EQ(unknown.status, 1);
  EXPECT_EQ(unknown.out, "0\tunknown\n");
  EXPECT_EQ(unknown.err.rfind("[167]", 0), 0u) << unknown.err;

  EXPECT_EQ(pxctl({"location"}).out, "2\n");
  EXPECT_EQ(pxctl({"--instance", "south", "location"}).out, "4\n");
  ProgramResult east = pxctl({"--instance", "east", "location"});
  EXPECT_EQ(east.status, 1);
  EXPECT_EQ(east.err.rfind("[165]", 0), 0u) << east.err;
}

TEST_F(PxctlControlTest, PauseTwiceWritesOneJob) {
  Listener server(dir_.file("pipes/north.ctr"));
  status("Nexa is collecting");
  ProgramResult pause = pxctl({"pause"});
  EXPECT_EQ(pause.status, 0) << pause.err;
  EXPECT_EQ(pause.err.rfind("[157]", 0), 0u) << pause.err;
  EXPECT_EQ(dir_.read("data/pxctrl00.msg"), "^job PXCNTRLJOB\nPause Server\nPXCNTRL\n");
  EXPECT_EQ(server.take(), std::vector<std::string>{""});

  status("Nexa is paused");
  ProgramResult again = pxctl({"pause"});
  EXPECT_EQ(again.status, 1);
  EXPECT_EQ(again.err.rfind("[239]", 0), 0u) << again.err;
  EXPECT_EQ(jobs(), std::vector<std::string>{"pxctrl00.msg"});
  EXPECT_TRUE(server.take().empty());
}

TEST_F(PxctlControlTest, UnansweredKickAndShutdown) {
  status("Nexa is collecting");
  ProgramResult kick = pxctl({"kick"});
  EXPECT_EQ(kick.status, 1);
  EXPECT_EQ(kick.err.rfind("[299]", 0), 0u) << kick.err;

  // The job is written even when the server cannot be woken, and then the
  // command succeeded: sending it again would shut down twice.
  ProgramResult shutdown = pxctl({"shutdown"});
  EXPECT_EQ(shutdown.status, 0);
  EXPECT_NE(shutdown.err.find("[299]"), std::string::npos);
  EXPECT_NE(shutdown.err.find("[156]"), std::string::npos);
  ProgramResult pending = pxctl({"shutdown"});
  EXPECT_EQ(pending.err.rfind("[155]", 0), 0u) << pending.err;
  EXPECT_EQ(jobs(), std::vector<std::string>{"stopserv.msg"});
}

TEST_F(PxctlControlTest, ReloadPrinterChecksTheChoice) {
  Listener server(dir_.file("pipes/north.ctr"));
  status("Nexa is collecting");
  EXPECT_EQ(pxctl({"reload-printer", "--all-printers"}).status, 2);
  EXPECT_EQ(pxctl({"reload-printer", "--form", "a.mdf"}).status, 2);
  EXPECT_EQ(pxctl({"reload-printer", "--all-printers", "--printer", "PRN1", "--all-forms"}).status,
            2);

  ProgramResult blank = pxctl({"reload-printer", "--all-printers", "--form", " a.mdf"});
  EXPECT_EQ(blank.status, 1);
  EXPECT_EQ(blank.err.rfind("[256]", 0), 0u) << blank.err;
  ProgramResult unknown = pxctl({"reload-printer", "--printer", "PRN9", "--all-forms"});
  EXPECT_EQ(unknown.err.rfind("[903]", 0), 0u) << unknown.err;
  EXPECT_TRUE(jobs().empty());

  ProgramResult reload =
      pxctl({"reload-printer", "--printer", "PRN1", "--printer", "LASER2", "--form", "inv.mdf"});
  EXPECT_EQ(reload.status, 0) << reload.err;
  EXPECT_EQ(dir_.read("data/pxctrl00.msg"),
            "^job PXCNTRLJOB\nPrinter Reload\nLASER2   \nPRN1     \ninv.mdf\nPXCNTRL\n");
  EXPECT_EQ(pxctl({"reload-printer", "--all-printers", "--all-forms"}).status, 0);
  EXPECT_EQ(dir_.read("data/pxctrl01.msg"), "^job PXCNTRLJOB\nPrinter Reload\n*\n*\nPXCNTRL\n");
  EXPECT_EQ(server.take().size(), 2u);
}

TEST_F(PxctlControlTest, StartGoesToTheLauncher) {
  Listener launcher(dir_.file("pipes/PxNexa"));
  ProgramResult start = pxctl({"start"});
  EXPECT_EQ(start.status, 0) << start.err;
  EXPECT_EQ(launcher.take(), std::vector<std::string>{std::string("north\0", 6)});
  status("Nexa is collecting");
  EXPECT_EQ(pxctl({"start"}).err.rfind("[235]", 0), 0u);
  EXPECT_EQ(pxctl({"start", "now"}).status, 2);
  EXPECT_EQ(pxctl({"kick", "--mail"}).status, 2);
}

}  // namespace
}  // namespace px
