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

}  // namespace
}  // namespace px::views
