#include "jmd/engine/report.h"

#include "common/expand.h"
#include "common/messages.h"

namespace px::engine {

void report_message(int n, const std::vector<std::string>& args) {
  set_message_arguments(args);
  messages::show(n);
}

void report_text(std::string_view text) { report_message(kMsgTraceText, {std::string(text)}); }

}  // namespace px::engine
