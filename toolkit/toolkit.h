// The toolkit layer: everything the console's GUI code sees of windows.
//
// Windows and dialogs are created from resources (toolkit/resources/) by id,
// each with one event handler. The handler receives every event of its
// window as an Event whose type carries the console's event numbers (0
// create, 1 destroy, 3 resize, 4 paint, 5 close, 6 mouse, 13 menu command,
// 15 control notification, 16 timer, 17 quit, 18 help, 19 user). Controls
// are reached by their resource ids through Window::control().
//
// Two back ends implement Toolkit: Qt 6 Widgets for the program
// (toolkit/qt/qt_backend.h) and an in-memory one for tests that also plays
// the operator (toolkit/headless/headless_toolkit.h). The GUI code takes a
// Toolkit& (or the Window of its event) and never includes Qt, so the same
// handler code runs under both.
//
// Rules both back ends keep:
// - create_window and run_modal_dialog deliver the create event, then a
//   resize event with the client size, before anything else; destroy
//   delivers the destroy event while the controls still answer, then the
//   window is gone and every call on its handle is a quiet no-op (getters
//   give empty values).
// - Closing is the handler's choice: the close box and Escape (in a dialog
//   without a cancel button) only send the close event; a handler that
//   wants the window gone calls destroy(). A modal dialog returns from
//   run_modal_dialog when it has been destroyed.
// - Enter presses a dialog's default button and Escape its cancel button,
//   as a click on it would; Tab follows the definition order.
// - Notifications come only from the operator's acts, never from the
//   program's own changes. A check box or radio button has its new state
//   when its kClicked arrives; checking a radio button unchecks its group.
// - Menu commands and accelerators of disabled items are not delivered.
// - Message boxes are application-modal, owned by the active window, with
//   message 183 of the message file as their caption.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/event.h"
#include "toolkit/resources/resource.h"

namespace px::tk {

class Toolkit;
class Window;
struct Event;

using WindowId = unsigned;  // 0 is no window
using Handler = std::function<void(const Event&)>;
// Sees every event before its window's handler does; returns true when it
// took the event, which then does not reach the handler.
using HelpHook = std::function<bool(const Event&)>;

struct TextRange {  // characters [start, end); start == end is the caret
  int start = 0;
  int end = 0;
};

struct ScrollRange {
  int minimum = 0;
  int maximum = 0;
};

struct TextOrigin {  // first paragraph and first column in view
  int line = 0;
  int column = 0;
};

struct FileRequest {
  std::string prompt;     // the dialog's title
  std::string directory;  // where it opens; empty: the default directory
  std::string file_name;  // the name it proposes
};

// One control of a window, by id. A cheap value, like a pointer: its calls
// are const because they change the control, not the handle. Calls on a
// control that does not exist do nothing and give empty values.
class Control {
 public:
  Control() = default;
  Control(Toolkit* toolkit, WindowId window, int id) : tk_(toolkit), window_(window), id_(id) {}

  bool exists() const;
  int id() const { return id_; }
  ControlKind kind() const;

  // The label or field text (the combo box's field; a list's chosen row).
  std::string text() const;
  void set_text(std::string_view text) const;
  bool enabled() const;
  void set_enabled(bool on) const;
  // The tooltip shown when the pointer rests on the control, even when it
  // is disabled (such as why it is); empty: none.
  std::string tip() const;
  void set_tip(std::string_view text) const;
  bool visible() const;
  void set_visible(bool on) const;
  void focus() const;
  bool has_focus() const;
  void set_font(const Font& font) const;
  Rect rect() const;  // pixels in the client area
  void set_rect(const Rect& rect) const;

  // Edits and combo boxes: the longest text the operator can type (0: none)
  // and the selection or caret, in characters.
  void set_limit(int characters) const;
  int limit() const;
  TextRange selection() const;
  void set_selection(int start, int end) const;
  void set_caret(int position) const { set_selection(position, position); }

  // Check boxes and radio buttons.
  bool checked() const;
  void set_checked(bool on) const;

  // List boxes, combo boxes and drop-down lists: rows by index from 0.
  // add puts the row at position (-1: the end); false when it cannot.
  bool add(std::string_view row, int position = -1) const;
  bool set_row(int index, std::string_view row) const;
  bool remove(int index) const;
  void clear_rows() const;
  int count() const;
  std::string row(int index) const;
  // Selects or unselects one row; in a single-selection list selecting a
  // row unselects the others.
  void select(int index, bool on = true) const;
  void select_all(bool on) const;
  int selected() const;  // the first selected row, -1 when none
  std::vector<int> selected_rows() const;
  int selection_count() const;
  // List boxes: the first row in view. Scrolling puts a row there, as far
  // as the list can scroll (the last page is full); rows changed, added or
  // removed leave it where it is as far as they can, and selecting a row
  // that was not selected scrolls that row into view.
  int top_row() const;
  void set_top_row(int index) const;

  // Lists and text edits: hold the redrawing while many rows change.
  void suspend() const;
  void resume() const;

  // Scroll bars.
  void set_range(int minimum, int maximum) const;
  ScrollRange range() const;
  void set_position(int position) const;  // kept within the range
  int position() const;
  void set_page(int page) const;          // the proportion shown, and a page step
  int page() const;

  // Text edits: paragraphs (lines) of text.
  void clear_paragraphs() const;
  bool add_paragraph(std::string_view text) const;  // false when the edit is full
  int paragraph_count() const;
  std::string paragraph(int index) const;
  void show_paragraph(int index) const;  // scrolls it into view
  TextOrigin origin() const;
  void set_origin(TextOrigin origin) const;
  int visible_lines() const;

 private:
  Toolkit* tk_ = nullptr;
  WindowId window_ = 0;
  int id_ = 0;
};

// A window or dialog. A cheap value; calls on a window that is gone do
// nothing and give empty values.
class Window {
 public:
  Window() = default;
  Window(Toolkit* toolkit, WindowId id) : tk_(toolkit), id_(id) {}

  bool exists() const;
  WindowId id() const { return id_; }
  Toolkit& toolkit() const { return *tk_; }
  int resource_id() const;
  long app_value() const;
  void set_app_value(long value) const;
  Control control(int id) const { return Control(tk_, id_, id); }
  int focused_control() const;  // 0 when no control of it has the focus

  std::string title() const;
  void set_title(std::string_view title) const;
  bool enabled() const;
  void set_enabled(bool on) const;
  bool visible() const;
  void set_visible(bool on) const;
  void raise() const;
  void destroy() const;
  Rect frame() const;  // the outer rectangle on the screen
  void set_frame(const Rect& frame) const;
  Size client_size() const;
  void invalidate() const;  // a paint event follows

  // Drawing, only while a paint event is being handled.
  void clear(Color color) const;
  void set_draw_font(const Font& font) const;
  void draw_text(Point baseline_start, std::string_view text) const;
  bool draw_image(Point top_left, std::string_view path) const;  // false: unreadable

  // Menu items of this window's menu bar.
  bool has_menu_item(int item) const;
  bool menu_enabled(int item) const;
  void set_menu_enabled(int item, bool on) const;
  bool menu_checked(int item) const;
  void set_menu_checked(int item, bool on) const;
  // The tooltip of a menu item, shown even while it is disabled; empty: none.
  std::string menu_tip(int item) const;
  void set_menu_tip(int item, std::string_view text) const;

  // A repeating timer; its events carry the returned id. 0: not started.
  long start_timer(int milliseconds) const;
  void stop_timer(long timer) const;

  // Sends every mouse event to this window until release_mouse.
  void capture_mouse() const;
  void release_mouse() const;

  // Delivers a user event (19) to this window's handler now.
  void send_user_event(int user_id) const;

  friend bool operator==(const Window& a, const Window& b) { return a.id_ == b.id_; }

 private:
  Toolkit* tk_ = nullptr;
  WindowId id_ = 0;
};

struct Event {
  EventType type = EventType::kCreate;
  Window window;
  int command = 0;  // kCommand: the menu item id
  int control = 0;  // kControl: the control; kHelp: the focused one or 0
  Notice notice = Notice::kClicked;
  ScrollAction scroll = ScrollAction::kNone;
  int position = 0;  // kControl with kScrolled: the position after it
  long timer = 0;    // kTimer
  Point mouse;       // kMouse: client coordinates
  MouseAction mouse_action = MouseAction::kDown;
  MouseButton mouse_button = MouseButton::kLeft;
  Size size;           // kResize: the new client size
  bool query = false;  // kQuit: true when only asking whether it may end
  int user_id = 0;     // kUser
  Key key = Key::kNone;  // kControl with kKey

  int number() const { return static_cast<int>(type); }
  bool is_control(int id, Notice what) const {
    return type == EventType::kControl && control == id && notice == what;
  }
  bool double_click() const {
    return type == EventType::kControl && notice == Notice::kDoubleClicked;
  }
};

// What the program hands the toolkit at start.
struct Application {
  int menu_bar = 1000;  // resource id of the task window's menu bar
  Handler task_handler;
};

// The back-end contract. GUI code mostly uses Window and Control, which call
// these; the calls taking a WindowId are theirs.
class Toolkit {
 public:
  virtual ~Toolkit() = default;

  // Creates the task window (resource kTaskWindow with the given menu bar),
  // delivers its create event and runs until shut_down; returns 0. The
  // headless back end returns right after the create event.
  virtual int run_application(const Application& app) = 0;
  virtual Window task_window() = 0;
  // Destroys every window, the task window last, and ends run_application.
  virtual void shut_down() = 0;
  // The task handler's yes to a quit event whose query flag is set.
  virtual void allow_quit() = 0;

  // A window from resource_id; an invalid Window when it cannot be made.
  // frame, when given, is its outer rectangle in pixels.
  virtual Window create_window(int resource_id, Handler handler, long app_value = 0,
                               std::optional<Rect> frame = std::nullopt) = 0;
  // Runs a dialog modally and returns when it has been destroyed; false
  // when it could not be created.
  virtual bool run_modal_dialog(int resource_id, Handler handler, long app_value = 0) = 0;
  // The top-level window that has the keyboard focus.
  virtual Window focused_top_window() = 0;

  virtual void show_busy_cursor() = 0;  // until the current event is done
  virtual void beep() = 0;
  virtual Rect screen_area() = 0;       // the primary screen less panels
  virtual int title_bar_height() = 0;
  virtual std::string default_directory() = 0;

  // Message boxes. error: exclamation icon, note: information icon; both
  // have one OK button. ask: a question with two or three buttons (an empty
  // third is left out); Escape gives the last.
  virtual void post_error(std::string_view text) = 0;
  virtual void post_note(std::string_view text) = 0;
  virtual Answer post_ask(std::string_view text, std::string_view first,
                          std::string_view second, std::string_view third = {}) = 0;
  // The file-open dialog; the chosen file's full path, or nothing.
  virtual std::optional<std::string> choose_file_to_open(const FileRequest& request) = 0;

  // On-line help: an HTML file whose anchors are the topics.
  virtual bool open_help_file(std::string_view path) = 0;
  virtual void close_help_file() = 0;
  virtual bool help_file_open() = 0;
  virtual void set_help_topic(WindowId window, int control, std::string_view topic) = 0;
  virtual void set_menu_help_topic(int item, std::string_view topic) = 0;
  virtual void forget_help_topics(WindowId window) = 0;
  // Shows the topic a help event or help-menu command asks for; true when
  // it did.
  virtual bool process_help_event(const Event& event) = 0;
  virtual void show_help_topic(std::string_view topic) = 0;
  virtual void set_help_hook(HelpHook hook) = 0;

  // Windows, for Window.
  virtual bool exists(WindowId w) = 0;
  virtual int resource_id(WindowId w) = 0;
  virtual long app_value(WindowId w) = 0;
  virtual void set_app_value(WindowId w, long value) = 0;
  virtual std::string title(WindowId w) = 0;
  virtual void set_title(WindowId w, std::string_view title) = 0;
  virtual bool window_enabled(WindowId w) = 0;
  virtual void set_window_enabled(WindowId w, bool on) = 0;
  virtual bool window_visible(WindowId w) = 0;
  virtual void set_window_visible(WindowId w, bool on) = 0;
  virtual void raise(WindowId w) = 0;
  virtual void destroy(WindowId w) = 0;
  virtual Rect frame(WindowId w) = 0;
  virtual void set_frame(WindowId w, const Rect& frame) = 0;
  virtual Size client_size(WindowId w) = 0;
  virtual void invalidate(WindowId w) = 0;
  virtual void clear(WindowId w, Color color) = 0;
  virtual void set_draw_font(WindowId w, const Font& font) = 0;
  virtual void draw_text(WindowId w, Point at, std::string_view text) = 0;
  virtual bool draw_image(WindowId w, Point at, std::string_view path) = 0;
  virtual bool has_menu_item(WindowId w, int item) = 0;
  virtual bool menu_enabled(WindowId w, int item) = 0;
  virtual void set_menu_enabled(WindowId w, int item, bool on) = 0;
  virtual bool menu_checked(WindowId w, int item) = 0;
  virtual void set_menu_checked(WindowId w, int item, bool on) = 0;
  virtual std::string menu_tip(WindowId w, int item) = 0;
  virtual void set_menu_tip(WindowId w, int item, std::string_view text) = 0;
  virtual long start_timer(WindowId w, int milliseconds) = 0;
  virtual void stop_timer(long timer) = 0;
  virtual void capture_mouse(WindowId w) = 0;
  virtual void release_mouse() = 0;
  virtual void send_user_event(WindowId w, int user_id) = 0;
  virtual int focused_control(WindowId w) = 0;

  // Controls, for Control.
  virtual bool has_control(WindowId w, int id) = 0;
  virtual ControlKind control_kind(WindowId w, int id) = 0;
  virtual std::string text(WindowId w, int id) = 0;
  virtual void set_text(WindowId w, int id, std::string_view text) = 0;
  virtual bool enabled(WindowId w, int id) = 0;
  virtual void set_enabled(WindowId w, int id, bool on) = 0;
  virtual std::string tip(WindowId w, int id) = 0;
  virtual void set_tip(WindowId w, int id, std::string_view text) = 0;
  virtual bool visible(WindowId w, int id) = 0;
  virtual void set_visible(WindowId w, int id, bool on) = 0;
  virtual void focus(WindowId w, int id) = 0;
  virtual void set_font(WindowId w, int id, const Font& font) = 0;
  virtual Rect control_rect(WindowId w, int id) = 0;
  virtual void set_control_rect(WindowId w, int id, const Rect& rect) = 0;
  virtual void set_limit(WindowId w, int id, int characters) = 0;
  virtual int limit(WindowId w, int id) = 0;
  virtual TextRange selection(WindowId w, int id) = 0;
  virtual void set_selection(WindowId w, int id, int start, int end) = 0;
  virtual bool checked(WindowId w, int id) = 0;
  virtual void set_checked(WindowId w, int id, bool on) = 0;
  virtual bool list_add(WindowId w, int id, std::string_view row, int position) = 0;
  virtual bool list_set_row(WindowId w, int id, int index, std::string_view row) = 0;
  virtual bool list_remove(WindowId w, int id, int index) = 0;
  virtual void list_clear(WindowId w, int id) = 0;
  virtual int list_count(WindowId w, int id) = 0;
  virtual std::string list_row(WindowId w, int id, int index) = 0;
  virtual void list_select(WindowId w, int id, int index, bool on) = 0;
  virtual void list_select_all(WindowId w, int id, bool on) = 0;
  virtual std::vector<int> list_selection(WindowId w, int id) = 0;
  virtual int list_top(WindowId w, int id) = 0;
  virtual void list_set_top(WindowId w, int id, int index) = 0;
  virtual void suspend_redraw(WindowId w, int id, bool suspended) = 0;
  virtual void set_scroll_range(WindowId w, int id, int minimum, int maximum) = 0;
  virtual ScrollRange scroll_range(WindowId w, int id) = 0;
  virtual void set_scroll_position(WindowId w, int id, int position) = 0;
  virtual int scroll_position(WindowId w, int id) = 0;
  virtual void set_scroll_page(WindowId w, int id, int page) = 0;
  virtual int scroll_page(WindowId w, int id) = 0;
  virtual void text_clear(WindowId w, int id) = 0;
  virtual bool text_add(WindowId w, int id, std::string_view paragraph) = 0;
  virtual int text_count(WindowId w, int id) = 0;
  virtual std::string text_paragraph(WindowId w, int id, int index) = 0;
  virtual void text_show(WindowId w, int id, int index) = 0;
  virtual TextOrigin text_origin(WindowId w, int id) = 0;
  virtual void text_set_origin(WindowId w, int id, TextOrigin origin) = 0;
  virtual int text_visible_lines(WindowId w, int id) = 0;
};

// Here, not in window.cpp, so that code reading it sees a window that exists
// has a toolkit (and so toolkit() after exists() is never a null reference).
inline bool Window::exists() const { return tk_ && id_ != 0 && tk_->exists(id_); }

}  // namespace px::tk
