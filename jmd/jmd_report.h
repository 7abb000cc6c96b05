// How the JMD load tells the operator what happened: numbered messages with
// arguments, and trace texts (message -400). The console shows messages in a
// message box, pxctl on stderr, tests record them; every one of them logs.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace px::jmd {

// Numbered messages of the JMD load.
inline constexpr int kMsgValueCut = -361;        // @P1 the value as it was cut
inline constexpr int kMsgBadHeader = -384;       // @P1 the JMD path
inline constexpr int kMsgNoMemory = -385;
inline constexpr int kMsgCannotOpen = -386;      // @P1 the JMD path
inline constexpr int kMsgRecordRefused = -387;   // @P1 the record's first values
inline constexpr int kMsgTrace = -400;           // @P1 a trace text

class Reporter {
 public:
  virtual ~Reporter() = default;
  // Numbered message n with its arguments.
  virtual void message(int n, const std::vector<std::string>& args) = 0;
  // A trace text, which goes out as message -400.
  virtual void trace(std::string_view text) = 0;
};

// Logs both through the message facility and shows nothing; trace texts also
// go to the trace file, when one is set.
class LogReporter : public Reporter {
 public:
  void message(int n, const std::vector<std::string>& args) override;
  void trace(std::string_view text) override;
};

}  // namespace px::jmd
