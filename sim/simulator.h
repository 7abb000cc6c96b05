// The simulator's event loop: the instances it serves, their kick sockets
// (or named semaphores on the classic branch), the launcher socket, the node
// datagram port and the timers, all in one single-threaded ppoll() loop.
#pragma once

#include <signal.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "sim/endpoints.h"
#include "sim/named_event.h"
#include "sim/requests.h"
#include "sim/sim_agent.h"
#include "sim/sim_server.h"
#include "common/unique_fd.h"

namespace px::sim {

inline constexpr int kDefaultDatagramPort = 1706;

struct SimOptions {
  std::vector<std::string> instances;  // empty: every instance of the install file
  std::vector<std::string> stopped;    // served, but not started at first
  int datagram_port = kDefaultDatagramPort;  // 0: no datagram port
  int feed_seconds = 0;  // a new transaction file for each running server this often; 0: none
};

class Simulator {
 public:
  explicit Simulator(SimOptions options);
  ~Simulator();
  Simulator(const Simulator&) = delete;
  Simulator& operator=(const Simulator&) = delete;

  // Reads every instance, opens the launcher socket and the datagram port,
  // and starts the instances that are not to stay stopped. False, after
  // reporting why, when an instance cannot be served or the launcher socket
  // cannot be opened.
  bool open();

  // Serves until a stop signal arrives (waiting with wait_mask), then stops
  // every server and agent, so their status files say they are not running.
  void run(const sigset_t& wait_mask);

 private:
  using Clock = std::chrono::steady_clock;

  struct Served {
    explicit Served(SimServer s) : server(std::move(s)) {}
    SimServer server;
    std::optional<SimAgent> agent;
    std::optional<UnixListener> server_socket;
    std::optional<UnixListener> agent_socket;
    std::optional<NamedEvent> server_event;
    std::optional<NamedEvent> agent_event;
    Clock::time_point next_scan;
    Clock::time_point next_cycle;
    Clock::time_point next_feed;
  };

  struct LauncherClient {
    UniqueFd fd;
    std::string text;
    Clock::time_point deadline;
  };

  enum class Source { kLauncher, kLauncherClient, kDatagram, kServerKick, kAgentKick };

  bool add_instance(const std::string& name);
  Served* find(std::string_view instance);

  void start_server(Served& served);
  void start_agent(Served& served);
  void kick_server(Served& served);
  void kick_agent(Served& served);
  void after_server_work(Served& served);
  void after_agent_work(Served& served);
  void perform(const Request& request, std::string_view what);

  void accept_launcher_clients();
  void read_launcher_client(size_t index);
  void read_datagrams();
  void take_events();
  void run_timers();
  int wait_milliseconds() const;
  void stop_everything();

  SimOptions options_;
  int fed_ = 0;  // transaction files fed so far
  std::vector<std::unique_ptr<Served>> served_;
  std::optional<UnixListener> launcher_;
  std::vector<LauncherClient> launcher_clients_;
  std::optional<UniqueFd> datagrams_;
};

}  // namespace px::sim
