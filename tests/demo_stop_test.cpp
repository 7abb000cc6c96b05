// scripts/demo --stop on processes recorded in a demo directory.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <string>

#include "tests/support/run_program.h"
#include "tests/support/test_dir.h"

namespace px {
namespace {

// A shell named like the simulator; with ignore_term it ignores SIGTERM.
pid_t start_stand_in(bool ignore_term) {
  pid_t pid = fork();
  if (pid == 0) {
    std::string script = std::string(ignore_term ? "trap '' TERM; " : "") +
                         "while :; do sleep 0.05; done";
    execl("/bin/sh", "sh", "-c", script.c_str(), "pxserver-sim", static_cast<char*>(nullptr));
    _exit(127);
  }
  usleep(200000);  // lets the shell set its trap
  return pid;
}

// True when pid ended by itself within two seconds; it is killed otherwise,
// so no stand-in outlives its test.
bool reaped(pid_t pid) {
  for (int tick = 0; tick < 100; ++tick) {
    if (waitpid(pid, nullptr, WNOHANG) == pid) return true;
    usleep(20000);
  }
  kill(pid, SIGKILL);
  waitpid(pid, nullptr, 0);
  return false;
}

ProgramResult stop_demo(const TestDir& demo) {
  return run_program(PX_SOURCE_DIR "/scripts/demo", {"--stop", demo.path()}, demo.path(),
                     {60, 0});
}

TEST(DemoStop, ReportsASimulatorThatEndsOnTerm) {
  TestDir demo;
  pid_t pid = start_stand_in(false);
  std::ofstream(demo.file("pxserver-sim.pid")) << pid << "\n";
  ProgramResult stop = stop_demo(demo);
  EXPECT_EQ(stop.status, 0) << stop.err;
  EXPECT_EQ(stop.out, "pxserver-sim (pid " + std::to_string(pid) + ") stopped.\n");
  EXPECT_TRUE(reaped(pid));
}

TEST(DemoStop, KillsAndReportsASimulatorThatIgnoresTerm) {
  TestDir demo;
  pid_t pid = start_stand_in(true);
  std::ofstream(demo.file("pxserver-sim.pid")) << pid << "\n";
  ProgramResult stop = stop_demo(demo);
  EXPECT_EQ(stop.status, 1);
  EXPECT_EQ(stop.out, "");
  EXPECT_NE(stop.err.find("did not end within 10 seconds"), std::string::npos) << stop.err;
  EXPECT_TRUE(reaped(pid));
}

}  // namespace
}  // namespace px
