// The checks of catalog.h that keep hand-written tables honest.
#include <map>
#include <set>

#include "toolkit/resources/catalog.h"

namespace px::tk {

namespace {

std::string where(const WindowDef& def, const ControlDef& control) {
  return "resource " + std::to_string(def.id) + " control " + std::to_string(control.id) + " (\"" +
         std::string(control.label) + "\")";
}

bool overlap(const UnitBox& a, const UnitBox& b) {
  return a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height && b.y < a.y + a.height;
}

bool is_button(ControlKind kind) { return kind == ControlKind::kButton; }

void check_ids(const WindowDef& def, std::vector<std::string>& problems) {
  std::set<int> seen;
  for (const ControlDef& c : def.controls) {
    if (c.id == kNoId) {
      if (takes_focus(c.kind)) problems.push_back(where(def, c) + ": a field needs an id");
      continue;
    }
    if (c.id < 0) problems.push_back(where(def, c) + ": negative id");
    if (!seen.insert(c.id).second) problems.push_back(where(def, c) + ": id used twice");
  }
}

void check_geometry(const WindowDef& def, std::vector<std::string>& problems) {
  for (const ControlDef& c : def.controls) {
    const UnitBox& b = c.box;
    if (b.width <= 0 || b.height <= 0) problems.push_back(where(def, c) + ": empty box");
    if (b.x < 0 || b.y < 0 || b.x + b.width > def.size.width || b.y + b.height > def.size.height) {
      problems.push_back(where(def, c) + ": outside the client area");
    }
  }
  for (size_t i = 0; i < def.controls.size(); ++i) {
    const ControlDef& a = def.controls[i];
    if (a.kind == ControlKind::kGroupBox || (a.style & kHidden)) continue;
    for (size_t j = i + 1; j < def.controls.size(); ++j) {
      const ControlDef& b = def.controls[j];
      if (b.kind == ControlKind::kGroupBox || (b.style & kHidden)) continue;
      if (overlap(a.box, b.box)) problems.push_back(where(def, a) + ": overlaps " + where(def, b));
    }
  }
}

void check_styles(const WindowDef& def, std::vector<std::string>& problems) {
  int defaults = 0;
  int cancels = 0;
  for (const ControlDef& c : def.controls) {
    if (c.style & kDefaultButton) ++defaults;
    if (c.style & kCancelButton) ++cancels;
    if ((c.style & (kDefaultButton | kCancelButton)) && !is_button(c.kind)) {
      problems.push_back(where(def, c) + ": only a button can be default or cancel");
    }
    if ((c.style & kMultiSelect) && c.kind != ControlKind::kListBox) {
      problems.push_back(where(def, c) + ": multiple selection on a control that is no list box");
    }
    if ((c.style & kPassword) && c.kind != ControlKind::kEdit) {
      problems.push_back(where(def, c) + ": password style on a control that is no edit");
    }
  }
  if (defaults > 1) problems.push_back("resource " + std::to_string(def.id) + ": two default buttons");
  if (cancels > 1) problems.push_back("resource " + std::to_string(def.id) + ": two cancel buttons");
}

void check_mnemonics(const WindowDef& def, std::vector<std::string>& problems) {
  std::map<char, int> letters;
  for (size_t i = 0; i < def.controls.size(); ++i) {
    const ControlDef& c = def.controls[i];
    char letter = mnemonic_letter(c.label);
    if (letter == 0 || c.kind == ControlKind::kEdit || c.kind == ControlKind::kComboBox) continue;
    if (++letters[letter] == 2) {
      problems.push_back(where(def, c) + ": mnemonic '" + std::string(1, letter) + "' used twice");
    }
    if (c.kind != ControlKind::kStatic) continue;
    bool field_follows = false;
    for (size_t j = i + 1; j < def.controls.size() && !field_follows; ++j) {
      field_follows = takes_focus(def.controls[j].kind);
    }
    if (!field_follows) problems.push_back(where(def, c) + ": label with no field after it");
  }
}

void check_items(std::string_view menu, std::span<const MenuItemDef> items, std::set<int>& ids,
                 std::vector<std::string>& problems) {
  std::string name = "menu \"" + std::string(menu) + "\"";
  if (items.empty()) problems.push_back(name + ": no items");
  std::set<char> letters;
  for (size_t i = 0; i < items.size(); ++i) {
    const MenuItemDef& item = items[i];
    if (item.kind == MenuItemKind::kSeparator) {
      if (i == 0 || i + 1 == items.size()) problems.push_back(name + ": separator at an end");
      if (i > 0 && items[i - 1].kind == MenuItemKind::kSeparator) {
        problems.push_back(name + ": two separators side by side");
      }
      continue;
    }
    if (char letter = mnemonic_letter(item.label); letter && !letters.insert(letter).second) {
      problems.push_back(name + ": mnemonic '" + std::string(1, letter) + "' used twice");
    }
    if (item.kind == MenuItemKind::kSubmenu) {
      check_items(item.label, item.submenu, ids, problems);
    } else if (item.id <= 0 || !ids.insert(item.id).second) {
      problems.push_back(name + ": command id " + std::to_string(item.id) + " is not unique");
    }
  }
}

}  // namespace

std::vector<std::string> check_window_def(const WindowDef& def) {
  std::vector<std::string> problems;
  if (def.size.width <= 0 || def.size.height <= 0) {
    problems.push_back("resource " + std::to_string(def.id) + ": empty client area");
  }
  check_ids(def, problems);
  check_geometry(def, problems);
  check_styles(def, problems);
  check_mnemonics(def, problems);
  return problems;
}

std::vector<std::string> check_menu_bar(const MenuBarDef& bar) {
  std::vector<std::string> problems;
  std::set<int> ids;
  std::set<char> letters;
  if (bar.menus.empty()) problems.push_back("menu bar " + std::to_string(bar.id) + ": no menus");
  for (const MenuDef& menu : bar.menus) {
    if (char letter = mnemonic_letter(menu.label); letter && !letters.insert(letter).second) {
      problems.push_back("menu bar " + std::to_string(bar.id) + ": mnemonic '" +
                         std::string(1, letter) + "' used twice");
    }
    check_items(menu.label, menu.items, ids, problems);
  }
  return problems;
}

}  // namespace px::tk
