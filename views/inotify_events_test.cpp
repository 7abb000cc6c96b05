#include "views/inotify_events.h"

#include <gtest/gtest.h>
#include <sys/inotify.h>

#include <map>
#include <string>

#include "common/unique_fd.h"
#include "tests/support/test_dir.h"

namespace px::views {
namespace {

// More events than one read of the reader's buffer holds: every one is
// handed over once, in order, its name without the kernel's NUL padding,
// and a second read finds nothing left.
TEST(InotifyEventsTest, ReadsEveryWaitingEventWithItsName) {
  TestDir dir;
  UniqueFd fd(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
  ASSERT_TRUE(fd.valid());
  int wd = inotify_add_watch(fd.get(), dir.path().c_str(), IN_CREATE | IN_DELETE_SELF);
  ASSERT_GE(wd, 0);
  constexpr int kFiles = 1500;  // over 16 KiB of events with their names
  for (int i = 0; i < kFiles; ++i) dir.write("f" + std::to_string(i), "");

  std::map<std::string, int> seen;
  int order_faults = 0;
  int next = 0;
  read_inotify_events(fd.get(), [&](const InotifyEvent& event) {
    EXPECT_EQ(event.wd, wd);
    EXPECT_NE(event.mask & IN_CREATE, 0u);
    if (event.name != "f" + std::to_string(next++)) ++order_faults;
    ++seen[std::string(event.name)];
  });
  EXPECT_EQ(seen.size(), static_cast<size_t>(kFiles));
  EXPECT_EQ(seen["f0"], 1);
  EXPECT_EQ(seen["f" + std::to_string(kFiles - 1)], 1);
  EXPECT_EQ(order_faults, 0);

  int more = 0;
  read_inotify_events(fd.get(), [&](const InotifyEvent&) { ++more; });
  EXPECT_EQ(more, 0);

  // An event about the watched directory itself has no name.
  ASSERT_EQ(inotify_rm_watch(fd.get(), wd), 0);
  bool ignored_seen = false;
  read_inotify_events(fd.get(), [&](const InotifyEvent& event) {
    if ((event.mask & IN_IGNORED) != 0) ignored_seen = event.name.empty();
  });
  EXPECT_TRUE(ignored_seen);
}

}  // namespace
}  // namespace px::views
