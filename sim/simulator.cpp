#include "sim/simulator.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "common/platform.h"
#include "common/text.h"
#include "sim/feeder.h"
#include "sim/sim_report.h"
#include "sim/stop_signal.h"

namespace px::sim {

namespace {

constexpr auto kLauncherClientTime = std::chrono::seconds(5);
constexpr size_t kLauncherTextLimit = 1024;
constexpr int kEventPollMilliseconds = 100;  // semaphores cannot be polled

// Listens at a pipe's socket path, reporting why when it cannot.
std::optional<UnixListener> listen_at(std::string_view pipe_name) {
  std::string path = pipe_socket_path(pipe_name);
  std::optional<UnixListener> listener;
  std::string error;
  switch (UnixListener::open(path, listener, error)) {
    case UnixListener::Outcome::kListening: break;
    case UnixListener::Outcome::kInUse: report(kMsgSocketInUse, {path}); break;
    case UnixListener::Outcome::kFailed: report(kMsgListenFailed, {path, error}); break;
  }
  return listener;
}

std::optional<NamedEvent> create_event(const std::string& name) {
  if (is_nt_family()) return std::nullopt;
  std::string error;
  std::optional<NamedEvent> event = NamedEvent::create(name, error);
  if (!event) report(kMsgEventFailed, {name, error});
  return event;
}

// Closes every connection waiting on a kick socket: connecting was the signal.
void drain_kicks(const std::optional<UnixListener>& listener) {
  if (!listener) return;
  while (listener->accept_one().valid()) {
  }
}

}  // namespace

Simulator::Simulator(SimOptions options) : options_(std::move(options)) {}

Simulator::~Simulator() = default;

bool Simulator::add_instance(const std::string& name) {
  SettingsProblem problem, agent_problem;
  std::optional<InstanceSettings> settings = load_instance(name, problem, agent_problem);
  if (!settings) {
    report(problem.message, problem.args);
    return false;
  }
  if (agent_problem.message != 0) report(agent_problem.message, agent_problem.args);
  auto served = std::make_unique<Served>(SimServer(settings->server));
  if (settings->agent) served->agent.emplace(name, *settings->agent, settings->server.data_path);
  served_.push_back(std::move(served));
  return true;
}

Simulator::Served* Simulator::find(std::string_view instance) {
  for (auto& served : served_) {
    if (names_instance(served->server.settings().instance, instance)) return served.get();
  }
  return nullptr;
}

bool Simulator::open() {
  std::vector<std::string> names = options_.instances;
  if (names.empty()) names = installed_instances();
  if (names.empty()) {
    report(kMsgNotInstalled, {"*", install_file()});
    return false;
  }
  for (const std::string& name : names) {
    if (!add_instance(name)) return false;
  }
  launcher_ = listen_at(kLauncherPipe);
  if (!launcher_) return false;
  if (options_.datagram_port != 0) {
    std::string error;
    datagrams_ = open_datagram_port(options_.datagram_port, error);
    if (!datagrams_) report(kMsgDatagramPortFailed, {std::to_string(options_.datagram_port), error});
  }
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "" : ",") + name;
  report(kMsgServing, {list, pipe_directory(),
                       datagrams_ ? std::to_string(options_.datagram_port) : "none"});

  for (auto& served : served_) {
    const std::string& name = served->server.settings().instance;
    bool stays_stopped = std::any_of(options_.stopped.begin(), options_.stopped.end(),
                                     [&](const std::string& s) { return iequals(s, name); });
    if (stays_stopped) {
      served->server.mark_not_running();
      if (served->agent) served->agent->mark_stopped();
      continue;
    }
    start_server(*served);
    if (served->agent) start_agent(*served);
  }
  return true;
}

void Simulator::start_server(Served& served) {
  if (served.server.running()) return;
  SettingsProblem problem, agent_problem;
  if (auto fresh = load_instance(served.server.settings().instance, problem, agent_problem)) {
    served.server.replace_settings(fresh->server);  // an edited configuration takes effect
  }
  const std::string& name = served.server.settings().instance;
  // Listen before the status file says "running", so a console that sees the
  // status can signal at once.
  served.server_socket = listen_at(server_pipe_name(name));
  served.server_event = create_event(server_event_name(name));
  served.server.start();
  served.next_scan = Clock::now();  // the first scan takes what waited while it was down
}

void Simulator::start_agent(Served& served) {
  if (!served.agent || served.agent->running()) return;
  const std::string& name = served.server.settings().instance;
  served.agent_socket = listen_at(agent_pipe_name(name));
  served.agent_event = create_event(agent_event_name(name));
  served.agent->start();
  served.next_cycle = Clock::now() + std::chrono::seconds(served.agent->settings().cycle_seconds);
}

void Simulator::kick_server(Served& served) {
  served.server.take_control_jobs();
  after_server_work(served);
}

void Simulator::kick_agent(Served& served) {
  if (served.agent) served.agent->cycle();
  after_agent_work(served);
}

// A server that shut down is gone: nothing listens for it any more.
void Simulator::after_server_work(Served& served) {
  if (served.server.running()) return;
  served.server_socket.reset();
  served.server_event.reset();
}

void Simulator::after_agent_work(Served& served) {
  if (served.agent && served.agent->running()) return;
  served.agent_socket.reset();
  served.agent_event.reset();
}

void Simulator::perform(const Request& request, std::string_view what) {
  Served* served = request.action == Action::kNone ? nullptr : find(request.instance);
  if (served == nullptr || (request.action == Action::kStartAgent && !served->agent)) {
    report(kMsgLauncherUnknown, {escape_bytes(what)});
    return;
  }
  switch (request.action) {
    case Action::kStartServer: start_server(*served); break;
    case Action::kStartAgent: start_agent(*served); break;
    case Action::kKick: kick_server(*served); break;
    case Action::kNone: break;
  }
}

void Simulator::accept_launcher_clients() {
  while (true) {
    UniqueFd fd = launcher_->accept_one();
    if (!fd.valid()) return;
    launcher_clients_.push_back({std::move(fd), {}, Clock::now() + kLauncherClientTime});
  }
}

// Reads what a launcher client sent; its text ends at a NUL or when it closes.
void Simulator::read_launcher_client(size_t index) {
  LauncherClient& client = launcher_clients_[index];
  char buffer[256];
  ssize_t n = read(client.fd.get(), buffer, sizeof buffer);
  if (n < 0 && (errno == EAGAIN || errno == EINTR)) return;
  if (n > 0) client.text.append(buffer, static_cast<size_t>(n));
  bool complete = n == 0 || client.text.find('\0') != std::string::npos;
  bool too_long = client.text.size() > kLauncherTextLimit;
  if (n > 0 && !complete && !too_long) return;  // more to come
  std::string text = std::move(client.text);
  launcher_clients_.erase(launcher_clients_.begin() + static_cast<std::ptrdiff_t>(index));
  if (complete && !too_long && !text.empty()) perform(parse_launcher_message(text), text);
}

void Simulator::read_datagrams() {
  std::string from;
  while (std::optional<std::string> bytes = receive_datagram(datagrams_->get(), from)) {
    report(kMsgDatagramReceived, {from, std::to_string(bytes->size()), escape_bytes(*bytes)});
    Request request = parse_datagram(*bytes);
    if (request.action == Action::kNone) {
      report(kMsgDatagramNotUnderstood, {escape_bytes(*bytes)});
    } else {
      perform(request, *bytes);
    }
  }
}

void Simulator::take_events() {
  for (auto& served : served_) {
    if (served->server_event && served->server_event->take_all()) kick_server(*served);
    if (served->agent_event && served->agent_event->take_all()) kick_agent(*served);
  }
}

void Simulator::run_timers() {
  Clock::time_point now = Clock::now();
  for (auto& served : served_) {
    if (served->server.running() && now >= served->next_scan) {
      served->server.scan();
      served->next_scan = now + std::chrono::seconds(served->server.settings().pause_seconds);
      after_server_work(*served);
    }
    if (options_.feed_seconds > 0 && served->server.running() && now >= served->next_feed) {
      const ServerSettings& settings = served->server.settings();
      feed_transaction(settings.data_path, settings.file_pattern, ++fed_);
      served->next_feed = now + std::chrono::seconds(options_.feed_seconds);
    }
    if (served->agent && served->agent->running() && now >= served->next_cycle) {
      served->agent->cycle();
      served->next_cycle = now + std::chrono::seconds(served->agent->settings().cycle_seconds);
      after_agent_work(*served);
    }
  }
  std::erase_if(launcher_clients_, [&](const LauncherClient& c) { return now >= c.deadline; });
}

int Simulator::wait_milliseconds() const {
  Clock::time_point now = Clock::now();
  Clock::time_point next = Clock::time_point::max();
  bool events = false;
  for (const auto& served : served_) {
    if (served->server.running()) next = std::min(next, served->next_scan);
    if (served->agent && served->agent->running()) next = std::min(next, served->next_cycle);
    if (options_.feed_seconds > 0) next = std::min(next, served->next_feed);
    events = events || served->server_event || served->agent_event;
  }
  for (const LauncherClient& client : launcher_clients_) next = std::min(next, client.deadline);
  long long wait = -1;
  if (next != Clock::time_point::max()) {
    wait = std::max<long long>(
        0, std::chrono::ceil<std::chrono::milliseconds>(next - now).count());
  }
  if (events && (wait < 0 || wait > kEventPollMilliseconds)) wait = kEventPollMilliseconds;
  return static_cast<int>(std::min<long long>(wait, 60LL * 60 * 1000));
}

void Simulator::run(const sigset_t& wait_mask) {
  while (stop_signal() == 0) {
    std::vector<pollfd> fds;
    std::vector<std::pair<Source, size_t>> sources;
    auto watch = [&](int fd, Source source, size_t index) {
      fds.push_back({fd, POLLIN, 0});
      sources.emplace_back(source, index);
    };
    watch(launcher_->fd(), Source::kLauncher, 0);
    for (size_t i = 0; i < launcher_clients_.size(); ++i) {
      watch(launcher_clients_[i].fd.get(), Source::kLauncherClient, i);
    }
    if (datagrams_) watch(datagrams_->get(), Source::kDatagram, 0);
    for (size_t i = 0; i < served_.size(); ++i) {
      if (served_[i]->server_socket) watch(served_[i]->server_socket->fd(), Source::kServerKick, i);
      if (served_[i]->agent_socket) watch(served_[i]->agent_socket->fd(), Source::kAgentKick, i);
    }

    int wait = wait_milliseconds();
    timespec timeout{wait / 1000, (wait % 1000) * 1000000L};
    int ready = ppoll(fds.data(), fds.size(), wait < 0 ? nullptr : &timeout, &wait_mask);
    if (ready > 0) {
      // Launcher clients are handled last and from the back, so removing
      // one never shifts an index still to be handled.
      for (size_t k = fds.size(); k-- > 0;) {
        if (fds[k].revents == 0) continue;
        auto [source, index] = sources[k];
        switch (source) {
          case Source::kLauncherClient: read_launcher_client(index); break;
          case Source::kLauncher: accept_launcher_clients(); break;
          case Source::kDatagram: read_datagrams(); break;
          case Source::kServerKick:
            drain_kicks(served_[index]->server_socket);
            kick_server(*served_[index]);
            break;
          case Source::kAgentKick:
            drain_kicks(served_[index]->agent_socket);
            kick_agent(*served_[index]);
            break;
        }
      }
    }
    take_events();
    run_timers();
  }
  report(kMsgStopping, {strsignal(stop_signal())});
  stop_everything();
}

void Simulator::stop_everything() {
  for (auto& served : served_) {
    if (served->agent && served->agent->running()) served->agent->stop();
    if (served->server.running()) served->server.shut_down();
    after_server_work(*served);
    after_agent_work(*served);
  }
  launcher_clients_.clear();
  launcher_.reset();
  datagrams_.reset();
}

}  // namespace px::sim
