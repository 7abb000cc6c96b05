#include "config/dialogs/select_directory_dialog.h"

#include <filesystem>
#include <system_error>

#include "common/file_util.h"
#include "config/dialogs/form_dialog.h"
#include "toolkit/dialog_base.h"

namespace px::dialogs {

namespace {

constexpr int kDialog = 150;
constexpr int kCurrent = 4;
constexpr int kDirectories = 5;
constexpr int kDrives = 6;
constexpr int kOk = 1;

std::string current_directory() {
  std::error_code error;
  std::filesystem::path cwd = std::filesystem::current_path(error);
  return error ? std::string("/") : cwd.string();
}

class SelectDirectory : public tk::DialogBase {
 public:
  SelectDirectory(const std::string& start, std::vector<forms::Drive> drives)
      : browser_(std::move(drives), start, current_directory()) {}

  const std::optional<std::string>& chosen() const { return chosen_; }

 private:
  void create(tk::Window dialog) override {
    dialog.toolkit().show_busy_cursor();
    fill_drives(dialog);
    fill_directories(dialog);
  }

  void control(tk::Window dialog, const tk::Event& e) override {
    if (e.is_control(kOk, tk::Notice::kClicked)) {
      chosen_ = dialog.control(kCurrent).text();
      dialog.destroy();
    } else if (e.control == kDirectories && e.double_click()) {
      tk::Control list = dialog.control(kDirectories);
      dialog.toolkit().show_busy_cursor();
      if (browser_.enter(list.row(list.selected()))) fill_directories(dialog);
    } else if (e.is_control(kDrives, tk::Notice::kSelectionChanged)) {
      dialog.toolkit().show_busy_cursor();
      if (browser_.choose_drive(dialog.control(kDrives).selected())) fill_directories(dialog);
    }
  }

  void fill_drives(tk::Window dialog) {
    tk::Control drives = dialog.control(kDrives);
    drives.clear_rows();
    for (const std::string& row : browser_.drive_rows()) drives.add(row);
    if (browser_.drive_row() >= 0 && browser_.drive_row() < drives.count()) {
      drives.select(browser_.drive_row());
    }
  }

  void fill_directories(tk::Window dialog) {
    dialog.control(kCurrent).set_text(browser_.directory());
    tk::Control list = dialog.control(kDirectories);
    list.suspend();
    list.clear_rows();
    for (const std::string& entry : browser_.entries()) list.add(entry);
    list.resume();
  }

  forms::DirectoryBrowser browser_;
  std::optional<std::string> chosen_;
};

}  // namespace

std::optional<std::string> select_directory(tk::Toolkit& toolkit, Operator& op,
                                            const std::string& start,
                                            std::vector<forms::Drive> drives) {
  SelectDirectory dialog(start, std::move(drives));
  if (!dialog.run_modal(toolkit, kDialog)) {
    op.show(kMsgDialogNotCreated);
    return std::nullopt;
  }
  return dialog.chosen();
}

bool browse_for_directory(tk::Window dialog, int field, const ConfigContext& context) {
  std::optional<std::string> chosen = select_directory(
      dialog.toolkit(), context.op, dialog.control(field).text(), context.drives());
  if (!chosen || chosen->empty()) return false;
  dialog.control(field).set_text(*chosen);
  return true;
}

bool browse_for_file(tk::Window dialog, int field, const std::string& prompt) {
  std::string text = dialog.control(field).text();
  tk::FileRequest request{prompt, directory_part(text), file_part(text)};
  if (request.directory.empty() || !is_directory(request.directory)) {
    request.directory = dialog.toolkit().default_directory();
  }
  std::optional<std::string> chosen = dialog.toolkit().choose_file_to_open(request);
  if (!chosen) return false;
  dialog.control(field).set_text(*chosen);
  return true;
}

}  // namespace px::dialogs
