// Window images for review: the helpers of qt_backend.h that programs
// outside the back end use to show windows with their real contents.
#include <QEventLoop>
#include <QImage>
#include <QPainter>
#include <QTimer>
#include <QWidget>

#include "toolkit/qt/qt_backend.h"
#include "toolkit/qt/qt_toolkit.h"

namespace px::tk {

void run_events_for(int milliseconds) {
  QEventLoop loop;
  QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
  loop.exec();
}

bool save_window_image(Toolkit& toolkit, Window window, const std::string& path) {
  auto* qt = dynamic_cast<QtToolkit*>(&toolkit);
  QWidget* frame = qt != nullptr ? qt->frame_widget(window.id()) : nullptr;
  if (frame == nullptr) return false;
  QImage body = frame->grab().toImage();
  const int strip = 26;
  QImage out(body.width(), body.height() + strip, QImage::Format_ARGB32);
  out.fill(QColor(60, 64, 72));
  QPainter painter(&out);
  painter.setPen(Qt::white);
  painter.drawText(QRect(8, 0, body.width() - 16, strip), Qt::AlignVCenter | Qt::AlignLeft,
                   frame->windowTitle());
  painter.drawImage(0, strip, body);
  painter.end();
  return out.save(QString::fromStdString(path));
}

}  // namespace px::tk
