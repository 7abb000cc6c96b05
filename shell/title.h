// Window titles that show the current instance.
#pragma once

#include <string>
#include <string_view>

#include "toolkit/toolkit.h"

namespace px::shell {

// The longest title read back from a window.
inline constexpr size_t kTitleLength = 1024;

// "Velmar Nexa Output Server - <message 183>-<window_title>".
std::string task_title(std::string_view window_title);

// Sets the task window's title to task_title(window_title).
void set_task_title(tk::Window window, std::string_view window_title);

// format with its "%s" replaced by value ("%%" gives "%"; any other "%" is
// kept as it stands), cut to kTitleLength - 1 characters.
std::string fill_title(std::string_view format, std::string_view value);

// Uses the window's own title (up to kTitleLength - 1 characters) as the
// format and window_title as its value, so a resource title such as
// "Reload Printer for %s" shows the instance's title.
void set_child_title(tk::Window window, std::string_view window_title);

}  // namespace px::shell
