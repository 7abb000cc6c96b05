#include "control/service.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <syslog.h>

#include <atomic>
#include <cstdio>

#include "common/unique_fd.h"
#include "tests/support/test_dir.h"

namespace px {
namespace {

// A datagram socket standing in for the service manager's notify socket.
class NotifySocket {
 public:
  explicit NotifySocket(const std::string& path) : path_(path) {
    fd_.reset(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "%s", path.c_str());
    EXPECT_EQ(::bind(fd_.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0) << path;
    ::setenv("NOTIFY_SOCKET", path.c_str(), 1);
  }
  ~NotifySocket() { ::unsetenv("NOTIFY_SOCKET"); }
  std::string next() {
    pollfd p{fd_.get(), POLLIN, 0};
    if (::poll(&p, 1, 2000) != 1) return "(nothing)";
    char data[1024];
    ssize_t n = ::recv(fd_.get(), data, sizeof data, 0);
    return n < 0 ? "(error)" : std::string(data, static_cast<size_t>(n));
  }

 private:
  std::string path_;
  UniqueFd fd_;
};

std::atomic<unsigned> g_control{0};
void remember_control(unsigned control) { g_control = control; }

TEST(ServiceTest, StatusGoesToTheNotifySocket) {
  TestDir dir;
  NotifySocket manager(dir.file("notify"));
  StatusHandle handle{"pxserver", true};
  ServiceStatus record;
  record.service_type = 16;

  EXPECT_TRUE(set_service_status(handle, record, kServiceStartPending, 0, 2, 3000));
  EXPECT_EQ(manager.next(), "STATUS=start pending, checkpoint 2\nEXTEND_TIMEOUT_USEC=3000000");
  EXPECT_EQ(record.controls_accepted, 0u);
  EXPECT_EQ(record.service_type, 16u);

  EXPECT_TRUE(set_service_status(handle, record, kServiceRunning, 0, 0, 0));
  EXPECT_EQ(manager.next(), "READY=1\nSTATUS=running");
  EXPECT_EQ(record.controls_accepted, kAcceptStopAndShutdown);

  EXPECT_TRUE(set_service_status(handle, record, kServiceStopped, 3, 0, 500));
  EXPECT_EQ(manager.next(), "STOPPING=1\nSTATUS=stopped, exit code 3");
  EXPECT_EQ(record.current_state, kServiceStopped);
  EXPECT_EQ(record.exit_code, 3u);
  EXPECT_EQ(record.wait_hint, 500u);
}

TEST(ServiceTest, NoManagerListening) {
  ServiceStatus record;
  ::unsetenv("NOTIFY_SOCKET");
  EXPECT_FALSE(
      set_service_status(StatusHandle{"pxserver", true}, record, kServiceRunning, 0, 0, 0));
  EXPECT_EQ(record.current_state, kServiceRunning);
  EXPECT_FALSE(set_service_status(StatusHandle{}, record, kServicePaused, 0, 0, 0));
  EXPECT_EQ(notify_text(record), "READY=1\nSTATUS=paused");
}

TEST(ServiceTest, FailingBusOpenGivesNoManager) {
  TestDir dir;
  ::setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + dir.file("no-bus")).c_str(), 1);
  EXPECT_EQ(open_service_manager(""), nullptr);
  ::unsetenv("DBUS_SYSTEM_BUS_ADDRESS");

  ServiceStatus status;
  status.current_state = kServiceRunning;
  EXPECT_FALSE(query_service_status(nullptr, status));
  EXPECT_EQ(status.current_state, 0u);
  EXPECT_FALSE(control_service(nullptr, kControlStop, status));
  EXPECT_TRUE(close_service_handle(nullptr));
}

TEST(ServiceTest, StopControlArrivesAsSigterm) {
  struct sigaction old {};
  ::sigaction(SIGTERM, nullptr, &old);
  StatusHandle handle = register_control_handler("pxserver", &remember_control);
  EXPECT_TRUE(handle.valid);
  EXPECT_EQ(handle.service_name, "pxserver");
  ::raise(SIGTERM);
  EXPECT_EQ(g_control.load(), kControlStop);
  ::sigaction(SIGTERM, &old, nullptr);
}

TEST(ServiceTest, EventsGoToTheLocalLogOnly) {
  EXPECT_TRUE(report_event("", "pxserver", kEventError, 1001, std::string("disk full")));
  EXPECT_TRUE(report_event("localhost", "pxserver", kEventInformation, 1002, std::nullopt));
  EXPECT_FALSE(report_event("", "", kEventError, 1, std::nullopt));
  EXPECT_FALSE(report_event("far-away-node", "pxserver", kEventError, 1, std::nullopt));
  EXPECT_EQ(event_priority(kEventAuditFailure), LOG_ERR);
}

}  // namespace
}  // namespace px
