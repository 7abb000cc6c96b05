#include "common/readable_file.h"

#include <gtest/gtest.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "tests/support/test_dir.h"

namespace px {
namespace {

// Runs work; should it block on the FIFO for more than a few seconds, a
// writer opens the FIFO so that the open returns and the test can fail
// instead of hanging.
template <typename Work>
bool ends_without_rescue(const std::string& fifo, Work work) {
  std::atomic<bool> done{false}, rescued{false};
  std::thread watchdog([&] {
    for (int tick = 0; tick < 300 && !done; ++tick) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    if (done) return;
    rescued = true;
    int writer = ::open(fifo.c_str(), O_WRONLY | O_NONBLOCK);
    if (writer >= 0) ::close(writer);
  });
  work();
  done = true;
  watchdog.join();
  return !rescued;
}

TEST(ReadableFile, OnlyRegularFilesOpen) {
  TestDir dir;
  std::string plain = dir.write("plain.ini", "[A]\nk=1\n");
  ASSERT_EQ(::symlink(plain.c_str(), dir.file("link.ini").c_str()), 0);
  ASSERT_EQ(::mkdir(dir.file("folder").c_str(), 0755), 0);
  EXPECT_TRUE(can_open_for_reading(plain));
  EXPECT_TRUE(can_open_for_reading(dir.file("link.ini")));
  EXPECT_FALSE(can_open_for_reading(dir.file("folder")));
  EXPECT_FALSE(can_open_for_reading(dir.file("missing")));
  EXPECT_FALSE(can_open_for_reading("/dev/zero"));
  EXPECT_FALSE(can_open_for_reading(""));
  EXPECT_FALSE(open_stream_for_reading(dir.file("folder")));
  EXPECT_FALSE(read_whole_file("/dev/zero", 100));

  ReadStream stream = open_stream_for_reading(plain);
  ASSERT_TRUE(stream);
  char line[16] = {};
  EXPECT_NE(std::fgets(line, sizeof line, stream.get()), nullptr);
  EXPECT_STREQ(line, "[A]\n");
}

TEST(ReadableFile, FifoIsRefusedWithoutWaitingForAWriter) {
  TestDir dir;
  std::string fifo = dir.file("pipe");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  EXPECT_TRUE(ends_without_rescue(fifo, [&] { EXPECT_FALSE(open_for_reading(fifo).valid()); }));
  EXPECT_TRUE(ends_without_rescue(fifo, [&] { EXPECT_FALSE(read_whole_file(fifo, 100)); }));
}

TEST(ReadableFile, WholeFileUpToItsLimit) {
  TestDir dir;
  std::string name = dir.write("ten", "0123456789");
  EXPECT_EQ(read_whole_file(name, 10), "0123456789");
  EXPECT_EQ(read_whole_file(name, 9), std::nullopt);
  EXPECT_EQ(read_whole_file(dir.write("empty", ""), 0), "");
}

}  // namespace
}  // namespace px
