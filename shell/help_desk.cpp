#include "shell/help_desk.h"

#include <algorithm>

#include "common/file_util.h"
#include "config/settings.h"
#include "toolkit/help_topics.h"

namespace px::shell {

namespace {

bool opens_help(const tk::Event& event) {
  if (event.type == tk::EventType::kHelp) return true;
  return event.type == tk::EventType::kCommand && event.command >= tk::kHelpMenuFirst &&
         event.command <= tk::kHelpMenuLast;
}

}  // namespace

void HelpDesk::install() {
  tk_.set_help_hook([this](const tk::Event& event) { return hook(event); });
}

void HelpDesk::associate(tk::WindowId window, int item, std::string topic, HelpKind kind) {
  Entry entry{window, item, std::move(topic), kind};
  if (tk_.help_file_open()) {
    pass_on(entry);
  } else {
    queue_.push_back(std::move(entry));
  }
}

void HelpDesk::forget(tk::WindowId window) {
  std::erase_if(queue_, [window](const Entry& e) { return e.window == window; });
}

void HelpDesk::close() {
  queue_.clear();
  tk_.close_help_file();
}

bool HelpDesk::hook(const tk::Event& event) {
  if (tk_.help_file_open()) return tk_.process_help_event(event);
  if (!opens_help(event)) return false;
  if (!open_help_file()) return false;
  for (const Entry& entry : queue_) pass_on(entry);
  queue_.clear();
  return tk_.process_help_event(event);
}

bool HelpDesk::open_help_file() {
  std::string directory = tk_.default_directory();
  if (tk_.open_help_file(add_separator(directory) + kHelpFileName)) return true;
  for (;;) {
    std::optional<std::string> chosen =
        tk_.choose_file_to_open({kHelpPrompt, directory, kHelpFileName});
    if (!chosen) return false;
    if (is_directory(*chosen)) {
      tk_.post_error(kHelpInvalid);
    } else if (!file_readable(*chosen)) {
      tk_.post_error(kHelpUnreadable);
    } else if (tk_.open_help_file(*chosen)) {
      return true;
    } else {
      tk_.post_note(kHelpInvalid);
    }
  }
}

void HelpDesk::pass_on(const Entry& entry) {
  switch (entry.kind) {
    case HelpKind::kWindow:
      tk_.set_help_topic(entry.window, 0, entry.topic);
      break;
    case HelpKind::kControl:
      tk_.set_help_topic(entry.window, entry.item, entry.topic);
      break;
    case HelpKind::kMenuItem:
      tk_.set_menu_help_topic(entry.item, entry.topic);
      break;
  }
}

}  // namespace px::shell
