#include "sim/requests.h"

#include <vector>

#include "common/text.h"

namespace px::sim {

namespace {

std::vector<std::string_view> words(std::string_view text) {
  std::vector<std::string_view> out;
  while (true) {
    text = trim_left(text);
    if (text.empty()) return out;
    size_t end = text.find_first_of(" \t\r\n");
    out.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return out;
    text.remove_prefix(end);
  }
}

}  // namespace

Request parse_datagram(std::string_view bytes) {
  std::vector<std::string_view> parts = words(bytes);
  Request request;
  if (parts.size() < 2) return request;
  request.instance = std::string(parts[1]);
  if (iequals(parts[0], "^start") && parts.size() == 2) {
    request.action = Action::kStartServer;
  } else if (iequals(parts[0], "^start") && parts.size() == 3 && iequals(parts[2], "pxemio")) {
    request.action = Action::kStartAgent;
  } else if (iequals(parts[0], "^kick") && parts.size() == 2) {
    request.action = Action::kKick;
  }
  return request;
}

Request parse_launcher_message(std::string_view bytes) {
  bytes = bytes.substr(0, bytes.find('\0'));
  Request request;
  size_t slash = bytes.find('\\');
  std::string_view name = bytes.substr(0, slash);
  if (name.empty()) return request;
  request.instance = std::string(name);
  if (slash == std::string_view::npos) {
    request.action = Action::kStartServer;
  } else if (iequals(bytes.substr(slash + 1), "PxEmio")) {
    request.action = Action::kStartAgent;
  }
  return request;
}

bool names_instance(std::string_view served, std::string_view named) {
  return iequals(served.substr(0, served.find('@')), named);
}

std::string escape_bytes(std::string_view bytes) {
  static const char kHex[] = "0123456789ABCDEF";
  std::string out;
  for (char c : bytes) {
    unsigned char u = static_cast<unsigned char>(c);
    switch (c) {
      case '\r': out += "\\r"; break;
      case '\n': out += "\\n"; break;
      case '\t': out += "\\t"; break;
      case '\0': out += "\\0"; break;
      case '\\': out += "\\\\"; break;
      default:
        if (u < 32 || u >= 127) {
          out += "\\x";
          out += kHex[u >> 4];
          out += kHex[u & 15];
        } else {
          out += c;
        }
    }
  }
  return out;
}

}  // namespace px::sim
