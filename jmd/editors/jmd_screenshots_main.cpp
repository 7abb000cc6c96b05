// px_jmd_screenshots FOLDER JMD INI: the JMD editor windows and dialogs on
// the Qt back end, filled from the JMD file (a copy is edited), each saved
// as a PNG into FOLDER for people reviewing the look. Run it under
// xvfb-run; scripts/screenshots does.
#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QImage>
#include <QTimer>
#include <QWidget>

#include <cstdio>
#include <filesystem>

#include "common/ini_profile.h"
#include "common/messages.h"
#include "config/instances.h"
#include "config/jmd_service.h"
#include "config/recording_operator.h"
#include "jmd/editors/jmd_windows.h"
#include "jmd/editors/row_dialog.h"
#include "toolkit/qt/qt_toolkit.h"

namespace {

using px::editors::ListKind;

void settle() {
  QEventLoop loop;
  QTimer::singleShot(150, &loop, &QEventLoop::quit);
  loop.exec();
}

bool save(QWidget* widget, const QDir& dir, const QString& name) {
  QString path = dir.filePath(name + ".png");
  if (widget == nullptr || !widget->grab().toImage().save(path)) {
    std::fprintf(stderr, "px_jmd_screenshots: cannot write %s\n", path.toUtf8().constData());
    return false;
  }
  std::printf("%s\n", path.toUtf8().constData());
  return true;
}

// Runs a modal dialog through open, saving it once it shows and closing it.
bool shoot_modal(const QDir& dir, const QString& name, const std::function<void()>& open) {
  bool ok = false;
  QTimer::singleShot(300, [&] {
    QWidget* dialog = QApplication::activeModalWidget();
    ok = save(dialog, dir, name);
    if (dialog != nullptr) dialog->close();
  });
  open();
  return ok;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: px_jmd_screenshots FOLDER JMD INI   (under xvfb-run)\n");
    return 2;
  }
  QDir dir(QString::fromLocal8Bit(argv[1]));
  std::filesystem::path work = std::filesystem::temp_directory_path() / "px_jmd_screenshots";
  std::filesystem::create_directories(work);
  std::filesystem::copy_file(argv[2], work / "jobs.jmd",
                             std::filesystem::copy_options::overwrite_existing);
  std::string config = (work / "pxserver.ini").string();
  std::FILE* out = std::fopen(config.c_str(), "w");
  if (out == nullptr || !QDir().mkpath(dir.path())) return 1;
  std::fprintf(out, "[Options]\nJMDFileName=%s\n", (work / "jobs.jmd").c_str());
  std::fclose(out);
  px::ini::set_file(argv[3]);
  px::messages::reset();
  px::set_current_instance({"demo", "Demo", config});

  px::tk::QtToolkit tk(argc, argv);
  tk.start_application({1000, [](const px::tk::Event&) {}});
  px::RecordingOperator op;
  px::editors::JmdWindows& windows = px::editors::jmd_windows();
  windows.attach(tk, op);
  bool ok = true;
  const char* names[] = {"jobs", "tasks", "printers", "memory"};
  for (int k = 0; k < 4; ++k) {
    windows.open_list(static_cast<ListKind>(k));
    settle();
    ok &= save(tk.frame_widget(windows.window(static_cast<ListKind>(k)).id()), dir,
               QString("jmd_list_%1").arg(names[k]));
  }
  windows.open_job("INVOICE", false);
  settle();
  ok &= save(tk.frame_widget(windows.window(ListKind::kSteps).id()), dir, "jmd_job_invoice");

  px::editors::JmdEditor& editor = windows.editor();
  auto edit = [&](ListKind kind, const char* key, const char* name) {
    long row = editor.find_row(kind, key);
    std::optional<px::editors::RowForm> form = editor.edit_form(kind, row);
    if (!form) return false;
    return shoot_modal(dir, name, [&] {
      px::editors::run_row_dialog(tk, editor, px::editors::RowRequest{*form, row, {}, {}});
    });
  };
  ok &= edit(ListKind::kPrinters, "LASER1", "jmd_dialog_printer");
  ok &= edit(ListKind::kTasks, "PXMERGE", "jmd_dialog_task");
  ok &= edit(ListKind::kMemory, "LJ01", "jmd_dialog_memory");
  std::vector<long> steps = editor.job_steps("INVOICE");
  if (std::optional<px::editors::RowForm> step = editor.edit_form(ListKind::kSteps, steps.at(0))) {
    ok &= shoot_modal(dir, "jmd_dialog_step", [&] {
      px::editors::run_row_dialog(tk, editor, px::editors::RowRequest{*step, steps[0], steps, {}});
    });
  }
  ok &= shoot_modal(dir, "jmd_dialog_job_name", [&] {
    px::editors::run_job_name_dialog(tk, op, [](const std::string&, std::string&) { return 1; });
  });
  windows.close_all();
  px::jmd_service().close();
  std::filesystem::remove_all(work);
  return ok ? 0 : 1;
}
