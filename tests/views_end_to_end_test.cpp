// pxctl's monitoring commands (status, queue, rejects, log, reject-file)
// against pxserver-sim serving a private demo installation.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/live_installation.h"

namespace px {
namespace {

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

void touch(const std::string& path, time_t seconds) {
  std::ofstream(path) << "^job INVOICE\n";
  struct timespec times[2] = {{seconds, 0}, {seconds, 0}};
  utimensat(AT_FDCWD, path.c_str(), times, 0);
}

std::string numbered(int from, int to, const std::string& prefix = "line ") {
  std::string text;
  for (int i = from; i < to; ++i) text += prefix + std::to_string(i) + "\n";
  return text;
}

std::string first_line(const std::string& path) {
  std::ifstream in(path);
  std::string line;
  std::getline(in, line);
  return line;
}

// pxctl running in the background with its output read as it comes.
class Background {
 public:
  Background(const LiveInstallation& live, const std::vector<std::string>& args) {
    int out[2], err[2];
    if (pipe(out) != 0 || pipe(err) != 0) return;
    std::vector<std::string> words{PXCTL_PATH, "-aii" + live.path("pxcntrl.ini")};
    words.insert(words.end(), args.begin(), args.end());
    pid_ = fork();
    if (pid_ == 0) {
      dup2(out[1], 1);
      dup2(err[1], 2);
      std::vector<char*> argv;
      for (std::string& w : words) argv.push_back(w.data());
      argv.push_back(nullptr);
      execv(argv[0], argv.data());
      _exit(127);
    }
    close(out[1]);
    close(err[1]);
    out_ = out[0];
    err_ = err[0];
  }
  ~Background() {
    if (pid_ > 0) {
      kill(pid_, SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
    close(out_);
    close(err_);
  }
  // Reads until both texts have appeared or five seconds pass.
  bool wait_for(const std::string& out_text, const std::string& err_text = "") {
    return eventually([&] {
      drain();
      return out.find(out_text) != std::string::npos && err.find(err_text) != std::string::npos;
    });
  }
  // Interrupts it; its exit status.
  int interrupt() {
    kill(pid_, SIGINT);
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  std::string out, err;

 private:
  void drain() {
    for (auto [fd, text] : {std::pair{out_, &out}, std::pair{err_, &err}}) {
      pollfd p{fd, POLLIN, 0};
      char buffer[65536];
      while (poll(&p, 1, 0) > 0 && (p.revents & POLLIN)) {
        ssize_t n = read(fd, buffer, sizeof buffer);
        if (n <= 0) break;
        text->append(buffer, static_cast<size_t>(n));
      }
    }
  }
  pid_t pid_ = -1;
  int out_ = -1, err_ = -1;
};

class ViewsEndToEnd : public ::testing::Test {
 protected:
  void start(bool north_running) {
    std::vector<std::string> args{"--port", "0", "--stopped", "south"};
    if (!north_running) args.insert(args.end(), {"--stopped", "north"});
    args.insert(args.end(), {"north", "south"});
    ASSERT_TRUE(live.start_simulator(args)) << live.simulator_log();
  }
  void write_log(const std::string& relative, const std::string& text) {
    std::ofstream(live.path(relative), std::ios::binary) << text;
  }
  LiveInstallation live;
};

TEST_F(ViewsEndToEnd, StatusListsEveryInstanceWithItsQueueOldestFirst) {
  std::string north = live.path("north/data");
  touch(north + "/ORD2.DAT", 2000);
  touch(north + "/ord1.dat", 1000);
  touch(north + "/scan0042.txt", 500);  // FileSpec's second pattern: not listed
  touch(north + "/pxctrl03.msg", 3000);
  start(false);
  // The stopped servers' status files say so once the simulator is up.
  ASSERT_TRUE(eventually([&] {
    return !first_line(live.path("north/pxserver.sts")).empty() &&
           !first_line(live.path("south/pxserver.sts")).empty();
  })) << live.simulator_log();
  ProgramResult result = live.run_pxctl({"status"});
  ASSERT_EQ(result.status, 0) << result.err;
  std::string south = live.path("south/data");
  std::string under(30, ' ');
  EXPECT_EQ(lines_of(result.out),
            (std::vector<std::string>{
                "Nexa North - orders and invoices - ",
                "  - " + first_line(live.path("north/pxserver.sts")),
                "  " + north + "  pxctrl03.msg",
                under + "  ord1.dat",
                under + "  ORD2.DAT",
                "Nexa South - statements and pay slips - ",
                "  - " + first_line(live.path("south/pxserver.sts")),
                "  " + south + "  [174]No files waiting.",
            }));
  EXPECT_TRUE(result.err.empty()) << result.err;
}

TEST_F(ViewsEndToEnd, StatusFollowsTheRunningServerTakingItsQueue) {
  touch(live.path("north/data/ORD1.DAT"), 1000);
  start(true);
  // The running server collects the file; the next status shows it gone.
  EXPECT_TRUE(eventually([&] {
    std::string out = live.run_pxctl({"status"}).out;
    return out.find("ORD1.DAT") == std::string::npos && out.find("[174]") != std::string::npos;
  }, std::chrono::seconds(15)));
}

TEST_F(ViewsEndToEnd, RejectsAndTheAgentQueue) {
  touch(live.path("north/errors/ORD9.DAT"), 100);
  touch(live.path("north/email/data/MAIL2.dat"), 200);
  touch(live.path("north/email/data/MAIL1.dat"), 100);
  touch(live.path("north/email/data/stopread.msg"), 300);
  start(false);
  ProgramResult rejects = live.run_pxctl({"rejects"});
  EXPECT_EQ(rejects.status, 0) << rejects.err;
  EXPECT_EQ(rejects.out, "ORD9.DAT\n");
  ProgramResult none = live.run_pxctl({"rejects", "--email"});
  EXPECT_EQ(none.status, 0);
  EXPECT_EQ(none.out, "[169]There are no rejected files.\n");
  ProgramResult queue = live.run_pxctl({"queue", "--email"});
  EXPECT_EQ(queue.status, 0) << queue.err;
  EXPECT_EQ(queue.out, "stopread.msg\nMAIL1.dat\nMAIL2.dat\n");
  ProgramResult file = live.run_pxctl({"reject-file", "ORD9.DAT"});
  EXPECT_EQ(file.status, 0);
  EXPECT_EQ(file.out, "^job INVOICE\n");

  ProgramResult missing = live.run_pxctl({"reject-file", "NONE.DAT"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_TRUE(missing.err.starts_with("[177]")) << missing.err;
  ProgramResult south = live.run_pxctl({"--instance", "south", "queue", "--email"});
  EXPECT_EQ(south.status, 0) << south.err;
  // --instance NAME may also follow the command word.
  ProgramResult after = live.run_pxctl({"queue", "--email", "--instance", "south"});
  EXPECT_EQ(after.status, 0) << after.err;
  EXPECT_EQ(after.out, south.out);
  EXPECT_EQ(live.run_pxctl({"rejects", "--instance", "south"}).out,
            live.run_pxctl({"--instance", "south", "rejects"}).out);
  EXPECT_EQ(live.run_pxctl({"rejects", "--instance", "nowhere"}).status, 1);
  EXPECT_EQ(live.run_pxctl({"rejects", "--instance"}).status, 2);
  EXPECT_EQ(live.run_pxctl({"--instance", "south", "rejects", "--instance", "north"}).status, 2);
  // A message argument is the message's, not an option.
  EXPECT_NE(live.run_pxctl({"msg", "901", "--instance", "south"}).out.find("Usage: south"),
            std::string::npos);
  EXPECT_EQ(live.run_pxctl({"queue"}).status, 2);
  EXPECT_EQ(live.run_pxctl({"rejects", "--mail"}).status, 2);
  EXPECT_EQ(live.run_pxctl({"reject-file"}).status, 2);
  // --email without the NAME it comes with is a usage error, not a file name.
  ProgramResult no_name = live.run_pxctl({"reject-file", "--email"});
  EXPECT_EQ(no_name.status, 2);
  EXPECT_TRUE(no_name.err.starts_with("[901]")) << no_name.err;
  EXPECT_EQ(live.run_pxctl({"reject-file", "ORD9.DAT", "NONE.DAT"}).status, 2);
  EXPECT_EQ(live.run_pxctl({"reject-file", "ORD9.DAT", "--email"}).status, 1);  // not an agent reject
  // A directory in the error directory is no rejected file to show.
  ASSERT_EQ(::mkdir(live.path("north/errors/HELD.DAT").c_str(), 0755), 0);
  ProgramResult directory = live.run_pxctl({"reject-file", "HELD.DAT"});
  EXPECT_EQ(directory.status, 1);
  EXPECT_TRUE(directory.err.starts_with("[177]")) << directory.err;
  EXPECT_TRUE(directory.out.empty());
}

TEST_F(ViewsEndToEnd, ViewsReportWhatWouldCloseTheirWindow) {
  live.add_instance("west", "north", {{"ErrorPath=" + live.path("west/errors"), "ErrorPath=/nonexistent/errors"},
                                      {"IniFileName=" + live.path("west/pxemio.ini"), "IniFileName=x"}});
  ProgramResult rejects = live.run_pxctl({"--instance", "west", "rejects"});
  EXPECT_EQ(rejects.status, 1);
  EXPECT_TRUE(rejects.err.starts_with("[184]")) << rejects.err;
  EXPECT_TRUE(rejects.out.empty());
  ProgramResult queue = live.run_pxctl({"--instance", "west", "queue", "--email"});
  EXPECT_EQ(queue.status, 1);
  EXPECT_TRUE(queue.err.starts_with("[167]")) << queue.err;
}

TEST_F(ViewsEndToEnd, SmallLogsAreWholeAndWrappedLargeOnesOpenOnTheirLastPage) {
  std::string long_line(200, 'x');
  write_log("north/logs/pxserver.log", numbered(0, 9998) + long_line + "\n");
  ASSERT_EQ(live.run_pxctl({"ini", "set", live.path("pxcntrl.ini"), "Options", "LogLineWrap", "80"}).status, 0);
  ProgramResult whole = live.run_pxctl({"log"});
  ASSERT_EQ(whole.status, 0) << whole.err;
  std::vector<std::string> rows = lines_of(whole.out);
  ASSERT_EQ(rows.size(), 9998u + 3u);
  EXPECT_EQ(rows[0], "line 0");
  EXPECT_EQ(rows[9998], std::string(80, 'x'));
  EXPECT_EQ(rows[9999], std::string(16, ' ') + std::string(64, 'x'));
  EXPECT_EQ(rows[10000], std::string(16, ' ') + std::string(56, 'x'));

  write_log("north/logs/pxserver.log", numbered(0, 10000));
  ProgramResult paged = live.run_pxctl({"log"});
  EXPECT_EQ(paged.out, numbered(9970, 10000));
  EXPECT_EQ(live.run_pxctl({"log", "--line", "150"}).out, numbered(150, 180));
  EXPECT_EQ(live.run_pxctl({"log", "--line", "9990"}).out, numbered(9990, 10000));
  EXPECT_EQ(live.run_pxctl({"log", "--line", "x"}).status, 2);
  EXPECT_EQ(live.run_pxctl({"log", "--email", "--process", "PXMERGE"}).status, 2);
  EXPECT_EQ(live.run_pxctl({"log", "--process", "--email"}).status, 2);  // SECTION missing
  EXPECT_EQ(live.run_pxctl({"log", "--process"}).status, 2);
  EXPECT_EQ(live.run_pxctl({"log", "--line"}).status, 2);
  EXPECT_EQ(live.run_pxctl({"log", "--line", "-1"}).status, 2);
}

TEST_F(ViewsEndToEnd, ProcessAndAgentLogs) {
  write_log("north/logs/pxmerge.log", "merge one\nmerge two\n");
  write_log("north/logs/pxemio.log", "mail one\n");
  write_log("north/logs/pxserver.log", "server one\n");
  EXPECT_EQ(live.run_pxctl({"log", "--process", "PXMERGE"}).out, "merge one\nmerge two\n");
  EXPECT_EQ(live.run_pxctl({"log", "--process", "PXSERVER"}).out, "server one\n");
  EXPECT_EQ(live.run_pxctl({"log"}).out, "server one\n");  // several processes: the server's
  EXPECT_EQ(live.run_pxctl({"log", "--email"}).out, "mail one\n");
  ProgramResult unknown = live.run_pxctl({"log", "--process", "PXEMIO"});
  EXPECT_EQ(unknown.status, 1);
  EXPECT_TRUE(unknown.err.starts_with("[1401]")) << unknown.err;
  std::remove(live.path("north/logs/pxmerge.log").c_str());
  ProgramResult gone = live.run_pxctl({"log", "--process", "PXMERGE"});
  EXPECT_EQ(gone.status, 1);
  EXPECT_TRUE(gone.err.starts_with("[177]")) << gone.err;
}

TEST_F(ViewsEndToEnd, OnlyTheAgentListedShowsTheServersLog) {
  // Where the window offers an empty choice, pxctl shows the server's log;
  // without it there is no log to show.
  live.add_instance("mailonly", "north",
                    {{"PXSERVER=Plexar Nexa Server\n", ""}, {"PXMERGE=Plexar Print Agent\n", ""}});
  write_log("mailonly/logs/pxserver.log", "server only\n");
  ProgramResult shown = live.run_pxctl({"--instance", "mailonly", "log"});
  EXPECT_EQ(shown.status, 0) << shown.err;
  EXPECT_EQ(shown.out, "server only\n");
  live.add_instance("nolog", "north",
                    {{"PXSERVER=Plexar Nexa Server\n", ""},
                     {"PXMERGE=Plexar Print Agent\n", ""},
                     {"LogFile=" + live.path("nolog/logs/pxserver.log") + "\nLogFileSize", "LogFileSize"}});
  ProgramResult none = live.run_pxctl({"--instance", "nolog", "log"});
  EXPECT_EQ(none.status, 1);
  EXPECT_TRUE(none.err.starts_with("[167]")) << none.err;
}

TEST_F(ViewsEndToEnd, FollowPrintsAppendedLinesAndSurvivesRotation) {
  std::string log = live.path("north/logs/pxserver.log");
  write_log("north/logs/pxserver.log", numbered(0, 100));
  Background follow(live, {"log", "--follow"});
  ASSERT_TRUE(follow.wait_for("line 99\n")) << follow.out << follow.err;
  EXPECT_EQ(follow.out, numbered(70, 100));

  std::ofstream(log, std::ios::app) << numbered(100, 103);
  ASSERT_TRUE(follow.wait_for("line 102\n")) << follow.out;

  // Rotated: renamed away and a new log started.
  ASSERT_EQ(std::rename(log.c_str(), (log + ".1").c_str()), 0);
  write_log("north/logs/pxserver.log", numbered(0, 2, "new "));
  ASSERT_TRUE(follow.wait_for("new 1\n", "[1400]")) << follow.out << follow.err;
  EXPECT_EQ(follow.out, numbered(70, 103) + numbered(0, 2, "new "));
  EXPECT_EQ(follow.interrupt(), 0);
}

// A log whose last line has no line end yet: the first page holds it, as
// the window's does, and its line end arriving does not print it again.
TEST_F(ViewsEndToEnd, FollowShowsAnUnfinishedLastLineOnce) {
  std::string text = numbered(0, 100);
  text.pop_back();
  write_log("north/logs/pxserver.log", text);
  Background follow(live, {"log", "--follow"});
  ASSERT_TRUE(follow.wait_for("line 99\n")) << follow.out << follow.err;
  EXPECT_EQ(follow.out, numbered(70, 100));
  std::ofstream(live.path("north/logs/pxserver.log"), std::ios::app) << "\nline 100\n";
  ASSERT_TRUE(follow.wait_for("line 100\n")) << follow.out;
  EXPECT_EQ(follow.out, numbered(70, 101));
  EXPECT_EQ(follow.interrupt(), 0);

  Background from(live, {"log", "--follow", "--line", "98"});
  ASSERT_TRUE(from.wait_for("line 100\n")) << from.out << from.err;
  EXPECT_EQ(from.out, numbered(98, 101));
  EXPECT_EQ(from.interrupt(), 0);
}

// With SIGPIPE ignored (as some callers leave it), a follow whose reader has
// gone sees its writes fail and ends instead of running on unseen.
TEST_F(ViewsEndToEnd, FollowEndsWhenItsOutputCannotBeWritten) {
  write_log("north/logs/pxserver.log", numbered(0, 100));
  int out[2];
  ASSERT_EQ(pipe(out), 0);
  std::vector<std::string> words{PXCTL_PATH, "-aii" + live.path("pxcntrl.ini"), "log", "--follow"};
  pid_t pid = fork();
  if (pid == 0) {
    signal(SIGPIPE, SIG_IGN);
    dup2(out[1], 1);
    close(out[0]);
    std::vector<char*> argv;
    for (std::string& w : words) argv.push_back(w.data());
    argv.push_back(nullptr);
    execv(argv[0], argv.data());
    _exit(127);
  }
  close(out[0]);
  close(out[1]);
  std::ofstream(live.path("north/logs/pxserver.log"), std::ios::app) << numbered(100, 103);
  int status = 0;
  bool ended = eventually([&] { return waitpid(pid, &status, WNOHANG) == pid; });
  if (!ended) {
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
  }
  ASSERT_TRUE(ended);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 1);
}

}  // namespace
}  // namespace px

namespace px {
namespace {

// With --feed the simulator keeps adding work, so a repeated status shows
// the queue change: files arrive, and a running server takes them.
TEST_F(ViewsEndToEnd, StatusShowsTheWorkTheSimulatorFeeds) {
  // North takes one file every 5 seconds (its PauseTime) and is fed one a
  // second; south is not running and is not fed.
  ASSERT_TRUE(live.start_simulator({"--port", "0", "--feed", "1", "--stopped", "south", "north",
                                    "south"}))
      << live.simulator_log();
  auto fed_files = [&] {
    std::string out = live.run_pxctl({"status"}).out;
    size_t count = 0;
    for (size_t at = out.find("FEED"); at != std::string::npos; at = out.find("FEED", at + 1)) ++count;
    return count;
  };
  EXPECT_TRUE(eventually([&] { return fed_files() >= 2; })) << live.run_pxctl({"status"}).out;
  EXPECT_TRUE(live.run_pxctl({"--instance", "south", "status"}).out.find("[174]") != std::string::npos);
}

}  // namespace
}  // namespace px
