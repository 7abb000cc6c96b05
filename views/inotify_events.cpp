#include "views/inotify_events.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <cstring>

namespace px::views {

void read_inotify_events(int fd, const std::function<void(const InotifyEvent&)>& on_event) {
  // Room for many events at once; the kernel never splits one across reads.
  alignas(inotify_event) char buffer[16384];
  for (;;) {
    ssize_t n = ::read(fd, buffer, sizeof buffer);
    if (n <= 0) return;
    for (ssize_t at = 0; at < n;) {
      inotify_event event;
      std::memcpy(&event, buffer + at, sizeof event);
      const char* name = buffer + at + sizeof event;
      at += static_cast<ssize_t>(sizeof event + event.len);
      // The name is padded with NUL bytes to event.len.
      on_event({event.wd, event.mask, std::string_view(name, ::strnlen(name, event.len))});
    }
  }
}

}  // namespace px::views
