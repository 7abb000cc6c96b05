// The Qt back end's classes (internal to toolkit/qt/; the screenshot program
// and the Qt test use them too). Each toolkit window is a record holding
// its top-level widget (QMainWindow for the task window, QDialog for
// dialogs, a plain QWidget otherwise), the canvas that is its client area,
// and its controls by id. The canvas paints through the handler and passes
// on mouse and resize; the frames pass on close requests. No class here
// declares signals or slots, so no moc step is needed.
#pragma once

#include <QDialog>
#include <QMainWindow>
#include <QPointer>
#include <QStringList>
#include <QWidget>

#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "toolkit/help_topics.h"
#include "toolkit/resources/catalog.h"
#include "toolkit/toolkit.h"

class QAction;
class QApplication;
class QButtonGroup;
class QMenuBar;
class QPainter;
class QTextBrowser;
class QTimer;

namespace px::tk {

class QtToolkit;

struct QtControl {
  int id = 0;
  ControlKind kind = ControlKind::kStatic;
  const ControlDef* def = nullptr;
  QWidget* widget = nullptr;  // owned by the canvas
  int paragraph_limit = 0;    // text edits
  int paragraphs = 0;
  QStringList pending;        // paragraphs added while suspended
  bool suspended = false;
};

struct QtWindow {
  WindowId id = 0;
  const WindowDef* def = nullptr;
  std::shared_ptr<Handler> handler;
  long app_value = 0;
  bool modal = false;
  QPointer<QWidget> frame;
  QPointer<QWidget> canvas;
  std::vector<QtControl> controls;
  std::map<int, QAction*> actions;
  QPainter* painter = nullptr;  // set while a paint event is handled
  Font draw_font;
  QSize last_size;  // the client size last reported
  bool destroying = false;

  QtControl* control(int control_id) {
    for (QtControl& c : controls) {
      if (c.id == control_id && c.id != kNoId) return &c;
    }
    return nullptr;
  }
};

// The client area of every window.
class Canvas : public QWidget {
 public:
  Canvas(QtToolkit& toolkit, WindowId id, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void closeEvent(QCloseEvent* event) override;  // when it is top-level

 private:
  QtToolkit& tk_;
  WindowId id_;
};

class TaskFrame : public QMainWindow {
 public:
  TaskFrame(QtToolkit& toolkit, WindowId id) : tk_(toolkit), id_(id) {}

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  QtToolkit& tk_;
  WindowId id_;
};

class DialogFrame : public QDialog {
 public:
  DialogFrame(QtToolkit& toolkit, WindowId id, QWidget* parent);

  void reject() override;  // Escape: the cancel button, or the close event

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  QtToolkit& tk_;
  WindowId id_;
};

// Builds the canvas's controls from the resource (qt_build.cpp).
void build_controls(QtToolkit& tk, QtWindow& win);
void build_menu_bar(QtToolkit& tk, QtWindow& win, QMainWindow& frame, const MenuBarDef& bar);
QFont make_qfont(const Font& font);
QString to_qt(std::string_view text);
std::string from_qt(const QString& text);

class QtToolkit final : public Toolkit {
 public:
  QtToolkit(int& argc, char** argv, ResourceLookup resources = {});
  ~QtToolkit() override;

  // For the screenshot program and the test: the task window without
  // running the event loop, and any resource (dialogs too) as a shown,
  // non-modal window.
  Window start_application(const Application& app);
  Window open_for_review(int resource_id, Handler handler = {});
  QWidget* frame_widget(WindowId w);
  QWidget* control_widget(WindowId w, int id);

  // Called by the widgets.
  void deliver(WindowId w, Event event);
  void notify(WindowId w, int control, Notice notice, ScrollAction action = ScrollAction::kNone,
              int position = 0);
  void paint(WindowId w, QPainter& painter);
  void client_resized(WindowId w, QSize size);
  void escape(WindowId w);
  QtWindow* find(WindowId w);
  double unit_x() const { return unit_x_; }
  double unit_y() const { return unit_y_; }

  int run_application(const Application& app) override;
  Window task_window() override;
  void shut_down() override;
  void allow_quit() override { quit_allowed_ = true; }
  Window create_window(int resource_id, Handler handler, long app_value = 0,
                       std::optional<Rect> frame = std::nullopt) override;
  bool run_modal_dialog(int resource_id, Handler handler, long app_value = 0) override;
  Window focused_top_window() override;
  void show_busy_cursor() override;
  void beep() override;
  Rect screen_area() override;
  int title_bar_height() override;
  std::string default_directory() override;
  void post_error(std::string_view text) override;
  void post_note(std::string_view text) override;
  Answer post_ask(std::string_view text, std::string_view first, std::string_view second,
                  std::string_view third = {}) override;
  std::optional<std::string> choose_file_to_open(const FileRequest& request) override;
  bool open_help_file(std::string_view path) override;
  void close_help_file() override;
  bool help_file_open() override { return !help_path_.isEmpty(); }
  void set_help_topic(WindowId w, int control, std::string_view topic) override;
  void set_menu_help_topic(int item, std::string_view topic) override;
  void forget_help_topics(WindowId w) override;
  bool process_help_event(const Event& event) override;
  void show_help_topic(std::string_view topic) override;
  void set_help_hook(HelpHook hook) override { help_hook_ = std::move(hook); }

  bool exists(WindowId w) override { return find(w) != nullptr; }
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
  void set_frame(WindowId w, const Rect& rect) override;
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
  void release_mouse() override;
  void send_user_event(WindowId w, int user_id) override;
  int focused_control(WindowId w) override;

  bool has_control(WindowId w, int id) override;
  ControlKind control_kind(WindowId w, int id) override;
  std::string text(WindowId w, int id) override;
  void set_text(WindowId w, int id, std::string_view value) override;
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
  Window make_window(int resource_id, Handler handler, long app_value, bool modal,
                     std::optional<Rect> frame, bool any_kind, int menu_bar = 0);
  QWidget* make_frame(QtWindow& win, bool modal, int menu_bar);
  QtControl* control(WindowId w, int id);
  QWidget* active_parent();
  void flush_text(QtControl& c);
  void end_main_loop();

  ResourceLookup resources_;
  std::unique_ptr<QApplication> own_app_;
  double unit_x_ = 1.75;
  double unit_y_ = 2.0;
  std::map<WindowId, std::unique_ptr<QtWindow>> windows_;
  std::vector<WindowId> stacking_;
  WindowId next_id_ = 1;
  WindowId task_ = 0;
  WindowId capture_pending_ = 0;
  bool quit_allowed_ = false;
  bool in_main_loop_ = false;
  bool busy_ = false;
  std::map<long, QPointer<QTimer>> timers_;
  long next_timer_ = 1;
  HelpHook help_hook_;
  HelpTopics help_topics_;
  QString help_path_;
  QPointer<QTextBrowser> help_view_;
};

}  // namespace px::tk
