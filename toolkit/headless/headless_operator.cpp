// The headless back end's operator: acts on windows as a person would, and
// reads back what the windows show.
#include <algorithm>

#include "common/text.h"
#include "toolkit/headless/headless_state.h"
#include "toolkit/make_event.h"

namespace px::tk {

namespace {

bool is_text_field(ControlKind kind) {
  return kind == ControlKind::kEdit || kind == ControlKind::kComboBox;
}

const char* kind_name(ControlKind kind) {
  switch (kind) {
    case ControlKind::kStatic: return "static";
    case ControlKind::kGroupBox: return "group";
    case ControlKind::kButton: return "button";
    case ControlKind::kEdit: return "edit";
    case ControlKind::kCheckBox: return "check";
    case ControlKind::kRadioButton: return "radio";
    case ControlKind::kListBox: return "list";
    case ControlKind::kComboBox: return "combo";
    case ControlKind::kDropDownList: return "dropdown";
    case ControlKind::kHScrollBar: return "hscroll";
    case ControlKind::kVScrollBar: return "vscroll";
    case ControlKind::kTextEdit: return "text";
  }
  return "?";
}

// Applies one key to a text field; returns whether the text changed.
bool apply_key(HeadlessControl& c, char key) {
  std::string before = c.text;
  TextRange sel = c.selection;
  if (sel.start != sel.end) {
    c.text.erase(static_cast<size_t>(sel.start), static_cast<size_t>(sel.end - sel.start));
    c.selection = {sel.start, sel.start};
  } else if (key == '\b' && sel.start > 0) {
    c.text.erase(static_cast<size_t>(sel.start - 1), 1);
    c.selection = {sel.start - 1, sel.start - 1};
  }
  bool full = c.limit > 0 && static_cast<int>(c.text.size()) >= c.limit;
  if (key != '\b' && !full) {
    c.text.insert(static_cast<size_t>(c.selection.start), 1, key);
    c.selection = {c.selection.start + 1, c.selection.start + 1};
  }
  return c.text != before;
}

}  // namespace

bool HeadlessToolkit::can_act(Window w) {
  HeadlessWindow* win = find(w.id());
  if (!win || !win->visible || !win->enabled) return false;
  return modal_.empty() || modal_.back() == w.id();
}

HeadlessControl* HeadlessToolkit::acting_on(Window w, int id) {
  if (!can_act(w)) return nullptr;
  HeadlessControl* c = control(w.id(), id);
  return c && c->visible && c->enabled ? c : nullptr;
}

void HeadlessToolkit::move_focus(HeadlessWindow& win, int control) {
  int old = win.focus;
  if (old == control) return;
  WindowId id = win.id;
  win.focus = control;
  if (old) notify(id, old, Notice::kFocusOut);
  if (find(id)) notify(id, control, Notice::kFocusIn);
}

bool HeadlessToolkit::focus_control(Window w, int control) {
  HeadlessControl* c = acting_on(w, control);
  if (!c || !takes_focus(c->kind)) return false;
  move_focus(*find(w.id()), control);
  return true;
}

bool HeadlessToolkit::type(Window w, int control, std::string_view keys) {
  HeadlessControl* c = acting_on(w, control);
  if (!c || !is_text_field(c->kind) || c->read_only()) return false;
  move_focus(*find(w.id()), control);
  for (char key : keys) {
    HeadlessWindow* win = find(w.id());
    HeadlessControl* field = win ? win->control(control) : nullptr;
    if (!field) return false;
    if (apply_key(*field, key)) notify(w.id(), control, Notice::kChanged);
  }
  return true;
}

bool HeadlessToolkit::replace_text(Window w, int control, std::string_view text) {
  HeadlessControl* c = acting_on(w, control);
  if (!c || !is_text_field(c->kind) || c->read_only()) return false;
  move_focus(*find(w.id()), control);
  c = find(w.id()) ? find(w.id())->control(control) : nullptr;
  if (!c) return false;
  std::string before = c->text;
  c->text = std::string(text);
  if (c->limit > 0 && static_cast<int>(c->text.size()) > c->limit) c->text.resize(static_cast<size_t>(c->limit));
  c->selection = {static_cast<int>(c->text.size()), static_cast<int>(c->text.size())};
  if (c->text != before) notify(w.id(), control, Notice::kChanged);
  return true;
}

bool HeadlessToolkit::click(Window w, int control) {
  HeadlessControl* c = acting_on(w, control);
  if (!c) return false;
  ControlKind kind = c->kind;
  if (kind != ControlKind::kButton && kind != ControlKind::kCheckBox &&
      kind != ControlKind::kRadioButton) {
    fail("control " + std::to_string(control) + " cannot be clicked: it is a " + kind_name(kind));
    return false;
  }
  if (kind == ControlKind::kCheckBox) c->checked = !c->checked;
  if (kind == ControlKind::kRadioButton) set_checked(w.id(), control, true);
  move_focus(*find(w.id()), control);
  if (find(w.id())) notify(w.id(), control, Notice::kClicked);
  return true;
}

bool HeadlessToolkit::click_row(Window w, int control, int row) {
  HeadlessControl* c = acting_on(w, control);
  if (!c) return false;
  if (!c->is_list() || row < 0 || static_cast<size_t>(row) >= c->rows.size()) {
    fail("control " + std::to_string(control) + " has no row " + std::to_string(row));
    return false;
  }
  std::vector<bool> before = c->selected;
  bool on = c->kind == ControlKind::kListBox && c->multi() ? !c->selected[static_cast<size_t>(row)] : true;
  list_select(w.id(), control, row, on);
  if (c->kind == ControlKind::kListBox) c->show_row(row);
  bool changed = before != c->selected || c->kind != ControlKind::kListBox;
  move_focus(*find(w.id()), control);
  if (changed && find(w.id())) notify(w.id(), control, Notice::kSelectionChanged);
  return true;
}

bool HeadlessToolkit::scroll_list(Window w, int control, int row) {
  HeadlessControl* c = acting_on(w, control);
  if (!c || c->kind != ControlKind::kListBox) return false;
  c->scroll_to(row);
  return true;
}

bool HeadlessToolkit::double_click_row(Window w, int control, int row) {
  HeadlessControl* c = acting_on(w, control);
  if (!c) return false;
  if (c->kind != ControlKind::kListBox) {
    fail("control " + std::to_string(control) + " is no list box to double-click");
    return false;
  }
  if (!click_row(w, control, row)) return false;
  if (find(w.id())) notify(w.id(), control, Notice::kDoubleClicked);
  return true;
}

bool HeadlessToolkit::scroll(Window w, int control, ScrollAction action, int thumb_position) {
  HeadlessControl* c = acting_on(w, control);
  if (!c || (c->kind != ControlKind::kHScrollBar && c->kind != ControlKind::kVScrollBar)) return false;
  int position = c->position;
  switch (action) {
    case ScrollAction::kLineUp: position -= 1; break;
    case ScrollAction::kLineDown: position += 1; break;
    case ScrollAction::kPageUp: position -= c->page; break;
    case ScrollAction::kPageDown: position += c->page; break;
    case ScrollAction::kThumbTrack:
    case ScrollAction::kThumb: position = thumb_position; break;
    case ScrollAction::kNone: break;
  }
  c->position = std::clamp(position, c->range.minimum, c->range.maximum);
  notify(w.id(), control, Notice::kScrolled, action, c->position);
  return true;
}

bool HeadlessToolkit::push_button(Window w, int control) {
  HeadlessControl* c = acting_on(w, control);
  if (!c) return false;
  notify(w.id(), control, Notice::kClicked);
  return true;
}

bool HeadlessToolkit::press_enter(Window dialog) {
  if (!can_act(dialog) || !find(dialog.id())->modal) return false;
  for (HeadlessControl& c : find(dialog.id())->controls) {
    if (c.def->style & kDefaultButton) return push_button(dialog, c.id);
  }
  return false;
}

bool HeadlessToolkit::press_escape(Window dialog) {
  if (!can_act(dialog) || !find(dialog.id())->modal) return false;
  for (HeadlessControl& c : find(dialog.id())->controls) {
    if ((c.def->style & kCancelButton) && c.visible && c.enabled) return push_button(dialog, c.id);
  }
  deliver(dialog.id(), make_event(EventType::kClose));
  return true;
}

bool HeadlessToolkit::close(Window w) {
  if (!can_act(w)) return false;
  deliver(w.id(), make_event(EventType::kClose));
  return true;
}

bool HeadlessToolkit::choose_menu(Window w, int item) {
  if (!can_act(w)) return false;
  HeadlessMenuItem* m = find(w.id())->menu_item(item);
  if (!m || !m->enabled) return false;
  deliver(w.id(), command_event(item));
  return true;
}

bool HeadlessToolkit::press_key(Window w, int control, Key key) {
  if (!can_act(w)) return false;
  const WindowDef* def = find(w.id())->def;
  bool window_key = def && std::find(def->keys.begin(), def->keys.end(), key) != def->keys.end();
  if (control != 0) {
    HeadlessControl* c = acting_on(w, control);
    if (!c) return false;
    if (!window_key && c->kind != ControlKind::kListBox) {
      fail("control " + std::to_string(control) + " is no list box to press a key in");
      return false;
    }
    if (!window_key && key != Key::kInsert && key != Key::kEnter) return false;
    move_focus(*find(w.id()), control);
  }
  HeadlessWindow* win = find(w.id());
  if (!win || (!window_key && control == 0)) return false;
  deliver(w.id(), key_event(window_key ? win->focus : control, key));
  return true;
}

bool HeadlessToolkit::press_accelerator(Window w, std::string_view keys) {
  HeadlessWindow* win = find(w.id());
  if (!win) return false;
  for (const HeadlessMenuItem& m : win->menu) {
    if (!m.accelerator.empty() && iequals(m.accelerator, keys)) return choose_menu(w, m.id);
  }
  return false;
}

bool HeadlessToolkit::mouse(Window w, Point at, MouseAction action, MouseButton button) {
  WindowId target = capture_ && find(capture_) ? capture_ : w.id();
  if (target == w.id() && !can_act(w)) return false;
  deliver(target, mouse_event(at, action, button));
  return true;
}

bool HeadlessToolkit::request_help(Window w) {
  if (!can_act(w)) return false;
  deliver(w.id(), help_event(find(w.id())->focus));
  return true;
}

void HeadlessToolkit::resize(Window w, Size client) {
  HeadlessWindow* win = find(w.id());
  if (!win) return;
  win->client = client;
  win->frame.width = client.width;
  win->frame.height = client.height + (win->def->kind == WindowKind::kPlain ? 0 : title_bar_height());
  deliver(w.id(), resize_event(client));
}

void HeadlessToolkit::activate(Window w) { raise(w.id()); }

bool HeadlessToolkit::send_quit(bool query) {
  quit_allowed_ = false;
  deliver(task_, quit_event(query));
  return query ? quit_allowed_ : true;
}

void HeadlessToolkit::fire_timer(long timer) {
  auto it = timers_.find(timer);
  if (it == timers_.end()) return fail("timer " + std::to_string(timer) + " is not running");
  deliver(it->second.window, timer_event(timer));
}

void HeadlessToolkit::advance_time(int milliseconds) {
  const long long target = now_ + std::max(0, milliseconds);
  for (;;) {
    auto next = timers_.end();
    for (auto it = timers_.begin(); it != timers_.end(); ++it) {
      if (it->second.due <= target && (next == timers_.end() || it->second.due < next->second.due)) next = it;
    }
    if (next == timers_.end()) break;
    now_ = next->second.due;
    next->second.due += next->second.interval;
    fire_timer(next->first);
  }
  now_ = target;
}

// ---- reading

Window HeadlessToolkit::find_window(int resource_id) {
  for (auto it = windows_.rbegin(); it != windows_.rend(); ++it) {
    if (it->second->def->id == resource_id) return Window(this, it->first);
  }
  return Window(this, 0);
}

std::vector<Window> HeadlessToolkit::open_windows() {
  std::vector<Window> out;
  for (WindowId id : stacking_) out.emplace_back(this, id);
  return out;
}

std::vector<std::string> HeadlessToolkit::paint(Window w) {
  std::vector<std::string> texts;
  HeadlessWindow* win = find(w.id());
  if (!win) return texts;
  win->drawing.clear();
  win->needs_paint = false;
  painting_ = w.id();
  deliver(w.id(), make_event(EventType::kPaint));
  painting_ = 0;
  if (!(win = find(w.id()))) return texts;
  for (const DrawOp& op : win->drawing) {
    if (op.kind == DrawOp::Kind::kText) texts.push_back(op.text);
  }
  return texts;
}

const std::vector<DrawOp>& HeadlessToolkit::last_drawing(Window w) {
  static const std::vector<DrawOp> kNothing;
  HeadlessWindow* win = find(w.id());
  return win ? win->drawing : kNothing;
}

std::string HeadlessToolkit::describe(Window w) {
  HeadlessWindow* win = find(w.id());
  if (!win) return "(no window)\n";
  std::string out = std::to_string(win->def->id) + " \"" + win->title + "\"" +
                    (win->enabled ? "" : " disabled") + "\n";
  for (const HeadlessControl& c : win->controls) {
    out += "  " + std::to_string(c.id) + " " + kind_name(c.kind) + " \"" + shown_text(c) + "\"";
    if (!c.visible) out += " hidden";
    if (!c.enabled) out += " disabled";
    if (c.checked) out += " checked";
    if (win->focus == c.id && c.id != kNoId) out += " focus";
    out += "\n";
    for (size_t i = 0; i < c.rows.size(); ++i) {
      out += std::string(c.selected.size() > i && c.selected[i] ? "   *" : "    ") + c.rows[i] + "\n";
    }
  }
  return out;
}

std::vector<long> HeadlessToolkit::timers(Window w) const {
  std::vector<long> out;
  for (const auto& [id, timer] : timers_) {
    if (timer.window == w.id()) out.push_back(id);
  }
  return out;
}

int HeadlessToolkit::timer_interval(long timer) const {
  auto it = timers_.find(timer);
  return it == timers_.end() ? 0 : it->second.interval;
}

std::vector<std::string> HeadlessToolkit::menu_labels(Window w) {
  std::vector<std::string> out;
  HeadlessWindow* win = find(w.id());
  if (!win) return out;
  for (const HeadlessMenuItem& m : win->menu) {
    std::string line = std::to_string(m.id) + " " + m.label;
    if (!m.accelerator.empty()) line += "\t" + m.accelerator;
    if (!m.enabled) line += " (disabled)";
    if (m.checked) line += " (checked)";
    out.push_back(line);
  }
  return out;
}

}  // namespace px::tk
