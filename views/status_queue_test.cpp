#include "views/status_queue.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "views/views_test_support.h"

namespace px::views {
namespace {

class StatusQueueTest : public ViewsTest {
 protected:
  // An instance configuration with the given lines added to its sections.
  std::string instance(const std::string& name, const std::string& options,
                       const std::string& paths, const std::string& plexar) {
    return dir_.write(name + ".ini", "[Plexar]\nWindowTitle=" + name + " title\n" + plexar +
                                         "\n[Options]\n" + options + "\n[Paths]\n" + paths + "\n");
  }
  void install(const std::string& lines) { dir_.write("install.ini", "[Configuration]\n" + lines); }
  std::string queue(const std::string& name) {
    std::string path = dir_.file(name);
    ::mkdir(path.c_str(), 0755);
    return path;
  }
  std::string waiting(const std::string& directory, const std::string& name, time_t age) {
    std::string path = directory + "/" + name;
    dir_.write(path.substr(dir_.path().size() + 1), "x");
    set_modified(path, age);
    return path;
  }
};

TEST_F(StatusQueueTest, BlocksListControlJobsFirstThenTheFirstPatternOldestFirst) {
  std::string north = queue("north-data");
  waiting(north, "ORD2.DAT", 300);
  waiting(north, "ord1.dat", 200);
  waiting(north, "scan.txt", 100);  // second pattern of FileSpec: not listed
  waiting(north, "pxctrl01.msg", 500);
  waiting(north, "STOPSERV.MSG", 900);
  waiting(north, "pxctrl00.msg", 600);
  dir_.write("north.sts", "Nexa is running\nsecond line\n");
  std::string south = queue("south-data");
  dir_.write("south.sts", "");
  install("north=" + instance("north", "FileSpec=*.dat;*.txt", "DataPath=" + north,
                              "StatusFile=" + dir_.file("north.sts")) +
          "\nsouth=" + instance("south", "FileSpec=*.DAT", "DataPath=" + south,
                                "StatusFile=" + dir_.file("south.sts")) + "\n");

  std::string pad_north(28 - std::min<size_t>(28, north.size()), ' ');
  std::string pad_south(28 - std::min<size_t>(28, south.size()), ' ');
  std::string under(30, ' ');
  EXPECT_EQ(status_queue_rows(), (std::vector<std::string>{
                                     "north title - ",
                                     "  - Nexa is running",
                                     "  " + north + pad_north + "  pxctrl01.msg",
                                     under + "  pxctrl00.msg",
                                     under + "  ord1.dat",
                                     under + "  ORD2.DAT",
                                     "south title - ",
                                     "  - [196]Empty status",
                                     "  " + south + pad_south + "  [174]Nothing waiting",
                                 }));
}

TEST_F(StatusQueueTest, BlanksBeforeTheSemicolonAreNoPartOfThePattern) {
  std::string data = queue("data");
  waiting(data, "A.DAT", 100);
  waiting(data, "b.txt", 200);
  install("north=" + instance("north", "FileSpec=*.dat ;*.txt", "DataPath=" + data, "") + "\n");
  std::vector<std::string> rows = status_queue_rows();
  ASSERT_EQ(rows.size(), 3u);
  EXPECT_TRUE(rows[2].ends_with("  A.DAT")) << rows[2];
}

TEST_F(StatusQueueTest, AStopRequestHeadsTheGroupItIsListedIn) {
  std::string data = queue("data");
  waiting(data, "px01.msg", 10);
  waiting(data, "a.dat", 50);
  waiting(data, "StopServ.Msg", 900);
  install("a=" + instance("a", "FileSpec=*.*", "DataPath=" + data, "") + "\n");
  std::vector<std::string> rows = status_queue_rows();
  ASSERT_EQ(rows.size(), 6u);
  EXPECT_TRUE(rows[2].ends_with("  px01.msg"));  // the control jobs
  EXPECT_EQ(rows[3], std::string(30, ' ') + "  StopServ.Msg");  // then every file
  EXPECT_EQ(rows[4], std::string(30, ' ') + "  px01.msg");
  EXPECT_EQ(rows[5], std::string(30, ' ') + "  a.dat");
}

TEST_F(StatusQueueTest, ProblemsBecomeRowsOfTheirInstanceOnly) {
  std::string data = queue("data");
  install("a=" + instance("a", "", "DataPath=" + data, "") +                         //
          "\nb=" + instance("b", "FileSpec=*.dat", "", "") +                         //
          "\nc=" + instance("c", "FileSpec=*.dat", "DataPath=" + data + "/gone", "") +  //
          "\nd=" + instance("d", "FileSpec=*.dat", "DataPath=" + data,
                            "StatusFile=" + dir_.file("missing.sts")) +
          "\ne=" + instance("e", "FileSpec=*.dat", "DataPath=" + data, "") + "\n");
  std::vector<std::string> rows = status_queue_rows();
  ASSERT_EQ(rows.size(), 9u);
  auto padded = [](const std::string& title) { return title + std::string(30 - title.size(), ' '); };
  EXPECT_EQ(rows[0], padded("a title") + "[167]Missing FileSpec in Options");
  EXPECT_EQ(rows[1], padded("b title") + "[304]Not set");
  EXPECT_TRUE(rows[2].starts_with(padded("c title") + "[168]No dir ")) << rows[2];
  EXPECT_EQ(rows[3], "d title - ");
  EXPECT_TRUE(rows[4].starts_with("  - [173]Bad status ")) << rows[4];
  EXPECT_EQ(rows[6], "e title - ");
  EXPECT_EQ(rows[7], "  - [304]Not set");
}

TEST_F(StatusQueueTest, StatusLineIsTheFirstLineCutTo339Characters) {
  std::string long_line(400, 'x');
  dir_.write("long.sts", long_line + "\n");
  dir_.write("crlf.sts", "Paused\r\nmore\r\n");
  EXPECT_EQ(status_line(dir_.file("long.sts")), std::string(339, 'x'));
  EXPECT_EQ(status_line(dir_.file("crlf.sts")), "Paused");
  // A status file that names a directory does not open (173), it is not
  // an empty one (196).
  std::string directory = queue("status.d");
  EXPECT_FALSE(read_status_line(directory));
  EXPECT_TRUE(status_line(directory).starts_with("[173]")) << status_line(directory);
}

TEST_F(StatusQueueTest, RefreshPeriodDefaultsToTenSeconds) {
  EXPECT_EQ(refresh_period_ms(), 10000);
  dir_.write("pxcntrl.ini", "[Options]\nQueueRefreshCycle=3\n");
  ini::flush_cache();
  EXPECT_EQ(refresh_period_ms(), 3000);
}

}  // namespace
}  // namespace px::views
