#include "toolkit/resources/catalog.h"

#include <algorithm>

#include "toolkit/resources/groups.h"

namespace px::tk {

namespace {

template <typename Def>
std::vector<const Def*> sorted_by_id(std::initializer_list<std::span<const Def* const>> groups) {
  std::vector<const Def*> all;
  for (auto group : groups) all.insert(all.end(), group.begin(), group.end());
  std::stable_sort(all.begin(), all.end(), [](const Def* a, const Def* b) { return a->id < b->id; });
  return all;
}

// Every group of windows and dialogs; a new group file adds its line here.
const std::vector<const WindowDef*>& window_list() {
  static const std::vector<const WindowDef*> all = sorted_by_id<WindowDef>({
      shell_window_defs(),
      shell_dialog_defs(),
      instance_dialog_defs(),
      view_window_defs(),
      jmd_editor_defs(),
      config_dialog_defs(),
  });
  return all;
}

const std::vector<const MenuBarDef*>& bar_list() {
  static const std::vector<const MenuBarDef*> all = sorted_by_id<MenuBarDef>({menu_bar_defs()});
  return all;
}

const MenuItemDef* find_in_items(std::span<const MenuItemDef> items, int id) {
  for (const MenuItemDef& item : items) {
    if (item.kind == MenuItemKind::kCommand && item.id == id) return &item;
    if (item.kind == MenuItemKind::kSubmenu) {
      if (const MenuItemDef* found = find_in_items(item.submenu, id)) return found;
    }
  }
  return nullptr;
}

}  // namespace

const WindowDef* find_window_def(int id) {
  for (const WindowDef* def : window_list()) {
    if (def->id == id) return def;
  }
  return nullptr;
}

const MenuBarDef* find_menu_bar(int id) {
  for (const MenuBarDef* bar : bar_list()) {
    if (bar->id == id) return bar;
  }
  return nullptr;
}

std::span<const WindowDef* const> all_window_defs() { return window_list(); }
std::span<const MenuBarDef* const> all_menu_bars() { return bar_list(); }

const MenuItemDef* find_menu_command(const MenuBarDef& bar, int id) {
  for (const MenuDef& menu : bar.menus) {
    if (const MenuItemDef* found = find_in_items(menu.items, id)) return found;
  }
  return nullptr;
}

bool takes_focus(ControlKind kind) {
  return kind != ControlKind::kStatic && kind != ControlKind::kGroupBox;
}

std::string strip_mnemonic(std::string_view label) {
  std::string out;
  out.reserve(label.size());
  for (size_t i = 0; i < label.size(); ++i) {
    if (label[i] == '&' && i + 1 < label.size()) ++i;
    out += label[i];
  }
  return out;
}

char mnemonic_letter(std::string_view label) {
  for (size_t i = 0; i + 1 < label.size(); ++i) {
    if (label[i] != '&') continue;
    if (label[i + 1] == '&') {
      ++i;
      continue;
    }
    char c = label[i + 1];
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return 0;
}

}  // namespace px::tk
