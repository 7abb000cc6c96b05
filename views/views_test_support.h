// What the views' tests share: a console INI file with the views' message
// texts and an install file, and files with chosen modification times.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include <ctime>
#include <string>

#include "common/ini_profile.h"
#include "common/messages.h"
#include "config/recording_operator.h"
#include "tests/support/test_dir.h"

namespace px::views {

// Sets the modification time of path to seconds since 1970.
inline void set_modified(const std::string& path, time_t seconds) {
  struct timespec times[2] = {{seconds, 0}, {seconds, 0}};
  ::utimensat(AT_FDCWD, path.c_str(), times, 0);
}

class ViewsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    console_ = dir_.write("pxcntrl.ini",
                          "[Plexar]\nInstall=" + dir_.file("install.ini") +
                              "\n[Options]\n" + options_ +
                              "\n[Messages]\nMsg167=30 Missing @P3 in @P1\nMsg168=30 No dir @P1\n"
                              "Msg169=10 No rejects\nMsg170=10 Queued:\nMsg173=30 Bad status @P1\n"
                              "Msg174=10 Nothing waiting\nMsg196=20 Empty status\n"
                              "Msg260=10 Rejected:\nMsg304=30 Not set\n");
    ini::set_file(console_);
  }
  void TearDown() override {
    ini::flush_cache();
    messages::reset();
  }

  TestDir dir_;
  std::string console_;
  std::string options_;
  RecordingOperator op_;
};

}  // namespace px::views
