// How the engine's modules tell the operator about failures: numbered
// messages with arguments, and free trace texts carried by message -400.
// They go to the message facility (the log) unless a caller has routed them
// elsewhere for a while (ReportRoute).
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace px::engine {

inline constexpr int kMsgTraceText = -400;
inline constexpr int kMsgBadArgument = -357;
inline constexpr int kMsgDuplicateKey = -370;
inline constexpr int kMsgOutOfMemory = -385;

// Shows message n with @P1, @P2, ... set to args.
void report_message(int n, const std::vector<std::string>& args);
// Shows text as message -400 and appends it to the trace file, when one is
// set.
void report_text(std::string_view text);

// Where reports go while a ReportRoute is in place.
class ReportSink {
 public:
  virtual ~ReportSink() = default;
  virtual void message(int n, const std::vector<std::string>& args) = 0;
  virtual void text(std::string_view text) = 0;
};

// Sends the engine's reports to sink for as long as it lives (routes nest:
// the one made last is used until it goes).
class ReportRoute {
 public:
  explicit ReportRoute(ReportSink& sink);
  ~ReportRoute();
  ReportRoute(const ReportRoute&) = delete;
  ReportRoute& operator=(const ReportRoute&) = delete;

 private:
  ReportSink* previous_;
};

}  // namespace px::engine
