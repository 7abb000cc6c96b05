// The sockets the simulator serves in place of the server's named pipes, its
// launcher pipe and its node datagram port.
//
// A named pipe "\\.\pipe\Plexar\NAME" is a Unix-domain stream socket at
// "$PLEXAR_PIPE_DIR/NAME" (default directory /tmp/Plexar); a "\" inside NAME
// makes a sub-directory, so an E-mail Agent's pipe "north.em\PxEmio.ctr" is
// the socket "north.em/PxEmio.ctr" there. Sockets and the directories made
// for them are readable and writable for all, as the server's pipes are open
// to every account.
//
//   use                       pipe name                 socket
//   server control signal     "<instance>.ctr"          <dir>/<instance>.ctr
//   E-mail Agent signal       "<instance>.em\PxEmio.ctr" <dir>/<instance>.em/PxEmio.ctr
//   launcher                  "PxNexa"                  <dir>/PxNexa
//
// On the classic platform branch the control signals are named semaphores
// "/<instance>.ctr" and "/<instance>.EM.PxEmio.ctr" instead.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>

#include "common/unique_fd.h"

namespace px::sim {

inline constexpr std::string_view kLauncherPipe = "PxNexa";
inline constexpr std::string_view kDefaultPipeDirectory = "/tmp/Plexar";

// $PLEXAR_PIPE_DIR, or /tmp/Plexar when it is not set or empty.
std::string pipe_directory();
// The socket path of a pipe name ("\" and "/" both separate).
std::string pipe_socket_path(std::string_view pipe_name);

std::string server_pipe_name(std::string_view instance);
std::string agent_pipe_name(std::string_view instance);
std::string server_event_name(std::string_view instance);
std::string agent_event_name(std::string_view instance);

// A listening Unix-domain stream socket. The socket file is removed when the
// listener goes away, unless another program has replaced it meanwhile.
class UnixListener {
 public:
  enum class Outcome { kListening, kInUse, kFailed };

  // Listens at path, making missing parent directories. A socket file that
  // still accepts connections belongs to a live server: kInUse. A stale one
  // is replaced. error receives the system's reason on kFailed.
  static Outcome open(const std::string& path, std::optional<UnixListener>& out,
                      std::string& error);

  UnixListener(UnixListener&& other) noexcept = default;
  UnixListener& operator=(UnixListener&& other) noexcept;
  ~UnixListener();

  int fd() const { return fd_.get(); }
  const std::string& path() const { return path_; }

  // Accepts one waiting connection; an invalid descriptor when none waits.
  UniqueFd accept_one() const;

 private:
  UnixListener(UniqueFd fd, std::string path, dev_t device, ino_t inode);
  void remove_file();

  UniqueFd fd_;
  std::string path_;
  dev_t device_ = 0;
  ino_t inode_ = 0;
};

// A datagram socket bound to a loopback port, non-blocking. nullopt (with the
// reason in error) when the port cannot be bound.
std::optional<UniqueFd> open_datagram_port(int port, std::string& error);

// Receives one waiting datagram; nullopt when none waits. from names the
// sender as "address:port".
std::optional<std::string> receive_datagram(int fd, std::string& from);

}  // namespace px::sim
