#include "views/windows/file_windows.h"

#include "common/file_util.h"
#include "config/instances.h"
#include "toolkit/resources/resource_ids.h"
#include "views/file_lists.h"
#include "views/view_messages.h"
#include "views/windows/log_window.h"

namespace px::views {

namespace {

// Shows list in the window, or closes the window when there is none.
void show_list(tk::Window w, const std::optional<FileList>& list, bool has_view_button) {
  if (!list) {
    w.destroy();
    return;
  }
  tk::Control rows = w.control(tk::kFilesList);
  rows.clear_rows();
  for (const std::string& row : list->rows) rows.add(row);
  rows.set_enabled(list->has_files);
  if (has_view_button) w.control(tk::kRejectsViewFile).set_enabled(list->has_files);
  if (!list->has_files) return;
  w.control(tk::kFilesCaption).set_text(message_label(list->caption));
  rows.select(0);
  rows.focus();
}

void view_selected(const ViewHost& host, tk::Window w) {
  tk::Control rows = w.control(tk::kFilesList);
  int chosen = rows.selected();
  if (chosen < 0 || !rows.enabled()) return;
  open_reject_file(host, w.app_value() == 1, rows.row(chosen));
}

void handle_files(const ViewHost& host, const tk::Event& e, bool rejects) {
  tk::Window w = e.window;
  const std::string& config = current_instance().config_file;
  switch (e.type) {
    case tk::EventType::kCreate:
      host.view_created(w);
      if (rejects) {
        bool email = w.app_value() == 1;
        w.set_title(message_label(email ? msg::kAgentRejectsTitle : msg::kServerRejectsTitle));
        show_list(w, views::rejects(config, email, host.op), true);
      } else {
        w.set_title(message_label(msg::kAgentQueueTitle));
        show_list(w, email_queue(config, host.op), false);
      }
      break;
    case tk::EventType::kDestroy:
      host.view_destroyed(w);
      break;
    case tk::EventType::kClose:
      w.destroy();
      break;
    case tk::EventType::kControl:
      if (e.is_control(tk::kFilesClose, tk::Notice::kClicked)) {
        w.destroy();
      } else if (rejects && (e.is_control(tk::kRejectsViewFile, tk::Notice::kClicked) ||
                             (e.control == tk::kFilesList && e.double_click()))) {
        view_selected(host, w);
      }
      break;
    default:
      break;
  }
}

tk::Window open_files_window(const ViewHost& host, int resource, long app_value, bool rejects) {
  tk::Window w = host.toolkit.create_window(
      resource, [host, rejects](const tk::Event& e) { handle_files(host, e, rejects); }, app_value);
  // A window that closed itself while being created has shown why.
  if (w.id() == 0) host.op.show(msg::kWindowNotOpened);
  return w.exists() ? w : tk::Window();
}

}  // namespace

tk::Window open_rejects(const ViewHost& host, bool email) {
  return open_files_window(host, tk::kRejectsWindow, email ? 1 : 0, true);
}

tk::Window open_email_queue(const ViewHost& host) {
  return open_files_window(host, tk::kEmailQueueWindow, 0, false);
}

}  // namespace px::views
