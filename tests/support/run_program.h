// Runs a program for a test and collects what it printed and its exit status.
#pragma once

#include <cstddef>
#include <sys/types.h>

#include <string>
#include <vector>

namespace px {

struct ProgramResult {
  int status = -1;  // exit status, or -1 when it did not exit normally
  std::string out;
  std::string err;
  bool timed_out = false;  // it was killed for running out of time
};

struct ProgramLimits {
  int seconds = 60;               // killed after this long
  size_t address_space = 0;       // bytes of memory it may map; 0 for no limit
};

// Runs program with args (no shell) in directory, standard input empty.
ProgramResult run_program(const std::string& program, const std::vector<std::string>& args,
                          const std::string& directory, const ProgramLimits& limits = {});

// Starts program with args in directory, standard input empty and its output
// thrown away, without waiting for it; its process id, or -1.
pid_t start_program(const std::string& program, const std::vector<std::string>& args,
                    const std::string& directory);

// Waits for a started program: its exit status, or -1 when it did not exit
// normally (killed by a signal).
int wait_program(pid_t pid);

}  // namespace px
