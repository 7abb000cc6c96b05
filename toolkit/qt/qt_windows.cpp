// The Qt back end's windows: making them from resources, modal dialogs,
// destroying, geometry, drawing, menus, timers and the mouse.
#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QImage>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QShortcut>
#include <QTimer>

#include <cmath>

#include "toolkit/make_event.h"
#include "toolkit/qt/qt_toolkit.h"
#include "toolkit/resources/resource_ids.h"

namespace px::tk {

namespace {

// The QAction property that holds a menu item's own tooltip.
constexpr const char* kTipProperty = "px_tip";

MouseButton button_of(Qt::MouseButton button) {
  if (button == Qt::RightButton) return MouseButton::kRight;
  if (button == Qt::MiddleButton) return MouseButton::kMiddle;
  return MouseButton::kLeft;
}

Rect to_rect(const QRect& r) { return {r.x(), r.y(), r.width(), r.height()}; }

// The key sequences that press a key a window takes.
QList<QKeySequence> key_sequences(Key key) {
  switch (key) {
    case Key::kInsert: return {QKeySequence(Qt::Key_Insert)};
    case Key::kEnter: return {QKeySequence(Qt::Key_Return), QKeySequence(Qt::Key_Enter)};
    case Key::kCtrlF: return {QKeySequence(Qt::CTRL | Qt::Key_F)};
    case Key::kF3: return {QKeySequence(Qt::Key_F3)};
    case Key::kShiftF3: return {QKeySequence(Qt::SHIFT | Qt::Key_F3)};
    case Key::kNone: break;
  }
  return {};
}

}  // namespace

Canvas::Canvas(QtToolkit& toolkit, WindowId id, QWidget* parent)
    : QWidget(parent), tk_(toolkit), id_(id) {}

void Canvas::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  tk_.paint(id_, painter);
}

void Canvas::mousePressEvent(QMouseEvent* event) {
  tk_.deliver(id_, mouse_event({event->position().toPoint().x(), event->position().toPoint().y()},
                               MouseAction::kDown, button_of(event->button())));
}

void Canvas::mouseReleaseEvent(QMouseEvent* event) {
  tk_.deliver(id_, mouse_event({event->position().toPoint().x(), event->position().toPoint().y()},
                               MouseAction::kUp, button_of(event->button())));
}

void Canvas::resizeEvent(QResizeEvent*) { tk_.client_resized(id_, size()); }

void Canvas::closeEvent(QCloseEvent* event) {
  event->ignore();
  tk_.deliver(id_, make_event(EventType::kClose));
}

void TaskFrame::closeEvent(QCloseEvent* event) {
  event->ignore();
  tk_.deliver(id_, make_event(EventType::kClose));
}

DialogFrame::DialogFrame(QtToolkit& toolkit, WindowId id, QWidget* parent)
    : QDialog(parent), tk_(toolkit), id_(id) {}

void DialogFrame::reject() { tk_.escape(id_); }

void DialogFrame::closeEvent(QCloseEvent* event) {
  event->ignore();
  tk_.deliver(id_, make_event(EventType::kClose));
}

QWidget* QtToolkit::make_frame(QtWindow& win, bool modal, int menu_bar) {
  QSize client(static_cast<int>(std::lround(win.def->size.width * unit_x_)),
               static_cast<int>(std::lround(win.def->size.height * unit_y_)));
  QWidget* frame = nullptr;
  switch (win.def->kind) {
    case WindowKind::kTask: {
      auto* task = new TaskFrame(*this, win.id);
      win.frame = task;
      win.canvas = new Canvas(*this, win.id, task);
      task->setCentralWidget(win.canvas);
      if (const MenuBarDef* bar = resources_.menu_bar(menu_bar)) build_menu_bar(*this, win, *task, *bar);
      task->resize(client.width(), client.height() + task->menuBar()->sizeHint().height());
      frame = task;
      break;
    }
    case WindowKind::kDialog: {
      auto* dialog = new DialogFrame(*this, win.id, modal ? active_parent() : nullptr);
      win.canvas = new Canvas(*this, win.id, dialog);
      win.canvas->setGeometry(0, 0, client.width(), client.height());
      dialog->setFixedSize(client);
      frame = dialog;
      break;
    }
    case WindowKind::kDocument:
    case WindowKind::kPlain: {
      win.canvas = new Canvas(*this, win.id, nullptr);
      Qt::WindowFlags flags = Qt::Window;
      if (win.def->kind == WindowKind::kPlain) flags |= Qt::FramelessWindowHint;
      win.canvas->setWindowFlags(flags);
      win.canvas->resize(client);
      frame = win.canvas;
      break;
    }
  }
  win.frame = frame;
  frame->setWindowTitle(to_qt(win.def->title));
  auto* help = new QShortcut(QKeySequence::HelpContents, frame);
  QObject::connect(help, &QShortcut::activated, frame,
                   [this, id = win.id] { deliver(id, help_event(focused_control(id))); });
  // The window's own keys, taken wherever the focus is in it.
  for (Key key : win.def->keys) {
    for (const QKeySequence& sequence : key_sequences(key)) {
      auto* shortcut = new QShortcut(sequence, frame);
      shortcut->setContext(Qt::WindowShortcut);
      QObject::connect(shortcut, &QShortcut::activated, frame, [this, id = win.id, key] {
        deliver(id, key_event(focused_control(id), key));
      });
    }
  }
  win.last_size = client;
  return frame;
}

Window QtToolkit::make_window(int resource_id, Handler handler, long app_value, bool modal,
                              std::optional<Rect> frame, bool any_kind, int menu_bar) {
  const WindowDef* def = resources_.window(resource_id);
  if (!def) return Window(this, 0);
  if (!any_kind && (def->kind == WindowKind::kTask || (def->kind == WindowKind::kDialog) != modal)) {
    return Window(this, 0);
  }
  auto win = std::make_unique<QtWindow>();
  win->id = next_id_++;
  win->def = def;
  win->handler = std::make_shared<Handler>(std::move(handler));
  win->app_value = app_value;
  win->modal = modal;
  QtWindow& rec = *win;
  QWidget* top = make_frame(rec, modal, menu_bar);
  build_controls(*this, rec);
  if (frame) {
    int bar = def->kind == WindowKind::kPlain ? 0 : title_bar_height();
    top->move(frame->x, frame->y);
    top->resize(frame->width, std::max(1, frame->height - bar));
    rec.last_size = rec.canvas->size();
  }
  WindowId id = rec.id;
  windows_[id] = std::move(win);
  stacking_.push_back(id);
  deliver(id, make_event(EventType::kCreate));
  if (QtWindow* w = find(id)) {
    deliver(id, resize_event({w->last_size.width(), w->last_size.height()}));
  }
  if (QtWindow* w = find(id); w && !modal && w->frame) {
    w->frame->show();
    if (capture_pending_ == id) w->canvas->grabMouse();  // asked for while still hidden
  }
  if (capture_pending_ == id) capture_pending_ = 0;
  return Window(this, id);
}

Window QtToolkit::start_application(const Application& app) {
  Window task = make_window(kTaskWindow, app.task_handler, 0, false, std::nullopt, true, app.menu_bar);
  task_ = task.id();
  return task;
}

int QtToolkit::run_application(const Application& app) {
  if (!start_application(app).exists()) return 0;
  in_main_loop_ = true;
  QApplication::exec();
  in_main_loop_ = false;
  return 0;
}

Window QtToolkit::task_window() { return Window(this, find(task_) ? task_ : 0); }

Window QtToolkit::open_for_review(int resource_id, Handler handler) {
  return make_window(resource_id, std::move(handler), 0, false, std::nullopt, true);
}

Window QtToolkit::create_window(int resource_id, Handler handler, long app_value,
                                std::optional<Rect> frame) {
  return make_window(resource_id, std::move(handler), app_value, false, frame, false);
}

bool QtToolkit::run_modal_dialog(int resource_id, Handler handler, long app_value) {
  Window dialog = make_window(resource_id, std::move(handler), app_value, true, std::nullopt, false);
  if (dialog.id() == 0) return false;
  if (QtWindow* win = find(dialog.id())) {
    QPointer<QDialog> frame = static_cast<QDialog*>(win->frame.data());
    frame->exec();
  }
  destroy(dialog.id());
  return true;
}

void QtToolkit::destroy(WindowId w) {
  QtWindow* win = find(w);
  if (!win || win->destroying) return;
  win->destroying = true;
  if (w == task_) {
    std::vector<WindowId> others(stacking_.rbegin(), stacking_.rend());
    for (WindowId other : others) {
      if (other != w) destroy(other);
    }
  }
  for (auto it = timers_.begin(); it != timers_.end();) {
    if (it->second && it->second->property("px_window").toUInt() == w) {
      delete it->second.data();
      it = timers_.erase(it);
    } else {
      ++it;
    }
  }
  deliver(w, make_event(EventType::kDestroy));
  help_topics_.forget(w);
  std::unique_ptr<QtWindow> owned = std::move(windows_[w]);
  windows_.erase(w);
  std::erase(stacking_, w);
  if (QWidget* frame = owned->frame) {
    if (auto* dialog = qobject_cast<QDialog*>(frame)) dialog->done(0);
    frame->hide();
    frame->deleteLater();
  }
  if (w == task_) {
    task_ = 0;
    end_main_loop();
  }
}

void QtToolkit::shut_down() {
  destroy(task_);
  end_main_loop();
}

// Only a running main loop may be told to end: Qt refuses every later
// event loop of a program that was told to quit without one.
void QtToolkit::end_main_loop() {
  if (in_main_loop_) QCoreApplication::exit(0);
}

QtWindow* QtToolkit::find(WindowId w) {
  auto it = windows_.find(w);
  return it == windows_.end() ? nullptr : it->second.get();
}

QWidget* QtToolkit::frame_widget(WindowId w) {
  QtWindow* win = find(w);
  return win ? win->frame.data() : nullptr;
}

QWidget* QtToolkit::active_parent() {
  if (QWidget* active = QApplication::activeWindow()) return active;
  Window top = focused_top_window();
  return top.id() ? frame_widget(top.id()) : nullptr;
}

Window QtToolkit::focused_top_window() {
  QWidget* active = QApplication::activeWindow();
  for (const auto& [id, win] : windows_) {
    if (active && win->frame == active) return Window(this, id);
  }
  for (auto it = stacking_.rbegin(); it != stacking_.rend(); ++it) {
    QtWindow* win = find(*it);
    if (win && win->frame && win->frame->isVisible()) return Window(this, *it);
  }
  return Window(this, 0);
}

int QtToolkit::resource_id(WindowId w) {
  QtWindow* win = find(w);
  return win ? win->def->id : 0;
}
long QtToolkit::app_value(WindowId w) {
  QtWindow* win = find(w);
  return win ? win->app_value : 0;
}
void QtToolkit::set_app_value(WindowId w, long value) {
  if (QtWindow* win = find(w)) win->app_value = value;
}
std::string QtToolkit::title(WindowId w) {
  QWidget* frame = frame_widget(w);
  return frame ? from_qt(frame->windowTitle()) : std::string();
}
void QtToolkit::set_title(WindowId w, std::string_view title) {
  if (QWidget* frame = frame_widget(w)) frame->setWindowTitle(to_qt(title));
}
bool QtToolkit::window_enabled(WindowId w) {
  QWidget* frame = frame_widget(w);
  return frame && frame->isEnabled();
}
void QtToolkit::set_window_enabled(WindowId w, bool on) {
  if (QWidget* frame = frame_widget(w)) frame->setEnabled(on);
}
bool QtToolkit::window_visible(WindowId w) {
  QWidget* frame = frame_widget(w);
  return frame && !frame->isHidden();
}
void QtToolkit::set_window_visible(WindowId w, bool on) {
  if (QWidget* frame = frame_widget(w)) frame->setVisible(on);
}
void QtToolkit::raise(WindowId w) {
  QWidget* frame = frame_widget(w);
  if (!frame) return;
  frame->show();
  frame->raise();
  frame->activateWindow();
  std::erase(stacking_, w);
  stacking_.push_back(w);
}
Rect QtToolkit::frame(WindowId w) {
  QWidget* frame = frame_widget(w);
  return frame ? to_rect(frame->frameGeometry()) : Rect{};
}
void QtToolkit::set_frame(WindowId w, const Rect& rect) {
  QWidget* frame = frame_widget(w);
  if (!frame) return;
  int extra = frame->frameGeometry().height() - frame->height();
  frame->move(rect.x, rect.y);
  frame->resize(rect.width, std::max(1, rect.height - extra));
}
Size QtToolkit::client_size(WindowId w) {
  QtWindow* win = find(w);
  return win && win->canvas ? Size{win->canvas->width(), win->canvas->height()} : Size{};
}
void QtToolkit::invalidate(WindowId w) {
  if (QtWindow* win = find(w); win && win->canvas) win->canvas->update();
}

// ---- drawing

void QtToolkit::paint(WindowId w, QPainter& painter) {
  QtWindow* win = find(w);
  if (!win) return;
  win->painter = &painter;
  painter.setFont(make_qfont(win->draw_font));
  deliver(w, make_event(EventType::kPaint));
  if ((win = find(w))) win->painter = nullptr;
}
void QtToolkit::clear(WindowId w, Color color) {
  QtWindow* win = find(w);
  if (win && win->painter) win->painter->fillRect(win->canvas->rect(), QColor(color.red, color.green, color.blue));
}
void QtToolkit::set_draw_font(WindowId w, const Font& font) {
  QtWindow* win = find(w);
  if (!win) return;
  win->draw_font = font;
  if (win->painter) win->painter->setFont(make_qfont(font));
}
void QtToolkit::draw_text(WindowId w, Point at, std::string_view text) {
  QtWindow* win = find(w);
  if (win && win->painter) win->painter->drawText(at.x, at.y, to_qt(text));
}
bool QtToolkit::draw_image(WindowId w, Point at, std::string_view path) {
  QtWindow* win = find(w);
  if (!win || !win->painter) return false;
  QImage image(to_qt(path));
  if (image.isNull()) return false;
  win->painter->drawImage(QPoint(at.x, at.y), image);
  return true;
}

// ---- menus

bool QtToolkit::has_menu_item(WindowId w, int item) {
  QtWindow* win = find(w);
  return win && win->actions.count(item);
}
bool QtToolkit::menu_enabled(WindowId w, int item) {
  QtWindow* win = find(w);
  return win && win->actions.count(item) && win->actions[item]->isEnabled();
}
void QtToolkit::set_menu_enabled(WindowId w, int item, bool on) {
  QtWindow* win = find(w);
  if (win && win->actions.count(item)) win->actions[item]->setEnabled(on);
}
bool QtToolkit::menu_checked(WindowId w, int item) {
  QtWindow* win = find(w);
  return win && win->actions.count(item) && win->actions[item]->isChecked();
}
std::string QtToolkit::menu_tip(WindowId w, int item) {
  QtWindow* win = find(w);
  if (!win || !win->actions.count(item)) return {};
  // An action without a tooltip of its own reports its text as one, so the
  // tip set here is kept beside it.
  return from_qt(win->actions[item]->property(kTipProperty).toString());
}
void QtToolkit::set_menu_tip(WindowId w, int item, std::string_view text) {
  QtWindow* win = find(w);
  if (!win || !win->actions.count(item)) return;
  QAction* action = win->actions[item];
  action->setProperty(kTipProperty, to_qt(text));
  action->setToolTip(text.empty() ? action->text() : to_qt(text));
  // Menus show their items' tooltips only when asked to.
  for (QObject* widget : action->associatedObjects()) {
    if (auto* menu = qobject_cast<QMenu*>(widget)) menu->setToolTipsVisible(true);
  }
}
void QtToolkit::set_menu_checked(WindowId w, int item, bool on) {
  QtWindow* win = find(w);
  if (!win || !win->actions.count(item)) return;
  win->actions[item]->setCheckable(true);
  win->actions[item]->setChecked(on);
}

// ---- timers, mouse, user events

long QtToolkit::start_timer(WindowId w, int milliseconds) {
  QtWindow* win = find(w);
  if (!win || milliseconds <= 0) return 0;
  long id = next_timer_++;
  auto* timer = new QTimer(win->frame);
  timer->setProperty("px_window", w);
  timer->setInterval(milliseconds);
  QObject::connect(timer, &QTimer::timeout, timer, [this, w, id] { deliver(w, timer_event(id)); });
  timer->start();
  timers_[id] = timer;
  return id;
}
void QtToolkit::stop_timer(long timer) {
  auto it = timers_.find(timer);
  if (it == timers_.end()) return;
  if (it->second) {
    it->second->stop();
    it->second->deleteLater();
  }
  timers_.erase(it);
}
void QtToolkit::capture_mouse(WindowId w) {
  QtWindow* win = find(w);
  if (!win || !win->canvas) return;
  if (win->canvas->isVisible()) {
    win->canvas->grabMouse();
  } else {
    capture_pending_ = w;  // a window still being created grabs once shown
  }
}
void QtToolkit::release_mouse() {
  capture_pending_ = 0;
  if (QWidget* grabber = QWidget::mouseGrabber()) grabber->releaseMouse();
}
void QtToolkit::send_user_event(WindowId w, int user_id) { deliver(w, user_event(user_id)); }

int QtToolkit::focused_control(WindowId w) {
  QtWindow* win = find(w);
  QWidget* focus = win && win->frame ? win->frame->focusWidget() : nullptr;
  if (!focus) return 0;
  for (const QtControl& c : win->controls) {
    if (c.id != kNoId && (c.widget == focus || c.widget->isAncestorOf(focus))) return c.id;
  }
  return 0;
}

void QtToolkit::client_resized(WindowId w, QSize size) {
  QtWindow* win = find(w);
  if (!win || size == win->last_size) return;
  win->last_size = size;
  deliver(w, resize_event({size.width(), size.height()}));
}

void QtToolkit::escape(WindowId w) {
  QtWindow* win = find(w);
  if (!win) return;
  for (const QtControl& c : win->controls) {
    if (!(c.def->style & kCancelButton)) continue;
    if (c.widget->isVisible() && c.widget->isEnabled()) {
      static_cast<QPushButton*>(c.widget)->click();
      return;
    }
  }
  deliver(w, make_event(EventType::kClose));
}

}  // namespace px::tk
