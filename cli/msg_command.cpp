// pxctl msg N [ARG...]: shows numbered message N as the runtime loads it, with
// ARG... as @P1, @P2, ..., and emits it to the log.
#include <cstdio>
#include <string>

#include "cli/cli.h"
#include "common/expand.h"
#include "common/messages.h"

namespace px::cli {

namespace {

// N must be a whole decimal number that fits a message number.
bool parse_number(const std::string& text, int& n) {
  if (text.empty() || text.size() > 11) return false;
  size_t start = text[0] == '-' || text[0] == '+' ? 1 : 0;
  if (start == text.size()) return false;
  for (size_t i = start; i < text.size(); ++i) {
    if (text[i] < '0' || text[i] > '9') return false;
  }
  long value = std::stol(text);
  if (value < -2147483647L || value > 2147483647L) return false;
  n = static_cast<int>(value);
  return true;
}

}  // namespace

int run_msg(const Invocation& call) {
  int n = 0;
  if (call.words.empty() || !parse_number(call.words[0], n)) {
    return usage_error("msg", "pxctl msg N [ARG...]");
  }
  set_message_arguments({call.words.begin() + 1, call.words.end()});
  std::string text = messages::message_text(n);
  int level = messages::current_level();
  std::printf("%d\t%s\n", level, expand(text).c_str());
  std::fflush(stdout);
  messages::emit(n, text);
  return kExitOk;
}

}  // namespace px::cli
