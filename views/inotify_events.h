// Reads the events waiting on an inotify descriptor, for the views that
// watch directories (the change watch and the listing cache).
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

namespace px::views {

struct InotifyEvent {
  int wd = 0;             // the watch descriptor it came from
  uint32_t mask = 0;      // IN_* bits of what happened
  std::string_view name;  // the entry concerned; empty for the watched item itself
};

// Hands each event waiting on the non-blocking inotify descriptor fd to
// on_event, in the order reported, until none waits (or reading fails).
// The name is valid during the call only.
void read_inotify_events(int fd, const std::function<void(const InotifyEvent&)>& on_event);

}  // namespace px::views
