// A thin layer over the system's service manager and log, so that a server
// or agent can run as a service and a console can ask a service its state.
//
// Services are systemd units "NAME.service" reached over D-Bus (the system
// bus, or a remote machine's bus); a service reports its own state with
// sd_notify; the stop control reaches a service as SIGTERM; events go to
// syslog with the source as ident. Results are passed back unchanged; this
// layer shows and logs nothing.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct sd_bus;

namespace px {

// Service states.
inline constexpr unsigned kServiceStopped = 1;
inline constexpr unsigned kServiceStartPending = 2;
inline constexpr unsigned kServiceStopPending = 3;
inline constexpr unsigned kServiceRunning = 4;
inline constexpr unsigned kServiceContinuePending = 5;
inline constexpr unsigned kServicePausePending = 6;
inline constexpr unsigned kServicePaused = 7;

// Controls.
inline constexpr unsigned kControlStop = 1;
inline constexpr unsigned kControlInterrogate = 4;
inline constexpr unsigned kControlShutdown = 5;

// Controls a service accepts: stop and shutdown, except while it starts.
inline constexpr unsigned kAcceptStopAndShutdown = 5;

// Access asked when opening the manager.
inline constexpr unsigned kManagerConnect = 1;

// Event types of report_event.
inline constexpr unsigned kEventError = 1;
inline constexpr unsigned kEventWarning = 2;
inline constexpr unsigned kEventInformation = 4;
inline constexpr unsigned kEventAuditSuccess = 8;
inline constexpr unsigned kEventAuditFailure = 16;

struct ServiceStatus {
  unsigned service_type = 0;
  unsigned current_state = 0;
  unsigned controls_accepted = 0;
  unsigned exit_code = 0;
  unsigned service_exit_code = 0;
  unsigned checkpoint = 0;
  unsigned wait_hint = 0;  // milliseconds
};

// A connection to a machine's service manager.
class ServiceManager {
 public:
  explicit ServiceManager(sd_bus* bus) : bus_(bus) {}
  ServiceManager(const ServiceManager&) = delete;
  ServiceManager& operator=(const ServiceManager&) = delete;
  ~ServiceManager();
  sd_bus* bus() const { return bus_; }

 private:
  sd_bus* bus_;
};

// One service of a manager; it keeps the manager's connection alive.
class ServiceHandle {
 public:
  ServiceHandle(sd_bus* bus, std::string unit, std::string path);
  ServiceHandle(const ServiceHandle&) = delete;
  ServiceHandle& operator=(const ServiceHandle&) = delete;
  ~ServiceHandle();
  sd_bus* bus() const { return bus_; }
  const std::string& unit() const { return unit_; }
  const std::string& path() const { return path_; }

 private:
  sd_bus* bus_;
  std::string unit_;
  std::string path_;
};

using ServiceManagerPtr = std::unique_ptr<ServiceManager>;
using ServiceHandlePtr = std::unique_ptr<ServiceHandle>;

// Connects to the service manager of machine (empty: this machine); none
// when it cannot be reached.
ServiceManagerPtr open_service_manager(std::string_view machine, unsigned access = kManagerConnect);

// Opens the service called name (the unit name.service); none when the
// manager does not know it.
ServiceHandlePtr open_service(ServiceManager& manager, std::string_view name, unsigned access);

// Closes a handle; a missing one counts as success.
bool close_service_handle(ServiceHandlePtr handle);

// Sends control (stop; interrogate only asks) and fills status with the
// service's state; false for a missing handle or another control.
bool control_service(ServiceHandle* handle, unsigned control, ServiceStatus& status);

// Clears status.current_state, then reads the service's state into it:
// active or reloading is running, inactive or failed stopped, activating
// start pending, deactivating stop pending.
bool query_service_status(ServiceHandle* handle, ServiceStatus& status);

// The receiver of controls delivered to this process as a service.
using ServiceControlHandler = void (*)(unsigned control);
struct StatusHandle {
  std::string service_name;
  bool valid = false;
};

// Makes SIGTERM deliver the stop control to handler (which must only do
// what a signal handler may). The handle is valid when that succeeded.
StatusHandle register_control_handler(std::string_view service_name, ServiceControlHandler handler);

// Fills the record (state, exit code, checkpoint, wait hint; controls
// accepted by the rule above; the type as the caller left it) and tells the
// manager: READY=1 when running or paused, STOPPING=1 when stopping or
// stopped, EXTEND_TIMEOUT_USEC from the wait hint while pending, and a
// STATUS= text. False when the handle is not valid or the manager is not
// listening.
bool set_service_status(const StatusHandle& handle, ServiceStatus& record, unsigned state,
                        unsigned exit_code, unsigned checkpoint, unsigned wait_hint);

// The text set_service_status sends for a record.
std::string notify_text(const ServiceStatus& record);

// Writes one event of type with event_id and the optional text to the log of
// machine (empty: this machine; the log is local only, so another machine
// cannot be written to) under the ident source. False when the source cannot
// be used.
bool report_event(std::string_view machine, std::string_view source, unsigned type,
                  unsigned event_id, const std::optional<std::string>& text);

// The log priority an event type is written with.
int event_priority(unsigned type);

}  // namespace px
