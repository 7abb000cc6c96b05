#include "views/windows/log_window.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>

#include "common/file_util.h"
#include "config/instances.h"
#include "toolkit/dialog_base.h"
#include "toolkit/resources/resource_ids.h"
#include "views/file_lists.h"
#include "common/text.h"
#include "views/log_find.h"
#include "views/log_follow.h"
#include "views/log_source.h"
#include "views/log_text.h"
#include "views/view_messages.h"

namespace px::views {

namespace {

constexpr int kColumnStep = 10;
constexpr const char* kAgentTitle = "Nexa E-Mail Agent";

// What one log or rejected-file window shows; owned by its handler.
struct TextView {
  explicit TextView(const ViewHost& h) : host(h) {}

  ViewHost host;
  bool reject_file = false;     // the rejected-file view rather than a log
  bool email = false;           // the E-mail Agent's log or rejects
  std::string section;          // the process whose log is shown
  std::string file_name;        // the rejected file
  std::unique_ptr<LogIndex> index;
  std::unique_ptr<LogFollower> follower;
  bool paged = false;           // a large log shown a page at a time
  int64_t first_line = 0;       // paged: the first line shown
  int widest = 0;               // the longest paragraph shown
  int64_t found = -1;           // the line (paged) or paragraph last found
};

tk::Control text_of(tk::Window w) { return w.control(tk::kLogText); }

// Adds rows as paragraphs; 178 and false when the text edit is full.
bool add_rows(tk::Window w, TextView& view, const std::vector<std::string>& rows) {
  tk::Control text = text_of(w);
  text.suspend();
  bool all = true;
  for (const std::string& row : rows) {
    if (!text.add_paragraph(row)) {
      view.host.op.show(msg::kTextFull);
      all = false;
      break;
    }
    view.widest = std::max(view.widest, static_cast<int>(row.size()));
  }
  text.resume();
  return all;
}

// Sets both scroll bars from what the text edit shows.
void sync_scroll_bars(tk::Window w, const TextView& view) {
  tk::Control text = text_of(w);
  tk::Control vertical = w.control(tk::kLogVScroll);
  if (view.paged) {
    vertical.set_range(0, static_cast<int>(last_page(*view.index)));
    vertical.set_page(static_cast<int>(kPageLines));
    vertical.set_position(static_cast<int>(view.first_line));
  } else {
    vertical.set_range(0, std::max(0, text.paragraph_count() - 1));
    vertical.set_page(std::max(1, text.visible_lines()));
    vertical.set_position(text.origin().line);
  }
  tk::Control horizontal = w.control(tk::kLogHScroll);
  horizontal.set_range(0, view.widest);
  horizontal.set_position(text.origin().column);
}

// Shows the 30 lines from line first (within the log); 177 when the log
// does not open.
void show_page(tk::Window w, TextView& view, int64_t first) {
  first = std::clamp<int64_t>(first, 0, last_page(*view.index));
  auto lines = view.index->read_lines(first, kPageLines);
  if (!lines) {
    view.host.op.show(msg::kFileNotOpened, {display_path(view.index->path())});
    return;
  }
  text_of(w).clear_paragraphs();
  view.widest = 0;
  add_rows(w, view, *lines);
  view.first_line = first;
  sync_scroll_bars(w, view);
}

// Shows the indexed log as it opens: whole and at its end, or its last page.
void load_log(tk::Window w, TextView& view) {
  tk::Control text = text_of(w);
  view.paged = !shown_whole(*view.index);
  view.follower = std::make_unique<LogFollower>(*view.index);
  if (view.paged) {
    show_page(w, view, last_page(*view.index));
    return;
  }
  text.clear_paragraphs();
  view.widest = 0;
  auto rows = whole_log(view.index->path(), wrap_settings());
  if (!rows) {
    view.host.op.show(msg::kFileNotOpened, {display_path(view.index->path())});
    return;
  }
  add_rows(w, view, *rows);
  if (text.paragraph_count() > 0) text.show_paragraph(text.paragraph_count() - 1);
  sync_scroll_bars(w, view);
}

bool at_end(tk::Window w, const TextView& view) {
  if (view.paged) return view.first_line >= last_page(*view.index);
  tk::Control text = text_of(w);
  return text.origin().line + text.visible_lines() >= text.paragraph_count();
}

// The timer: shows what was appended when the operator is at the end, and
// loads a truncated or replaced log again.
void follow(tk::Window w, TextView& view) {
  if (!view.follower) return;
  bool was_at_end = at_end(w, view);
  auto poll = view.follower->poll();
  if (!poll) return;
  if (poll->restarted) {
    load_log(w, view);
    return;
  }
  if (poll->lines.empty()) return;
  if (view.paged) {
    if (was_at_end) {
      show_page(w, view, last_page(*view.index));
    } else {
      sync_scroll_bars(w, view);
    }
    return;
  }
  std::vector<std::string> rows;
  Wrap wrap = wrap_settings();
  for (const std::string& line : poll->lines) wrap_line(line, wrap, rows);
  add_rows(w, view, rows);
  tk::Control text = text_of(w);
  if (was_at_end) text.show_paragraph(text.paragraph_count() - 1);
  sync_scroll_bars(w, view);
}

// The step a scroll action asks for from position now, with page the
// bar's page; the thumb goes to position.
int scroll_target(const tk::Event& e, int now, int line, int page) {
  switch (e.scroll) {
    case tk::ScrollAction::kLineUp: return now - line;
    case tk::ScrollAction::kLineDown: return now + line;
    case tk::ScrollAction::kPageUp: return now - page;
    case tk::ScrollAction::kPageDown: return now + page;
    case tk::ScrollAction::kThumb:
    case tk::ScrollAction::kThumbTrack: return e.position;
    case tk::ScrollAction::kNone: break;
  }
  return now;
}

void scroll(tk::Window w, TextView& view, const tk::Event& e) {
  tk::Control text = text_of(w);
  tk::TextOrigin origin = text.origin();
  if (e.control == tk::kLogVScroll) {
    int page = std::max(1, w.control(tk::kLogVScroll).page());
    if (view.paged) {
      int64_t target = scroll_target(e, static_cast<int>(view.first_line), 1, page);
      if (target != view.first_line) show_page(w, view, target);
    } else {
      int target = scroll_target(e, origin.line, 1, page);
      origin.line = std::clamp(target, 0, std::max(0, text.paragraph_count() - 1));
      text.set_origin(origin);
    }
  } else {
    int page = std::max(1, w.control(tk::kLogHScroll).page());
    int target = scroll_target(e, origin.column, kColumnStep, kColumnStep * page);
    origin.column = std::clamp(target, 0, view.widest);
    text.set_origin(origin);
  }
  sync_scroll_bars(w, view);
}

// Find Next and Find Previous: a paged log is searched through its index
// from the page shown (never loaded whole) and shows the page from the line
// found; loaded text is searched paragraph by paragraph and scrolled to the
// one found. Nothing found: a beep.
void find(tk::Window w, TextView& view, FindDirection direction) {
  std::string text = w.control(tk::kLogFindText).text();
  bool forward = direction == FindDirection::kForward;
  tk::Control edit = text_of(w);
  std::optional<int64_t> hit;
  if (view.paged) {
    int64_t from = view.found >= 0 ? view.found + (forward ? 1 : -1)
                                   : view.first_line + (forward ? 0 : kPageLines - 1);
    if (from >= 0) hit = find_line(*view.index, text, from, direction);
    if (hit) show_page(w, view, *hit);
  } else if (!text.empty()) {
    int count = edit.paragraph_count();
    tk::TextOrigin origin = edit.origin();
    int from = view.found >= 0 ? static_cast<int>(view.found) + (forward ? 1 : -1)
                               : origin.line + (forward ? 0 : edit.visible_lines() - 1);
    for (int i = std::min(from, count - 1); i >= 0 && i < count; i += forward ? 1 : -1) {
      if (ifind(edit.paragraph(i), text) != std::string::npos) {
        hit = i;
        break;
      }
    }
    if (hit) {
      edit.set_origin({static_cast<int>(*hit), origin.column});
      sync_scroll_bars(w, view);
    }
  }
  if (hit) {
    view.found = *hit;
  } else {
    w.toolkit().beep();
  }
}

// The window's keys: Ctrl+F puts the focus in the find field with its text
// selected, so typing replaces it; F3 and Enter in the field find the next
// line, Shift+F3 the previous one.
void key(tk::Window w, TextView& view, const tk::Event& e) {
  switch (e.key) {
    case tk::Key::kCtrlF: {
      tk::Control field = w.control(tk::kLogFindText);
      field.focus();
      field.set_selection(0, static_cast<int>(field.text().size()));
      break;
    }
    case tk::Key::kF3:
      find(w, view, FindDirection::kForward);
      break;
    case tk::Key::kShiftF3:
      find(w, view, FindDirection::kBackward);
      break;
    case tk::Key::kEnter:
      if (e.control == tk::kLogFindText) find(w, view, FindDirection::kForward);
      break;
    default:
      break;
  }
}

// The caption over the text, and the text and the bars filling the rest.
void place_controls(tk::Window w, tk::Size client) {
  tk::Control text = text_of(w);
  tk::Control vertical = w.control(tk::kLogVScroll);
  tk::Control horizontal = w.control(tk::kLogHScroll);
  tk::Rect area = text.rect();
  int bar_width = std::max(1, vertical.rect().width);
  int bar_height = std::max(1, horizontal.rect().height);
  area.width = std::max(1, client.width - area.x - bar_width - area.x);
  area.height = std::max(1, client.height - area.y - bar_height - 4);
  text.set_rect(area);
  vertical.set_rect({area.x + area.width, area.y, bar_width, area.height});
  horizontal.set_rect({area.x, area.y + area.height, area.width, bar_height});
}

tk::Font view_font() { return tk::font_by_family(cjk_locale() ? "system" : "courier", 10); }

// Window 120's create for a log; false when the window is to close.
bool create_log(tk::Window w, TextView& view) {
  const Instance& instance = current_instance();
  w.set_title(message_label(msg::kLogTitle) + " " +
              (view.email ? std::string(kAgentTitle) : instance.window_title));
  text_of(w).set_font(view_font());
  auto path = view.email ? agent_log_file(instance.config_file, view.host.op)
                         : process_log_file(instance.config_file, view.section, view.host.op);
  if (!path) return false;
  view.index = std::make_unique<LogIndex>(*path);
  if (!index_log(*view.index, view.host.op)) return false;
  text_of(w).clear_paragraphs();
  load_log(w, view);
  w.control(tk::kLogCaption).set_text(message_label(msg::kLogCaption) + " " + *path);
  w.start_timer(kFollowPeriodMs);
  return true;
}

// Window 120's create for a rejected file; false when the window is to close.
bool create_reject_file(tk::Window w, TextView& view) {
  const Instance& instance = current_instance();
  w.set_title(message_label(msg::kRejectTitle) + " " + instance.window_title);
  if (!text_of(w).exists()) {
    view.host.op.show(msg::kNoTextEdit);
    return false;
  }
  text_of(w).set_font(view_font());
  auto directory = error_directory(instance.config_file, view.email, view.host.op);
  if (!directory) return false;
  auto lines = file_lines(join_path(view.file_name, *directory), view.host.op);
  if (!lines) return false;
  w.control(tk::kLogCaption).set_text(message_label(msg::kRejectCaption) + " " + view.file_name);
  add_rows(w, view, *lines);
  sync_scroll_bars(w, view);
  return true;
}

void handle_text(TextView& view, const tk::Event& e) {
  tk::Window w = e.window;
  switch (e.type) {
    case tk::EventType::kCreate: {
      view.host.view_created(w);
      view.host.toolkit.show_busy_cursor();
      bool shown = view.reject_file ? create_reject_file(w, view) : create_log(w, view);
      if (!shown) w.destroy();
      break;
    }
    case tk::EventType::kDestroy:
      view.host.view_destroyed(w);
      break;
    case tk::EventType::kResize:
      place_controls(w, e.size);
      if (view.index || view.reject_file) sync_scroll_bars(w, view);
      break;
    case tk::EventType::kClose:
      w.destroy();
      break;
    case tk::EventType::kControl:
      if (e.notice == tk::Notice::kScrolled &&
          (e.control == tk::kLogVScroll || e.control == tk::kLogHScroll)) {
        scroll(w, view, e);
      } else if (e.is_control(tk::kLogFindNext, tk::Notice::kClicked)) {
        find(w, view, FindDirection::kForward);
      } else if (e.is_control(tk::kLogFindPrevious, tk::Notice::kClicked)) {
        find(w, view, FindDirection::kBackward);
      } else if (e.notice == tk::Notice::kKey) {
        key(w, view, e);
      } else if (e.is_control(tk::kLogFindText, tk::Notice::kChanged)) {
        view.found = -1;  // a new text is looked for from what is shown
      }
      break;
    case tk::EventType::kTimer:
      follow(w, view);
      break;
    default:
      break;
  }
}

tk::Window open_text_window(const std::shared_ptr<TextView>& view, long app_value) {
  const ViewHost& host = view->host;
  tk::Window w = host.toolkit.create_window(
      tk::kLogWindow, [view](const tk::Event& e) { handle_text(*view, e); }, app_value);
  if (w.id() == 0) view->host.op.show(msg::kWindowNotOpened);
  return w.exists() ? w : tk::Window();
}

// Dialog 113: the processes by name, the first selected; OK or a double
// click chooses one. The list is empty when only the E-mail Agent is listed.
class ChooseProcess : public tk::DialogBase {
 public:
  ChooseProcess(const ViewHost& host, const std::vector<LogProcess>& processes)
      : host_(host), processes_(processes) {}
  std::optional<std::string> chosen;

 private:
  void create(tk::Window dialog) override {
    host_.help_on(dialog, kViewsHelpTopic);
    tk::Control list = dialog.control(tk::kLogProcessList);
    for (const LogProcess& p : processes_) list.add(p.name);
    list.select(0);
    list.focus();
  }

  void control(tk::Window dialog, const tk::Event& e) override {
    if (!e.is_control(tk::kOk, tk::Notice::kClicked) &&
        !(e.control == tk::kLogProcessList && e.double_click())) {
      return;
    }
    int row = dialog.control(tk::kLogProcessList).selected();
    // OK with no process to choose (the list can be empty) closes the
    // dialog; a double click beside the rows does nothing.
    if (row < 0 && e.control != tk::kOk) return;
    if (row >= 0) chosen = processes_[static_cast<size_t>(row)].section;
    dialog.destroy();
  }

  void destroyed(tk::Window dialog) override { host_.help_off(dialog); }

  const ViewHost& host_;
  const std::vector<LogProcess>& processes_;
};

std::optional<std::string> choose_process(const ViewHost& host,
                                          const std::vector<LogProcess>& processes) {
  ChooseProcess dialog(host, processes);
  if (!dialog.run_modal(host.toolkit, tk::kLogProcessDialog)) {
    host.op.show(msg::kDialogNotOpened);
  }
  return dialog.chosen;
}

}  // namespace

bool cjk_locale() {
  const char* locale = nullptr;
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    locale = std::getenv(name);
    if (locale != nullptr && *locale != '\0') break;
  }
  if (locale == nullptr) return false;
  std::string_view value = locale;
  return value.starts_with("ja") || value.starts_with("zh") || value.starts_with("ko");
}

tk::Window open_process_log(const ViewHost& host, const std::string& section) {
  auto view = std::make_shared<TextView>(host);
  view->section = section;
  return open_text_window(view, 0);
}

tk::Window open_email_log(const ViewHost& host) {
  auto view = std::make_shared<TextView>(host);
  view->email = true;
  return open_text_window(view, 1);
}

tk::Window open_reject_file(const ViewHost& host, bool email, const std::string& name) {
  auto view = std::make_shared<TextView>(host);
  view->reject_file = true;
  view->email = email;
  view->file_name = name;
  return open_text_window(view, email ? 1 : 0);
}

void open_server_log(const ViewHost& host) {
  host.toolkit.show_busy_cursor();
  auto logs = log_processes(current_instance().config_file, host.op);
  if (!logs) return;
  switch (log_opening(*logs)) {
    case LogOpening::kNothing:
      return;
    case LogOpening::kOnly:
      open_process_log(host, logs->processes[0].section);
      return;
    case LogOpening::kChoice:
      if (auto section = choose_process(host, logs->processes)) open_process_log(host, *section);
      return;
  }
}

}  // namespace px::views
