// The operator audit log on a private demo installation that pxserver-sim
// serves: what pxctl changes is recorded in the file named by AuditLog, and
// pxctl audit prints it, all of it or from a time on.
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "tests/live_installation.h"

namespace px {
namespace {

std::vector<std::vector<std::string>> records(const std::string& text) {
  std::vector<std::vector<std::string>> out;
  size_t start = 0;
  for (size_t end; (end = text.find('\n', start)) != std::string::npos; start = end + 1) {
    std::vector<std::string> fields;
    std::string line = text.substr(start, end - start);
    size_t from = 0;
    for (size_t tab; (tab = line.find('\t', from)) != std::string::npos; from = tab + 1) {
      fields.push_back(line.substr(from, tab - from));
    }
    fields.push_back(line.substr(from));
    out.push_back(fields);
  }
  return out;
}

class AuditEndToEnd : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(live.start_simulator({"--port", "0", "--stopped", "south", "north", "south"}))
        << live.simulator_log();
    // The simulator writes the status file just after it starts serving.
    ASSERT_TRUE(eventually([&] { return live.state() == "3\trunning"; })) << live.state();
  }
  LiveInstallation live;
};

TEST_F(AuditEndToEnd, ChangesAreRecordedAndPrinted) {
  ProgramResult none = live.run_pxctl({"audit"});
  EXPECT_EQ(none.status, 1);
  EXPECT_EQ(none.err.rfind("[1703]No audit log is kept", 0), 0u) << none.err;

  const std::string console_ini = live.path("pxcntrl.ini");
  std::string settings = live.read("pxcntrl.ini");
  size_t options = settings.find("[Options]\n");
  ASSERT_NE(options, std::string::npos);
  settings.insert(options + 10, "AuditLog=" + live.path("audit.log") + "\n");
  std::ofstream(console_ini, std::ios::binary | std::ios::trunc) << settings;
  ProgramResult empty = live.run_pxctl({"audit"});
  EXPECT_EQ(empty.status, 0);  // nothing written yet
  EXPECT_EQ(empty.out, "");

  EXPECT_EQ(live.run_pxctl({"pause"}).status, 0);
  EXPECT_EQ(live.run_pxctl({"--instance", "south", "resume"}).status, 1);  // not running: 234
  EXPECT_EQ(live.run_pxctl({"-aro", "shutdown"}).status, 1);
  EXPECT_EQ(live.run_pxctl({"ini", "set", console_ini, "Options", "Password", "secret"}).status, 0);
  EXPECT_EQ(live.run_pxctl({"state"}).status, 0);  // looking is not recorded

  ProgramResult audit = live.run_pxctl({"audit"});
  ASSERT_EQ(audit.status, 0) << audit.err;
  EXPECT_EQ(audit.out, live.read("audit.log"));
  EXPECT_EQ(audit.out.find("secret"), std::string::npos);
  auto lines = records(audit.out);
  ASSERT_EQ(lines.size(), 4u) << audit.out;
  std::vector<std::string> summary;
  for (const auto& f : lines) {
    ASSERT_EQ(f.size(), 8u);
    EXPECT_EQ(f[0].size(), 20u);
    EXPECT_EQ(f[3], "pxctl");
    summary.push_back(f[4] + " " + f[5] + " " + f[6] + " " + f[7]);
  }
  EXPECT_EQ(summary, (std::vector<std::string>{
                         "north pause done 157",
                         "south resume failed 234",
                         "north shutdown refused 1700",
                         "- ini set " + console_ini + " Options Password done 0",
                     }));

  EXPECT_EQ(live.run_pxctl({"audit", "--since", "2000-01-01"}).out, audit.out);
  EXPECT_EQ(live.run_pxctl({"audit", "--since", "2999-01-01T00:00Z"}).out, "");
  EXPECT_EQ(live.run_pxctl({"audit", "--since", "yesterday"}).status, 2);
  EXPECT_EQ(live.run_pxctl({"audit", "--since", "2026-02-30"}).status, 2);  // no such day
  EXPECT_EQ(live.run_pxctl({"audit", "--since"}).status, 2);
  EXPECT_EQ(live.run_pxctl({"audit", "everything"}).status, 2);
}

}  // namespace
}  // namespace px
