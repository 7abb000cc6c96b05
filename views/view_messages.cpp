#include "views/view_messages.h"

#include "common/expand.h"
#include "common/messages.h"

namespace px::views {

std::string message_row(int n, const std::vector<std::string>& args) {
  set_message_arguments(args);
  return expand(messages::message_text(n));
}


}  // namespace px::views
