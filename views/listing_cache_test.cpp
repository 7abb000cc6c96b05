#include "views/listing_cache.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <utility>

#include "common/unique_fd.h"
#include "views/file_listing.h"
#include "views/views_test_support.h"

namespace px::views {
namespace {

using Snapshot = std::vector<std::pair<std::string, int64_t>>;

// A listing's names and times in its order.
Snapshot snapshot(const std::string& directory, ListingCache* cache) {
  Snapshot files;
  auto listing = list_files(directory, "*.dat", cache);
  if (!listing) return files;
  for (size_t i = 0; i < listing->size(); ++i) {
    files.emplace_back(listing->name(i), listing->modified_ns(i));
  }
  return files;
}

// True when the cache can watch directory (a local file system): only
// then does it spare reads, which some checks count.
bool watchable(const std::string& directory) {
  UniqueFd fd(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  ListingCache probe;
  return fd.valid() && probe.begin(fd.get());
}

std::string name_of(int i) { return "f" + std::to_string(i) + ".dat"; }

class ListingCacheTest : public ::testing::Test {
 protected:
  void make_files(int count) {
    for (int i = 0; i < count; ++i) set_modified(dir_.write(name_of(i), "x"), 1000 + i % 7);
  }
  // The cached listing is the one read from scratch, every time.
  void expect_exact() { EXPECT_EQ(snapshot(dir_.path(), &cache_), snapshot(dir_.path(), nullptr)); }

  TestDir dir_;
  ListingCache cache_;
};

TEST_F(ListingCacheTest, ARefreshReadsTheTimesOfChangedFilesOnly) {
  make_files(50);
  const bool counted = watchable(dir_.path());
  expect_exact();
  EXPECT_EQ(cache_.times_read(), 50u);
  expect_exact();
  if (counted) {
    EXPECT_EQ(cache_.times_read(), 50u);
  }

  set_modified(dir_.file(name_of(3)), 5000);                      // touched
  std::ofstream(dir_.file(name_of(7)), std::ios::app) << "more";  // written
  ::unlink(dir_.file(name_of(9)).c_str());                        // deleted
  set_modified(dir_.write("new.dat", "n"), 10);                   // created
  set_modified(dir_.write("over.tmp", "o"), 20);                  // renamed over
  ASSERT_EQ(std::rename(dir_.file("over.tmp").c_str(), dir_.file(name_of(11)).c_str()), 0);
  ::unlink(dir_.file(name_of(12)).c_str());  // deleted, made again
  set_modified(dir_.write(name_of(12), "again"), 30);
  expect_exact();
  if (counted) {
    EXPECT_EQ(cache_.times_read(), 55u);  // 3, 7, new, 11, 12
  }
  expect_exact();
  if (counted) {
    EXPECT_EQ(cache_.times_read(), 55u);
  }
}

TEST_F(ListingCacheTest, ADirectoryReplacedAtItsPathIsListedAfresh) {
  TestDir other;
  std::string queue = other.file("queue");
  ::mkdir(queue.c_str(), 0755);
  set_modified(other.write("queue/a.dat", "a"), 100);
  set_modified(other.write("queue/b.dat", "b"), 200);
  ASSERT_EQ(snapshot(queue, &cache_), snapshot(queue, nullptr));

  ASSERT_EQ(std::rename(queue.c_str(), other.file("queue.old").c_str()), 0);
  ::mkdir(queue.c_str(), 0755);
  set_modified(other.write("queue/a.dat", "a"), 300);
  set_modified(other.write("queue/b.dat", "b"), 50);
  Snapshot fresh = snapshot(queue, nullptr);
  ASSERT_EQ(fresh.size(), 2u);
  EXPECT_EQ(snapshot(queue, &cache_), fresh);
  // And the old one, listed under its new name, is still known right.
  EXPECT_EQ(snapshot(other.file("queue.old"), &cache_), snapshot(other.file("queue.old"), nullptr));
}

// When more changes come than inotify queues, the rest are lost: the cache
// must then not trust any time it knew.
TEST_F(ListingCacheTest, LostEventsForgetEveryKnownTime) {
  int queue_limit = 0;
  if (std::FILE* f = std::fopen("/proc/sys/fs/inotify/max_queued_events", "r")) {
    if (std::fscanf(f, "%d", &queue_limit) != 1) queue_limit = 0;
    std::fclose(f);
  }
  if (!watchable(dir_.path()) || queue_limit <= 0 || queue_limit > 100000) {
    GTEST_SKIP() << "no inotify queue to fill here";
  }
  make_files(20);
  for (int i = 0; i < 100; ++i) dir_.write("noise" + std::to_string(i) + ".tmp", "");
  expect_exact();
  // Touching the noise files in turn (no two events alike in a row, so none
  // are merged) fills the queue; the changes after that go unreported.
  for (int round = 0; round * 100 <= queue_limit; ++round) {
    for (int i = 0; i < 100; ++i)
      set_modified(dir_.file("noise" + std::to_string(i) + ".tmp"), round);
  }
  for (int i = 0; i < 20; ++i) set_modified(dir_.file(name_of(i)), 9000 - i);
  expect_exact();
}

}  // namespace
}  // namespace px::views
