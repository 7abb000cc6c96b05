// pxctl's start-up as a script sees it: a log file it cannot write.
#include <gtest/gtest.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>

#include "cli/pxctl_test_fixture.h"

namespace px {
namespace {

class PxctlLogTest : public PxctlFixture {
 protected:
  void SetUp() override {
    ini_ = dir_.write("test.ini", "[Messages]\nMsg902=30 cannot write @P1\n");
  }
};

// No retries, no panic file in the current directory, the notice on stderr
// and nothing but the command's own output on stdout.
TEST_F(PxctlLogTest, AnUnwritableLogFallsBackToStderrAtOnce) {
  std::string ini = dir_.write("s.ini", "[A]\nk=1\n");
  auto start = std::chrono::steady_clock::now();
  ProgramResult get = pxctl({"-all/nonexistent/x.log", "ini", "get", ini, "A", "k"});
  ProgramResult set =
      pxctl({"-all/nonexistent/x.log", "ini", "set", dir_.file("no/s.ini"), "A", "k", "2"});
  auto took = std::chrono::steady_clock::now() - start;
  EXPECT_LT(took, std::chrono::seconds(5));
  EXPECT_EQ(get.status, 0);
  EXPECT_EQ(get.out, "1\n");
  EXPECT_EQ(set.status, 1);
  EXPECT_EQ(set.out, "");
  EXPECT_NE(set.err.find("Redirecting logfile output to stderr.\n"), std::string::npos) << set.err;
  EXPECT_NE(set.err.find("[902]cannot write"), std::string::npos) << set.err;
  EXPECT_FALSE(std::filesystem::exists(dir_.file("panic.000")));
}

// A FIFO as the log file: with nobody reading it pxctl does not wait for a
// reader but falls back to standard error; with a reader the log lines go
// down the pipe.
TEST_F(PxctlLogTest, AFifoAsTheLogNeverBlocks) {
  std::string fifo = dir_.file("log.fifo");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  std::vector<std::string> words = {"-all" + fifo, "-aii" + ini_, "ini", "set",
                                    dir_.file("no/s.ini"), "A", "k", "2"};
  ProgramResult unread = run_program(PXCTL_PATH, words, dir_.path(), {.seconds = 10});
  EXPECT_FALSE(unread.timed_out);
  EXPECT_EQ(unread.status, 1);
  EXPECT_NE(unread.err.find("Redirecting logfile output to stderr.\n"), std::string::npos)
      << unread.err;
  EXPECT_NE(unread.err.find("[902]cannot write"), std::string::npos) << unread.err;

  int reader = ::open(fifo.c_str(), O_RDONLY | O_NONBLOCK);
  ASSERT_GE(reader, 0);
  ProgramResult read = run_program(PXCTL_PATH, words, dir_.path(), {.seconds = 10});
  EXPECT_FALSE(read.timed_out);
  EXPECT_EQ(read.status, 1);
  EXPECT_EQ(read.err.find("Redirecting"), std::string::npos) << read.err;
  char buffer[4096];
  ssize_t got = ::read(reader, buffer, sizeof buffer);
  ::close(reader);
  ASSERT_GT(got, 0);
  EXPECT_NE(std::string(buffer, static_cast<size_t>(got)).find("cannot write"), std::string::npos);
}

}  // namespace
}  // namespace px
