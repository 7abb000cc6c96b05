// The rejects windows (142; the server's, or the E-mail Agent's with
// application value 1) and the E-mail Agent queue window (144). Each is
// filled once when it opens; a problem is shown as a message box and the
// window closes itself. "View File..." (rejects only) opens the selected
// rejected file in the rejected-file view.
//
//   0 create    help; title (257 / 258 / 259); fill: caption (260 / 170),
//               the files with row 0 selected and focused, or the one
//               "nothing" row (169 / 174) with the list (and View File...)
//               disabled
//   1 destroy   help dropped
//   5 close, control 1 ("Close")   destroy
//   control 5 ("View File..."), or a double click on a file   the
//               rejected-file view of the selected file
#pragma once

#include "views/windows/view_host.h"

namespace px::views {

// Opens the server's (email false) or the E-mail Agent's rejects window;
// message 100 when it cannot be created. The window, or an invalid one
// when it was not opened or closed itself.
tk::Window open_rejects(const ViewHost& host, bool email);

// Opens the E-mail Agent queue window; message 100 when it cannot be
// created. The window, as open_rejects.
tk::Window open_email_queue(const ViewHost& host);

}  // namespace px::views
