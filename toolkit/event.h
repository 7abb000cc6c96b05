// The small value types of the toolkit layer: geometry, colours, fonts and
// the numbers that name events, control notifications and scroll actions.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace px::tk {

// Pixels, from the top-left corner of a window's client area (or of the
// screen for a window's frame).
struct Point {
  int x = 0;
  int y = 0;
};

struct Size {
  int width = 0;
  int height = 0;
};

struct Rect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

struct Color {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
};
inline constexpr Color kLightGrey{192, 192, 192};
inline constexpr Color kWhite{255, 255, 255};

// A font by what the text needs rather than by a font file: the system's
// fixed-pitch font, a fixed-pitch font that also covers Chinese, Japanese and
// Korean, the system's proportional font, or a named family.
struct Font {
  enum class Family : std::uint8_t { kFixed, kFixedCjk, kProportional, kNamed };
  Family family = Family::kFixed;
  std::string name;  // kNamed only
  int points = 10;
  bool bold = false;
  bool italic = false;
};

// "courier" and "fixed" give the fixed-pitch font, "system" the CJK-capable
// fixed-pitch font, "" the proportional font, anything else that family.
Font font_by_family(std::string_view family, int points);

// Event numbers: the first word of every event a handler receives.
enum class EventType : int {
  kCreate = 0,   // the window exists and its controls are built
  kDestroy = 1,  // the window is going away; its controls still answer
  kResize = 3,   // the client area has a new size (Event::size)
  kPaint = 4,    // draw the window now (clear, draw_text, draw_image)
  kClose = 5,    // the operator asked to close (close box, Escape in a
                 // dialog without a cancel button); the handler decides
  kMouse = 6,    // a mouse button went down or up (Event::mouse)
  kCommand = 13, // a menu item or its accelerator (Event::command)
  kControl = 15, // a control notification (Event::control, Event::notice)
  kTimer = 16,   // a timer of this window ran out (Event::timer)
  kQuit = 17,    // the application is asked to end (Event::query)
  kHelp = 18,    // the operator asked for help (Event::control: the focus)
  kUser = 19,    // an event the program posted (Event::user_id)
};

// What happened to a control. Only the operator's acts notify: a change the
// program makes (set_text, list_select, set_checked...) never does.
enum class Notice : std::uint8_t {
  kClicked,           // a button pressed; a check box or radio button
                      // clicked (its new state is already set)
  kChanged,           // an edit's or combo box's text changed by typing
  kFocusIn,           // the control gained the keyboard focus
  kFocusOut,          // the control lost it
  kSelectionChanged,  // a list box's selection changed by a click or a key;
                      // a combo box or drop-down row was picked (always)
  kDoubleClicked,     // a list row was double-clicked (after selecting it)
  kScrolled,          // a scroll bar moved (Event::scroll, Event::position)
  kKey,               // a key (Event::key): one its window takes
                      // wherever the focus is in it (WindowDef::keys;
                      // Event::control is the focused control, 0 for
                      // none), or one a list box has no use for itself:
                      // Insert, or Enter outside a dialog
};

// The keys reported with Notice::kKey. A window takes the ones its
// resource lists before its controls see them.
enum class Key : std::uint8_t {
  kNone,
  kInsert,
  kEnter,    // Return or the keypad's Enter
  kCtrlF,    // find
  kF3,       // find the next
  kShiftF3,  // find the previous
};

enum class ScrollAction : std::uint8_t {
  kNone,
  kLineUp,      // the arrow towards the start
  kLineDown,    // the arrow towards the end
  kPageUp,      // the track towards the start
  kPageDown,    // the track towards the end
  kThumbTrack,  // the thumb is being dragged
  kThumb,       // the thumb was let go
};

enum class MouseAction : std::uint8_t { kDown, kUp };
enum class MouseButton : std::uint8_t { kLeft, kMiddle, kRight };

// Answers of a question box: the button pressed, counting from the left.
enum class Answer : int { kFirst = 1, kSecond = 2, kThird = 3 };

}  // namespace px::tk
