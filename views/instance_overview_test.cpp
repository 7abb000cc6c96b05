#include "views/instance_overview.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "views/views_test_support.h"

namespace px::views {
namespace {

class InstanceOverviewTest : public ViewsTest {};

TEST_F(InstanceOverviewTest, OneLinePerInstanceWithStateAndQueueCount) {
  for (const char* d : {"a", "b"}) ::mkdir(dir_.file(d).c_str(), 0755);
  dir_.write("a/ONE.DAT", "x");
  dir_.write("a/px01.msg", "x");
  dir_.write("a.sts", "261124 09:00:00 pxserver: Nexa is paused\n");
  auto config = [&](const std::string& name, const std::string& extra) {
    return dir_.write(name + ".ini", "[Plexar]\nWindowTitle=" + name + " title\n" + extra +
                                         "\n[Options]\nFileSpec=*.DAT\n[Paths]\nDataPath=" +
                                         dir_.file(name) + "\n[Messages]\nMsg310=10 Nexa is not running\n"
                                         "Msg315=10 Nexa is paused\n");
  };
  std::string a = config("a", "StatusFile=" + dir_.file("a.sts"));
  std::string b = config("b", "StatusFile=" + dir_.file("b.sts"));  // no such file
  std::string c = dir_.write("c.ini", "[Plexar]\nWindowTitle=c title\n");
  dir_.write("install.ini", "[Configuration]\na=" + a + "\nb=" + b + "\nc=" + c + "\n");

  std::vector<BlockPlan> plans = plan_status_queue();
  std::vector<std::string> lines = overview_lines(plans, list_blocks(plans));
  ASSERT_EQ(lines.size(), 3u);
  auto title = [](const std::string& t) { return t + std::string(40 - t.size(), ' ') + "  "; };
  EXPECT_EQ(lines[0], title("a title") + "paused        2 waiting");
  EXPECT_EQ(lines[1], title("b title") + "not running   0 waiting");
  EXPECT_EQ(lines[2], title("c title") + "[167]Missing FileSpec in Options");
}

}  // namespace
}  // namespace px::views
