#include "views/file_listing.h"

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

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

// Lists files (age, name) in the order given and checks the age sort puts
// them in the order a stable sort by age gives.
void expect_stable_order_by_age(std::vector<std::pair<int64_t, std::string>> files) {
  FileListing listing;
  for (const auto& [age, name] : files) listing.add(name, age);
  std::stable_sort(files.begin(), files.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<std::string> out;
  sort_by_age(listing, kServerStopFile, out);
  ASSERT_EQ(out.size(), files.size());
  for (size_t i = 0; i < out.size(); ++i) ASSERT_EQ(out[i], files[i].second) << i;
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
  std::vector<std::pair<int64_t, std::string>> expected;
  for (int i = 0; i < 5000; ++i) {
    expected.emplace_back((i * 31) % 9, "ORD" + std::to_string((i * 7919) % 5000) + ".DAT");
  }
  expect_stable_order_by_age(std::move(expected));
}

// Times that differ in any of their bytes, before 1970 too, and repeat:
// the order is the one a stable sort by time gives.
TEST(FileListingTest, SortsTimesOfEveryRangeAndSign) {
  const int64_t times[] = {int64_t{1700000000} * 1000000000 + 1,
                           int64_t{1700000000} * 1000000000,
                           -int64_t{86400} * 1000000000,
                           0,
                           int64_t{1700000000} * 1000000000 + 256,
                           -1,
                           INT64_MAX,
                           INT64_MIN,
                           int64_t{1} << 40};
  std::vector<std::pair<int64_t, std::string>> expected;
  for (int i = 0; i < 300; ++i) {
    int64_t age = times[static_cast<size_t>(i) * 5 % std::size(times)];
    expected.emplace_back(age, "f" + std::to_string(i));
  }
  expect_stable_order_by_age(std::move(expected));
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

// The names and times of a listing, in its order.
std::vector<std::pair<std::string, int64_t>> entries_of(const FileListing& files) {
  std::vector<std::pair<std::string, int64_t>> entries;
  for (size_t i = 0; i < files.size(); ++i) entries.emplace_back(files.name(i), files.modified_ns(i));
  return entries;
}

// A directory big enough for the times to be read on several threads, with
// few distinct ages (so that equal ages must keep the directory's order)
// and entries that are not plain files among the names that match.
class BigDirectoryTest : public ::testing::Test {
 protected:
  static constexpr int kFiles = 12000;

  void SetUp() override {
    for (int i = 0; i < kFiles; ++i) {
      std::string name = "ORD" + std::to_string(100000 + i) + ".DAT";
      int fd = ::open(dir_.file(name).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
      ASSERT_GE(fd, 0);
      const struct timespec when = {1700000000 + (i * 7919) % 13, 0};
      const struct timespec times[2] = {when, when};
      ::futimens(fd, times);
      ::close(fd);
    }
    ::mkdir(dir_.file("SUB.DAT").c_str(), 0755);
    ASSERT_EQ(::symlink("ORD100007.DAT", dir_.file("LINK.DAT").c_str()), 0);
    ASSERT_EQ(::symlink("missing", dir_.file("DANGLING.DAT").c_str()), 0);
    ASSERT_EQ(::symlink("SUB.DAT", dir_.file("LINKDIR.DAT").c_str()), 0);
    dir_.write("px01.msg", "job");
  }

  // The names of the directory's entries in the order it gives them.
  std::vector<std::string> directory_order() {
    std::vector<std::string> names;
    DIR* dir = ::opendir(dir_.path().c_str());
    while (const dirent* entry = ::readdir(dir)) names.emplace_back(entry->d_name);
    ::closedir(dir);
    return names;
  }

  TestDir dir_;
};

TEST_F(BigDirectoryTest, ThreadsGiveTheListingOfOneThreadAndTheCacheKeepsIt) {
  const std::string_view patterns[] = {"px*.msg", "*.DAT"};
  auto alone = list_files(dir_.path(), patterns, nullptr, 1);
  auto shared = list_files(dir_.path(), patterns, nullptr, 4);
  ASSERT_TRUE(alone && shared);
  ASSERT_EQ((*shared)[1].size(), size_t{kFiles} + 1);  // the files and the link to one
  for (size_t k = 0; k < 2; ++k) EXPECT_EQ(entries_of((*shared)[k]), entries_of((*alone)[k]));
  EXPECT_EQ(entries_of((*shared)[0]), entries_of(*list_files(dir_.path(), "px*.msg")));

  // In the directory's order, each with its own time.
  std::vector<std::string> expected;
  for (const std::string& name : directory_order()) {
    if (name.starts_with("ORD") || name == "LINK.DAT") expected.push_back(name);
  }
  const FileListing& files = (*shared)[1];
  for (size_t i = 0; i < files.size(); ++i) {
    ASSERT_EQ(files.name(i), expected[i]) << i;
    std::string_view number = files.name(i) == "LINK.DAT" ? "100007" : files.name(i).substr(3, 6);
    int64_t seconds = 1700000000 + (std::stoi(std::string(number)) - 100000) * 7919 % 13;
    ASSERT_EQ(files.modified_ns(i), seconds * 1000000000) << files.name(i);
  }

  // Sorted, equal ages keep that order.
  std::vector<std::string> by_age;
  sort_by_age(files, kServerStopFile, by_age);
  std::vector<std::pair<int64_t, std::string>> stable;
  for (size_t i = 0; i < files.size(); ++i) stable.emplace_back(files.modified_ns(i), files.name(i));
  std::stable_sort(stable.begin(), stable.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  for (size_t i = 0; i < stable.size(); ++i) ASSERT_EQ(by_age[i], stable[i].second) << i;

  // Times read on threads are remembered by the cache like those read
  // alone: a refresh after changes gives what a fresh listing gives.
  ListingCache cache;
  auto first = list_files(dir_.path(), patterns, &cache, 4);
  ASSERT_TRUE(first);
  EXPECT_EQ(entries_of((*first)[1]), entries_of((*alone)[1]));
  const uint64_t read_first = cache.times_read();
  EXPECT_GE(read_first, uint64_t{kFiles});

  set_modified(dir_.file("ORD100005.DAT"), 1600000000);
  set_modified(dir_.file("ORD111999.DAT"), 1800000000);
  ASSERT_EQ(::unlink(dir_.file("ORD100011.DAT").c_str()), 0);
  auto refreshed = list_files(dir_.path(), patterns, &cache, 4);
  auto fresh = list_files(dir_.path(), patterns, nullptr, 1);
  ASSERT_TRUE(refreshed && fresh);
  for (size_t k = 0; k < 2; ++k) EXPECT_EQ(entries_of((*refreshed)[k]), entries_of((*fresh)[k]));
  // Only the two changed files were read again (the link is followed
  // afresh, outside the cache).
  EXPECT_EQ(cache.times_read() - read_first, 2u);
}

}  // namespace
}  // namespace px::views
