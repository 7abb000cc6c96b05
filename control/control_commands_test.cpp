#include "control/control_commands.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "config/message_numbers.h"
#include "config/operator_action.h"
#include "config/recording_operator.h"
#include "control/agents.h"
#include "control/test_installation.h"

namespace px {
namespace {

std::tm moment() { return test_moment(2024, 12, 31, 23, 59, 58); }

class ControlCommandsTest : public ::testing::Test {
 protected:
  ControlContext context() {
    return ControlContext{install_.instance,
                          op_,
                          clock_,
                          runner_,
                          [this] { return printers_; },
                          SignalTimes{150, 150, 10},
                          install_.dir().file("scratch")};
  }
  std::string job(const std::string& name) { return install_.dir().read("control/" + name); }
  size_t files_in(const std::string& folder) {
    auto entries = std::filesystem::directory_iterator(install_.dir().file(folder));
    return static_cast<size_t>(std::distance(entries, std::filesystem::directory_iterator()));
  }

  TestInstallation install_;
  RecordingOperator op_;
  FixedClock clock_{moment()};
  RecordingProgramRunner runner_;
  std::optional<std::vector<std::string>> printers_ = std::vector<std::string>{"PRN1", "LASERJET2"};
  std::optional<UnixListener> server_{std::in_place, control_socket_path("north", false)};
};

const char* const kPauseJob = "^job PXCNTRLJOB\nPause Server\n241231\n23:59:58\nPXCNTRL\n";

TEST_F(ControlCommandsTest, PauseWritesOneJobAndWakesTheServer) {
  install_.set_running();
  EXPECT_EQ(pause_server(context()), Outcome::kDone);
  EXPECT_EQ(job("pxctrl00.msg"), kPauseJob);
  EXPECT_EQ(server_->take_connections(), 1);
  EXPECT_EQ(op_.numbers(), std::vector<int>{msg::kPauseSent});
  EXPECT_EQ(files_in("scratch"), 0u);

  // Once paused, a second pause is refused and writes nothing.
  install_.set_paused();
  op_.clear();
  EXPECT_EQ(pause_server(context()), Outcome::kFailed);
  EXPECT_EQ(op_.numbers(), std::vector<int>{msg::kServerPaused});
  EXPECT_EQ(files_in("control"), 1u);
  EXPECT_EQ(server_->take_connections(), 0);
}

TEST_F(ControlCommandsTest, StateRules) {
  struct Case {
    void (TestInstallation::*state)();
    Outcome (*command)(const ControlContext&);
    int message;
  };
  const Case cases[] = {
      {&TestInstallation::set_stopped, &pause_server, msg::kServerNotRunning},
      {&TestInstallation::set_stopped, &resume_server, msg::kServerNotRunning},
      {&TestInstallation::set_stopped, &job_table_reload, msg::kServerNotRunning},
      {&TestInstallation::set_stopped, &shut_down_server, msg::kServerNotRunning},
      {&TestInstallation::set_stopped, &printer_reload, msg::kServerNotRunning},
      {&TestInstallation::set_running, &resume_server, msg::kServerRunning},
      {&TestInstallation::set_paused, &pause_server, msg::kServerPaused},
  };
  for (const Case& c : cases) {
    (install_.*c.state)();
    op_.clear();
    EXPECT_EQ(c.command(context()), Outcome::kFailed);
    EXPECT_EQ(op_.numbers(), std::vector<int>{c.message});
  }
  EXPECT_EQ(files_in("control"), 0u);

  install_.set_paused();
  op_.clear();
  EXPECT_EQ(resume_server(context()), Outcome::kDone);
  EXPECT_EQ(job_table_reload(context()), Outcome::kDone);
  EXPECT_EQ(op_.numbers(), (std::vector<int>{msg::kResumeSent, msg::kJobTableReloadSent}));
  EXPECT_EQ(job("pxctrl00.msg"), "^job PXCNTRLJOB\nResume Server\n241231\n23:59:58\nPXCNTRL\n");
  EXPECT_EQ(job("pxctrl01.msg"), "^job PXCNTRLJOB\nJob Table Reload\n241231\n23:59:58\nPXCNTRL\n");
}

TEST_F(ControlCommandsTest, ShutdownIsBlockedWhilePending) {
  install_.set_running();
  EXPECT_EQ(shut_down_server(context()), Outcome::kDone);
  std::string first = job("stopserv.msg");
  EXPECT_EQ(first, "^job PXCNTRLJOB\nShut Down Server\n241231\n23:59:58\nPXCNTRL\n");
  clock_.set(std::tm{});
  EXPECT_EQ(shut_down_server(context()), Outcome::kFailed);
  EXPECT_EQ(op_.numbers(), (std::vector<int>{msg::kShutdownSent, msg::kShutdownPending}));
  EXPECT_EQ(job("stopserv.msg"), first);
  EXPECT_EQ(server_->take_connections(), 1);
}

TEST_F(ControlCommandsTest, UnwokenServerGets299AfterTheJob) {
  install_.set_running();
  server_.reset();  // nobody listens
  EXPECT_EQ(pause_server(context()), Outcome::kDeliveredNotWoken);
  EXPECT_EQ(op_.numbers(), (std::vector<int>{msg::kSignalWaitFailed, msg::kPauseSent}));
  EXPECT_EQ(job("pxctrl00.msg"), kPauseJob);
}

TEST_F(ControlCommandsTest, ConfigurationProblemsStopEarly) {
  install_.set_running();
  Instance unreadable = install_.instance;
  unreadable.config_file = install_.dir().file("none.ini");
  ControlContext bad{unreadable, op_, clock_, runner_, {}, {}, {}};
  EXPECT_EQ(pause_server(bad), Outcome::kFailed);
  EXPECT_EQ(op_.shown().back(),
            (ShownMessage{msg::kIniUnreadable, {display_path(unreadable.config_file)}}));

  // No status file setting: the probe's own message, then nothing.
  install_.write_config("[Paths]\nDataPath=" + install_.dir().file("data") + "\n");
  op_.clear();
  EXPECT_EQ(pause_server(context()), Outcome::kFailed);
  EXPECT_EQ(op_.numbers(), std::vector<int>{msg::kSettingMissing});

  // No template anywhere.
  std::string config = install_.standard_config();
  install_.write_config(config.substr(0, config.find("[PXCNTRLJOB]")));
  op_.clear();
  EXPECT_EQ(pause_server(context()), Outcome::kFailed);
  EXPECT_EQ(op_.shown().back().number, msg::kTemplateMissing);
  EXPECT_EQ(op_.shown().back().args[0], "PXCNTRLJOB");
  EXPECT_EQ(files_in("control"), 0u);
  EXPECT_EQ(files_in("scratch"), 0u);

  // The console's own template stands in.
  install_.write_ini("pxcntrl.ini", "[PXCNTRLJOB]\nJob=^job PXCNTRLJOB\nCmd=!CommandString\n");
  op_.clear();
  EXPECT_EQ(pause_server(context()), Outcome::kDone);
  EXPECT_EQ(job("pxctrl00.msg"), "^job PXCNTRLJOB\nPause Server\n");
}

TEST_F(ControlCommandsTest, PrinterReloadNamesTheChoice) {
  install_.set_paused();
  op_.set_printer_choice({{"LASERJET2"}, "invoice.mdf", kChoiceOk});
  EXPECT_EQ(printer_reload(context()), Outcome::kDone);
  EXPECT_EQ(op_.offered_printers(), (std::vector<std::string>{"PRN1     ", "LASERJET2"}));
  EXPECT_EQ(op_.offered_title(), "North office");
  EXPECT_EQ(job("pxctrl00.msg"),
            "^job PXCNTRLJOB\nPrinter Reload\nLASERJET2\ninvoice.mdf\n241231\n23:59:58\nPXCNTRL\n");
  EXPECT_EQ(op_.numbers(), std::vector<int>{msg::kPrinterReloadSent});

  op_.set_printer_choice({{"*"}, "*", kChoiceOk});
  EXPECT_EQ(printer_reload(context()), Outcome::kDone);
  EXPECT_EQ(job("pxctrl01.msg"),
            "^job PXCNTRLJOB\nPrinter Reload\n*\n*\n241231\n23:59:58\nPXCNTRL\n");
}

TEST_F(ControlCommandsTest, PrinterReloadWithoutChoiceWritesNothing) {
  install_.set_running();
  op_.set_printer_choice({{"PRN1"}, "a.mdf", kChoiceCancelled});
  EXPECT_EQ(printer_reload(context()), Outcome::kCancelled);
  printers_ = std::vector<std::string>{};
  EXPECT_EQ(printer_reload(context()), Outcome::kFailed);
  printers_ = std::nullopt;
  EXPECT_EQ(printer_reload(context()), Outcome::kFailed);
  EXPECT_EQ(op_.numbers(), (std::vector<int>{msg::kNoPrinters, msg::kJmdNotOpened}));
  EXPECT_EQ(files_in("control"), 0u);
  EXPECT_EQ(files_in("scratch"), 0u);
  EXPECT_EQ(server_->take_connections(), 0);
}

TEST_F(ControlCommandsTest, JobsWrittenMeanwhileAreNeverOverwritten) {
  install_.set_running();
  op_.set_printer_choice({{"*"}, "*", kChoiceOk});
  // Another console drops pxctrl00.msg while this operator chooses.
  op_.while_choosing([this] { install_.dir().write("control/pxctrl00.msg", "other console\n"); });
  EXPECT_EQ(printer_reload(context()), Outcome::kDone);
  EXPECT_EQ(job("pxctrl00.msg"), "other console\n");
  EXPECT_EQ(job("pxctrl01.msg").substr(0, 31), "^job PXCNTRLJOB\nPrinter Reload\n");

  // The control directory vanishes meanwhile: 149 and nothing left over.
  op_.while_choosing([this] { std::filesystem::remove_all(install_.dir().file("control")); });
  op_.clear();
  EXPECT_EQ(printer_reload(context()), Outcome::kFailed);
  EXPECT_EQ(op_.shown().back(),
            (ShownMessage{msg::kTargetNotCreated,
                          {display_path(install_.dir().file("control/pxctrl02.msg"))}}));
  EXPECT_EQ(files_in("scratch"), 0u);
}

// Read-only mode refuses every action that writes or signals before it
// looks at anything: one message naming the action, no job, no signal.
TEST_F(ControlCommandsTest, ReadOnlyModeRefusesEveryActionBeforeItLooks) {
  install_.set_running();
  const std::string console_ini = install_.dir().file("pxcntrl.ini");
  ASSERT_TRUE(ini::write_string("Options", "ReadOnly", "yes", console_ini));
  const std::pair<Outcome (*)(const ControlContext&), const char*> actions[] = {
      {&pause_server, "pause"},           {&resume_server, "resume"},
      {&shut_down_server, "shutdown"},    {&job_table_reload, "reload-jobs"},
      {&printer_reload, "reload-printer"}, {&start_server, "start"},
      {&start_email_agent, "start-email"}, {&stop_email_agent, "stop-email"},
  };
  for (const auto& [action, name] : actions) {
    op_.clear();
    EXPECT_EQ(action(context()), Outcome::kFailed) << name;
    EXPECT_EQ(op_.shown(), (std::vector<ShownMessage>{{msg::kReadOnlyRefused, {name}}}));
  }
  EXPECT_EQ(files_in("control"), 0u);
  EXPECT_EQ(server_->take_connections(), 0);

  ASSERT_TRUE(ini::write_string("Options", "ReadOnly", "No", console_ini));
  op_.clear();
  EXPECT_EQ(pause_server(context()), Outcome::kDone);
  EXPECT_EQ(op_.numbers(), std::vector<int>{msg::kPauseSent});
}

}  // namespace
}  // namespace px
