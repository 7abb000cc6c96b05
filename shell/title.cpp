#include "shell/title.h"

#include "toolkit/caption.h"

namespace px::shell {

std::string task_title(std::string_view window_title) {
  return "Velmar Nexa Output Server - " + tk::message_caption() + "-" + std::string(window_title);
}

void set_task_title(tk::Window window, std::string_view window_title) {
  window.set_title(task_title(window_title));
}

std::string fill_title(std::string_view format, std::string_view value) {
  std::string out;
  bool filled = false;
  for (size_t i = 0; i < format.size(); ++i) {
    if (format[i] == '%' && i + 1 < format.size()) {
      if (format[i + 1] == '%') {
        out += '%';
        ++i;
        continue;
      }
      if (format[i + 1] == 's' && !filled) {
        out += value;
        filled = true;
        ++i;
        continue;
      }
    }
    out += format[i];
  }
  if (out.size() > kTitleLength - 1) out.resize(kTitleLength - 1);
  return out;
}

void set_child_title(tk::Window window, std::string_view window_title) {
  std::string format = window.title();
  if (format.size() > kTitleLength - 1) format.resize(kTitleLength - 1);
  window.set_title(fill_title(format, window_title));
}

}  // namespace px::shell
