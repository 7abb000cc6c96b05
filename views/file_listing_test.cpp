#include "views/file_listing.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>

#include "tests/support/test_dir.h"
#include "views/views_test_support.h"

namespace px::views {
namespace {

std::vector<std::string> names_of(const std::vector<ListedFile>& files) {
  std::vector<std::string> names;
  for (const ListedFile& f : files) names.push_back(f.name);
  std::sort(names.begin(), names.end());
  return names;
}

TEST(FileListingTest, ListsPlainFilesByPatternWithTheirTimes) {
  TestDir dir;
  dir.write("A.DAT", "a");
  dir.write("b.dat", "b");
  dir.write("c.txt", "c");
  dir.write("noext", "d");
  ::mkdir(dir.file("sub.dat").c_str(), 0755);
  set_modified(dir.file("b.dat"), 1000);

  auto dat = list_files(dir.path(), "*.DAT");
  ASSERT_TRUE(dat);
  EXPECT_EQ(names_of(*dat), (std::vector<std::string>{"A.DAT", "b.dat"}));
  for (const ListedFile& f : *dat) {
    if (f.name == "b.dat") {
      EXPECT_EQ(f.modified_ns, int64_t{1000} * 1000000000);
    }
  }
  EXPECT_EQ(names_of(*list_files(dir.path(), "*.*")),
            (std::vector<std::string>{"A.DAT", "b.dat", "c.txt", "noext"}));
  EXPECT_TRUE(list_files(dir.path(), "px*.msg")->empty());

  EXPECT_FALSE(list_files(dir.file("missing"), "*.*"));
  EXPECT_TRUE(directory_exists(dir.path()));
  EXPECT_FALSE(directory_exists(dir.file("missing")));
  EXPECT_FALSE(directory_exists(dir.file("c.txt")));
  EXPECT_FALSE(directory_exists(""));
}

TEST(FileListingTest, SortsOldestFirstKeepingListingOrderForEqualTimes) {
  std::vector<ListedFile> listing = {
      {"c", 30}, {"a", 10}, {"b2", 20}, {"b1", 20}, {"d", 5}, {"b3", 20}};
  std::vector<std::string> out = {"earlier"};
  sort_by_age(listing, kServerStopFile, out);
  EXPECT_EQ(out, (std::vector<std::string>{"earlier", "d", "a", "b2", "b1", "b3", "c"}));
}

TEST(FileListingTest, PinsTheStopRequestWhateverItsAgeOrCase) {
  for (const char* stop : {"stopserv.msg", "STOPSERV.MSG", "StopServ.Msg"}) {
    std::vector<ListedFile> listing = {{"px03.msg", 30}, {"px01.msg", 10}, {stop, 50},
                                       {"px02.msg", 20}, {"px00.msg", 5},  {"px04.msg", 20}};
    std::vector<std::string> out = {"earlier"};
    sort_by_age(listing, kServerStopFile, out);
    EXPECT_EQ(out, (std::vector<std::string>{"earlier", stop, "px00.msg", "px01.msg", "px02.msg",
                                             "px04.msg", "px03.msg"}));
  }
}

// Two cases of the stop request in one directory: the second one goes right
// after the first, and the files listed after it that are older than it are
// placed before it.
TEST(FileListingTest, ASecondStopRequestIsPlacedAfterTheFirst) {
  std::vector<ListedFile> listing = {{"px01.msg", 10}, {"STOPSERV.MSG", 50}, {"px02.msg", 20},
                                     {"stopserv.msg", 60}, {"px00.msg", 5},   {"px05.msg", 70},
                                     {"px03.msg", 30}};
  std::vector<std::string> out;
  sort_by_age(listing, kServerStopFile, out);
  EXPECT_EQ(out, (std::vector<std::string>{"STOPSERV.MSG", "px00.msg", "px03.msg", "stopserv.msg",
                                           "px01.msg", "px02.msg", "px05.msg"}));
}

}  // namespace
}  // namespace px::views
