#include "control/node.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <optional>

#include "common/ini_profile.h"
#include "common/text.h"
#include "config/settings.h"
#include "common/unique_fd.h"

namespace px {

namespace {

constexpr size_t kNodeStateSize = 257;    // install path and local node: 256 characters
constexpr size_t kConfigPathSize = 257;   // an instance's configuration file
constexpr size_t kLocationNodeSize = 33;  // Node compared for the location word
constexpr size_t kSendNodeSize = 41;      // Node a datagram is sent to
constexpr size_t kRemoteAccessSize = 5;

struct NodeState {
  std::string install_file;
  std::string local_node;
  bool initialised = false;
  bool socket_library_missing = false;
};

NodeState& node_state() {
  static NodeState state;
  return state;
}

void node_init() {
  NodeState& s = node_state();
  if (s.initialised) return;
  s.install_file = ini::get_string("Plexar", "Install", "", kNodeStateSize);
  s.local_node = setting("Plexar", "Node", "", kNodeStateSize, s.install_file);
  s.initialised = true;
}

bool socket_library_loaded() { return !node_state().socket_library_missing; }

std::string config_file_of(std::string_view instance) {
  node_init();
  return setting("Configuration", instance, "", kConfigPathSize, node_state().install_file);
}

std::string_view instance_part(std::string_view instance) {
  return instance.substr(0, instance.find('@'));
}

// The node's IPv4 address in network byte order: a name starting with a
// digit is taken as a dotted address and never looked up.
std::optional<in_addr_t> node_address(const std::string& node) {
  if (!node.empty() && node[0] >= '0' && node[0] <= '9') {
    return socket_library_loaded() ? ::inet_addr(node.c_str()) : INADDR_NONE;
  }
  if (!socket_library_loaded() || node.empty()) return std::nullopt;
  addrinfo hints{};
  hints.ai_family = AF_INET;
  hints.ai_socktype = SOCK_DGRAM;
  addrinfo* found = nullptr;
  if (::getaddrinfo(node.c_str(), nullptr, &hints, &found) != 0 || found == nullptr) {
    return std::nullopt;
  }
  in_addr_t address = reinterpret_cast<sockaddr_in*>(found->ai_addr)->sin_addr.s_addr;
  ::freeaddrinfo(found);
  return address;
}

int start_on_node(std::string_view instance, std::string_view program, const std::string& text,
                  ProgramRunner& runner) {
  std::string config = config_file_of(instance);
  unsigned word = location(instance);
  if ((word & kLocationStartable) == 0) return kNodeNotStartable;
  if ((word & kLocationRemoteAccess) != 0) return send_to_node(text, config);

  std::string ini = config;
  if (program != "pxserver") ini = setting(program, "IniFileName", "", kConfigPathSize, config);
  // The program beside the current directory is preferred, as the server's
  // own platform would find it there before searching PATH.
  std::string name(program);
  if (::access(name.c_str(), X_OK) == 0) name = "./" + name;
  return runner.launch(name + " -aii" + ini) ? kNodeOk : kNodeLaunchFailed;
}

}  // namespace

unsigned location(std::string_view instance) {
  std::string config = config_file_of(instance);
  std::string node = setting("Plexar", "Node", "", kLocationNodeSize, config);
  std::string remote = setting("Plexar", "RemoteAccess", "no", kRemoteAccessSize, config);
  unsigned word = 0;
  if (!iequals(node, node_state().local_node)) word |= kLocationOtherNode;
  if (iequals(remote, "yes")) word |= kLocationRemoteAccess;
  if ((word & kLocationRemoteAccess) == 0) {
    if ((word & kLocationOtherNode) == 0) word |= kLocationStartable;
  } else if (socket_library_loaded()) {
    word |= kLocationNetwork | kLocationStartable;
  }
  return word;
}

int start_server_on_node(std::string_view instance, ProgramRunner& runner) {
  return start_on_node(instance, "pxserver", start_server_text(instance), runner);
}

int start_email_agent_on_node(std::string_view instance, ProgramRunner& runner) {
  return start_on_node(instance, "pxemio", start_email_agent_text(instance), runner);
}

int kick_on_node(std::string_view instance) {
  std::string config = config_file_of(instance);
  if ((location(instance) & kLocationNetwork) == 0) return kNodeOk;
  return send_to_node(kick_text(instance), config);
}

int send_to_node(std::string_view text, const std::string& config_file) {
  uint16_t port = node_port();
  std::string node = setting("Plexar", "Node", "localhost", kSendNodeSize, config_file);
  std::optional<in_addr_t> address = node_address(node);
  if (!address) return kNodeUnresolved;

  UniqueFd socket(socket_library_loaded() ? ::socket(AF_INET, SOCK_DGRAM, 0) : -1);
  if (!socket.valid()) return kNodeNoSocket;

  sockaddr_in to{};
  to.sin_family = AF_INET;
  to.sin_port = port;
  to.sin_addr.s_addr = *address;
  ssize_t sent = ::sendto(socket.get(), text.data(), text.size(), 0,
                          reinterpret_cast<const sockaddr*>(&to), sizeof to);
  if (sent < 0 && text.starts_with("^kick")) sent = static_cast<ssize_t>(text.size());
  return sent == static_cast<ssize_t>(text.size()) ? kNodeOk : kNodeNotSentWhole;
}

std::string start_server_text(std::string_view instance) {
  return "^start " + std::string(instance_part(instance)) + "\r\n";
}

std::string start_email_agent_text(std::string_view instance) {
  return "^start " + std::string(instance_part(instance)) + " pxemio\r\n";
}

std::string kick_text(std::string_view instance) {
  return "^kick " + std::string(instance_part(instance)) + "\r\n";
}

uint16_t node_port() {
  const servent* service = ::getservbyname("plexar", nullptr);
  uint16_t port = service != nullptr ? static_cast<uint16_t>(service->s_port) : kDefaultNodePort;
  return htons(port);
}

void reset_node_state() {
  bool missing = node_state().socket_library_missing;
  node_state() = NodeState{};
  node_state().socket_library_missing = missing;
}

void set_socket_library_missing(bool missing) { node_state().socket_library_missing = missing; }

}  // namespace px
