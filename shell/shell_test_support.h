// For the shell's tests: an installation in a temporary directory (the
// console's INI file with the shipped message catalogue, an install file and
// the instances' configuration files), the headless toolkit acting as the
// operator, and the console started on them.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "common/directory_map.h"
#include "common/expand.h"
#include "common/file_util.h"
#include "common/ini_profile.h"
#include "common/messages.h"
#include "config/instances.h"
#include "config/jmd_service.h"
#include "control/node.h"
#include "shell/console.h"
#include "shell/task.h"
#include "tests/support/test_dir.h"
#include "toolkit/headless/headless_toolkit.h"
#include "toolkit/resources/resource_ids.h"

namespace px::shell {

inline std::string read_text(const std::string& path) { return read_file(path).value_or(""); }

inline void replace_all(std::string& text, const std::string& from, const std::string& to) {
  for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

class ShellTest : public ::testing::Test {
 protected:
  ShellTest() {
    set_current_instance({});
    tk.set_failure_handler([this](const std::string& what) { failures.push_back(what); });
  }
  ~ShellTest() override {
    console.reset();
    jmd_service().close();
    set_current_instance({});
    ini::flush_cache();
    messages::reset();
    clear_named_values();
    load_directory_map("");
    reset_node_state();
  }
  void TearDown() override {
    tk.verify_scripts_used();
    EXPECT_TRUE(failures.empty()) << failures.front();
  }

  // The console's INI file from the shipped one, naming this directory's
  // install file; options are added to section Options.
  void write_console_ini(const std::string& options = "", bool catalogue = true) {
    std::string text = read_text(PX_SOURCE_DIR "/demo/pxcntrl.ini");
    replace_all(text, "\nInstall=\n", "\nInstall=" + dir.file("plexar.ini") + "\n");
    replace_all(text, "\n[Options]\n", "\n[Options]\n" + options);
    if (!catalogue) text = text.substr(0, text.find("[Messages]"));
    dir.write("pxcntrl.ini", text);
    use_console_ini(dir.file("pxcntrl.ini"));
  }

  static void use_console_ini(const std::string& path) {
    ini::flush_cache();
    ini::set_file(path);
    messages::reset();
    messages::init("pxcntrl");
    reset_node_state();
  }

  // A configuration whose every path is set, with a JMD copied from the demo.
  std::string full_config(const std::string& name, const std::string& extra = "") {
    std::string home = dir.file(name);
    for (const char* sub : {"", "/data", "/errors", "/backup"}) {
      std::filesystem::create_directories(home + sub);
    }
    std::filesystem::copy_file(PX_SOURCE_DIR "/demo/data/pxjmd.jmd", home + "/pxjmd.jmd",
                               std::filesystem::copy_options::overwrite_existing);
    return "[Plexar]\nWindowTitle=Nexa " + name + "\nNode=localhost\nLogFile=" + home +
           "/pxserver.log\nStatusFile=" + home + "/pxserver.sts\n[Options]\nJMDFileName=" + home +
           "/pxjmd.jmd\n[Paths]\nDataPath=" + home + "/data\nErrorPath=" + home +
           "/errors\nBackupPath=" + home + "/backup\nExePath=" + dir.path() + "\n" + extra;
  }

  // Adds an instance to the install file; an empty config leaves it without
  // a configuration file.
  void add_instance(const std::string& name, const std::string& config) {
    std::string path = config.empty() ? "" : dir.write(name + ".ini", config);
    instances_ += name + "=" + path + "\n";
    dir.write("plexar.ini", "[Plexar]\nNode=localhost\n[Configuration]\n" + instances_);
    ini::flush_cache();
  }

  void start(const std::string& program = "") {
    console = std::make_unique<Console>(tk, clock, runner,
                                        program.empty() ? dir.file("bin/pxcntrl") : program);
    tk.run_application(console_application(*console));
  }

  tk::Window task() { return tk.task_window(); }
  std::vector<std::string> box_texts() const {
    std::vector<std::string> texts;
    for (const tk::ShownBox& box : tk.boxes()) texts.push_back(box.text);
    return texts;
  }

  TestDir dir;
  std::vector<std::string> failures;
  tk::HeadlessToolkit tk;
  FixedClock clock{std::tm{}};
  RecordingProgramRunner runner;
  std::unique_ptr<Console> console;

 private:
  std::string instances_;
};

}  // namespace px::shell
