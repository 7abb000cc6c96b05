#include "sim/endpoints.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "common/file_util.h"

namespace px::sim {

namespace {

constexpr int kBacklog = 16;
constexpr size_t kDatagramLimit = 2048;

std::string system_error() { return std::strerror(errno); }

// Makes every missing directory of path's directory part, open to all.
bool make_parent_directories(const std::string& path) {
  std::string parent = strip_separators(directory_part(path));
  if (parent.empty() || is_directory(parent)) return true;
  if (!make_parent_directories(parent)) return false;
  if (mkdir(parent.c_str(), 0777) != 0 && errno != EEXIST) return false;
  chmod(parent.c_str(), 01777);  // like /tmp: anyone may add sockets, only owners remove them
  return true;
}

bool make_address(const std::string& path, sockaddr_un& address) {
  address = {};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) return false;
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  return true;
}

// True when something accepts connections at path.
bool someone_listens(const sockaddr_un& address) {
  UniqueFd probe(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  if (!probe.valid()) return false;
  return connect(probe.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

}  // namespace

std::string pipe_directory() {
  const char* value = std::getenv("PLEXAR_PIPE_DIR");
  if (value == nullptr || *value == '\0') return std::string(kDefaultPipeDirectory);
  return value;
}

std::string pipe_socket_path(std::string_view pipe_name) {
  std::string relative(pipe_name);
  for (char& c : relative) {
    if (c == '\\') c = '/';
  }
  return join_path(relative, pipe_directory());
}

std::string server_pipe_name(std::string_view instance) { return std::string(instance) + ".ctr"; }
std::string agent_pipe_name(std::string_view instance) {
  return std::string(instance) + ".em\\PxEmio.ctr";
}
std::string server_event_name(std::string_view instance) { return std::string(instance) + ".ctr"; }
std::string agent_event_name(std::string_view instance) {
  return std::string(instance) + ".EM.PxEmio.ctr";
}

UnixListener::UnixListener(UniqueFd fd, std::string path, dev_t device, ino_t inode)
    : fd_(std::move(fd)), path_(std::move(path)), device_(device), inode_(inode) {}

UnixListener& UnixListener::operator=(UnixListener&& other) noexcept {
  if (this != &other) {
    remove_file();
    fd_ = std::move(other.fd_);
    path_ = std::move(other.path_);
    device_ = other.device_;
    inode_ = other.inode_;
  }
  return *this;
}

UnixListener::~UnixListener() { remove_file(); }

void UnixListener::remove_file() {
  if (!fd_.valid()) return;
  struct stat info {};
  if (stat(path_.c_str(), &info) == 0 && info.st_dev == device_ && info.st_ino == inode_) {
    unlink(path_.c_str());
  }
  fd_.reset();
}

UnixListener::Outcome UnixListener::open(const std::string& path,
                                         std::optional<UnixListener>& out, std::string& error) {
  sockaddr_un address;
  if (!make_address(path, address)) {
    error = "the path is too long for a socket";
    return Outcome::kFailed;
  }
  if (!make_parent_directories(path)) {
    error = system_error();
    return Outcome::kFailed;
  }
  if (someone_listens(address)) return Outcome::kInUse;
  unlink(path.c_str());

  UniqueFd fd(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  if (!fd.valid() ||
      bind(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    error = system_error();
    return Outcome::kFailed;
  }
  struct stat info {};
  if (chmod(path.c_str(), 0666) != 0 || stat(path.c_str(), &info) != 0 ||
      listen(fd.get(), kBacklog) != 0) {
    error = system_error();
    unlink(path.c_str());
    return Outcome::kFailed;
  }
  out.emplace(UnixListener(std::move(fd), path, info.st_dev, info.st_ino));
  return Outcome::kListening;
}

UniqueFd UnixListener::accept_one() const {
  return UniqueFd(accept4(fd_.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
}

std::optional<UniqueFd> open_datagram_port(int port, std::string& error) {
  UniqueFd fd(socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  if (!fd.valid()) {
    error = system_error();
    return std::nullopt;
  }
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (bind(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    error = system_error();
    return std::nullopt;
  }
  return fd;
}

std::optional<std::string> receive_datagram(int fd, std::string& from) {
  char buffer[kDatagramLimit];
  sockaddr_in sender{};
  socklen_t sender_size = sizeof sender;
  ssize_t n = recvfrom(fd, buffer, sizeof buffer, 0, reinterpret_cast<sockaddr*>(&sender),
                       &sender_size);
  if (n < 0) return std::nullopt;
  char address[INET_ADDRSTRLEN] = "?";
  inet_ntop(AF_INET, &sender.sin_addr, address, sizeof address);
  from = std::string(address) + ":" + std::to_string(ntohs(sender.sin_port));
  return std::string(buffer, static_cast<size_t>(n));
}

}  // namespace px::sim
