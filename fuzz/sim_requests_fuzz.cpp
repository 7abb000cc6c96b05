// Feeds arbitrary bytes to the simulator as a node datagram and as a
// launcher message. Checks that a request that names an action names an
// instance (without blanks, or a backslash from a launcher), that an
// instance part is accepted as naming the served instance (and a served
// "NAME@host" too) while a name with a host part is not, and that the bytes escaped
// for the log are printable and read back to the same bytes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "sim/requests.h"

namespace {

using px::sim::Action;
using px::sim::Request;

void check_request(const Request& request) {
  if (request.action == Action::kNone) return;
  if (request.instance.empty()) std::abort();
  // Requests carry only the instance part of a name: a served "north" or
  // "north@host2" is named by "north", never by "north@host2".
  bool has_host = request.instance.find('@') != std::string::npos;
  if (px::sim::names_instance(request.instance, request.instance) == has_host) std::abort();
  if (px::sim::names_instance(request.instance + "@host2", request.instance) == has_host) {
    std::abort();
  }
}

int hex_value(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  std::abort();
}

// Undoes escape_bytes, aborting on anything it cannot have written.
std::string unescape(std::string_view text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (c < 32 || c >= 127) std::abort();
    if (c != '\\') {
      out += c;
      continue;
    }
    if (++i == text.size()) std::abort();
    switch (text[i]) {
      case 'r': out += '\r'; break;
      case 'n': out += '\n'; break;
      case 't': out += '\t'; break;
      case '0': out += '\0'; break;
      case '\\': out += '\\'; break;
      case 'x':
        if (i + 2 >= text.size()) std::abort();
        out += static_cast<char>(hex_value(text[i + 1]) * 16 + hex_value(text[i + 2]));
        i += 2;
        break;
      default: std::abort();
    }
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  std::string_view data(reinterpret_cast<const char*>(bytes), size);

  Request datagram = px::sim::parse_datagram(data);
  check_request(datagram);
  if (datagram.action != Action::kNone &&
      datagram.instance.find_first_of(" \t\r\n") != std::string::npos) {
    std::abort();
  }

  Request launcher = px::sim::parse_launcher_message(data);
  check_request(launcher);
  if (launcher.instance.find('\0') != std::string::npos ||
      launcher.instance.find('\\') != std::string::npos) {
    std::abort();
  }

  if (unescape(px::sim::escape_bytes(data)) != data) std::abort();
  return 0;
}
