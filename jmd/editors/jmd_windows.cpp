#include "jmd/editors/jmd_windows.h"

#include "config/jmd_service.h"
#include "config/operator_action.h"
#include "jmd/editors/editor_messages.h"
#include "jmd/editors/list_window.h"
#include "toolkit/resources/resource_ids.h"

namespace px::editors {

namespace {

// Reports nowhere until the console attaches its operator.
class SilentOperator : public Operator {
 public:
  void show(int, const std::vector<std::string>&) override {}
  size_t ask(int, const std::vector<std::string>&, const std::vector<int>& buttons) override {
    return buttons.empty() ? 0 : buttons.size() - 1;
  }
  PrinterReloadChoice choose_printer_reload(std::string_view,
                                            const std::vector<std::string>&) override {
    return {};
  }
};

SilentOperator& silent_operator() {
  static SilentOperator op;
  return op;
}

size_t slot(ListKind kind) { return static_cast<size_t>(kind); }

}  // namespace

JmdWindows::JmdWindows() : editor_(jmd_service(), silent_operator()) {}

JmdWindows::~JmdWindows() = default;

void JmdWindows::attach(tk::Toolkit& toolkit, Operator& op) {
  tk_ = &toolkit;
  editor_.set_operator(op);
}

tk::Window JmdWindows::window(ListKind kind) const {
  const std::unique_ptr<ListWindow>& open = windows_[slot(kind)];
  return open && open->open() ? open->window() : tk::Window();
}

void JmdWindows::refresh(ListKind kind) {
  std::unique_ptr<ListWindow>& open = windows_[slot(kind)];
  if (!closing_ && open && open->open()) open->refill();
}

void JmdWindows::open_list(ListKind kind) {
  if (tk_ == nullptr) return;
  if (tk::Window open = window(kind); open.exists()) {
    open.raise();
    return;
  }
  auto made = std::make_unique<ListWindow>(*this, kind);
  if (!made->create()) {
    editor_.op().show(msg::kWindowNotCreated);
    return;
  }
  windows_[slot(kind)] = std::move(made);
}

void JmdWindows::open_job(const std::string& job, bool new_job) {
  if (tk_ == nullptr) return;
  if (tk::Window open = window(ListKind::kSteps); open.exists()) open.destroy();
  auto made = std::make_unique<ListWindow>(*this, ListKind::kSteps, job, new_job);
  if (!made->create()) {
    editor_.op().show(msg::kWindowNotCreated);
    return;
  }
  windows_[slot(ListKind::kSteps)] = std::move(made);
  window(ListKind::kJobNames).set_enabled(false);
}

ListWindow* JmdWindows::open_window(tk::WindowId id) const {
  for (const std::unique_ptr<ListWindow>& open : windows_) {
    if (open && open->open() && open->window().id() == id) return open.get();
  }
  return nullptr;
}

bool JmdWindows::edit_command(int command) {
  if (tk_ == nullptr) return false;
  tk::Window top = tk_->focused_top_window();
  ListWindow* focused = open_window(top.id());
  if (focused == nullptr && top == tk_->task_window()) focused = open_window(last_active_);
  if (focused == nullptr) return false;
  switch (command) {
    case tk::kCmdCut: focused->cut_or_copy(true); break;
    case tk::kCmdCopy: focused->cut_or_copy(false); break;
    case tk::kCmdPaste: focused->paste(); break;
    case tk::kCmdDelete: focused->delete_selected(true); break;
    default: return false;
  }
  return true;
}

void JmdWindows::note_active(tk::Window window) { last_active_ = window.id(); }

void JmdWindows::undo_command(int command) {
  bool done = command == tk::kCmdUndo ? editor_.undo() : editor_.redo();
  if (!done) {
    editor_.op().show(msg::kNothingToUndo);
    return;
  }
  for (size_t k = 0; k < windows_.size(); ++k) refresh(static_cast<ListKind>(k));
}

void JmdWindows::update_edit_menu(bool one_selected, bool any_selected, ListKind kind) {
  if (tk_ == nullptr) return;
  tk::Window task = tk_->task_window();
  task.set_menu_enabled(tk::kCmdCut, one_selected);
  task.set_menu_enabled(tk::kCmdCopy, one_selected);
  task.set_menu_enabled(tk::kCmdPaste, editor_.can_paste(kind));
  task.set_menu_enabled(tk::kCmdDelete, any_selected);
  std::string reason = read_only_mode() ? read_only_reason() : std::string();
  for (int item : {tk::kCmdCut, tk::kCmdPaste, tk::kCmdDelete}) {
    if (!reason.empty()) task.set_menu_enabled(item, false);
    task.set_menu_tip(item, reason);
  }
}

void JmdWindows::close_all() {
  closing_ = true;
  for (size_t k = windows_.size(); k-- > 0;) {
    if (windows_[k] && windows_[k]->open()) windows_[k]->window().destroy();
  }
  for (std::unique_ptr<ListWindow>& open : windows_) open.reset();
  closing_ = false;
  last_active_ = 0;
  // No JMD window: the Edit menu is as for an empty selection.
  if (tk_ != nullptr) {
    for (int item : {tk::kCmdCut, tk::kCmdCopy, tk::kCmdPaste, tk::kCmdDelete}) {
      tk_->task_window().set_menu_enabled(item, false);
    }
  }
}

JmdWindows& jmd_windows() {
  static JmdWindows windows;
  return windows;
}

}  // namespace px::editors
