#include "control/control_job.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <filesystem>

#include "common/directory_map.h"
#include "config/message_numbers.h"
#include "config/recording_operator.h"
#include "control/test_installation.h"

namespace px {
namespace {

std::tm moment() { return test_moment(2023, 4, 5, 14, 5, 9); }

class ControlJobTest : public ::testing::Test {
 protected:
  std::string config() const { return install_.instance.config_file; }
  std::string control() const { return install_.dir().file("control/"); }
  std::string scratch() const { return install_.dir().file("scratch"); }
  bool exists(const std::string& path) const { return std::filesystem::exists(path); }
  size_t files_in(const std::string& directory) const {
    auto entries = std::filesystem::directory_iterator(directory);
    return static_cast<size_t>(std::distance(entries, std::filesystem::directory_iterator()));
  }

  TestInstallation install_;
  RecordingOperator op_;
};

TEST_F(ControlJobTest, TextFollowsTemplateOrderAndExactPlaceholders) {
  std::vector<std::string> lines = {
      "^job PXCNTRLJOB", "!SystemDate",  "!CommandString", "!commandstring", "!LogicalPrinter",
      "!Other",          "!MDFFileName", "!SystemTime",    "!RequestorID",   "",
      "!SystemDate"};
  PrinterReloadChoice choice{{"PRN1     ", "LASER2   "}, "invoice.mdf", kChoiceOk};
  EXPECT_EQ(control_job_text(lines, ControlCommand::kPrinterReload, choice, moment()),
            "^job PXCNTRLJOB\n230405\nPrinter Reload\n!commandstring\nPRN1     \nLASER2   \n"
            "!Other\ninvoice.mdf\n14:05:09\nPXCNTRL\n\n230405\n");
  // The other commands write no printer or form line at all.
  EXPECT_EQ(control_job_text(lines, ControlCommand::kJobTableReload, choice, moment()),
            "^job PXCNTRLJOB\n230405\nJob Table Reload\n!commandstring\n!Other\n14:05:09\n"
            "PXCNTRL\n\n230405\n");
  // A choice ending in "*" is the single line "*".
  choice.printers = {"PRN1     ", "*"};
  EXPECT_EQ(control_job_text({"!LogicalPrinter"}, ControlCommand::kPrinterReload, choice, moment()),
            "*\n");
  EXPECT_STREQ(command_text(ControlCommand::kShutDown), "Shut Down Server");
  EXPECT_STREQ(command_text(ControlCommand::kPause), "Pause Server");
  EXPECT_STREQ(command_text(ControlCommand::kResume), "Resume Server");
}

TEST_F(ControlJobTest, TemplateFromConfigurationElseConsole) {
  install_.write_config(
      "[PXCNTRLJOB]\nzz=^job PXCNTRLJOB\naa = \"!CommandString\"\nmm=!SystemTime\t; note\nbare\n");
  EXPECT_EQ(read_template(config()),
            (std::vector<std::string>{"^job PXCNTRLJOB", "!CommandString", "!SystemTime", ""}));
  install_.write_config("[Plexar]\nNode=alpha\n");
  EXPECT_EQ(read_template(config()), std::nullopt);
  install_.write_ini("pxcntrl.ini", "[PXCNTRLJOB]\nA=^job PXCNTRLJOB\nB=!CommandString\n");
  EXPECT_EQ(read_template(config()),
            (std::vector<std::string>{"^job PXCNTRLJOB", "!CommandString"}));
}

TEST_F(ControlJobTest, ControlDirectoryFallsBackToDataPath) {
  EXPECT_EQ(control_directory(config(), op_), control());
  install_.write_config("[Paths]\nControlPath=" + install_.dir().file("gone") +
                        "\nDataPath=" + install_.dir().file("data") + "/\n");
  EXPECT_EQ(control_directory(config(), op_), install_.dir().file("data/"));

  // The directory map applies to both keys.
  install_.write_ini("install.ini", "[Configuration]\nnorth=" + config() +
                                        "\n[Directories-north]\n/plexar=" + install_.dir().path() +
                                        "\n");
  load_directory_map("north");
  install_.write_config("[Paths]\nControlPath=/plexar/control\n");
  EXPECT_EQ(control_directory(config(), op_), control());
  EXPECT_TRUE(op_.shown().empty());

  install_.write_config("[Paths]\nControlPath=/plexar/gone\n");
  EXPECT_EQ(control_directory(config(), op_), std::nullopt);
  EXPECT_EQ(op_.shown().back(),
            (ShownMessage{msg::kSettingMissing, {"Paths", display_path(config()), "DataPath"}}));
  install_.write_config("[Paths]\nDataPath=/plexar/gone\n");
  EXPECT_EQ(control_directory(config(), op_), std::nullopt);
  EXPECT_EQ(op_.shown().back(),
            (ShownMessage{msg::kDataPathNotDirectory, {"Paths", display_path(config())}}));
}

TEST_F(ControlJobTest, FirstFreeNameReusesGaps) {
  EXPECT_EQ(control_file_name(7), "pxctrl07.msg");
  install_.dir().write("control/pxctrl00.msg", "x");
  install_.dir().write("control/pxctrl02.msg", "x");
  EXPECT_EQ(first_free_control_file(control()), 1);
  EXPECT_EQ(first_free_control_file(control(), 2), 3);
  for (int n = 0; n < kControlFileCount; ++n) {
    install_.dir().write("control/" + control_file_name(n), "x");
  }
  EXPECT_EQ(first_free_control_file(control()), std::nullopt);
}

TEST_F(ControlJobTest, WritesExclusivelyAndRemovesScratch) {
  int number = 0;
  ASSERT_TRUE(
      write_control_job("one\n", control(), ControlCommand::kPause, &number, scratch(), op_));
  EXPECT_EQ(number, 0);
  EXPECT_EQ(install_.dir().read("control/pxctrl00.msg"), "one\n");

  // Someone took the chosen name meanwhile: the next free one is used.
  install_.dir().write("control/pxctrl01.msg", "theirs");
  number = 0;
  ASSERT_TRUE(
      write_control_job("two\n", control(), ControlCommand::kResume, &number, scratch(), op_));
  EXPECT_EQ(number, 2);
  EXPECT_EQ(install_.dir().read("control/pxctrl00.msg"), "one\n");
  EXPECT_EQ(install_.dir().read("control/pxctrl01.msg"), "theirs");
  EXPECT_EQ(install_.dir().read("control/pxctrl02.msg"), "two\n");

  ASSERT_TRUE(
      write_control_job("stop\n", control(), ControlCommand::kShutDown, nullptr, scratch(), op_));
  EXPECT_FALSE(
      write_control_job("again\n", control(), ControlCommand::kShutDown, nullptr, scratch(), op_));
  EXPECT_EQ(op_.numbers(), std::vector<int>{msg::kShutdownPending});
  EXPECT_EQ(install_.dir().read("control/stopserv.msg"), "stop\n");
  EXPECT_EQ(files_in(scratch()), 0u);
}

TEST_F(ControlJobTest, NoNameLeftAfterAClash) {
  for (int n = 0; n < kControlFileCount; ++n) {
    install_.dir().write("control/" + control_file_name(n), "x");
  }
  int number = 99;
  EXPECT_FALSE(
      write_control_job("job\n", control(), ControlCommand::kPause, &number, scratch(), op_));
  EXPECT_EQ(op_.numbers(), std::vector<int>{msg::kNoFreeControlName});
  EXPECT_EQ(install_.dir().read("control/pxctrl99.msg"), "x");
  EXPECT_EQ(files_in(scratch()), 0u);
}

TEST_F(ControlJobTest, FailuresLeaveNothingBehind) {
  int number = 0;
  std::string missing_scratch = install_.dir().file("no/such/dir");
  EXPECT_FALSE(
      write_control_job("job\n", control(), ControlCommand::kPause, &number, missing_scratch, op_));
  EXPECT_EQ(op_.shown().back(), (ShownMessage{msg::kScratchNotCreated,
                                              {display_path(missing_scratch + "/pxcntrl.$$$")}}));

  std::string gone = install_.dir().file("gone/");
  EXPECT_FALSE(
      write_control_job("job\n", gone, ControlCommand::kShutDown, nullptr, scratch(), op_));
  EXPECT_EQ(op_.shown().back(),
            (ShownMessage{msg::kTargetNotCreated, {display_path(gone + "stopserv.msg")}}));
  EXPECT_EQ(files_in(scratch()), 0u);
  EXPECT_EQ(files_in(control()), 0u);
}

TEST_F(ControlJobTest, ScratchThatCannotBeWrittenWholeIsRemoved) {
  // A file-size limit below the job's size makes the scratch write fail.
  struct sigaction ignore {
  }, old{};
  ignore.sa_handler = SIG_IGN;
  ::sigaction(SIGXFSZ, &ignore, &old);
  rlimit saved{};
  ::getrlimit(RLIMIT_FSIZE, &saved);
  rlimit small = saved;
  small.rlim_cur = 8;
  ::setrlimit(RLIMIT_FSIZE, &small);
  int number = 0;
  bool written = write_control_job(std::string(100, 'j'), control(), ControlCommand::kPause,
                                   &number, scratch(), op_);
  ::setrlimit(RLIMIT_FSIZE, &saved);
  ::sigaction(SIGXFSZ, &old, nullptr);

  EXPECT_FALSE(written);
  EXPECT_EQ(op_.last(), msg::kScratchNotCreated);
  EXPECT_EQ(files_in(scratch()), 0u);
  EXPECT_EQ(files_in(control()), 0u);
}

}  // namespace
}  // namespace px
