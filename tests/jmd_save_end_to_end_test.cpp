// pxctl jmd-save and the JMD side of pxctl reload-printer on a private demo
// installation: the JMD is opened through the console's JMD service, saved
// with its backup, and its failures reported as the console reports them.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "tests/live_installation.h"

namespace px {
namespace {

void write_file(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

bool has_message(const ProgramResult& result, int n) {
  return result.err.find("[" + std::to_string(n) + "]") != std::string::npos;
}

TEST(JmdSaveEndToEnd, SavesTheInstancesJmdAsTheWriterWritesItAndKeepsTheOldOne) {
  LiveInstallation live;
  std::string original = live.read("north/pxjmd.jmd");
  std::string south = live.read("south/pxjmd.jmd");
  ProgramResult written =
      live.run_pxctl({"jmd", "save", live.path("north/pxjmd.jmd"), live.path("written.jmd")});
  ASSERT_EQ(written.status, 0) << written.err;

  ProgramResult saved = live.run_pxctl({"jmd-save"});
  EXPECT_EQ(saved.status, 0) << saved.err;
  EXPECT_EQ(saved.err, "");
  EXPECT_EQ(live.read("north/pxjmd.jmd"), live.read("written.jmd"));
  EXPECT_EQ(live.read("north/pxjmd.JBK"), original);
  EXPECT_FALSE(exists(live.path("south/pxjmd.JBK")));

  // The other instance, with a job added out of order at the end of the file.
  std::string edited = south + "!f EXTRA LASER1 extra.mdf * 0 T PXMERGE N N C *\n";
  write_file(live.path("south/pxjmd.jmd"), edited);
  ASSERT_EQ(
      live.run_pxctl({"jmd", "save", live.path("south/pxjmd.jmd"), live.path("south.jmd")}).status,
      0);
  EXPECT_EQ(live.run_pxctl({"--instance", "south", "jmd-save"}).status, 0);
  EXPECT_EQ(live.read("south/pxjmd.jmd"), live.read("south.jmd"));
  EXPECT_NE(live.read("south.jmd"), edited);
  EXPECT_EQ(live.read("south/pxjmd.JBK"), edited);
  EXPECT_EQ(live.run_pxctl({"jmd-save"}).status, 0);
  EXPECT_EQ(live.read("north/pxjmd.JBK"), live.read("written.jmd"));

  EXPECT_EQ(live.run_pxctl({"jmd-save", "extra"}).status, 2);
}

TEST(JmdSaveEndToEnd, ReportsAJmdThatCannotBeOpened) {
  LiveInstallation live;
  live.add_instance("lost", "north", {{"pxjmd.jmd", "nothing.jmd"}});
  live.add_instance("unset", "north", {{"JMDFileName=", "OldJMDFileName="}});

  ProgramResult lost = live.run_pxctl({"--instance", "lost", "jmd-save"});
  EXPECT_EQ(lost.status, 1);
  EXPECT_TRUE(has_message(lost, -386) && has_message(lost, 179)) << lost.err;
  ProgramResult unset = live.run_pxctl({"--instance", "unset", "jmd-save"});
  EXPECT_EQ(unset.status, 1);
  EXPECT_TRUE(has_message(unset, 167)) << unset.err;
  EXPECT_NE(unset.err.find("JMDFileName"), std::string::npos) << unset.err;

  // Printer Reload shows the same reasons before its own 151.
  for (const char* name : {"lost", "unset"}) {
    write_file(live.path(std::string(name) + "/pxserver.sts"), "Nexa is processing\n");
    ProgramResult reload =
        live.run_pxctl({"--instance", name, "reload-printer", "--all-printers", "--all-forms"});
    EXPECT_EQ(reload.status, 1);
    EXPECT_TRUE(has_message(reload, name == std::string("lost") ? 179 : 167)) << reload.err;
    EXPECT_TRUE(has_message(reload, 151)) << reload.err;
  }
}

}  // namespace
}  // namespace px
