// The Qt back end's application: start-up, event delivery, the quit
// request of the desktop session, busy cursor, beep, screen metrics, help.
#include "toolkit/qt/qt_toolkit.h"

#include <QApplication>
#include <QCursor>
#include <QDir>
#include <QFontMetrics>
#include <QScreen>
#include <QSessionManager>
#include <QStyle>
#include <QTextBrowser>
#include <QTimer>

#include "toolkit/make_event.h"
#include "toolkit/qt/qt_backend.h"

namespace px::tk {

std::unique_ptr<Toolkit> make_qt_toolkit(int& argc, char** argv) {
  return std::make_unique<QtToolkit>(argc, argv);
}

QtToolkit::QtToolkit(int& argc, char** argv, ResourceLookup resources)
    : resources_(std::move(resources)) {
  if (!QApplication::instance()) own_app_ = std::make_unique<QApplication>(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  // Dialog units: a quarter of the average character width, an eighth of
  // the line height of the dialog font.
  QFontMetrics metrics(QApplication::font());
  unit_x_ = metrics.averageCharWidth() / 4.0;
  unit_y_ = metrics.height() / 8.0;
  QObject::connect(qApp, &QGuiApplication::commitDataRequest, qApp,
                   [this](QSessionManager& manager) {
                     quit_allowed_ = false;
                     deliver(task_, quit_event(true));
                     if (!quit_allowed_) manager.cancel();
                   }, Qt::DirectConnection);
}

QtToolkit::~QtToolkit() {
  help_hook_ = nullptr;
  for (auto& [id, timer] : timers_) {
    if (timer) delete timer.data();
  }
  for (auto& [id, win] : windows_) {
    if (win->frame) delete win->frame.data();
  }
  windows_.clear();
  if (help_view_) delete help_view_.data();
}

void QtToolkit::deliver(WindowId w, Event event) {
  QtWindow* win = find(w);
  if (!win) return;
  event.window = Window(this, w);
  std::shared_ptr<Handler> handler = win->handler;
  if (help_hook_) {
    HelpHook hook = help_hook_;
    if (hook(event)) return;
  }
  if (handler && *handler) (*handler)(event);
}

void QtToolkit::notify(WindowId w, int control, Notice notice, ScrollAction action, int position) {
  deliver(w, control_event(control, notice, action, position));
}

void QtToolkit::show_busy_cursor() {
  if (busy_) return;
  busy_ = true;
  QApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
  // The next turn of the event loop comes when the current event is done.
  QTimer::singleShot(0, qApp, [this] {
    QApplication::restoreOverrideCursor();
    busy_ = false;
  });
}

void QtToolkit::beep() { QApplication::beep(); }

Rect QtToolkit::screen_area() {
  QScreen* screen = QGuiApplication::primaryScreen();
  if (!screen) return {0, 0, 1024, 768};
  QRect r = screen->availableGeometry();
  return {r.x(), r.y(), r.width(), r.height()};
}

int QtToolkit::title_bar_height() {
  return QApplication::style()->pixelMetric(QStyle::PM_TitleBarHeight);
}

std::string QtToolkit::default_directory() { return from_qt(QDir::currentPath()); }

// ---- help

bool QtToolkit::open_help_file(std::string_view path) {
  if (!is_help_file(path)) return false;
  help_path_ = QDir(to_qt(path)).absolutePath();
  return true;
}

void QtToolkit::close_help_file() {
  help_path_.clear();
  if (help_view_) help_view_->close();
}

void QtToolkit::set_help_topic(WindowId w, int control, std::string_view topic) {
  help_topics_.set_window_topic(w, control, topic);
}

void QtToolkit::set_menu_help_topic(int item, std::string_view topic) {
  help_topics_.set_menu_topic(item, topic);
}

void QtToolkit::forget_help_topics(WindowId w) { help_topics_.forget(w); }

bool QtToolkit::process_help_event(const Event& event) {
  if (help_path_.isEmpty()) return false;
  std::optional<std::string> topic = help_topics_.topic_for(event);
  if (!topic) return false;
  show_help_topic(*topic);
  return true;
}

}  // namespace px::tk
