// The control signal that wakes a server or its E-mail Agent, and the
// launcher that starts them.
//
// Default branch: Unix-domain stream sockets in the pipe directory
// ($PLEXAR_PIPE_DIR, default /tmp/Plexar), where NAME is the instance name:
//   launcher                  <dir>/PxNexa
//   server control signal     <dir>/NAME.ctr
//   E-mail Agent signal       <dir>/NAME.em/PxEmio.ctr
// The control signal is a connection closed at once: nothing is written.
// The launcher is sent one text, the name of what to start followed by a NUL
// byte ("NAME\0" for the server, "NAME\PxEmio\0" for the E-mail Agent), on
// a connection that is then closed.
//
// Classic branch (PLEXAR_PLATFORM=classic): the control signal posts a POSIX
// named semaphore, "/NAME.ctr" for the server and "/NAME.EM.PxEmio.ctr" for
// the E-mail Agent; there is no launcher.
#pragma once

#include <string>
#include <string_view>

#include "config/operator.h"

namespace px {

// How long the signals wait. A signal waits up to 10 seconds for a busy
// socket, the launcher up to 50 seconds; while waiting they try to connect
// again every 50 ms.
struct SignalTimes {
  int signal_wait_ms = 10000;
  int launcher_wait_ms = 50000;
  int retry_ms = 50;
};

// The launcher gets at most this many attempts to open it.
inline constexpr int kLauncherAttempts = 5;

std::string pipe_directory();
std::string launcher_socket_path();
std::string control_socket_path(std::string_view instance, bool agent);
std::string control_event_name(std::string_view instance, bool agent);

// Sends the control signal to the server (agent false) or its E-mail Agent.
// Default branch: a missing socket, or one still busy when the wait is up,
// shows 299 with its path; any other failure to connect shows 300. Classic
// branch: a missing semaphore shows 300 for the server and nothing for the
// agent. Returns false after showing a failure.
bool kick(std::string_view instance, bool agent, Operator& op, const SignalTimes& times = {});

// Writes text and its terminating NUL to the launcher. Shows 298 when the
// launcher cannot be opened for any reason but being busy, and 299 when a
// busy launcher stays busy for the whole wait. True when the text was
// written whole.
bool send_to_launcher(std::string_view text, Operator& op, const SignalTimes& times = {});

}  // namespace px
