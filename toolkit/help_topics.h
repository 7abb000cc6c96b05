// Help topics by window, control and menu item, and the test for a help
// file. Both back ends keep their topics here; they differ only in how a
// topic is shown.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "toolkit/toolkit.h"

namespace px::tk {

// Commands of the toolkit's help menu: each shows the help contents.
inline constexpr int kHelpMenuFirst = 32450;
inline constexpr int kHelpMenuLast = 32462;

class HelpTopics {
 public:
  // control 0 names the window itself.
  void set_window_topic(WindowId window, int control, std::string_view topic);
  void set_menu_topic(int item, std::string_view topic);
  void forget(WindowId window);
  void clear();

  // The topic an event asks for: for a help event the focused control's
  // topic, else its window's, else "" (the contents); for a menu command
  // the item's topic, or "" for the help menu's commands. Nothing for any
  // other event.
  std::optional<std::string> topic_for(const Event& event) const;

 private:
  std::map<std::pair<WindowId, int>, std::string> window_topics_;
  std::map<int, std::string> menu_topics_;
};

// True when path names a readable regular file that holds an HTML document
// (it has an "<html" tag within its first 4096 bytes, in any case).
bool is_help_file(std::string_view path);

}  // namespace px::tk
