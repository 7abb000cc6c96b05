// pxctl given files that are not regular files or too large for memory: it
// must neither hang nor die.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "cli/pxctl_test_fixture.h"

namespace px {
namespace {

constexpr ProgramLimits kTenSeconds{10, 0};

class PxctlInputTest : public PxctlFixture {
 protected:
  void SetUp() override {
    ini_ = dir_.write("test.ini", "[Messages]\nMsg-603=no memory\n");
    fifo_ = dir_.file("pipe");
    ASSERT_EQ(::mkfifo(fifo_.c_str(), 0600), 0);
    ASSERT_EQ(::mkdir(dir_.file("folder").c_str(), 0755), 0);
  }

  ProgramResult pxctl_limited(std::vector<std::string> args, ProgramLimits limits) {
    args.insert(args.begin(), "-aii" + ini_);
    return run_program(PXCTL_PATH, args, dir_.path(), limits);
  }

  std::string fifo_;
};

TEST_F(PxctlInputTest, SpecialFilesAsIniFilesReadAsEmpty) {
  for (const std::string& file : {fifo_, std::string("/dev/zero"), dir_.file("folder")}) {
    ProgramResult get = pxctl_limited({"ini", "get", file, "A", "k", "fallback"}, kTenSeconds);
    EXPECT_FALSE(get.timed_out) << file;
    EXPECT_EQ(get.status, 0) << file;
    EXPECT_EQ(get.out, "fallback\n") << file;
    ProgramResult keys = pxctl_limited({"ini", "keys", file, "A"}, kTenSeconds);
    EXPECT_FALSE(keys.timed_out) << file;
    EXPECT_EQ(keys.out, "") << file;
  }
}

TEST_F(PxctlInputTest, FifoAsJmdOrArgumentFileIsAFileThatCannotBeOpened) {
  for (const std::string& file : {fifo_, std::string("/dev/zero")}) {
    ProgramResult check = pxctl_limited({"jmd", "check", file}, kTenSeconds);
    EXPECT_FALSE(check.timed_out) << file;
    EXPECT_EQ(check.status, 1) << file;
    EXPECT_EQ(check.err.rfind("[-386]", 0), 0u) << check.err;
  }
  ProgramResult args = pxctl_limited({"@" + fifo_, "args", "x"}, kTenSeconds);
  EXPECT_FALSE(args.timed_out);
  EXPECT_EQ(args.status, 1);
  EXPECT_EQ(args.err.rfind("[-604]", 0), 0u) << args.err;
}

// Work that grew with the square of a section's keys or of a line's length
// took minutes here; the time limit only stops such a run, it measures
// nothing (bench/ini_bench.cpp does).
TEST_F(PxctlInputTest, HugeSectionsAndLinesAreReadInOnePass) {
  constexpr int kKeys = 1000000;
  std::string text = "[Big]\n";
  for (int k = 0; k < kKeys; ++k) text += "k" + std::to_string(k) + "=v\n";
  text += "[Long]\nfiller=" + std::string(40 << 20, 'x') + "\nlast=found\n";
  std::string file = dir_.write("huge.ini", text);
  text.clear();

  ProgramResult keys = pxctl_limited({"ini", "keys", file, "Big"}, {60, 0});
  EXPECT_FALSE(keys.timed_out);
  EXPECT_EQ(std::count(keys.out.begin(), keys.out.end(), '\n'), kKeys);
  EXPECT_TRUE(keys.out.ends_with("\nk999999\n"));
  ProgramResult get = pxctl_limited({"ini", "get", file, "Long", "last"}, {60, 0});
  EXPECT_FALSE(get.timed_out);
  EXPECT_EQ(get.out, "found\n");
}

#if defined(__SANITIZE_ADDRESS__)
#define PX_UNDER_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define PX_UNDER_ADDRESS_SANITIZER 1
#endif
#endif

TEST_F(PxctlInputTest, MemoryThatRunsOutGivesTheNumberedMessage) {
#ifdef PX_UNDER_ADDRESS_SANITIZER
  GTEST_SKIP() << "the address sanitizer needs more address space than the limit allows";
#else
  // A sparse file larger than the memory pxctl may use.
  std::string big = dir_.file("big.ini");
  ASSERT_EQ(::truncate(dir_.write("big.ini", "").c_str(), 600L << 20), 0);
  ProgramResult get = pxctl_limited({"ini", "get", big, "A", "k"}, {30, size_t{300} << 20});
  EXPECT_EQ(get.status, 1);
  EXPECT_EQ(get.err, "[-603]no memory\n");
#endif
}

}  // namespace
}  // namespace px
