// The Qt back end's message boxes, file-open dialog and help viewer.
#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QTextBrowser>
#include <QUrl>

#include "toolkit/caption.h"
#include "toolkit/qt/qt_toolkit.h"

namespace px::tk {

namespace {

void post_box(QWidget* parent, QMessageBox::Icon icon, std::string_view text) {
  QMessageBox box(icon, to_qt(message_caption()), to_qt(text), QMessageBox::Ok, parent);
  box.setWindowModality(Qt::ApplicationModal);
  box.exec();
}

}  // namespace

void QtToolkit::post_error(std::string_view text) {
  post_box(active_parent(), QMessageBox::Warning, text);
}

void QtToolkit::post_note(std::string_view text) {
  post_box(active_parent(), QMessageBox::Information, text);
}

Answer QtToolkit::post_ask(std::string_view text, std::string_view first, std::string_view second,
                           std::string_view third) {
  QMessageBox box(QMessageBox::Question, to_qt(message_caption()), to_qt(text), QMessageBox::NoButton,
                  active_parent());
  box.setWindowModality(Qt::ApplicationModal);
  std::vector<QPushButton*> buttons;
  buttons.push_back(box.addButton(to_qt(first), QMessageBox::AcceptRole));
  buttons.push_back(box.addButton(to_qt(second), third.empty() ? QMessageBox::RejectRole
                                                               : QMessageBox::DestructiveRole));
  if (!third.empty()) buttons.push_back(box.addButton(to_qt(third), QMessageBox::RejectRole));
  box.setDefaultButton(buttons.front());
  box.setEscapeButton(buttons.back());
  box.exec();
  for (size_t i = 0; i < buttons.size(); ++i) {
    if (box.clickedButton() == buttons[i]) return static_cast<Answer>(i + 1);
  }
  return static_cast<Answer>(buttons.size());
}

std::optional<std::string> QtToolkit::choose_file_to_open(const FileRequest& request) {
  QString start = to_qt(request.directory.empty() ? default_directory() : request.directory);
  if (!request.file_name.empty()) start += "/" + to_qt(request.file_name);
  QString chosen = QFileDialog::getOpenFileName(active_parent(), to_qt(request.prompt), start);
  if (chosen.isEmpty()) return std::nullopt;
  return from_qt(chosen);
}

void QtToolkit::show_help_topic(std::string_view topic) {
  if (help_path_.isEmpty()) return;
  if (!help_view_) {
    help_view_ = new QTextBrowser();
    help_view_->setWindowTitle(to_qt(message_caption()));
    help_view_->resize(640, 480);
    help_view_->setOpenExternalLinks(true);
  }
  QUrl url = QUrl::fromLocalFile(help_path_);
  if (!topic.empty()) url.setFragment(to_qt(topic));
  help_view_->setSource(url);
  help_view_->show();
  help_view_->raise();
  help_view_->activateWindow();
}

}  // namespace px::tk
