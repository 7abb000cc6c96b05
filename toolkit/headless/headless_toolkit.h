// The headless back end: the toolkit's state kept in memory, and a test's
// hands on it. A test creates one, runs the GUI code against it as a
// Toolkit, and acts as the operator: types, clicks, picks rows, chooses menu
// items, answers message boxes and dialogs, lets time pass.
//
// Scripts. Every message box, modal dialog and file dialog that waits for
// the operator must have been scripted before it opens, in order:
//   expect_error / expect_note / answer_ask    the next message boxes
//   on_dialog(id, script)                      the next modal dialogs; the
//       script acts on the open dialog and must leave it closed (pressing
//       OK or Cancel through click()); a dialog that closes itself while
//       being created needs no script
//   answer_file_dialog(path or nothing)        the next file dialogs
// A box or dialog nobody scripted, one that does not match its script, a
// script still waiting when the toolkit is destroyed, drawing outside a
// paint event, an act on a control that does not exist, and a list or text
// edit left suspended after an event are failures: they go to the failure
// handler, which by default prints them and aborts the program, so that no
// test passes by accident.
//
// Operator acts return false when a real operator could not have done them
// (the control or window is disabled or hidden, a modal dialog blocks the
// window, the menu item is disabled); nothing happens then.
//
// Geometry: 2 pixels per dialog unit each way, 16-pixel text lines, a
// 1280 x 1024 screen and a 24-pixel title bar. Time stands still until
// advance_time moves it.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/help_topics.h"
#include "toolkit/resources/catalog.h"
#include "toolkit/toolkit.h"

namespace px::tk {

struct HeadlessWindow;
struct HeadlessControl;

enum class BoxKind : std::uint8_t { kError, kNote, kAsk };

// A message box as the operator saw it.
struct ShownBox {
  BoxKind kind = BoxKind::kError;
  std::string caption;
  std::string text;
  std::vector<std::string> buttons;
  Answer answer = Answer::kFirst;
};

// One drawing call of a paint event.
struct DrawOp {
  enum class Kind : std::uint8_t { kClear, kText, kImage };
  Kind kind = Kind::kText;
  Point at;
  std::string text;  // the text, or the image's path
  Color color;
};

class HeadlessToolkit final : public Toolkit {
 public:
  using FailureHandler = std::function<void(const std::string&)>;
  using DialogScript = std::function<void(Window dialog)>;

  explicit HeadlessToolkit(ResourceLookup resources = {});
  ~HeadlessToolkit() override;
  HeadlessToolkit(const HeadlessToolkit&) = delete;
  HeadlessToolkit& operator=(const HeadlessToolkit&) = delete;

  void set_failure_handler(FailureHandler handler);

  // ---- scripts
  void expect_error(std::string_view text_contains = {});
  void expect_note(std::string_view text_contains = {});
  void answer_ask(Answer answer, std::string_view text_contains = {});
  void on_dialog(int resource_id, DialogScript script);
  void answer_file_dialog(std::optional<std::string> path);
  // Reports every script not used yet, and forgets them.
  void verify_scripts_used();
  const std::vector<ShownBox>& boxes() const { return boxes_; }
  const std::vector<FileRequest>& file_requests() const { return file_requests_; }

  // ---- the operator's acts
  // Types characters one by one at the caret, replacing the selection first;
  // "\b" deletes as Backspace does. Each change notifies kChanged; a
  // character beyond the limit is refused without one. Focuses the control.
  bool type(Window w, int control, std::string_view keys);
  // Selects all the text and pastes text in its place (cut to the limit):
  // one kChanged.
  bool replace_text(Window w, int control, std::string_view text);
  // A button, check box or radio button.
  bool click(Window w, int control);
  // A row of a list box (toggles it in a multiple-selection list), combo
  // box or drop-down list: kSelectionChanged.
  bool click_row(Window w, int control, int row);
  // click_row, then kDoubleClicked (list boxes only).
  bool double_click_row(Window w, int control, int row);
  // Scrolls a list box (the wheel or its scroll bar) to have row first in
  // view, as far as it goes; no notification.
  bool scroll_list(Window w, int control, int row);
  // A key pressed with the focus in control, which gets it first (0: the
  // focus stays where it is). A key the window takes (WindowDef::keys)
  // reaches it as kKey with the focused control; otherwise only a list box
  // reports one, Insert or Enter. False when nothing takes the key.
  bool press_key(Window w, int control, Key key);
  // Tab or a mouse click into a control: kFocusOut, kFocusIn.
  bool focus_control(Window w, int control);
  bool scroll(Window w, int control, ScrollAction action, int thumb_position = 0);
  bool press_enter(Window dialog);   // its default button
  bool press_escape(Window dialog);  // its cancel button, or the close event
  bool close(Window w);              // the close box: the close event
  bool choose_menu(Window w, int item);
  bool press_accelerator(Window w, std::string_view keys);  // "Ctrl+X"
  bool mouse(Window w, Point at, MouseAction action = MouseAction::kDown,
             MouseButton button = MouseButton::kLeft);
  bool request_help(Window w);  // F1: event 18 with the focused control
  void resize(Window w, Size client);
  void activate(Window w);  // makes it the focused top-level window
  // Delivers a quit event to the task window; true when the program agreed
  // (allow_quit for a query, always for a plain quit).
  bool send_quit(bool query);
  void fire_timer(long timer);
  void advance_time(int milliseconds);  // fires every timer that falls due

  // ---- what the operator sees
  bool running() const { return running_; }
  Window find_window(int resource_id);  // the newest open one
  std::vector<Window> open_windows();
  // Delivers a paint event and returns the texts it drew, in order.
  std::vector<std::string> paint(Window w);
  const std::vector<DrawOp>& last_drawing(Window w);
  // The window's title and every control with its state, one per line.
  std::string describe(Window w);
  int beeps() const { return beeps_; }
  int busy_cursor_shown() const { return busy_; }
  const std::vector<std::string>& help_topics_shown() const { return help_shown_; }
  std::vector<long> timers(Window w) const;
  int timer_interval(long timer) const;
  WindowId mouse_capture() const { return capture_; }
  std::vector<std::string> menu_labels(Window w);  // items with their state

  // ---- Toolkit
  int run_application(const Application& app) override;
  Window task_window() override;
  void shut_down() override;
  void allow_quit() override;
  Window create_window(int resource_id, Handler handler, long app_value = 0,
                       std::optional<Rect> frame = std::nullopt) override;
  bool run_modal_dialog(int resource_id, Handler handler, long app_value = 0) override;
  Window focused_top_window() override;
  void show_busy_cursor() override { ++busy_; }
  void beep() override { ++beeps_; }
  Rect screen_area() override { return {0, 0, 1280, 1024}; }
  int title_bar_height() override { return 24; }
  std::string default_directory() override;
  void post_error(std::string_view text) override;
  void post_note(std::string_view text) override;
  Answer post_ask(std::string_view text, std::string_view first, std::string_view second,
                  std::string_view third = {}) override;
  std::optional<std::string> choose_file_to_open(const FileRequest& request) override;
  bool open_help_file(std::string_view path) override;
  void close_help_file() override;
  bool help_file_open() override { return help_open_; }
  void set_help_topic(WindowId w, int control, std::string_view topic) override;
  void set_menu_help_topic(int item, std::string_view topic) override;
  void forget_help_topics(WindowId w) override;
  bool process_help_event(const Event& event) override;
  void show_help_topic(std::string_view topic) override;
  void set_help_hook(HelpHook hook) override;

  bool exists(WindowId w) override;
  int resource_id(WindowId w) override;
  long app_value(WindowId w) override;
  void set_app_value(WindowId w, long value) override;
  std::string title(WindowId w) override;
  void set_title(WindowId w, std::string_view title) override;
  bool window_enabled(WindowId w) override;
  void set_window_enabled(WindowId w, bool on) override;
  bool window_visible(WindowId w) override;
  void set_window_visible(WindowId w, bool on) override;
  void raise(WindowId w) override;
  void destroy(WindowId w) override;
  Rect frame(WindowId w) override;
  void set_frame(WindowId w, const Rect& frame) override;
  Size client_size(WindowId w) override;
  void invalidate(WindowId w) override;
  void clear(WindowId w, Color color) override;
  void set_draw_font(WindowId w, const Font& font) override;
  void draw_text(WindowId w, Point at, std::string_view text) override;
  bool draw_image(WindowId w, Point at, std::string_view path) override;
  bool has_menu_item(WindowId w, int item) override;
  bool menu_enabled(WindowId w, int item) override;
  void set_menu_enabled(WindowId w, int item, bool on) override;
  bool menu_checked(WindowId w, int item) override;
  void set_menu_checked(WindowId w, int item, bool on) override;
  std::string menu_tip(WindowId w, int item) override;
  void set_menu_tip(WindowId w, int item, std::string_view text) override;
  long start_timer(WindowId w, int milliseconds) override;
  void stop_timer(long timer) override;
  void capture_mouse(WindowId w) override;
  void release_mouse() override { capture_ = 0; }
  void send_user_event(WindowId w, int user_id) override;
  int focused_control(WindowId w) override;

  bool has_control(WindowId w, int id) override;
  ControlKind control_kind(WindowId w, int id) override;
  std::string text(WindowId w, int id) override;
  void set_text(WindowId w, int id, std::string_view text) override;
  bool enabled(WindowId w, int id) override;
  void set_enabled(WindowId w, int id, bool on) override;
  std::string tip(WindowId w, int id) override;
  void set_tip(WindowId w, int id, std::string_view text) override;
  bool visible(WindowId w, int id) override;
  void set_visible(WindowId w, int id, bool on) override;
  void focus(WindowId w, int id) override;
  void set_font(WindowId w, int id, const Font& font) override;
  Rect control_rect(WindowId w, int id) override;
  void set_control_rect(WindowId w, int id, const Rect& rect) override;
  void set_limit(WindowId w, int id, int characters) override;
  int limit(WindowId w, int id) override;
  TextRange selection(WindowId w, int id) override;
  void set_selection(WindowId w, int id, int start, int end) override;
  bool checked(WindowId w, int id) override;
  void set_checked(WindowId w, int id, bool on) override;
  bool list_add(WindowId w, int id, std::string_view row, int position = -1) override;
  bool list_set_row(WindowId w, int id, int index, std::string_view row) override;
  bool list_remove(WindowId w, int id, int index) override;
  void list_clear(WindowId w, int id) override;
  int list_count(WindowId w, int id) override;
  std::string list_row(WindowId w, int id, int index) override;
  void list_select(WindowId w, int id, int index, bool on) override;
  void list_select_all(WindowId w, int id, bool on) override;
  std::vector<int> list_selection(WindowId w, int id) override;
  int list_top(WindowId w, int id) override;
  void list_set_top(WindowId w, int id, int index) override;
  void suspend_redraw(WindowId w, int id, bool suspended) override;
  void set_scroll_range(WindowId w, int id, int minimum, int maximum) override;
  ScrollRange scroll_range(WindowId w, int id) override;
  void set_scroll_position(WindowId w, int id, int position) override;
  int scroll_position(WindowId w, int id) override;
  void set_scroll_page(WindowId w, int id, int page) override;
  int scroll_page(WindowId w, int id) override;
  void text_clear(WindowId w, int id) override;
  bool text_add(WindowId w, int id, std::string_view paragraph) override;
  int text_count(WindowId w, int id) override;
  std::string text_paragraph(WindowId w, int id, int index) override;
  void text_show(WindowId w, int id, int index) override;
  TextOrigin text_origin(WindowId w, int id) override;
  void text_set_origin(WindowId w, int id, TextOrigin origin) override;
  int text_visible_lines(WindowId w, int id) override;

 private:
  struct BoxScript {
    BoxKind kind;
    std::string contains;
    Answer answer;
  };
  struct DialogEntry {
    int resource_id;
    DialogScript script;
  };
  struct Timer {
    WindowId window;
    int interval;
    long long due;
  };

  HeadlessWindow* find(WindowId w);
  // The control, or nullptr; a window that exists without the control is
  // reported as a failure.
  HeadlessControl* control(WindowId w, int id);
  HeadlessControl* acting_on(Window w, int id);  // nullptr when the operator can't
  bool can_act(Window w);
  void fail(const std::string& what);
  Window make_window(int resource_id, Handler handler, long app_value, bool modal,
                     std::optional<Rect> frame);
  void deliver(WindowId w, Event event);
  void notify(WindowId w, int control, Notice notice, ScrollAction action = ScrollAction::kNone,
              int position = 0);
  void check_suspended();
  Answer take_box(BoxKind kind, std::string_view text, std::vector<std::string> buttons);
  void run_dialog_script(Window dialog);
  void move_focus(HeadlessWindow& win, int control);
  // A button pressed from the keyboard (Enter, Escape): no focus change.
  bool push_button(Window w, int control);

  ResourceLookup resources_;
  std::map<WindowId, std::unique_ptr<HeadlessWindow>> windows_;
  std::vector<WindowId> stacking_;  // bottom to top
  std::vector<WindowId> modal_;     // open modal dialogs, innermost last
  WindowId next_id_ = 1;
  WindowId task_ = 0;
  WindowId capture_ = 0;
  WindowId painting_ = 0;
  int depth_ = 0;  // nested event deliveries
  bool running_ = false;
  bool quit_allowed_ = false;

  std::map<long, Timer> timers_;
  long next_timer_ = 1;
  long long now_ = 0;

  FailureHandler on_failure_;
  std::deque<BoxScript> box_scripts_;
  std::deque<DialogEntry> dialog_scripts_;
  std::deque<std::optional<std::string>> file_answers_;
  std::vector<ShownBox> boxes_;
  std::vector<FileRequest> file_requests_;

  HelpHook help_hook_;
  HelpTopics help_topics_;
  bool help_open_ = false;
  std::vector<std::string> help_shown_;
  int beeps_ = 0;
  int busy_ = 0;
};

}  // namespace px::tk
