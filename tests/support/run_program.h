// Runs a program for a test and collects what it printed and its exit status.
#pragma once

#include <string>
#include <vector>

namespace px {

struct ProgramResult {
  int status = -1;  // exit status, or -1 when it did not exit normally
  std::string out;
  std::string err;
};

// Runs program with args (no shell) in directory, standard input empty.
ProgramResult run_program(const std::string& program, const std::vector<std::string>& args,
                          const std::string& directory);

}  // namespace px
