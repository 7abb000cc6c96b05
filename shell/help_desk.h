// On-line help: the help file is opened only when the operator first asks
// for help, with a prompt for the file when it is missing, and the topics
// that windows register before then wait in a queue.
//
// The help file is "pxcntrl.html" in the toolkit's default directory. While
// it is not open, the desk's hook lets every event through except a help
// request (event 18) and the help menu's commands (32450 to 32462): those
// open the file (prompting until a good one is chosen or the prompt is
// cancelled), hand the queued topics to the toolkit, and are then shown as
// help. Once the file is open every event goes to the toolkit's help first.
#pragma once

#include <string>
#include <vector>

#include "toolkit/toolkit.h"

namespace px::shell {

// What a help topic is attached to.
enum class HelpKind : int {
  kWindow = 1,    // the window itself
  kControl = 2,   // one control of the window
  kMenuItem = 3,  // a menu item, by its command id
};

inline constexpr const char* kHelpFileName = "pxcntrl.html";
inline constexpr const char* kHelpPrompt = "Please Find and Open help file...";
inline constexpr const char* kHelpUnreadable = "Help file is unreadable, please choose another.";
inline constexpr const char* kHelpInvalid = "Invalid help file, please choose another.";

class HelpDesk {
 public:
  explicit HelpDesk(tk::Toolkit& toolkit) : tk_(toolkit) {}

  // Makes hook() the toolkit's help hook.
  void install();

  // Attaches topic to a window (item unused), a control of it (item: its
  // id) or a menu item (item: its command id): at once when the help file
  // is open, else queued until it is.
  void associate(tk::WindowId window, int item, std::string topic, HelpKind kind);

  // Drops every queued topic of window; every window's destroy event calls
  // it, so a window gone before help was opened leaves nothing behind.
  void forget(tk::WindowId window);

  // Drops the queue and closes the help file (at the task window's end).
  void close();

  // The hook: true when the event was taken as a help request.
  bool hook(const tk::Event& event);

  size_t queued() const { return queue_.size(); }

 private:
  struct Entry {
    tk::WindowId window;
    int item;
    std::string topic;
    HelpKind kind;
  };

  // Opens the help file, prompting for it while it is missing or bad; false
  // when the operator cancelled.
  bool open_help_file();
  void pass_on(const Entry& entry);

  tk::Toolkit& tk_;
  std::vector<Entry> queue_;
};

}  // namespace px::shell
