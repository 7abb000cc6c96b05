// How the engine's modules tell the operator about failures: numbered
// messages with arguments, and free trace texts carried by message -400.
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
// Shows text as message -400.
void report_text(std::string_view text);

}  // namespace px::engine
