// pxctl in read-only mode on a private demo installation that pxserver-sim
// serves: every command that would change a file or signal the server is
// refused with message 1700 and exit 1, and leaves everything as it was;
// the commands that only look work as usual.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/live_installation.h"

namespace px {
namespace {

const std::string kRefused = "[1700]This console is read-only, so ";

class ReadOnlyEndToEnd : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(live.start_simulator({"--port", "0", "--stopped", "south", "north", "south"}))
        << live.simulator_log();
    // The simulator writes the status file just after it starts serving.
    ASSERT_TRUE(eventually([&] { return live.state() == "3\trunning"; })) << live.state();
  }
  size_t control_files() const {
    auto entries = std::filesystem::directory_iterator(live.path("north/data"));
    size_t count = 0;
    for (const auto& entry : entries) count += entry.path().extension() == ".msg";
    return count;
  }
  // Every changing command, with the action name its refusal shows.
  void expect_every_change_refused(const std::vector<std::string>& options) {
    const std::string ini = live.path("north/pxserver.ini");
    const std::string jmd = live.path("north/pxjmd.jmd");
    const std::string ini_before = live.read("north/pxserver.ini");
    const std::string jmd_before = live.read("north/pxjmd.jmd");
    const std::vector<std::pair<std::vector<std::string>, std::string>> commands = {
        {{"pause"}, "pause"},
        {{"resume"}, "resume"},
        {{"shutdown"}, "shutdown"},
        {{"reload-jobs"}, "reload-jobs"},
        {{"reload-printer", "--all-printers", "--all-forms"}, "reload-printer"},
        {{"--instance", "south", "start"}, "start"},
        {{"start-email"}, "start-email"},
        {{"stop-email"}, "stop-email"},
        {{"kick"}, "kick"},
        {{"jmd-save"}, "jmd-save"},
        {{"jmd", "save", jmd, jmd}, "jmd save " + jmd},
        {{"jmd", "add", jmd, "printers", "PrinterName=P9"}, "jmd add " + jmd + " printers"},
        {{"jmd", "new-job", jmd, "NEWJOB"}, "jmd new-job " + jmd + " NEWJOB"},
        {{"ini", "set", ini, "Plexar", "WindowTitle", "changed"}, "ini set " + ini + " Plexar WindowTitle"},
        {{"ini", "delete", ini, "Plexar"}, "ini delete " + ini + " Plexar"},
    };
    for (const auto& [words, action] : commands) {
      std::vector<std::string> args = options;
      args.insert(args.end(), words.begin(), words.end());
      ProgramResult result = live.run_pxctl(args);
      EXPECT_EQ(result.status, 1) << action << ": " << result.err;
      EXPECT_EQ(result.err.rfind(kRefused + action + " was not done.", 0), 0u) << result.err;
    }
    EXPECT_EQ(live.read("north/pxserver.ini"), ini_before);
    EXPECT_EQ(live.read("north/pxjmd.jmd"), jmd_before);
    EXPECT_FALSE(std::filesystem::exists(live.path("north/pxjmd.JBK")));
    EXPECT_EQ(control_files(), 0u);
    EXPECT_EQ(live.state(), "3\trunning");
    EXPECT_EQ(live.state("south"), "1\tnot running");
  }
  // The commands that only look.
  void expect_looking_works(const std::vector<std::string>& options) {
    auto run = [&](std::vector<std::string> words) {
      std::vector<std::string> args = options;
      args.insert(args.end(), words.begin(), words.end());
      return live.run_pxctl(args);
    };
    ProgramResult state = run({"state"});
    EXPECT_EQ(state.status, 0) << state.err;
    EXPECT_EQ(state.out, "3\trunning\n");
    EXPECT_EQ(run({"instances"}).status, 0);
    EXPECT_EQ(run({"location"}).status, 0);
    EXPECT_EQ(run({"jmd", "check", live.path("north/pxjmd.jmd")}).status, 0);
    ProgramResult title = run({"ini", "get", live.path("north/pxserver.ini"), "Plexar", "WindowTitle"});
    EXPECT_EQ(title.out, "Nexa North - orders and invoices\n");
    EXPECT_EQ(run({"msg", "1700", "x"}).status, 0);
  }

  LiveInstallation live;
};

TEST_F(ReadOnlyEndToEnd, TheOptionRefusesEveryChangeAndLooksAsUsual) {
  expect_every_change_refused({"-aro"});
  expect_looking_works({"-aro"});
  // The option may stand after the command too.
  ProgramResult late = live.run_pxctl({"pause", "-aro"});
  EXPECT_EQ(late.status, 1);
  EXPECT_EQ(late.err.rfind(kRefused + "pause", 0), 0u) << late.err;
}

TEST_F(ReadOnlyEndToEnd, TheIniSettingRefusesEveryChangeUntilItIsTakenAway) {
  const std::string console_ini = live.path("pxcntrl.ini");
  ASSERT_EQ(live.run_pxctl({"ini", "set", console_ini, "Options", "ReadOnly", "Yes"}).status, 0);
  expect_every_change_refused({});
  expect_looking_works({});
  // Not even its own setting can be taken away by pxctl while it is on.
  EXPECT_EQ(live.run_pxctl({"ini", "delete", console_ini, "Options", "ReadOnly"}).status, 1);
}

TEST_F(ReadOnlyEndToEnd, WithoutReadOnlyTheSameCommandsChangeThings) {
  ProgramResult paused = live.run_pxctl({"pause"});
  EXPECT_EQ(paused.status, 0) << paused.err;
  EXPECT_EQ(paused.err, "[157]Pause Server was sent to Nexa.\n");
  EXPECT_TRUE(eventually([&] { return live.state() == "2\tpaused"; })) << live.state();
}

}  // namespace
}  // namespace px
