#include "jmd/editors/list_window.h"

#include <algorithm>

#include "config/operator_action.h"
#include "jmd/editors/editor_messages.h"
#include "jmd/editors/references.h"
#include "jmd/editors/row_dialog.h"
#include "jmd/jmd_schema.h"
#include "toolkit/resources/resource_ids.h"

namespace px::editors {

namespace {

// Answers of the delete question 290.
constexpr size_t kDeleteAnswer = 0;
// Pixels between a drawn line's baseline and the control below it.
constexpr int kAboveControl = 4;
constexpr int kLineHeight = 20;
// After the line of a step that names a printer or task that is not there.
constexpr const char* kMissingMark = " !";
// Milliseconds from showing a page to marking it.
constexpr int kMarkDelay = 1;

// 12345 as "12,345".
std::string grouped(long number) {
  std::string digits = std::to_string(number);
  for (size_t at = digits.size(); at > 3;) {
    at -= 3;
    digits.insert(at, ",");
  }
  return digits;
}

}  // namespace

std::string count_text(long first, long shown, long total) {
  if (shown <= 0) return "0 of " + grouped(total);
  return grouped(first + 1) + "-" + grouped(first + shown) + " of " + grouped(total);
}

ListWindow::ListWindow(JmdWindows& owner, ListKind kind, std::string job, bool new_job)
    : owner_(owner), list_(kind, std::move(job)), new_job_(new_job) {}

bool ListWindow::create() {
  int resource = kind() == ListKind::kSteps ? tk::kJobWindow : tk::kJmdListWindow;
  tk::Window made =
      owner_.toolkit().create_window(resource, [this](const tk::Event& e) { handle(e); });
  return made.exists();
}

engine::Table* ListWindow::table() { return owner_.editor().table(kind()); }

void ListWindow::refill() {
  reload();
  fill();
}

void ListWindow::reload() {
  // A JMD or job-names list that cannot be had was reported by the service;
  // the list stays empty.
  JmdEditor& editor = owner_.editor();
  bool available = kind() == ListKind::kJobNames ? editor.job_names() != nullptr
                                                 : table() != nullptr;
  if (available && !editor.reload(list_)) {
    editor.op().show(msg::kInternalError, {"'pxcjmd', line " + std::to_string(__LINE__)});
  }
}

void ListWindow::refill_after_delete(long first_deleted, long total_before) {
  reload();
  list_.show_after_delete(first_deleted, total_before);
  fill();
}

void ListWindow::fill() {
  tk::Control lines = window_.control(tk::kJmdList);
  lines.suspend();
  lines.clear_rows();
  // Only a JMD that is open is read here: opening it is refill's business.
  if (owner_.editor().service().is_open()) {
    for (std::string& line : owner_.editor().page_lines(list_)) lines.add(line);
    mark_later();
  }
  if (list_.trailing_empty_row()) lines.add("");
  lines.resume();
  window_.control(tk::kJmdPrevious).set_visible(list_.paged());
  window_.control(tk::kJmdNext).set_visible(list_.paged());
  window_.control(tk::kJmdPrevious).set_enabled(list_.has_previous());
  window_.control(tk::kJmdNext).set_enabled(list_.has_next());
  window_.control(tk::kJmdCount).set_text(count_text(list_.page_first(), list_.shown(),
                                                    list_.total()));
  if (kind() == ListKind::kSteps) {
    window_.control(tk::kJobStepUp).set_enabled(list_.total() >= 2);
    window_.control(tk::kJobStepDown).set_enabled(list_.total() >= 2);
  }
  update_controls();
}

void ListWindow::mark_later() {
  if (kind() != ListKind::kJobNames && kind() != ListKind::kSteps) return;
  if (marks_timer_ != 0) window_.stop_timer(marks_timer_);
  marks_timer_ = window_.start_timer(kMarkDelay);
  // Without a timer the marks are made at once.
  if (marks_timer_ == 0) mark_page();
}

void ListWindow::mark_page() {
  if (marks_timer_ != 0) window_.stop_timer(marks_timer_);
  marks_timer_ = 0;
  if (!owner_.editor().service().is_open()) return;
  tk::Control lines = window_.control(tk::kJmdList);
  std::vector<bool> marks = page_marks(owner_.editor(), list_);
  for (size_t i = 0; i < marks.size(); ++i) {
    int line = static_cast<int>(i);
    if (marks[i] && line < lines.count()) lines.set_row(line, lines.row(line) + kMissingMark);
  }
}

std::vector<int> ListWindow::selected_lines() const {
  std::vector<int> lines;
  for (int index : window_.control(tk::kJmdList).selected_rows()) {
    if (index < list_.shown()) lines.push_back(index);
  }
  return lines;
}

std::vector<long> ListWindow::selected_rows() const {
  std::vector<long> rows;
  std::span<const long> page = list_.page();
  for (int index : selected_lines()) rows.push_back(page[static_cast<size_t>(index)]);
  return rows;
}

void ListWindow::update_controls() {
  size_t selected = selected_lines().size();
  window_.control(tk::kJmdEdit).set_enabled(selected == 1);
  window_.control(tk::kJmdDelete).set_enabled(selected > 0);
  bool one = kind() == ListKind::kSteps ? selected > 0 : selected == 1;
  owner_.update_edit_menu(one, selected > 0, kind());
  // Filtered steps are not all there: nothing is placed among them.
  window_.control(tk::kJmdNew).set_enabled(!placing_off());
  if (placing_off()) {
    window_.control(tk::kJobStepUp).set_enabled(false);
    window_.control(tk::kJobStepDown).set_enabled(false);
    owner_.toolkit().task_window().set_menu_enabled(tk::kCmdPaste, false);
  }
  if (!read_only_mode()) return;
  // Only looking: the buttons that would change the JMD say why they are
  // off. Edit on the job names only opens the job's window.
  std::string reason = read_only_reason();
  std::vector<int> changing = {tk::kJmdNew, tk::kJmdDelete};
  if (kind() != ListKind::kJobNames) changing.push_back(tk::kJmdEdit);
  if (kind() == ListKind::kSteps) changing.insert(changing.end(), {tk::kJobStepUp, tk::kJobStepDown});
  for (int id : changing) {
    window_.control(id).set_enabled(false);
    window_.control(id).set_tip(reason);
  }
}

void ListWindow::paint() {
  window_.clear(tk::kLightGrey);
  window_.set_draw_font(tk::Font{});
  tk::Rect list = window_.control(tk::kJmdList).rect();
  if (kind() != ListKind::kSteps) {
    window_.draw_text({list.x, list.y - kAboveControl}, header_text(kind()));
    return;
  }
  tk::Rect name = window_.control(tk::kJobNameField).rect();
  window_.draw_text({name.x, name.y - kAboveControl}, message_label(msg::kJobNameLabel));
  window_.draw_text({list.x, list.y - kAboveControl - kLineHeight},
                    message_label(msg::kStepsLabel));
  window_.draw_text({list.x, list.y - kAboveControl}, message_label(msg::kStepColumns));
}

void ListWindow::edit_selected() {
  std::vector<int> lines = selected_lines();
  if (lines.size() != 1) return;
  if (kind() != ListKind::kJobNames && read_only_mode()) return;
  long row = list_.page()[static_cast<size_t>(lines.front())];
  JmdEditor& editor = owner_.editor();
  if (kind() == ListKind::kJobNames) {
    std::string name = editor.job_name(row);
    if (!name.empty()) owner_.open_job(name, false);
    return;
  }
  std::optional<RowForm> form = editor.edit_form(kind(), row);
  if (!form) return;
  std::optional<OkResult> stored =
      run_row_dialog(owner_.toolkit(), editor, RowRequest{*form, row, list_.rows(), std::nullopt},
                     [this](ListKind added) { owner_.refresh(added); });
  if (!stored) return;
  // The edited line is replaced where it stands, its selection kept.
  Record record = blank_record(table_slot(kind()));
  engine::Table* rows = table();
  std::string line;
  if (rows != nullptr && read_row(*rows, row, record)) {
    line = format_line(kind(), record);
    if (kind() == ListKind::kSteps && names_missing_row(editor, record)) line += kMissingMark;
  }
  if (line.empty() || !window_.control(tk::kJmdList).set_row(lines.front(), line)) {
    editor.op().show(msg::kLineNotReplaced);
  }
}

void ListWindow::new_row() {
  if (read_only_mode() || placing_off()) return;
  JmdEditor& editor = owner_.editor();
  if (kind() == ListKind::kJobNames) {
    std::optional<std::string> name = run_job_name_dialog(
        owner_.toolkit(), editor.op(), [&](const std::string& typed, std::string& accepted) {
          return editor.check_new_job_name(typed, accepted);
        });
    if (!name || editor.add_job_name(*name) == 0) return;
    refill();
    owner_.open_job(*name, true);
    return;
  }
  RowRequest request{editor.new_form(kind(), job()), 0, {}, std::nullopt};
  if (kind() == ListKind::kSteps) {
    request.steps = list_.rows();
    std::vector<int> lines = selected_lines();
    if (!lines.empty()) request.before = static_cast<size_t>(list_.page_first() + lines.front());
  }
  std::optional<OkResult> stored = run_row_dialog(
      owner_.toolkit(), editor, request, [this](ListKind added) { owner_.refresh(added); });
  if (!stored) return;
  refill();
  references_changed();
  if (kind() == ListKind::kSteps) {
    auto at = std::find(list_.rows().begin(), list_.rows().end(), stored->row);
    if (at != list_.rows().end()) select_steps(at - list_.rows().begin(), 1);
  }
}

void ListWindow::delete_selected(bool ask) {
  std::vector<long> rows = selected_rows();
  if (rows.empty() || read_only_mode()) return;
  JmdEditor& editor = owner_.editor();
  if (ask && editor.op().ask(msg::kDeleteQuestion, {}, {msg::kDeleteButton, msg::kCancelButton}) !=
                 kDeleteAnswer) {
    return;
  }
  long first = list_.page_first() + selected_lines().front();
  long total = list_.total();
  editor.delete_rows(kind(), rows);
  refill_after_delete(first, total);
  references_changed();
}

bool ListWindow::placing_off() const {
  return kind() == ListKind::kSteps && !list_.filter().empty();
}

void ListWindow::references_changed() {
  if (kind() != ListKind::kPrinters && kind() != ListKind::kTasks) return;
  owner_.refresh(ListKind::kJobNames);
  owner_.refresh(ListKind::kSteps);
}

void ListWindow::select_steps(long first_index, long count) {
  list_.show_page_of(first_index);
  fill();
  tk::Control lines = window_.control(tk::kJmdList);
  for (long i = 0; i < count; ++i) {
    long line = first_index + i - list_.page_first();
    if (line >= 0 && line < list_.shown()) lines.select(static_cast<int>(line));
  }
  update_controls();
}

void ListWindow::move(bool up) {
  std::vector<int> lines = selected_lines();
  if (lines.empty() || read_only_mode() || placing_off()) return;
  size_t first = static_cast<size_t>(lines.front());
  size_t last = static_cast<size_t>(lines.back());
  std::vector<long> page(list_.page().begin(), list_.page().end());
  if (!owner_.editor().move_steps(page, first, last, up)) return;
  long moved_to = list_.page_first() + static_cast<long>(first) + (up ? -1 : 1);
  refill();
  select_steps(moved_to, static_cast<long>(last - first + 1));
}

void ListWindow::cut_or_copy(bool cut) {
  std::vector<long> rows = selected_rows();
  if (rows.empty() || (kind() != ListKind::kSteps && rows.size() != 1)) return;
  if (cut && read_only_mode()) return;
  long first = list_.page_first() + selected_lines().front();
  long total = list_.total();
  if (owner_.editor().copy(kind(), rows, cut) && cut) {
    refill_after_delete(first, total);
    references_changed();
  }
  update_controls();
}

void ListWindow::paste() {
  if (read_only_mode() || placing_off()) return;
  JmdEditor& editor = owner_.editor();
  if (kind() == ListKind::kJobNames) {
    if (!editor.can_paste(kind())) {
      std::string unused;
      editor.paste_job("", unused);  // shows the internal error
      return;
    }
    std::optional<std::string> name = run_job_name_dialog(
        owner_.toolkit(), editor.op(), [&](const std::string& typed, std::string& accepted) {
          return editor.paste_job(typed, accepted);
        });
    if (!name) return;
    refill();
    owner_.open_job(*name, true);
    return;
  }
  if (kind() == ListKind::kSteps) {
    std::vector<int> lines = selected_lines();
    size_t before = lines.empty() ? list_.rows().size()
                                  : static_cast<size_t>(list_.page_first() + lines.front());
    std::vector<long> placed = editor.paste_steps(job(), list_.rows(), before);
    if (placed.empty()) return;
    refill();
    select_steps(static_cast<long>(before), static_cast<long>(placed.size()));
    return;
  }
  std::optional<RowForm> form = editor.paste_form(kind());
  if (!form) return;
  if (run_row_dialog(owner_.toolkit(), editor, RowRequest{*form, 0, {}, std::nullopt},
                     [this](ListKind added) { owner_.refresh(added); })) {
    refill();
    references_changed();
  }
}

void ListWindow::handle(const tk::Event& e) {
  switch (e.type) {
    case tk::EventType::kCreate:
      window_ = e.window;
      if (kind() == ListKind::kSteps) {
        window_.set_title(message_label(new_job_ ? msg::kNewJobTitle : msg::kEditJobTitle, {job()}));
        window_.control(tk::kJobNameField).set_text(job());
        window_.control(tk::kJobNameField).set_enabled(false);
      }
      refill();
      if (kind() == ListKind::kSteps && window_.control(tk::kJmdList).count() > 0) {
        window_.control(tk::kJmdList).select(0);
        update_controls();
      }
      break;
    case tk::EventType::kPaint:
      paint();
      break;
    case tk::EventType::kTimer:
      if (e.timer == marks_timer_) mark_page();
      break;
    case tk::EventType::kClose:
      e.window.destroy();
      break;
    case tk::EventType::kDestroy:
      if (marks_timer_ != 0) window_.stop_timer(marks_timer_);
      marks_timer_ = 0;
      if (kind() == ListKind::kSteps) {
        tk::Window names = owner_.window(ListKind::kJobNames);
        names.set_enabled(true);
        owner_.refresh(ListKind::kJobNames);
      }
      break;
    case tk::EventType::kControl:
      owner_.note_active(e.window);
      if (e.control == tk::kJmdFilter && e.notice == tk::Notice::kChanged) {
        list_.set_filter(window_.control(tk::kJmdFilter).text());
        list_.show_from(0);
        refill();
        break;
      }
      if (e.control == tk::kJmdList) {
        // Enter edits as a double click does, Insert makes a new row as New
        // does; Delete and Ctrl+X/C/V are the Edit menu's accelerators.
        if (e.double_click() || (e.notice == tk::Notice::kKey && e.key == tk::Key::kEnter)) {
          edit_selected();
        } else if (e.notice == tk::Notice::kKey && e.key == tk::Key::kInsert) {
          new_row();
        } else if (e.notice == tk::Notice::kSelectionChanged) {
          update_controls();
        }
        break;
      }
      if (e.notice != tk::Notice::kClicked) break;
      switch (e.control) {
        case tk::kJmdEdit: edit_selected(); break;
        case tk::kJmdNew: new_row(); break;
        case tk::kJmdDelete: delete_selected(true); break;
        case tk::kJmdClose: e.window.destroy(); break;
        case tk::kJmdPrevious:
          list_.previous_page();
          fill();
          break;
        case tk::kJmdNext:
          list_.next_page();
          fill();
          break;
        case tk::kJobStepUp: move(true); break;
        case tk::kJobStepDown: move(false); break;
        default: break;
      }
      break;
    default:
      break;
  }
}

}  // namespace px::editors
