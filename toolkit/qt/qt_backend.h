// The Qt 6 Widgets back end, as the program starts it. This header does not
// include Qt: the program's entry picks the back end here and hands the
// Toolkit& to the GUI code.
#pragma once

#include <memory>
#include <string>

#include "toolkit/toolkit.h"

namespace px::tk {

// Creates the Qt application object (when there is none yet) and the
// toolkit. argc and argv must outlive the toolkit; Qt takes out the options
// it knows (-platform, -display...).
std::unique_ptr<Toolkit> make_qt_toolkit(int& argc, char** argv);

// For programs that show windows to people reviewing them: runs the event
// loop for milliseconds (windows settle, timers fire), and writes a PNG of
// a window of a toolkit that make_qt_toolkit made, with a strip carrying its
// title on top (a bare X server draws no title bars). False when the image
// cannot be written.
void run_events_for(int milliseconds);
bool save_window_image(Toolkit& toolkit, Window window, const std::string& path);

}  // namespace px::tk
