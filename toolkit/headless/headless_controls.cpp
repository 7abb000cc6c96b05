// The headless back end's controls: the Toolkit calls that read and change
// them, with the same rules as the Qt widgets.
#include <algorithm>

#include "toolkit/headless/headless_state.h"

namespace px::tk {

namespace {

bool is_text_field(ControlKind kind) {
  return kind == ControlKind::kEdit || kind == ControlKind::kComboBox;
}

bool is_scroll_bar(ControlKind kind) {
  return kind == ControlKind::kHScrollBar || kind == ControlKind::kVScrollBar;
}

std::string joined(const std::vector<std::string>& lines) {
  std::string out;
  for (size_t i = 0; i < lines.size(); ++i) {
    if (i) out += '\n';
    out += lines[i];
  }
  return out;
}

void cut_to_limit(HeadlessControl& c) {
  if (c.limit > 0 && static_cast<int>(c.text.size()) > c.limit) c.text.resize(static_cast<size_t>(c.limit));
  int size = static_cast<int>(c.text.size());
  c.selection = {std::min(c.selection.start, size), std::min(c.selection.end, size)};
}

// Selecting a row of a combo box puts it into the field; of a drop-down
// list, makes it the shown choice.
void select_row(HeadlessControl& c, int index, bool on) {
  if (on && !c.multi()) std::fill(c.selected.begin(), c.selected.end(), false);
  c.selected[static_cast<size_t>(index)] = on;
  if (on && c.kind == ControlKind::kComboBox) {
    c.text = c.rows[static_cast<size_t>(index)];
    cut_to_limit(c);
    c.selection = {static_cast<int>(c.text.size()), static_cast<int>(c.text.size())};
  }
}

}  // namespace

HeadlessControl* HeadlessToolkit::control(WindowId w, int id) {
  HeadlessWindow* win = find(w);
  if (!win) return nullptr;
  HeadlessControl* c = win->control(id);
  if (!c) fail("window " + std::to_string(win->def->id) + " has no control " + std::to_string(id));
  return c;
}

bool HeadlessToolkit::has_control(WindowId w, int id) {
  HeadlessWindow* win = find(w);
  return win && win->control(id);
}

ControlKind HeadlessToolkit::control_kind(WindowId w, int id) {
  HeadlessControl* c = control(w, id);
  return c ? c->kind : ControlKind::kStatic;
}

std::string shown_text(const HeadlessControl& c) {
  if (c.kind == ControlKind::kTextEdit) return joined(c.rows);
  if (c.kind == ControlKind::kListBox || c.kind == ControlKind::kDropDownList) {
    auto it = std::find(c.selected.begin(), c.selected.end(), true);
    return it == c.selected.end() ? std::string() : c.rows[static_cast<size_t>(it - c.selected.begin())];
  }
  return c.text;
}

std::string HeadlessToolkit::text(WindowId w, int id) {
  HeadlessControl* c = control(w, id);
  return c ? shown_text(*c) : std::string();
}

void HeadlessToolkit::set_text(WindowId w, int id, std::string_view text) {
  HeadlessControl* c = control(w, id);
  if (!c) return;
  switch (c->kind) {
    case ControlKind::kListBox:
      return;
    case ControlKind::kTextEdit:
      text_clear(w, id);
      for (size_t start = 0;;) {
        size_t end = text.find('\n', start);
        text_add(w, id, text.substr(start, end == std::string_view::npos ? end : end - start));
        if (end == std::string_view::npos) break;
        start = end + 1;
      }
      return;
    case ControlKind::kDropDownList:
      for (size_t i = 0; i < c->rows.size(); ++i) {
        if (c->rows[i] == text) select_row(*c, static_cast<int>(i), true);
      }
      return;
    default:
      c->text = std::string(text);
      c->selection = {static_cast<int>(c->text.size()), static_cast<int>(c->text.size())};
      cut_to_limit(*c);
  }
}

bool HeadlessToolkit::enabled(WindowId w, int id) {
  HeadlessControl* c = control(w, id);
  return c && c->enabled;
}
void HeadlessToolkit::set_enabled(WindowId w, int id, bool on) {
  if (HeadlessControl* c = control(w, id)) c->enabled = on;
}
std::string HeadlessToolkit::tip(WindowId w, int id) {
  HeadlessControl* c = control(w, id);
  return c ? c->tip : std::string();
}
void HeadlessToolkit::set_tip(WindowId w, int id, std::string_view text) {
  if (HeadlessControl* c = control(w, id)) c->tip = std::string(text);
}
bool HeadlessToolkit::visible(WindowId w, int id) {
  HeadlessControl* c = control(w, id);
  return c && c->visible;
}
void HeadlessToolkit::set_visible(WindowId w, int id, bool on) {
  if (HeadlessControl* c = control(w, id)) c->visible = on;
}

void HeadlessToolkit::focus(WindowId w, int id) {
  HeadlessControl* c = control(w, id);
  if (c && takes_focus(c->kind)) find(w)->focus = id;
}

int HeadlessToolkit::focused_control(WindowId w) {
  HeadlessWindow* win = find(w);
  return win ? win->focus : 0;
}

void HeadlessToolkit::set_font(WindowId w, int id, const Font& font) {
  if (HeadlessControl* c = control(w, id)) c->font = font;
}
Rect HeadlessToolkit::control_rect(WindowId w, int id) {
  HeadlessControl* c = control(w, id);
  return c ? c->rect : Rect{};
}
void HeadlessToolkit::set_control_rect(WindowId w, int id, const Rect& rect) {
  if (HeadlessControl* c = control(w, id)) c->rect = rect;
}

void HeadlessToolkit::set_limit(WindowId w, int id, int characters) {
  HeadlessControl* c = control(w, id);
  if (!c) return;
  c->limit = std::max(0, characters);
  if (is_text_field(c->kind)) cut_to_limit(*c);
}
int HeadlessToolkit::limit(WindowId w, int id) {
  HeadlessControl* c = control(w, id);
  return c ? c->limit : 0;
}

TextRange HeadlessToolkit::selection(WindowId w, int id) {
  HeadlessControl* c = control(w, id);
  return c ? c->selection : TextRange{};
}
void HeadlessToolkit::set_selection(WindowId w, int id, int start, int end) {
  HeadlessControl* c = control(w, id);
  if (!c || !is_text_field(c->kind)) return;
  int size = static_cast<int>(c->text.size());
  start = std::clamp(start, 0, size);
  end = std::clamp(end, 0, size);
  c->selection = {std::min(start, end), std::max(start, end)};
}

bool HeadlessToolkit::checked(WindowId w, int id) {
  HeadlessControl* c = control(w, id);
  return c && c->checked;
}
void HeadlessToolkit::set_checked(WindowId w, int id, bool on) {
  HeadlessControl* c = control(w, id);
  if (!c) return;
  if (on && c->radio_group) {
    for (HeadlessControl& other : find(w)->controls) {
      if (other.radio_group == c->radio_group) other.checked = false;
    }
  }
  c->checked = on;
}

// ---- lists

bool HeadlessToolkit::list_add(WindowId w, int id, std::string_view row, int position) {
  HeadlessControl* c = control(w, id);
  if (!c || !c->is_list()) return false;
  size_t at = position < 0 || static_cast<size_t>(position) > c->rows.size()
                  ? c->rows.size()
                  : static_cast<size_t>(position);
  c->rows.insert(c->rows.begin() + static_cast<long>(at), std::string(row));
  c->selected.insert(c->selected.begin() + static_cast<long>(at), false);
  return true;
}

bool HeadlessToolkit::list_set_row(WindowId w, int id, int index, std::string_view row) {
  HeadlessControl* c = control(w, id);
  if (!c || !c->is_list() || index < 0 || static_cast<size_t>(index) >= c->rows.size()) return false;
  c->rows[static_cast<size_t>(index)] = std::string(row);
  return true;
}

bool HeadlessToolkit::list_remove(WindowId w, int id, int index) {
  HeadlessControl* c = control(w, id);
  if (!c || !c->is_list() || index < 0 || static_cast<size_t>(index) >= c->rows.size()) return false;
  c->rows.erase(c->rows.begin() + index);
  c->selected.erase(c->selected.begin() + index);
  c->scroll_to(c->top);
  return true;
}

void HeadlessToolkit::list_clear(WindowId w, int id) {
  HeadlessControl* c = control(w, id);
  if (!c || !c->is_list()) return;
  c->rows.clear();
  c->selected.clear();
  c->top = 0;
}

int HeadlessToolkit::list_count(WindowId w, int id) {
  HeadlessControl* c = control(w, id);
  return c ? static_cast<int>(c->rows.size()) : 0;
}

std::string HeadlessToolkit::list_row(WindowId w, int id, int index) {
  HeadlessControl* c = control(w, id);
  if (!c || index < 0 || static_cast<size_t>(index) >= c->rows.size()) return {};
  return c->rows[static_cast<size_t>(index)];
}

void HeadlessToolkit::list_select(WindowId w, int id, int index, bool on) {
  HeadlessControl* c = control(w, id);
  if (!c || !c->is_list() || index < 0 || static_cast<size_t>(index) >= c->rows.size()) return;
  bool newly = on && !c->selected[static_cast<size_t>(index)];
  select_row(*c, index, on);
  if (newly) c->show_row(index);
}

void HeadlessToolkit::list_select_all(WindowId w, int id, bool on) {
  HeadlessControl* c = control(w, id);
  if (!c || !c->is_list() || (on && !c->multi())) return;
  std::fill(c->selected.begin(), c->selected.end(), on);
}

std::vector<int> HeadlessToolkit::list_selection(WindowId w, int id) {
  std::vector<int> rows;
  HeadlessControl* c = control(w, id);
  if (!c) return rows;
  for (size_t i = 0; i < c->selected.size(); ++i) {
    if (c->selected[i]) rows.push_back(static_cast<int>(i));
  }
  return rows;
}

int HeadlessToolkit::list_top(WindowId w, int id) {
  HeadlessControl* c = control(w, id);
  return c && c->kind == ControlKind::kListBox ? c->top : 0;
}

void HeadlessToolkit::list_set_top(WindowId w, int id, int index) {
  HeadlessControl* c = control(w, id);
  if (c && c->kind == ControlKind::kListBox) c->scroll_to(index);
}

void HeadlessToolkit::suspend_redraw(WindowId w, int id, bool suspended) {
  if (HeadlessControl* c = control(w, id)) c->suspended = suspended;
}

// ---- scroll bars

void HeadlessToolkit::set_scroll_range(WindowId w, int id, int minimum, int maximum) {
  HeadlessControl* c = control(w, id);
  if (!c || !is_scroll_bar(c->kind)) return;
  c->range = {minimum, std::max(minimum, maximum)};
  c->position = std::clamp(c->position, c->range.minimum, c->range.maximum);
}
ScrollRange HeadlessToolkit::scroll_range(WindowId w, int id) {
  HeadlessControl* c = control(w, id);
  return c ? c->range : ScrollRange{};
}
void HeadlessToolkit::set_scroll_position(WindowId w, int id, int position) {
  HeadlessControl* c = control(w, id);
  if (c && is_scroll_bar(c->kind)) c->position = std::clamp(position, c->range.minimum, c->range.maximum);
}
int HeadlessToolkit::scroll_position(WindowId w, int id) {
  HeadlessControl* c = control(w, id);
  return c ? c->position : 0;
}
void HeadlessToolkit::set_scroll_page(WindowId w, int id, int page) {
  HeadlessControl* c = control(w, id);
  if (c && is_scroll_bar(c->kind)) c->page = std::max(1, page);
}
int HeadlessToolkit::scroll_page(WindowId w, int id) {
  HeadlessControl* c = control(w, id);
  return c ? c->page : 0;
}

// ---- text edits

void HeadlessToolkit::text_clear(WindowId w, int id) {
  HeadlessControl* c = control(w, id);
  if (!c || c->kind != ControlKind::kTextEdit) return;
  c->rows.clear();
  c->origin = {};
}

bool HeadlessToolkit::text_add(WindowId w, int id, std::string_view paragraph) {
  HeadlessControl* c = control(w, id);
  if (!c || c->kind != ControlKind::kTextEdit) return false;
  if (c->limit > 0 && static_cast<int>(c->rows.size()) >= c->limit) return false;
  c->rows.emplace_back(paragraph);
  return true;
}

int HeadlessToolkit::text_count(WindowId w, int id) {
  HeadlessControl* c = control(w, id);
  return c && c->kind == ControlKind::kTextEdit ? static_cast<int>(c->rows.size()) : 0;
}

std::string HeadlessToolkit::text_paragraph(WindowId w, int id, int index) {
  return list_row(w, id, index);
}

void HeadlessToolkit::text_show(WindowId w, int id, int index) {
  HeadlessControl* c = control(w, id);
  if (!c || c->kind != ControlKind::kTextEdit) return;
  int lines = text_visible_lines(w, id);
  if (index < c->origin.line) c->origin.line = index;
  if (index >= c->origin.line + lines) c->origin.line = index - lines + 1;
  text_set_origin(w, id, c->origin);
}

TextOrigin HeadlessToolkit::text_origin(WindowId w, int id) {
  HeadlessControl* c = control(w, id);
  return c ? c->origin : TextOrigin{};
}

void HeadlessToolkit::text_set_origin(WindowId w, int id, TextOrigin origin) {
  HeadlessControl* c = control(w, id);
  if (!c || c->kind != ControlKind::kTextEdit) return;
  // As in a real text view, the last page is full: no scrolling past it.
  int last = std::max(0, static_cast<int>(c->rows.size()) - text_visible_lines(w, id));
  c->origin = {std::clamp(origin.line, 0, last), std::max(0, origin.column)};
}

int HeadlessToolkit::text_visible_lines(WindowId w, int id) {
  HeadlessControl* c = control(w, id);
  return c ? std::max(1, c->rect.height / kLineHeight) : 0;
}

}  // namespace px::tk
