// The headless back end's records of windows and controls (internal).
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "toolkit/headless/headless_toolkit.h"

namespace px::tk {

inline constexpr int kPixelsPerUnit = 2;
inline constexpr int kLineHeight = 16;

struct HeadlessControl {
  const ControlDef* def = nullptr;
  int id = 0;
  ControlKind kind = ControlKind::kStatic;
  std::string text;  // label or field
  bool enabled = true;
  std::string tip;
  bool visible = true;
  Rect rect;
  Font font;
  int limit = 0;  // characters; paragraphs for a text edit
  TextRange selection;
  bool checked = false;
  int radio_group = 0;  // 0: not a radio button
  std::vector<std::string> rows;
  std::vector<bool> selected;
  bool suspended = false;
  ScrollRange range{0, 100};
  int position = 0;
  int page = 10;
  TextOrigin origin;
  int top = 0;  // list box: the first row in view

  // List box: the rows in view, and the first row it can scroll to last.
  int rows_in_view() const { return std::max(1, rect.height / kLineHeight); }
  int last_top() const { return std::max(0, static_cast<int>(rows.size()) - rows_in_view()); }
  void scroll_to(int row) { top = std::clamp(row, 0, last_top()); }
  void show_row(int row) {
    if (row < top) scroll_to(row);
    if (row >= top + rows_in_view()) scroll_to(row - rows_in_view() + 1);
  }

  bool multi() const { return def && (def->style & kMultiSelect); }
  bool read_only() const { return def && (def->style & kReadOnly); }
  bool is_list() const {
    return kind == ControlKind::kListBox || kind == ControlKind::kComboBox ||
           kind == ControlKind::kDropDownList;
  }
};

struct HeadlessMenuItem {
  int id = 0;
  std::string label;
  std::string accelerator;
  bool enabled = true;
  bool checked = false;
  std::string tip;
};

struct HeadlessWindow {
  WindowId id = 0;
  const WindowDef* def = nullptr;
  std::shared_ptr<Handler> handler;
  long app_value = 0;
  std::string title;
  bool enabled = true;
  bool visible = true;
  bool modal = false;
  Rect frame;
  Size client;
  std::vector<HeadlessControl> controls;
  int focus = 0;
  std::vector<HeadlessMenuItem> menu;
  std::vector<DrawOp> drawing;
  bool needs_paint = false;
  bool destroying = false;

  HeadlessControl* control(int control_id) {
    for (HeadlessControl& c : controls) {
      if (c.id == control_id && c.id != kNoId) return &c;
    }
    return nullptr;
  }
  HeadlessMenuItem* menu_item(int item) {
    for (HeadlessMenuItem& m : menu) {
      if (m.id == item) return &m;
    }
    return nullptr;
  }
};

// What a control shows: its text, a list's or drop-down's chosen row, a
// text edit's paragraphs joined by line feeds.
std::string shown_text(const HeadlessControl& c);

// Builds a window's controls and menu from its resources.
void build_headless_window(HeadlessWindow& win, const WindowDef& def, const MenuBarDef* bar);

}  // namespace px::tk
