// Window and Control forward to the toolkit; a default-made handle has no
// toolkit and answers as a window that is gone.
#include "common/text.h"
#include "toolkit/toolkit.h"

namespace px::tk {

Font font_by_family(std::string_view family, int points) {
  Font font;
  font.points = points;
  if (iequals(family, "courier") || iequals(family, "fixed")) {
    font.family = Font::Family::kFixed;
  } else if (iequals(family, "system")) {
    font.family = Font::Family::kFixedCjk;
  } else if (family.empty()) {
    font.family = Font::Family::kProportional;
  } else {
    font.family = Font::Family::kNamed;
    font.name = std::string(family);
  }
  return font;
}

bool Control::exists() const { return tk_ && tk_->has_control(window_, id_); }
ControlKind Control::kind() const { return tk_ ? tk_->control_kind(window_, id_) : ControlKind::kStatic; }
std::string Control::text() const { return tk_ ? tk_->text(window_, id_) : std::string(); }
void Control::set_text(std::string_view text) const { if (tk_) tk_->set_text(window_, id_, text); }
bool Control::enabled() const { return tk_ && tk_->enabled(window_, id_); }
void Control::set_enabled(bool on) const { if (tk_) tk_->set_enabled(window_, id_, on); }
std::string Control::tip() const { return tk_ ? tk_->tip(window_, id_) : std::string(); }
void Control::set_tip(std::string_view text) const { if (tk_) tk_->set_tip(window_, id_, text); }
bool Control::visible() const { return tk_ && tk_->visible(window_, id_); }
void Control::set_visible(bool on) const { if (tk_) tk_->set_visible(window_, id_, on); }
void Control::focus() const { if (tk_) tk_->focus(window_, id_); }
bool Control::has_focus() const { return tk_ && tk_->focused_control(window_) == id_; }
void Control::set_font(const Font& font) const { if (tk_) tk_->set_font(window_, id_, font); }
Rect Control::rect() const { return tk_ ? tk_->control_rect(window_, id_) : Rect{}; }
void Control::set_rect(const Rect& rect) const { if (tk_) tk_->set_control_rect(window_, id_, rect); }
void Control::set_limit(int characters) const { if (tk_) tk_->set_limit(window_, id_, characters); }
int Control::limit() const { return tk_ ? tk_->limit(window_, id_) : 0; }
TextRange Control::selection() const { return tk_ ? tk_->selection(window_, id_) : TextRange{}; }
void Control::set_selection(int start, int end) const {
  if (tk_) tk_->set_selection(window_, id_, start, end);
}
bool Control::checked() const { return tk_ && tk_->checked(window_, id_); }
void Control::set_checked(bool on) const { if (tk_) tk_->set_checked(window_, id_, on); }
bool Control::add(std::string_view row, int position) const {
  return tk_ && tk_->list_add(window_, id_, row, position);
}
bool Control::set_row(int index, std::string_view row) const {
  return tk_ && tk_->list_set_row(window_, id_, index, row);
}
bool Control::remove(int index) const { return tk_ && tk_->list_remove(window_, id_, index); }
void Control::clear_rows() const { if (tk_) tk_->list_clear(window_, id_); }
int Control::count() const { return tk_ ? tk_->list_count(window_, id_) : 0; }
std::string Control::row(int index) const {
  return tk_ ? tk_->list_row(window_, id_, index) : std::string();
}
void Control::select(int index, bool on) const { if (tk_) tk_->list_select(window_, id_, index, on); }
void Control::select_all(bool on) const { if (tk_) tk_->list_select_all(window_, id_, on); }
int Control::selected() const {
  std::vector<int> rows = selected_rows();
  return rows.empty() ? -1 : rows.front();
}
std::vector<int> Control::selected_rows() const {
  return tk_ ? tk_->list_selection(window_, id_) : std::vector<int>();
}
int Control::selection_count() const { return static_cast<int>(selected_rows().size()); }
int Control::top_row() const { return tk_ ? tk_->list_top(window_, id_) : 0; }
void Control::set_top_row(int index) const { if (tk_) tk_->list_set_top(window_, id_, index); }
void Control::suspend() const { if (tk_) tk_->suspend_redraw(window_, id_, true); }
void Control::resume() const { if (tk_) tk_->suspend_redraw(window_, id_, false); }
void Control::set_range(int minimum, int maximum) const {
  if (tk_) tk_->set_scroll_range(window_, id_, minimum, maximum);
}
ScrollRange Control::range() const { return tk_ ? tk_->scroll_range(window_, id_) : ScrollRange{}; }
void Control::set_position(int position) const { if (tk_) tk_->set_scroll_position(window_, id_, position); }
int Control::position() const { return tk_ ? tk_->scroll_position(window_, id_) : 0; }
void Control::set_page(int page) const { if (tk_) tk_->set_scroll_page(window_, id_, page); }
int Control::page() const { return tk_ ? tk_->scroll_page(window_, id_) : 0; }
void Control::clear_paragraphs() const { if (tk_) tk_->text_clear(window_, id_); }
bool Control::add_paragraph(std::string_view text) const { return tk_ && tk_->text_add(window_, id_, text); }
int Control::paragraph_count() const { return tk_ ? tk_->text_count(window_, id_) : 0; }
std::string Control::paragraph(int index) const {
  return tk_ ? tk_->text_paragraph(window_, id_, index) : std::string();
}
void Control::show_paragraph(int index) const { if (tk_) tk_->text_show(window_, id_, index); }
TextOrigin Control::origin() const { return tk_ ? tk_->text_origin(window_, id_) : TextOrigin{}; }
void Control::set_origin(TextOrigin origin) const { if (tk_) tk_->text_set_origin(window_, id_, origin); }
int Control::visible_lines() const { return tk_ ? tk_->text_visible_lines(window_, id_) : 0; }

int Window::resource_id() const { return tk_ ? tk_->resource_id(id_) : 0; }
long Window::app_value() const { return tk_ ? tk_->app_value(id_) : 0; }
void Window::set_app_value(long value) const { if (tk_) tk_->set_app_value(id_, value); }
int Window::focused_control() const { return tk_ ? tk_->focused_control(id_) : 0; }
std::string Window::title() const { return tk_ ? tk_->title(id_) : std::string(); }
void Window::set_title(std::string_view title) const { if (tk_) tk_->set_title(id_, title); }
bool Window::enabled() const { return tk_ && tk_->window_enabled(id_); }
void Window::set_enabled(bool on) const { if (tk_) tk_->set_window_enabled(id_, on); }
bool Window::visible() const { return tk_ && tk_->window_visible(id_); }
void Window::set_visible(bool on) const { if (tk_) tk_->set_window_visible(id_, on); }
void Window::raise() const { if (tk_) tk_->raise(id_); }
void Window::destroy() const { if (tk_) tk_->destroy(id_); }
Rect Window::frame() const { return tk_ ? tk_->frame(id_) : Rect{}; }
void Window::set_frame(const Rect& frame) const { if (tk_) tk_->set_frame(id_, frame); }
Size Window::client_size() const { return tk_ ? tk_->client_size(id_) : Size{}; }
void Window::invalidate() const { if (tk_) tk_->invalidate(id_); }
void Window::clear(Color color) const { if (tk_) tk_->clear(id_, color); }
void Window::set_draw_font(const Font& font) const { if (tk_) tk_->set_draw_font(id_, font); }
void Window::draw_text(Point baseline_start, std::string_view text) const {
  if (tk_) tk_->draw_text(id_, baseline_start, text);
}
bool Window::draw_image(Point top_left, std::string_view path) const {
  return tk_ && tk_->draw_image(id_, top_left, path);
}
bool Window::has_menu_item(int item) const { return tk_ && tk_->has_menu_item(id_, item); }
bool Window::menu_enabled(int item) const { return tk_ && tk_->menu_enabled(id_, item); }
void Window::set_menu_enabled(int item, bool on) const { if (tk_) tk_->set_menu_enabled(id_, item, on); }
std::string Window::menu_tip(int item) const { return tk_ ? tk_->menu_tip(id_, item) : std::string(); }
void Window::set_menu_tip(int item, std::string_view text) const {
  if (tk_) tk_->set_menu_tip(id_, item, text);
}
bool Window::menu_checked(int item) const { return tk_ && tk_->menu_checked(id_, item); }
void Window::set_menu_checked(int item, bool on) const { if (tk_) tk_->set_menu_checked(id_, item, on); }
long Window::start_timer(int milliseconds) const { return tk_ ? tk_->start_timer(id_, milliseconds) : 0; }
void Window::stop_timer(long timer) const { if (tk_) tk_->stop_timer(timer); }
void Window::capture_mouse() const { if (tk_) tk_->capture_mouse(id_); }
void Window::release_mouse() const { if (tk_) tk_->release_mouse(); }
void Window::send_user_event(int user_id) const { if (tk_) tk_->send_user_event(id_, user_id); }

}  // namespace px::tk
