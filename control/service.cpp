#include "control/service.h"

#include <signal.h>
#include <syslog.h>
#include <systemd/sd-bus.h>
#include <systemd/sd-daemon.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>

#include "common/text.h"

namespace px {

ServiceManager::~ServiceManager() { sd_bus_flush_close_unref(bus_); }

ServiceHandle::ServiceHandle(sd_bus* bus, std::string unit, std::string path)
    : bus_(sd_bus_ref(bus)), unit_(std::move(unit)), path_(std::move(path)) {}

ServiceHandle::~ServiceHandle() { sd_bus_unref(bus_); }

namespace {

constexpr const char* kDestination = "org.freedesktop.systemd1";
constexpr const char* kManagerPath = "/org/freedesktop/systemd1";
constexpr const char* kManagerInterface = "org.freedesktop.systemd1.Manager";
constexpr const char* kUnitInterface = "org.freedesktop.systemd1.Unit";

std::atomic<ServiceControlHandler> g_control_handler{nullptr};

void deliver_stop(int) {
  if (ServiceControlHandler handler = g_control_handler.load()) handler(kControlStop);
}

// Owns the reply and error of one bus call.
struct BusCall {
  sd_bus_error error = SD_BUS_ERROR_NULL;
  sd_bus_message* reply = nullptr;
  BusCall() = default;
  BusCall(const BusCall&) = delete;
  BusCall& operator=(const BusCall&) = delete;
  ~BusCall() {
    sd_bus_message_unref(reply);
    sd_bus_error_free(&error);
  }
};

// The object path of unit from the manager method GetUnit or LoadUnit.
std::optional<std::string> unit_path(sd_bus* bus, const char* method, const std::string& unit) {
  BusCall call;
  if (sd_bus_call_method(bus, kDestination, kManagerPath, kManagerInterface, method, &call.error,
                         &call.reply, "s", unit.c_str()) < 0) {
    return std::nullopt;
  }
  const char* path = nullptr;
  if (sd_bus_message_read(call.reply, "o", &path) < 0 || path == nullptr) return std::nullopt;
  return std::string(path);
}

std::optional<std::string> unit_property(sd_bus* bus, const std::string& path,
                                         const char* property) {
  sd_bus_error error = SD_BUS_ERROR_NULL;
  char* value = nullptr;
  int r = sd_bus_get_property_string(bus, kDestination, path.c_str(), kUnitInterface, property,
                                     &error, &value);
  sd_bus_error_free(&error);
  if (r < 0 || value == nullptr) return std::nullopt;
  std::string result(value);
  std::free(value);
  return result;
}

unsigned state_of(std::string_view active_state) {
  if (active_state == "active" || active_state == "reloading") return kServiceRunning;
  if (active_state == "inactive" || active_state == "failed") return kServiceStopped;
  if (active_state == "activating") return kServiceStartPending;
  if (active_state == "deactivating") return kServiceStopPending;
  return 0;
}

const char* state_word(unsigned state) {
  switch (state) {
    case kServiceStopped:
      return "stopped";
    case kServiceStartPending:
      return "start pending";
    case kServiceStopPending:
      return "stop pending";
    case kServiceRunning:
      return "running";
    case kServiceContinuePending:
      return "continue pending";
    case kServicePausePending:
      return "pause pending";
    case kServicePaused:
      return "paused";
  }
  return "unknown";
}

bool is_local(std::string_view machine) {
  if (machine.empty() || iequals(machine, "localhost")) return true;
  char host[256] = {};
  return ::gethostname(host, sizeof host - 1) == 0 && iequals(machine, host);
}

}  // namespace

ServiceManagerPtr open_service_manager(std::string_view machine, unsigned) {
  sd_bus* bus = nullptr;
  int r = machine.empty() ? sd_bus_open_system(&bus)
                          : sd_bus_open_system_remote(&bus, std::string(machine).c_str());
  if (r < 0 || bus == nullptr) return nullptr;
  return std::make_unique<ServiceManager>(bus);
}

ServiceHandlePtr open_service(ServiceManager& manager, std::string_view name, unsigned) {
  std::string unit(name);
  if (!unit.ends_with(".service")) unit += ".service";
  std::optional<std::string> path = unit_path(manager.bus(), "GetUnit", unit);
  if (!path) {
    path = unit_path(manager.bus(), "LoadUnit", unit);
    if (!path || unit_property(manager.bus(), *path, "LoadState") == "not-found") return nullptr;
  }
  return std::make_unique<ServiceHandle>(manager.bus(), unit, *path);
}

bool close_service_handle(ServiceHandlePtr handle) {
  handle.reset();
  return true;
}

bool control_service(ServiceHandle* handle, unsigned control, ServiceStatus& status) {
  if (handle == nullptr) return false;
  if (control == kControlStop) {
    BusCall call;
    if (sd_bus_call_method(handle->bus(), kDestination, kManagerPath, kManagerInterface, "StopUnit",
                           &call.error, &call.reply, "ss", handle->unit().c_str(), "replace") < 0) {
      return false;
    }
  } else if (control != kControlInterrogate) {
    return false;
  }
  return query_service_status(handle, status);
}

bool query_service_status(ServiceHandle* handle, ServiceStatus& status) {
  status.current_state = 0;
  if (handle == nullptr) return false;
  std::optional<std::string> active = unit_property(handle->bus(), handle->path(), "ActiveState");
  if (!active) return false;
  status.current_state = state_of(*active);
  return status.current_state != 0;
}

StatusHandle register_control_handler(std::string_view service_name,
                                      ServiceControlHandler handler) {
  g_control_handler.store(handler);
  struct sigaction action {};
  action.sa_handler = deliver_stop;
  sigemptyset(&action.sa_mask);
  StatusHandle handle{std::string(service_name), false};
  handle.valid = handler != nullptr && ::sigaction(SIGTERM, &action, nullptr) == 0;
  return handle;
}

std::string notify_text(const ServiceStatus& record) {
  const unsigned state = record.current_state;
  std::string text;
  if (state == kServiceRunning || state == kServicePaused) text += "READY=1\n";
  if (state == kServiceStopPending || state == kServiceStopped) text += "STOPPING=1\n";
  text += "STATUS=" + std::string(state_word(state));
  if (record.checkpoint != 0) text += ", checkpoint " + std::to_string(record.checkpoint);
  if (record.exit_code != 0) text += ", exit code " + std::to_string(record.exit_code);
  bool pending = state == kServiceStartPending || state == kServiceStopPending ||
                 state == kServiceContinuePending || state == kServicePausePending;
  if (pending && record.wait_hint != 0) {
    text += "\nEXTEND_TIMEOUT_USEC=" + std::to_string(uint64_t{record.wait_hint} * 1000);
  }
  return text;
}

bool set_service_status(const StatusHandle& handle, ServiceStatus& record, unsigned state,
                        unsigned exit_code, unsigned checkpoint, unsigned wait_hint) {
  record.current_state = state;
  record.exit_code = exit_code;
  record.checkpoint = checkpoint;
  record.wait_hint = wait_hint;
  record.controls_accepted = state == kServiceStartPending ? 0 : kAcceptStopAndShutdown;
  if (!handle.valid) return false;
  return sd_notify(0, notify_text(record).c_str()) > 0;
}

int event_priority(unsigned type) {
  switch (type) {
    case kEventError:
    case kEventAuditFailure:
      return LOG_ERR;
    case kEventWarning:
      return LOG_WARNING;
    case kEventAuditSuccess:
      return LOG_NOTICE;
  }
  return LOG_INFO;
}

bool report_event(std::string_view machine, std::string_view source, unsigned type,
                  unsigned event_id, const std::optional<std::string>& text) {
  if (source.empty() || !is_local(machine)) return false;
  std::string ident(source);
  ::openlog(ident.c_str(), LOG_PID, LOG_DAEMON);
  if (text) {
    ::syslog(event_priority(type), "event %u: %s", event_id, text->c_str());
  } else {
    ::syslog(event_priority(type), "event %u", event_id);
  }
  ::closelog();
  return true;
}

}  // namespace px
