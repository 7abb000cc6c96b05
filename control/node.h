// Where an instance lives, and the datagrams that start or wake it on the
// node that serves it.
//
// Node state, read once per process: the install file (Install of section
// Plexar in the console's INI file) and the local node's name (Node of
// section Plexar in the install file). Per instance, on every call, from its
// configuration file (the instance's key in section Configuration of the
// install file): Node and RemoteAccess of section Plexar.
//
// Datagram, one UDP packet to port "plexar" of the services database (else
// 1706) on the instance's node, holding exactly these 8-bit characters and
// no terminating NUL, where NAME is the instance name up to its first "@":
//   start the server           "^start NAME\r\n"
//   start the E-mail Agent     "^start NAME pxemio\r\n"
//   wake the server (kick)     "^kick NAME\r\n"
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "control/program_runner.h"

namespace px {

// Location word bits.
inline constexpr unsigned kLocationNetwork = 1;       // commands can go over the network
inline constexpr unsigned kLocationStartable = 2;     // startable from this console
inline constexpr unsigned kLocationOtherNode = 4;     // Node differs from the local node
inline constexpr unsigned kLocationRemoteAccess = 8;  // RemoteAccess is "yes"

// Results of the node commands.
inline constexpr int kNodeOk = 0;
inline constexpr int kNodeLaunchFailed = -1;    // the local program could not be started
inline constexpr int kNodeNotSentWhole = -609;  // the datagram was not sent whole
inline constexpr int kNodeNoSocket = -611;      // no socket could be made
inline constexpr int kNodeUnresolved = -612;    // the node name cannot be resolved
inline constexpr int kNodeNotStartable = -613;  // the instance cannot be started from here

// The port used when the services database has no "plexar" entry.
inline constexpr uint16_t kDefaultNodePort = 1706;

// The location word of the instance called instance.
unsigned location(std::string_view instance);

// Starts the server (pxserver) or the E-mail Agent (pxemio) of instance:
// locally through runner ("pxserver -aii<configuration file>", the agent
// with the IniFileName of its section instead) when the instance has no
// remote access, else by a start datagram to its node.
int start_server_on_node(std::string_view instance, ProgramRunner& runner);
int start_email_agent_on_node(std::string_view instance, ProgramRunner& runner);

// Sends a kick datagram when the location word has kLocationNetwork; 0 when
// nothing had to be sent or it was sent.
int kick_on_node(std::string_view instance);

// Sends text as one datagram to the Node of config_file (default
// "localhost"). A kick that cannot be delivered still counts as sent.
int send_to_node(std::string_view text, const std::string& config_file);

// The datagram texts for instance.
std::string start_server_text(std::string_view instance);
std::string start_email_agent_text(std::string_view instance);
std::string kick_text(std::string_view instance);

// The port as passed to the socket call (network byte order): the services
// database's port field, or 1706, each passed through htons once more.
uint16_t node_port();

// Forgets the node state, so the next call reads it again. The console reads
// it once per run; tests use this between installations.
void reset_node_state();

// Test seam: makes the socket library count as missing (true) or present.
void set_socket_library_missing(bool missing);

}  // namespace px
