#include "control/signals.h"

#include <fcntl.h>
#include <semaphore.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "common/platform.h"
#include "config/message_numbers.h"
#include "common/unique_fd.h"

namespace px {

namespace {

constexpr const char* kDefaultPipeDirectory = "/tmp/Plexar";

enum class Connect { kConnected, kBusy, kMissing, kFailed };

// One connection attempt to the socket at path; on success fd holds a
// blocking connected socket. Refused and backlog-full count as busy.
Connect connect_once(const std::string& path, UniqueFd& fd) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) return Connect::kFailed;
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);

  UniqueFd s(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  if (!s.valid()) return Connect::kFailed;
  if (::connect(s.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    if (errno == ENOENT) return Connect::kMissing;
    if (errno == ECONNREFUSED || errno == EAGAIN) return Connect::kBusy;
    return Connect::kFailed;
  }
  int flags = ::fcntl(s.get(), F_GETFL);
  if (flags < 0 || ::fcntl(s.get(), F_SETFL, flags & ~O_NONBLOCK) != 0) return Connect::kFailed;
  fd = std::move(s);
  return Connect::kConnected;
}

// Tries to connect until it succeeds, the socket disappears, another error
// comes, or wait_ms have passed; the last answer is returned.
Connect connect_waiting(const std::string& path, int wait_ms, int retry_ms, UniqueFd& fd) {
  auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(wait_ms);
  for (;;) {
    Connect result = connect_once(path, fd);
    if (result != Connect::kBusy || std::chrono::steady_clock::now() >= deadline) return result;
    std::this_thread::sleep_for(std::chrono::milliseconds(retry_ms));
  }
}

bool write_all(int fd, std::string_view data) {
  while (!data.empty()) {
    ssize_t n = ::send(fd, data.data(), data.size(), MSG_NOSIGNAL);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    data.remove_prefix(static_cast<size_t>(n));
  }
  return true;
}

// Owns an open named semaphore.
class NamedSemaphore {
 public:
  explicit NamedSemaphore(const std::string& name) : sem_(::sem_open(name.c_str(), 0)) {}
  NamedSemaphore(const NamedSemaphore&) = delete;
  NamedSemaphore& operator=(const NamedSemaphore&) = delete;
  ~NamedSemaphore() {
    if (sem_ != SEM_FAILED) ::sem_close(sem_);
  }
  bool open() const { return sem_ != SEM_FAILED; }
  bool post() { return ::sem_post(sem_) == 0; }

 private:
  sem_t* sem_;
};

bool kick_socket(std::string_view instance, bool agent, Operator& op, const SignalTimes& times) {
  std::string path = control_socket_path(instance, agent);
  UniqueFd fd;
  Connect result = connect_waiting(path, times.signal_wait_ms, times.retry_ms, fd);
  if (result == Connect::kMissing || result == Connect::kBusy) {
    op.show(msg::kSignalWaitFailed, {display_path(path)});
    return false;
  }
  if (result != Connect::kConnected) {
    op.show(msg::kSignalNotDelivered, {display_path(path)});
    return false;
  }
  return true;  // the connection, closed here, is the whole signal
}

bool kick_event(std::string_view instance, bool agent, Operator& op) {
  std::string name = control_event_name(instance, agent);
  NamedSemaphore event("/" + name);
  if (event.open() && event.post()) return true;
  if (agent && !event.open()) return true;  // an agent without its event is kicked silently
  op.show(msg::kSignalNotDelivered, {name});
  return false;
}

}  // namespace

std::string pipe_directory() {
  const char* value = std::getenv("PLEXAR_PIPE_DIR");
  return value != nullptr && *value != '\0' ? value : kDefaultPipeDirectory;
}

std::string launcher_socket_path() { return pipe_directory() + "/PxNexa"; }

std::string control_socket_path(std::string_view instance, bool agent) {
  std::string base = pipe_directory() + "/" + std::string(instance);
  return agent ? base + ".em/PxEmio.ctr" : base + ".ctr";
}

std::string control_event_name(std::string_view instance, bool agent) {
  return std::string(instance) + (agent ? ".EM.PxEmio.ctr" : ".ctr");
}

bool kick(std::string_view instance, bool agent, Operator& op, const SignalTimes& times) {
  if (is_nt_family()) return kick_socket(instance, agent, op, times);
  return kick_event(instance, agent, op);
}

bool send_to_launcher(std::string_view text, Operator& op, const SignalTimes& times) {
  std::string path = launcher_socket_path();
  UniqueFd fd;
  // A wait that ends in a connection hands that connection to the next
  // attempt, so the launcher never sees an empty connection.
  for (int attempt = 0; attempt < kLauncherAttempts && !fd.valid(); ++attempt) {
    Connect result = connect_once(path, fd);
    if (result == Connect::kConnected) break;
    if (result != Connect::kBusy) {
      op.show(msg::kLauncherNotOpened, {display_path(path)});
      return false;
    }
    if (connect_waiting(path, times.launcher_wait_ms, times.retry_ms, fd) != Connect::kConnected) {
      op.show(msg::kSignalWaitFailed, {display_path(path)});
      return false;
    }
  }
  std::string message(text);
  message.push_back('\0');
  return fd.valid() && write_all(fd.get(), message);
}

}  // namespace px
