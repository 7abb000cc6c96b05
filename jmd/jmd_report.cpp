#include "jmd/jmd_report.h"

#include "common/expand.h"
#include "common/messages.h"

namespace px::jmd {

void LogReporter::message(int n, const std::vector<std::string>& args) {
  set_message_arguments(args);
  messages::show(n);
}

void LogReporter::trace(std::string_view text) {
  set_message_arguments({std::string(text)});
  messages::show(kMsgTrace);
  messages::trace(text);
}

}  // namespace px::jmd
