#include "toolkit/help_topics.h"

#include <sys/stat.h>


#include "common/readable_file.h"
#include "common/text.h"

namespace px::tk {

void HelpTopics::set_window_topic(WindowId window, int control, std::string_view topic) {
  window_topics_[{window, control}] = std::string(topic);
}

void HelpTopics::set_menu_topic(int item, std::string_view topic) {
  menu_topics_[item] = std::string(topic);
}

void HelpTopics::forget(WindowId window) {
  auto it = window_topics_.lower_bound({window, 0});
  while (it != window_topics_.end() && it->first.first == window) it = window_topics_.erase(it);
}

void HelpTopics::clear() {
  window_topics_.clear();
  menu_topics_.clear();
}

std::optional<std::string> HelpTopics::topic_for(const Event& event) const {
  if (event.type == EventType::kHelp) {
    WindowId w = event.window.id();
    if (auto it = window_topics_.find({w, event.control}); it != window_topics_.end()) return it->second;
    if (auto it = window_topics_.find({w, 0}); it != window_topics_.end()) return it->second;
    return std::string();
  }
  if (event.type == EventType::kCommand) {
    if (auto it = menu_topics_.find(event.command); it != menu_topics_.end()) return it->second;
    if (event.command >= kHelpMenuFirst && event.command <= kHelpMenuLast) return std::string();
  }
  return std::nullopt;
}

bool is_help_file(std::string_view path) {
  ReadStream in = open_stream_for_reading(std::string(path));
  if (!in) return false;
  std::string head(4096, '\0');
  head.resize(std::fread(head.data(), 1, head.size(), in.get()));
  return ifind(head, "<html") != std::string_view::npos;
}

}  // namespace px::tk
