// What arrives at the simulator besides kicks: node datagrams and launcher
// messages, both naming an instance and what is to be done to it.
//
// Node datagrams (8-bit text, each line ended by CR LF, no NUL):
//   "^start NAME\r\n"          start the server of instance NAME
//   "^start NAME pxemio\r\n"   start its E-mail Agent
//   "^kick NAME\r\n"           wake the server (take its control jobs now)
// The command words and "pxemio" are compared without regard to case.
//
// Launcher messages (the text and its terminating NUL, then the connection
// closes):
//   "NAME"                     start the server of instance NAME
//   "NAME\PxEmio"              start its E-mail Agent
//
// NAME is the instance part of a name: a served instance "north@host2" is
// reached by "north". Names are compared without regard to case.
#pragma once

#include <string>
#include <string_view>

namespace px::sim {

enum class Action { kNone, kStartServer, kStartAgent, kKick };

struct Request {
  Action action = Action::kNone;
  std::string instance;
};

Request parse_datagram(std::string_view bytes);
Request parse_launcher_message(std::string_view bytes);

// True when a request's instance names the served instance.
bool names_instance(std::string_view served, std::string_view named);

// The bytes with CR, LF, TAB, NUL, backslash and other unprintable bytes
// written as escapes ("\r", "\n", "\t", "\0", "\\", "\xNN"), for logs.
std::string escape_bytes(std::string_view bytes);

}  // namespace px::sim
