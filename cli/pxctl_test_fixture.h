// Test fixture of the tests that run the pxctl program: a private directory,
// and pxctl started in it with the fixture's INI file ("-aii").
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/run_program.h"
#include "tests/support/test_dir.h"

namespace px {

class PxctlFixture : public ::testing::Test {
 protected:
  // pxctl with the INI file ini_ and the given arguments.
  ProgramResult pxctl(std::vector<std::string> args) {
    args.insert(args.begin(), "-aii" + ini_);
    return run_program(PXCTL_PATH, args, dir_.path());
  }

  TestDir dir_;
  std::string ini_;  // written by each test's SetUp
};

}  // namespace px
