#include "sim/sim_report.h"

#include <gtest/gtest.h>

#include "common/messages.h"
#include "sim/test_catalogue.h"
#include "tests/support/test_dir.h"

namespace px::sim {
namespace {

TEST(SimReport, EveryMessageIsInTheCatalogue) {
  use_test_catalogue();
  for (int n : {kMsgBadArgument, kMsgNotInstalled, kMsgSettingMissing, kMsgAgentSettingMissing,
                kMsgListenFailed, kMsgSocketInUse, kMsgDatagramPortFailed, kMsgEventFailed,
                kMsgServing, kMsgDatagramReceived, kMsgDatagramNotUnderstood, kMsgLauncherUnknown,
                kMsgStopping, kMsgStatusNotWritten, kMsgServerStarted, kMsgServerRunning,
                kMsgControlJobRead, kMsgControlJobBad, kMsgServerPaused, kMsgServerResumed,
                kMsgJobTableReloaded, kMsgPrinterReloaded, kMsgServerShutDown,
                kMsgTransactionCollected, kMsgTransactionBad, kMsgAgentStarted, kMsgMailPassed,
                kMsgStopFileFound, kMsgAgentStopped, kMsgMailBad}) {
    std::string text = messages::message_text(n);
    EXPECT_EQ(text.find("not in .ini file"), std::string::npos) << n;
  }
}

TEST(SimReport, LinesCarryArgumentsAndStatusLinesHaveNoNumber) {
  use_test_catalogue();
  EXPECT_EQ(message_line(kMsgControlJobRead, {"pxctrl00.msg", "Pause Server"}),
            "[1222]Control job pxctrl00.msg read: Pause Server");
  EXPECT_EQ(message_body(kMsgServerResumed), "Nexa resumed");
}

TEST(SimReport, StatusLineIsReplacedWholeAndLogLinesAppended) {
  TestDir dir;
  std::string status = dir.write("a.sts", "old first line\nold second line\n");
  ASSERT_TRUE(write_status_line(status, "pxserver", "Nexa is paused"));
  std::string text = dir.read("a.sts");
  EXPECT_EQ(text.substr(text.size() - 26), " pxserver: Nexa is paused\n");
  EXPECT_EQ(text.find("old"), std::string::npos);

  std::string log = dir.file("a.log");
  ASSERT_TRUE(append_log_line(log, "pxemio", "one"));
  ASSERT_TRUE(append_log_line(log, "pxemio", "two"));
  std::string lines = dir.read("a.log");
  EXPECT_EQ(lines.size(), 2 * std::string("yymmdd HH:MM:SS pxemio: one\n").size());
  EXPECT_TRUE(append_log_line("", "pxemio", "nowhere"));
  EXPECT_FALSE(append_log_line(dir.file("missing/a.log"), "pxemio", "x"));
}

}  // namespace
}  // namespace px::sim
