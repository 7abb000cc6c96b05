#include "jmd/engine/report.h"

#include "common/expand.h"
#include "common/messages.h"

namespace px::engine {

namespace {

// The sink of the innermost route; nullptr: the message facility.
ReportSink* g_sink = nullptr;

}  // namespace

void report_message(int n, const std::vector<std::string>& args) {
  if (g_sink != nullptr) {
    g_sink->message(n, args);
    return;
  }
  set_message_arguments(args);
  messages::show(n);
}

void report_text(std::string_view text) {
  if (g_sink != nullptr) {
    g_sink->text(text);
    return;
  }
  report_message(kMsgTraceText, {std::string(text)});
  messages::trace(text);
}

ReportRoute::ReportRoute(ReportSink& sink) : previous_(g_sink) { g_sink = &sink; }

ReportRoute::~ReportRoute() { g_sink = previous_; }

}  // namespace px::engine
