// The caption of every message box: message 183 of the message file.
#pragma once

#include <string>

namespace px::tk {

inline constexpr int kCaptionMessage = 183;

// Message 183's text without the "[183]" number that shown messages carry in
// front: a caption names the program, it reports nothing.
std::string message_caption();

}  // namespace px::tk
