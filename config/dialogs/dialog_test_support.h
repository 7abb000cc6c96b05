// For the configuration dialogs' tests: the shipped message catalogue, an
// install file in a temporary directory, the headless toolkit acting as the
// operator, a recording operator, and a context whose drives and command
// runner are the test's.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/file_util.h"
#include "common/ini_profile.h"
#include "common/messages.h"
#include "config/dialogs/config_context.h"
#include "config/recording_operator.h"
#include "tests/support/test_dir.h"
#include "toolkit/headless/headless_toolkit.h"

namespace px::dialogs {

class DialogTest : public ::testing::Test {
 protected:
  DialogTest() {
    tk.set_failure_handler([this](const std::string& what) { failures.push_back(what); });
    std::string text = read_file(PX_SOURCE_DIR "/demo/pxcntrl.ini").value_or("");
    std::size_t at = text.find("\nInstall=\n");
    if (at != std::string::npos) text.replace(at, 10, "\nInstall=" + dir.file("install.ini") + "\n");
    ini::flush_cache();
    ini::set_file(dir.write("pxcntrl.ini", text));
    messages::reset();
    messages::init("pxcntrl");
    context.drives = [this] { return drives; };
    context.run_and_wait = [this](std::string_view command) {
      commands.emplace_back(command);
      return command_status;
    };
  }
  ~DialogTest() override {
    ini::flush_cache();
    messages::reset();
  }
  void TearDown() override {
    tk.verify_scripts_used();
    EXPECT_TRUE(failures.empty()) << failures.front();
  }

  std::string text(tk::Window w, int control) { return w.control(control).text(); }

  TestDir dir;
  std::vector<std::string> failures;
  tk::HeadlessToolkit tk;
  RecordingOperator op;
  ConfigContext context{tk, op, "north"};
  std::vector<forms::Drive> drives{{"/", "/", true}};
  std::vector<std::string> commands;
  int command_status = 0;
};

}  // namespace px::dialogs
