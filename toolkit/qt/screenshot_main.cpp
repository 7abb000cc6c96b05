// px_screenshots FOLDER: opens every window, dialog and menu bar of the
// resources in the Qt back end and writes a PNG of each into FOLDER, for
// people reviewing the look (run it under xvfb-run; scripts/screenshots
// does). Windows get a strip with their title on top, since a bare X server
// draws no title bars; each menu of a menu bar is shot open.
#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QImage>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QScreen>
#include <QTimer>

#include <cstdio>

#include "toolkit/qt/qt_toolkit.h"
#include "toolkit/resources/catalog.h"

namespace {

using namespace px::tk;

void settle() {
  QEventLoop loop;
  QTimer::singleShot(150, &loop, &QEventLoop::quit);
  loop.exec();
}

QString slug(std::string_view title) {
  QString out;
  for (QChar c : to_qt(strip_mnemonic(title)).toLower()) {
    if (c.isLetterOrNumber()) {
      out += c;
    } else if (!out.endsWith('_')) {
      out += '_';
    }
  }
  while (out.endsWith('_')) out.chop(1);
  return out;
}

QImage with_title(const QImage& body, const QString& title) {
  const int strip = 26;
  QImage out(body.width(), body.height() + strip, QImage::Format_ARGB32);
  out.fill(QColor(60, 64, 72));
  QPainter painter(&out);
  painter.setPen(Qt::white);
  painter.drawText(QRect(8, 0, body.width() - 16, strip), Qt::AlignVCenter | Qt::AlignLeft, title);
  painter.drawImage(0, strip, body);
  return out;
}

bool save(const QImage& image, const QDir& dir, const QString& name) {
  QString path = dir.filePath(name + ".png");
  if (!image.save(path)) {
    std::fprintf(stderr, "px_screenshots: cannot write %s\n", path.toUtf8().constData());
    return false;
  }
  std::printf("%s\n", path.toUtf8().constData());
  return true;
}

bool shoot_menu_bar(QtToolkit& tk, const MenuBarDef& bar, const QDir& dir) {
  Window task = tk.start_application({bar.id, Handler()});
  auto* frame = static_cast<QMainWindow*>(tk.frame_widget(task.id()));
  frame->move(0, 0);
  settle();
  bool ok = save(with_title(frame->grab().toImage(), frame->windowTitle()), dir,
                 QString("menubar_%1").arg(bar.id));
  int index = 0;
  for (QAction* action : frame->menuBar()->actions()) {
    QMenu* menu = action->menu();
    if (!menu) continue;
    QRect place = frame->menuBar()->actionGeometry(action);
    menu->popup(frame->mapToGlobal(place.bottomLeft()) + QPoint(0, frame->menuBar()->y()));
    settle();
    QRect area = frame->frameGeometry().united(menu->geometry());
    QImage shot = QGuiApplication::primaryScreen()->grabWindow(0, area.x(), area.y(), area.width(),
                                                                area.height()).toImage();
    ok &= save(shot, dir, QString("menubar_%1_%2_%3").arg(bar.id).arg(++index).arg(slug(
                                                                   from_qt(action->text()))));
    menu->hide();
  }
  task.destroy();
  return ok;
}

bool shoot_window(QtToolkit& tk, const WindowDef& def, const QDir& dir) {
  Window w = tk.open_for_review(def.id);
  if (!w.exists()) return false;
  QWidget* frame = tk.frame_widget(w.id());
  settle();
  QImage body = frame->grab().toImage();
  const char* kind = def.kind == WindowKind::kDialog ? "dialog" : "window";
  bool ok = save(def.kind == WindowKind::kPlain ? body : with_title(body, frame->windowTitle()), dir,
                 QString("%1_%2_%3").arg(kind).arg(def.id).arg(slug(def.title)));
  w.destroy();
  return ok;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: px_screenshots FOLDER   (under xvfb-run)\n");
    return 2;
  }
  QDir dir(QString::fromLocal8Bit(argv[1]));
  if (!QDir().mkpath(dir.path())) {
    std::fprintf(stderr, "px_screenshots: cannot make %s\n", argv[1]);
    return 1;
  }
  QtToolkit tk(argc, argv);
  bool ok = true;
  for (const MenuBarDef* bar : all_menu_bars()) ok &= shoot_menu_bar(tk, *bar, dir);
  for (const WindowDef* def : all_window_defs()) {
    if (def->kind != WindowKind::kTask) ok &= shoot_window(tk, *def, dir);
  }
  return ok ? 0 : 1;
}
