// The headless back end: windows, events, scripts, message boxes, timers,
// menus and help. Controls are in headless_controls.cpp, the operator's acts
// in headless_operator.cpp.
#include "toolkit/headless/headless_toolkit.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "toolkit/caption.h"
#include "toolkit/headless/headless_state.h"
#include "toolkit/make_event.h"
#include "toolkit/resources/resource_ids.h"

namespace px::tk {

namespace {

const char* box_name(BoxKind kind) {
  switch (kind) {
    case BoxKind::kError: return "error box";
    case BoxKind::kNote: return "note box";
    case BoxKind::kAsk: return "question box";
  }
  return "box";
}

void build_menu(std::span<const MenuItemDef> items, std::vector<HeadlessMenuItem>& out) {
  for (const MenuItemDef& item : items) {
    if (item.kind == MenuItemKind::kSubmenu) build_menu(item.submenu, out);
    if (item.kind != MenuItemKind::kCommand) continue;
    HeadlessMenuItem m;
    m.id = item.id;
    m.label = std::string(item.label);
    m.accelerator = std::string(item.accelerator);
    m.enabled = !(item.style & kDisabled);
    out.push_back(std::move(m));
  }
}

}  // namespace

void build_headless_window(HeadlessWindow& win, const WindowDef& def, const MenuBarDef* bar) {
  win.def = &def;
  win.title = std::string(def.title);
  win.client = {def.size.width * kPixelsPerUnit, def.size.height * kPixelsPerUnit};
  int group = 0;
  bool in_group = false;
  for (const ControlDef& d : def.controls) {
    HeadlessControl c;
    c.def = &d;
    c.id = d.id;
    c.kind = d.kind;
    c.enabled = !(d.style & kDisabled);
    c.visible = !(d.style & kHidden);
    c.rect = {d.box.x * kPixelsPerUnit, d.box.y * kPixelsPerUnit, d.box.width * kPixelsPerUnit,
              d.box.height * kPixelsPerUnit};
    c.limit = d.limit;
    c.font = font_by_family("", 9);
    if (d.style & kFixedFont) c.font = font_by_family("fixed", 9);
    if (d.kind != ControlKind::kListBox && d.kind != ControlKind::kDropDownList &&
        d.kind != ControlKind::kTextEdit) {
      c.text = std::string(d.label);
    }
    if (d.kind == ControlKind::kRadioButton) {
      if (!in_group || (d.style & kNewGroup)) ++group;
      c.radio_group = group;
    }
    in_group = d.kind == ControlKind::kRadioButton;
    win.controls.push_back(std::move(c));
  }
  if (bar) {
    for (const MenuDef& menu : bar->menus) build_menu(menu.items, win.menu);
  }
}

HeadlessToolkit::HeadlessToolkit(ResourceLookup resources) : resources_(std::move(resources)) {
  on_failure_ = [](const std::string& what) {
    std::fprintf(stderr, "headless toolkit: %s\n", what.c_str());
    std::abort();
  };
}

HeadlessToolkit::~HeadlessToolkit() {
  verify_scripts_used();
  help_hook_ = nullptr;
  std::vector<WindowId> ids;
  for (const auto& entry : windows_) ids.push_back(entry.first);
  for (WindowId id : ids) windows_.erase(id);
}

void HeadlessToolkit::set_failure_handler(FailureHandler handler) { on_failure_ = std::move(handler); }

void HeadlessToolkit::fail(const std::string& what) {
  if (on_failure_) on_failure_(what);
}

// ---- scripts

void HeadlessToolkit::expect_error(std::string_view text_contains) {
  box_scripts_.push_back({BoxKind::kError, std::string(text_contains), Answer::kFirst});
}

void HeadlessToolkit::expect_note(std::string_view text_contains) {
  box_scripts_.push_back({BoxKind::kNote, std::string(text_contains), Answer::kFirst});
}

void HeadlessToolkit::answer_ask(Answer answer, std::string_view text_contains) {
  box_scripts_.push_back({BoxKind::kAsk, std::string(text_contains), answer});
}

void HeadlessToolkit::on_dialog(int resource_id, DialogScript script) {
  dialog_scripts_.push_back({resource_id, std::move(script)});
}

void HeadlessToolkit::answer_file_dialog(std::optional<std::string> path) {
  file_answers_.push_back(std::move(path));
}

void HeadlessToolkit::verify_scripts_used() {
  for (const BoxScript& box : box_scripts_) {
    fail(std::string("a scripted ") + box_name(box.kind) + " never came (\"" + box.contains + "\")");
  }
  for (const DialogEntry& dialog : dialog_scripts_) {
    fail("a scripted dialog " + std::to_string(dialog.resource_id) + " never opened");
  }
  if (!file_answers_.empty()) fail("a scripted file dialog never opened");
  box_scripts_.clear();
  dialog_scripts_.clear();
  file_answers_.clear();
}

Answer HeadlessToolkit::take_box(BoxKind kind, std::string_view text,
                                 std::vector<std::string> buttons) {
  ShownBox box{kind, message_caption(), std::string(text), std::move(buttons), Answer::kFirst};
  if (box_scripts_.empty()) {
    fail(std::string("unexpected ") + box_name(kind) + ": \"" + box.text + "\"");
    box.answer = static_cast<Answer>(box.buttons.size());
  } else {
    BoxScript script = box_scripts_.front();
    box_scripts_.pop_front();
    if (script.kind != kind || box.text.find(script.contains) == std::string::npos) {
      fail(std::string("expected a ") + box_name(script.kind) + " with \"" + script.contains +
           "\", got a " + box_name(kind) + ": \"" + box.text + "\"");
    }
    box.answer = script.answer;
    if (static_cast<size_t>(box.answer) > box.buttons.size()) {
      fail("the scripted answer names a button the box does not have: \"" + box.text + "\"");
      box.answer = static_cast<Answer>(box.buttons.size());
    }
  }
  boxes_.push_back(box);
  return box.answer;
}

void HeadlessToolkit::post_error(std::string_view text) { take_box(BoxKind::kError, text, {"OK"}); }

void HeadlessToolkit::post_note(std::string_view text) { take_box(BoxKind::kNote, text, {"OK"}); }

Answer HeadlessToolkit::post_ask(std::string_view text, std::string_view first,
                                 std::string_view second, std::string_view third) {
  std::vector<std::string> buttons{std::string(first), std::string(second)};
  if (!third.empty()) buttons.emplace_back(third);
  return take_box(BoxKind::kAsk, text, std::move(buttons));
}

std::optional<std::string> HeadlessToolkit::choose_file_to_open(const FileRequest& request) {
  file_requests_.push_back(request);
  if (file_answers_.empty()) {
    fail("unexpected file dialog \"" + request.prompt + "\"");
    return std::nullopt;
  }
  std::optional<std::string> answer = file_answers_.front();
  file_answers_.pop_front();
  return answer;
}

std::string HeadlessToolkit::default_directory() {
  std::string dir(4096, '\0');
  if (!::getcwd(dir.data(), dir.size())) return ".";
  dir.resize(dir.find('\0'));
  return dir;
}

// ---- application and windows

int HeadlessToolkit::run_application(const Application& app) {
  running_ = true;
  const WindowDef* def = resources_.window(kTaskWindow);
  if (!def) {
    fail("no task window resource");
    return 0;
  }
  auto win = std::make_unique<HeadlessWindow>();
  win->id = next_id_++;
  win->handler = std::make_shared<Handler>(app.task_handler);
  build_headless_window(*win, *def, resources_.menu_bar(app.menu_bar));
  win->frame = {0, 0, win->client.width, win->client.height + title_bar_height()};
  task_ = win->id;
  windows_[task_] = std::move(win);
  stacking_.push_back(task_);
  deliver(task_, make_event(EventType::kCreate));
  if (HeadlessWindow* w = find(task_)) deliver(task_, resize_event(w->client));
  return 0;
}

Window HeadlessToolkit::task_window() { return Window(this, exists(task_) ? task_ : 0); }

void HeadlessToolkit::shut_down() {
  destroy(task_);
  running_ = false;
}

void HeadlessToolkit::allow_quit() { quit_allowed_ = true; }

HeadlessWindow* HeadlessToolkit::find(WindowId w) {
  auto it = windows_.find(w);
  return it == windows_.end() ? nullptr : it->second.get();
}

Window HeadlessToolkit::make_window(int resource_id, Handler handler, long app_value, bool modal,
                                    std::optional<Rect> frame) {
  const WindowDef* def = resources_.window(resource_id);
  if (!def || def->kind == WindowKind::kTask || (def->kind == WindowKind::kDialog) != modal) {
    return Window(this, 0);
  }
  auto win = std::make_unique<HeadlessWindow>();
  win->id = next_id_++;
  win->handler = std::make_shared<Handler>(std::move(handler));
  win->app_value = app_value;
  win->modal = modal;
  build_headless_window(*win, *def, nullptr);
  int bar = def->kind == WindowKind::kPlain ? 0 : title_bar_height();
  win->frame = {(1280 - win->client.width) / 2, (1024 - win->client.height - bar) / 2,
                win->client.width, win->client.height + bar};
  if (frame) {
    win->frame = *frame;
    win->client = {frame->width, std::max(0, frame->height - bar)};
  }
  WindowId id = win->id;
  windows_[id] = std::move(win);
  stacking_.push_back(id);
  if (modal) modal_.push_back(id);
  deliver(id, make_event(EventType::kCreate));
  if (HeadlessWindow* w = find(id)) deliver(id, resize_event(w->client));
  return Window(this, id);
}

Window HeadlessToolkit::create_window(int resource_id, Handler handler, long app_value,
                                      std::optional<Rect> frame) {
  return make_window(resource_id, std::move(handler), app_value, false, frame);
}

bool HeadlessToolkit::run_modal_dialog(int resource_id, Handler handler, long app_value) {
  Window dialog = make_window(resource_id, std::move(handler), app_value, true, std::nullopt);
  if (dialog.id() == 0) return false;
  if (exists(dialog.id())) run_dialog_script(dialog);
  std::erase(modal_, dialog.id());
  return true;
}

void HeadlessToolkit::run_dialog_script(Window dialog) {
  int id = dialog.resource_id();
  if (dialog_scripts_.empty() || dialog_scripts_.front().resource_id != id) {
    fail("unexpected dialog " + std::to_string(id) + " \"" + dialog.title() + "\"" +
         (dialog_scripts_.empty()
              ? std::string()
              : " (the next script is for " + std::to_string(dialog_scripts_.front().resource_id) + ")"));
    destroy(dialog.id());
    return;
  }
  DialogScript script = std::move(dialog_scripts_.front().script);
  dialog_scripts_.pop_front();
  script(dialog);
  if (exists(dialog.id())) {
    fail("dialog " + std::to_string(id) + " is still open after its script");
    destroy(dialog.id());
  }
}

void HeadlessToolkit::destroy(WindowId w) {
  HeadlessWindow* win = find(w);
  if (!win || win->destroying) return;
  win->destroying = true;
  if (w == task_) {  // the program's end takes every other window with it
    std::vector<WindowId> others(stacking_.rbegin(), stacking_.rend());
    for (WindowId other : others) {
      if (other != w) destroy(other);
    }
  }
  deliver(w, make_event(EventType::kDestroy));
  std::erase_if(timers_, [w](const auto& entry) { return entry.second.window == w; });
  help_topics_.forget(w);
  std::erase(stacking_, w);
  std::erase(modal_, w);
  if (capture_ == w) capture_ = 0;
  windows_.erase(w);
  if (w == task_) running_ = false;
}

void HeadlessToolkit::deliver(WindowId w, Event event) {
  HeadlessWindow* win = find(w);
  if (!win) return;
  event.window = Window(this, w);
  std::shared_ptr<Handler> handler = win->handler;
  ++depth_;
  bool taken = false;
  if (help_hook_) {
    HelpHook hook = help_hook_;
    taken = hook(event);
  }
  if (!taken && handler && *handler) (*handler)(event);
  if (--depth_ == 0) check_suspended();
}

void HeadlessToolkit::check_suspended() {
  for (auto& [id, win] : windows_) {
    for (HeadlessControl& c : win->controls) {
      if (!c.suspended) continue;
      fail("control " + std::to_string(c.id) + " of window " + std::to_string(win->def->id) +
           " was left suspended");
      c.suspended = false;
    }
  }
}

void HeadlessToolkit::notify(WindowId w, int control, Notice notice, ScrollAction action,
                             int position) {
  deliver(w, control_event(control, notice, action, position));
}

Window HeadlessToolkit::focused_top_window() {
  for (auto it = stacking_.rbegin(); it != stacking_.rend(); ++it) {
    HeadlessWindow* win = find(*it);
    if (win && win->visible) return Window(this, *it);
  }
  return Window(this, 0);
}

bool HeadlessToolkit::exists(WindowId w) { return find(w) != nullptr; }
int HeadlessToolkit::resource_id(WindowId w) {
  HeadlessWindow* win = find(w);
  return win ? win->def->id : 0;
}
long HeadlessToolkit::app_value(WindowId w) {
  HeadlessWindow* win = find(w);
  return win ? win->app_value : 0;
}
void HeadlessToolkit::set_app_value(WindowId w, long value) {
  if (HeadlessWindow* win = find(w)) win->app_value = value;
}
std::string HeadlessToolkit::title(WindowId w) {
  HeadlessWindow* win = find(w);
  return win ? win->title : std::string();
}
void HeadlessToolkit::set_title(WindowId w, std::string_view title) {
  if (HeadlessWindow* win = find(w)) win->title = std::string(title);
}
bool HeadlessToolkit::window_enabled(WindowId w) {
  HeadlessWindow* win = find(w);
  return win && win->enabled;
}
void HeadlessToolkit::set_window_enabled(WindowId w, bool on) {
  if (HeadlessWindow* win = find(w)) win->enabled = on;
}
bool HeadlessToolkit::window_visible(WindowId w) {
  HeadlessWindow* win = find(w);
  return win && win->visible;
}
void HeadlessToolkit::set_window_visible(WindowId w, bool on) {
  if (HeadlessWindow* win = find(w)) win->visible = on;
}
void HeadlessToolkit::raise(WindowId w) {
  if (!find(w)) return;
  std::erase(stacking_, w);
  stacking_.push_back(w);
}
Rect HeadlessToolkit::frame(WindowId w) {
  HeadlessWindow* win = find(w);
  return win ? win->frame : Rect{};
}
void HeadlessToolkit::set_frame(WindowId w, const Rect& frame) {
  HeadlessWindow* win = find(w);
  if (!win) return;
  int bar = win->def->kind == WindowKind::kPlain ? 0 : title_bar_height();
  win->frame = frame;
  win->client = {frame.width, std::max(0, frame.height - bar)};
  deliver(w, resize_event(win->client));
}
Size HeadlessToolkit::client_size(WindowId w) {
  HeadlessWindow* win = find(w);
  return win ? win->client : Size{};
}
void HeadlessToolkit::invalidate(WindowId w) {
  if (HeadlessWindow* win = find(w)) win->needs_paint = true;
}

// ---- drawing

void HeadlessToolkit::clear(WindowId w, Color color) {
  HeadlessWindow* win = find(w);
  if (!win) return;
  if (painting_ != w) return fail("clear outside a paint event of window " + std::to_string(win->def->id));
  win->drawing.push_back({DrawOp::Kind::kClear, {}, {}, color});
}
void HeadlessToolkit::set_draw_font(WindowId, const Font&) {}
void HeadlessToolkit::draw_text(WindowId w, Point at, std::string_view text) {
  HeadlessWindow* win = find(w);
  if (!win) return;
  if (painting_ != w) {
    return fail("draw_text outside a paint event of window " + std::to_string(win->def->id));
  }
  win->drawing.push_back({DrawOp::Kind::kText, at, std::string(text), {}});
}
bool HeadlessToolkit::draw_image(WindowId w, Point at, std::string_view path) {
  HeadlessWindow* win = find(w);
  if (!win) return false;
  if (painting_ != w) {
    fail("draw_image outside a paint event of window " + std::to_string(win->def->id));
    return false;
  }
  if (::access(std::string(path).c_str(), R_OK) != 0) return false;
  win->drawing.push_back({DrawOp::Kind::kImage, at, std::string(path), {}});
  return true;
}

// ---- menus

bool HeadlessToolkit::has_menu_item(WindowId w, int item) {
  HeadlessWindow* win = find(w);
  return win && win->menu_item(item);
}
bool HeadlessToolkit::menu_enabled(WindowId w, int item) {
  HeadlessWindow* win = find(w);
  HeadlessMenuItem* m = win ? win->menu_item(item) : nullptr;
  return m && m->enabled;
}
void HeadlessToolkit::set_menu_enabled(WindowId w, int item, bool on) {
  HeadlessWindow* win = find(w);
  if (HeadlessMenuItem* m = win ? win->menu_item(item) : nullptr) m->enabled = on;
}
bool HeadlessToolkit::menu_checked(WindowId w, int item) {
  HeadlessWindow* win = find(w);
  HeadlessMenuItem* m = win ? win->menu_item(item) : nullptr;
  return m && m->checked;
}
void HeadlessToolkit::set_menu_checked(WindowId w, int item, bool on) {
  HeadlessWindow* win = find(w);
  if (HeadlessMenuItem* m = win ? win->menu_item(item) : nullptr) m->checked = on;
}
std::string HeadlessToolkit::menu_tip(WindowId w, int item) {
  HeadlessWindow* win = find(w);
  HeadlessMenuItem* m = win ? win->menu_item(item) : nullptr;
  return m ? m->tip : std::string();
}
void HeadlessToolkit::set_menu_tip(WindowId w, int item, std::string_view text) {
  HeadlessWindow* win = find(w);
  if (HeadlessMenuItem* m = win ? win->menu_item(item) : nullptr) m->tip = std::string(text);
}

// ---- timers, mouse, user events

long HeadlessToolkit::start_timer(WindowId w, int milliseconds) {
  if (!find(w) || milliseconds <= 0) return 0;
  long id = next_timer_++;
  timers_[id] = Timer{w, milliseconds, now_ + milliseconds};
  return id;
}
void HeadlessToolkit::stop_timer(long timer) { timers_.erase(timer); }
void HeadlessToolkit::capture_mouse(WindowId w) {
  if (find(w)) capture_ = w;
}
void HeadlessToolkit::send_user_event(WindowId w, int user_id) {
  deliver(w, user_event(user_id));
}

// ---- help

bool HeadlessToolkit::open_help_file(std::string_view path) {
  help_open_ = is_help_file(path);
  return help_open_;
}
void HeadlessToolkit::close_help_file() { help_open_ = false; }
void HeadlessToolkit::set_help_topic(WindowId w, int control, std::string_view topic) {
  help_topics_.set_window_topic(w, control, topic);
}
void HeadlessToolkit::set_menu_help_topic(int item, std::string_view topic) {
  help_topics_.set_menu_topic(item, topic);
}
void HeadlessToolkit::forget_help_topics(WindowId w) { help_topics_.forget(w); }
bool HeadlessToolkit::process_help_event(const Event& event) {
  if (!help_open_) return false;
  std::optional<std::string> topic = help_topics_.topic_for(event);
  if (!topic) return false;
  show_help_topic(*topic);
  return true;
}
void HeadlessToolkit::show_help_topic(std::string_view topic) { help_shown_.emplace_back(topic); }
void HeadlessToolkit::set_help_hook(HelpHook hook) { help_hook_ = std::move(hook); }

}  // namespace px::tk
