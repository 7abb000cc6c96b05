// The splash window shown at start-up: the product image "ssplash.bmp" from
// the program's directory, centred on the screen, closed by its timer after
// SplashTime seconds (section Options) or earlier by a click or the close
// box.
#pragma once

#include <string>

#include "config/operator.h"
#include "toolkit/toolkit.h"

namespace px::shell {

inline constexpr int kSplashWidth = 500;
inline constexpr int kSplashHeight = 320;
inline constexpr const char* kSplashImage = "ssplash.bmp";

// The splash's frame: 500 wide, 320 plus the title bar's height less one
// high, centred on the screen area (integer halves).
tk::Rect splash_rect(tk::Toolkit& toolkit);

// "ssplash.bmp" in the directory of the program at program_path.
std::string splash_image_path(const std::string& program_path);

// Opens the splash when SplashTime (section Options, default 0) is 1 or
// more; message 100 when it cannot be created. False when none was opened.
bool open_splash(tk::Toolkit& toolkit, Operator& op, const std::string& program_path);

// The splash window's handler: on create it takes the mouse and starts a
// timer of SplashTime seconds (here the default is 1); paint draws the image
// at its own size when it can be read; close, a mouse press and the timer
// destroy the window.
tk::Handler splash_handler(std::string program_path);

}  // namespace px::shell
