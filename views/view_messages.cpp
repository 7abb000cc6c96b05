#include "views/view_messages.h"

#include "common/expand.h"
#include "common/messages.h"

namespace px::views {

std::string message_row(int n, const std::vector<std::string>& args) {
  set_message_arguments(args);
  return expand(messages::message_text(n));
}

std::string message_label(int n) {
  std::string text = messages::message_text(n);
  const std::string number = "[" + std::to_string(n) + "]";
  if (text.starts_with(number)) text.erase(0, number.size());
  return text;
}

}  // namespace px::views
