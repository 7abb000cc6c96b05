#include "views/background_listing.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "views/views_test_support.h"

namespace px::views {
namespace {

class BackgroundListingTest : public ViewsTest {};

// A status file that is a FIFO with no writer blocks whoever opens it, as a
// hung network file system would.
TEST_F(BackgroundListingTest, AHungStatusFileHoldsOnlyTheListing) {
  ::mkdir(dir_.file("data").c_str(), 0755);
  std::string fifo = dir_.file("hung.sts");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  std::string config = dir_.write("a.ini", "[Plexar]\nWindowTitle=A\nStatusFile=" + fifo +
                                               "\n[Options]\nFileSpec=*.dat\n[Paths]\nDataPath=" +
                                               dir_.file("data") + "\n");
  dir_.write("install.ini", "[Configuration]\na=" + config + "\n");

  BackgroundListing listing;
  ASSERT_TRUE(listing.start(plan_status_queue()));
  EXPECT_TRUE(listing.busy());
  EXPECT_FALSE(listing.take(std::chrono::milliseconds(50)));
  EXPECT_FALSE(listing.start(plan_status_queue()));  // one at a time

  int writer = ::open(fifo.c_str(), O_WRONLY);  // lets the listing's open through
  ASSERT_GE(writer, 0);
  ASSERT_EQ(::write(writer, "Nexa is running\n", 16), 16);
  ::close(writer);
  auto blocks = listing.take(std::chrono::seconds(5));
  ASSERT_TRUE(blocks);
  ASSERT_EQ(blocks->size(), 1u);
  EXPECT_EQ(rows_of(*blocks).at(1), "  - Nexa is running");
  EXPECT_EQ(blocks->front().status_line, "Nexa is running");
  EXPECT_EQ(blocks->front().waiting, 0);
  EXPECT_FALSE(listing.busy());
}

// Listings one after the other share what they know of the files' times;
// each must still show the queue as it is then.
TEST_F(BackgroundListingTest, EveryListingSeesTheChangesSinceTheLast) {
  std::string data = dir_.file("data");
  ::mkdir(data.c_str(), 0755);
  const std::string settings =
      "[Plexar]\nWindowTitle=A\n[Options]\nFileSpec=*.dat\n[Paths]\nDataPath=" + data + "\n";
  std::string config = dir_.write("a.ini", settings);
  dir_.write("install.ini", "[Configuration]\na=" + config + "\n");
  set_modified(dir_.write("data/a.dat", "a"), 100);
  set_modified(dir_.write("data/b.dat", "b"), 200);

  BackgroundListing listing;
  auto files = [&] {
    std::vector<std::string> names;
    if (!listing.start(plan_status_queue())) return names;
    auto blocks = listing.take(std::chrono::seconds(5));
    if (!blocks) return names;
    std::vector<std::string> rows = rows_of(*blocks);
    for (size_t i = 2; i < rows.size(); ++i) {
      names.push_back(rows[i].substr(rows[i].rfind("  ") + 2));
    }
    return names;
  };
  EXPECT_EQ(files(), (std::vector<std::string>{"a.dat", "b.dat"}));
  set_modified(dir_.file("data/a.dat"), 300);
  EXPECT_EQ(files(), (std::vector<std::string>{"b.dat", "a.dat"}));
  set_modified(dir_.write("data/c.dat", "c"), 50);
  ::unlink(dir_.file("data/b.dat").c_str());
  EXPECT_EQ(files(), (std::vector<std::string>{"c.dat", "a.dat"}));
}

// The task window's overview and the status view share one cache: the
// view's first listing reads no time the overview's listing read. A listing
// that finds the cache in use lists without it, and right.
TEST_F(BackgroundListingTest, ListingsOfTwoWindowsShareOneCache) {
  std::string data = dir_.file("data");
  ::mkdir(data.c_str(), 0755);
  std::string config = dir_.write(
      "a.ini", "[Plexar]\nWindowTitle=A\n[Options]\nFileSpec=*.dat\n[Paths]\nDataPath=" + data + "\n");
  dir_.write("install.ini", "[Configuration]\na=" + config + "\n");
  for (int i = 0; i < 50; ++i) {
    set_modified(dir_.write("data/f" + std::to_string(i) + ".dat", "x"), 1000 - i);
  }
  auto waiting = [&](BackgroundListing& listing) {
    if (!listing.start(plan_status_queue())) return -1;
    auto blocks = listing.take(std::chrono::seconds(5));
    return blocks && blocks->size() == 1 ? blocks->front().waiting : -1;
  };
  BackgroundListing overview;
  BackgroundListing status;
  status.share_cache(overview.cache());
  auto times_read = [&] {
    return overview.cache()->use([](ListingCache* cache) { return cache->times_read(); });
  };

  EXPECT_EQ(waiting(overview), 50);
  const uint64_t read_by_overview = times_read();
  EXPECT_GE(read_by_overview, 50u);
  EXPECT_EQ(waiting(status), 50);
  EXPECT_EQ(times_read(), read_by_overview);
  set_modified(dir_.file("data/f3.dat"), 5000);  // read again, into the shared cache
  EXPECT_EQ(waiting(status), 50);
  EXPECT_EQ(times_read(), read_by_overview + 1);

  ::unlink(dir_.file("data/f7.dat").c_str());
  overview.cache()->use([&](ListingCache* cache) {
    EXPECT_NE(cache, nullptr);
    EXPECT_EQ(waiting(status), 49);  // the cache in use: listed without it
    return 0;
  });
  EXPECT_EQ(times_read(), read_by_overview + 1);
}

}  // namespace
}  // namespace px::views
