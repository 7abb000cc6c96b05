#include "views/file_listing.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>

#include "tests/support/test_dir.h"
#include "views/views_test_support.h"

namespace px::views {
namespace {

std::vector<std::string> names_of(const FileListing& files) {
  std::vector<std::string> names;
  for (size_t i = 0; i < files.size(); ++i) names.emplace_back(files.name(i));
  std::sort(names.begin(), names.end());
  return names;
}

FileListing listing_of(std::initializer_list<std::pair<std::string_view, int64_t>> files) {
  FileListing listing;
  for (const auto& [name, modified] : files) listing.add(name, modified);
  return listing;
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
  for (size_t i = 0; i < dat->size(); ++i) {
    if (dat->name(i) == "b.dat") {
      EXPECT_EQ(dat->modified_ns(i), int64_t{1000} * 1000000000);
    }
  }
  EXPECT_EQ(names_of(*list_files(dir.path(), "*.*")),
            (std::vector<std::string>{"A.DAT", "b.dat", "c.txt", "noext"}));
  EXPECT_TRUE(list_files(dir.path(), "px*.msg")->empty());

  // Several patterns from one read: a name may match more than one.
  const std::string_view patterns[] = {"*.txt", "?.dat", "*"};
  auto groups = list_files(dir.path(), patterns);
  ASSERT_TRUE(groups);
  ASSERT_EQ(groups->size(), 3u);
  EXPECT_EQ(names_of((*groups)[0]), (std::vector<std::string>{"c.txt"}));
  EXPECT_EQ(names_of((*groups)[1]), (std::vector<std::string>{"A.DAT", "b.dat"}));
  EXPECT_EQ(names_of((*groups)[2]), (std::vector<std::string>{"A.DAT", "b.dat", "c.txt", "noext"}));

  EXPECT_FALSE(list_files(dir.file("missing"), "*.*"));
  EXPECT_TRUE(directory_exists(dir.path()));
  EXPECT_FALSE(directory_exists(dir.file("missing")));
  EXPECT_FALSE(directory_exists(dir.file("c.txt")));
  EXPECT_FALSE(directory_exists(""));
}

TEST(FileListingTest, SortsOldestFirstKeepingListingOrderForEqualTimes) {
  FileListing listing =
      listing_of({{"c", 30}, {"a", 10}, {"b2", 20}, {"b1", 20}, {"d", 5}, {"b3", 20}});
  std::vector<std::string> out = {"earlier"};
  sort_by_age(listing, kServerStopFile, out);
  EXPECT_EQ(out, (std::vector<std::string>{"earlier", "d", "a", "b2", "b1", "b3", "c"}));
}

// Many files of few distinct ages: each age's files stay in listing order.
TEST(FileListingTest, EqualAgesKeepListingOrderInABigListing) {
  FileListing listing;
  std::vector<std::pair<int64_t, std::string>> expected;
  for (int i = 0; i < 5000; ++i) {
    std::string name = "ORD" + std::to_string((i * 7919) % 5000) + ".DAT";
    int64_t age = (i * 31) % 9;
    listing.add(name, age);
    expected.emplace_back(age, name);
  }
  std::stable_sort(expected.begin(), expected.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<std::string> out;
  sort_by_age(listing, kServerStopFile, out);
  ASSERT_EQ(out.size(), expected.size());
  for (size_t i = 0; i < out.size(); ++i) ASSERT_EQ(out[i], expected[i].second) << i;
}

TEST(FileListingTest, PinsTheStopRequestWhateverItsAgeOrCase) {
  for (const char* stop : {"stopserv.msg", "STOPSERV.MSG", "StopServ.Msg"}) {
    FileListing listing = listing_of({{"px03.msg", 30}, {"px01.msg", 10}, {stop, 50},
                                      {"px02.msg", 20}, {"px00.msg", 5},  {"px04.msg", 20}});
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
  FileListing listing = listing_of({{"px01.msg", 10}, {"STOPSERV.MSG", 50}, {"px02.msg", 20},
                                    {"stopserv.msg", 60}, {"px00.msg", 5},   {"px05.msg", 70},
                                    {"px03.msg", 30}});
  std::vector<std::string> out;
  sort_by_age(listing, kServerStopFile, out);
  EXPECT_EQ(out, (std::vector<std::string>{"STOPSERV.MSG", "px00.msg", "px03.msg", "stopserv.msg",
                                           "px01.msg", "px02.msg", "px05.msg"}));
}

}  // namespace
}  // namespace px::views
