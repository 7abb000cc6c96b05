// pxctl's start-up as a script sees it: a log file it cannot write.
#include <gtest/gtest.h>

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

}  // namespace
}  // namespace px
