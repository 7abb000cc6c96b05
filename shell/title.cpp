#include "shell/title.h"

#include "common/text.h"
#include "toolkit/caption.h"

namespace px::shell {

std::string task_title(std::string_view window_title) {
  return "Velmar Nexa Output Server - " + tk::message_caption() + "-" + std::string(window_title);
}

void set_task_title(tk::Window window, std::string_view window_title) {
  window.set_title(task_title(window_title));
}

std::string fill_title(std::string_view format, std::string_view value) {
  std::string out = fill_percent_s(format, value);
  if (out.size() > kTitleLength - 1) out.resize(kTitleLength - 1);
  return out;
}

void set_child_title(tk::Window window, std::string_view window_title) {
  std::string format = window.title();
  if (format.size() > kTitleLength - 1) format.resize(kTitleLength - 1);
  window.set_title(fill_title(format, window_title));
}

}  // namespace px::shell
