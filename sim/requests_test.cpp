#include "sim/requests.h"

#include <gtest/gtest.h>

namespace px::sim {
namespace {

TEST(Datagrams, TheThreeCommands) {
  Request start = parse_datagram("^start north\r\n");
  EXPECT_EQ(start.action, Action::kStartServer);
  EXPECT_EQ(start.instance, "north");
  Request agent = parse_datagram("^start north pxemio\r\n");
  EXPECT_EQ(agent.action, Action::kStartAgent);
  EXPECT_EQ(agent.instance, "north");
  Request kick = parse_datagram("^KICK south\r\n");
  EXPECT_EQ(kick.action, Action::kKick);
  EXPECT_EQ(kick.instance, "south");
}

TEST(Datagrams, AnythingElseIsNoCommand) {
  EXPECT_EQ(parse_datagram("^start\r\n").action, Action::kNone);
  EXPECT_EQ(parse_datagram("^start north pxmerge\r\n").action, Action::kNone);
  EXPECT_EQ(parse_datagram("^kick north now\r\n").action, Action::kNone);
  EXPECT_EQ(parse_datagram("^stop north\r\n").action, Action::kNone);
  EXPECT_EQ(parse_datagram("").action, Action::kNone);
}

TEST(Launcher, ServerOrAgentByTheTextBeforeTheNul) {
  using namespace std::string_literals;
  Request server = parse_launcher_message("north\0"s);
  EXPECT_EQ(server.action, Action::kStartServer);
  EXPECT_EQ(server.instance, "north");
  Request agent = parse_launcher_message("north\\PxEmio\0garbage"s);
  EXPECT_EQ(agent.action, Action::kStartAgent);
  EXPECT_EQ(agent.instance, "north");
  EXPECT_EQ(parse_launcher_message("north\\PxMerge\0"s).action, Action::kNone);
  EXPECT_EQ(parse_launcher_message("\0"s).action, Action::kNone);
  EXPECT_EQ(parse_launcher_message("south").action, Action::kStartServer);  // closed without NUL
}

TEST(Requests, InstancePartBeforeTheAt) {
  EXPECT_TRUE(names_instance("north@host2", "north"));
  EXPECT_TRUE(names_instance("North", "NORTH"));
  EXPECT_FALSE(names_instance("north@host2", "north@host2"));
  EXPECT_FALSE(names_instance("northern", "north"));
}

TEST(Requests, EscapesShowEveryByte) {
  using namespace std::string_literals;
  EXPECT_EQ(escape_bytes("^kick a\r\n"), "^kick a\\r\\n");
  EXPECT_EQ(escape_bytes("a\0b\\\t\x7f\xe9"s), "a\\0b\\\\\\t\\x7F\\xE9");
}

}  // namespace
}  // namespace px::sim
