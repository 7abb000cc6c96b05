// The Qt 6 Widgets back end, as the program starts it. This header does not
// include Qt: the program's entry picks the back end here and hands the
// Toolkit& to the GUI code.
#pragma once

#include <memory>

#include "toolkit/toolkit.h"

namespace px::tk {

// Creates the Qt application object (when there is none yet) and the
// toolkit. argc and argv must outlive the toolkit; Qt takes out the options
// it knows (-platform, -display...).
std::unique_ptr<Toolkit> make_qt_toolkit(int& argc, char** argv);

}  // namespace px::tk
