// Resources: every window, dialog and menu bar of the console as data.
//
// A resource is a constant C++ table, written in a file of toolkit/resources/
// and listed in catalog.cpp. Both back ends build from the same tables: the
// Qt back end makes real widgets, the headless one keeps the same controls in
// memory. The GUI code never builds controls itself; it creates a window or a
// dialog by its resource id and then works on the controls by their ids.
//
// THE FORMAT
//
// Window or dialog (WindowDef):
//   id        the resource id the GUI code creates it by (resource_ids.h).
//   kind      kTask (the task window; its menu bar is chosen at start),
//             kDocument (a resizable top-level window), kPlain (a frameless
//             window such as the splash), kDialog (a fixed-size dialog, run
//             modally).
//   title     the title bar text; it may hold "%s" for the GUI code to fill.
//   size      client area width and height in dialog units (below).
//   controls  the controls in definition order, which is also the Tab order
//             and the order in which a label finds its field (below).
//   keys      the keyboard shortcuts the window takes wherever the focus is
//             in it (Key::kCtrlF, kF3...): each reaches the handler as a
//             control notification Notice::kKey with the key and the
//             focused control. Optional; most windows take none.
//
// Control (ControlDef):
//   id        the control id the GUI code uses; unique within the window.
//             kNoId (-1) is allowed only for statics and group boxes that the
//             code never touches, and may repeat.
//   kind      see ControlKind.
//   label     the text: a button's, check box's or radio button's caption, a
//             static's text, a group box's title, an edit's or combo box's
//             initial text. "&" marks the mnemonic letter ("&&" is a literal
//             "&"). A static whose label has a mnemonic is the label of the
//             next control in definition order that can take the focus:
//             pressing Alt and the letter puts the focus there.
//   box       x, y, width, height in dialog units, from the top-left corner
//             of the client area.
//   style     any of the style bits below, or'ed together.
//   limit     for edits and combo boxes: the longest text the operator can
//             type (0: no limit); for text edits: the most paragraphs it
//             holds (0: no limit). Other kinds ignore it.
//
// Style bits (Styles):
//   kHidden        created invisible.
//   kDisabled      created disabled.
//   kMultiSelect   list box: a click toggles a row, so several rows can be
//                  selected; without it a list box keeps at most one.
//   kPassword      edit: shows bullets instead of the text.
//   kReadOnly      edit or text edit: the operator cannot change the text.
//   kDefaultButton button: Enter anywhere in the dialog presses it (OK).
//   kCancelButton  button: Escape presses it (Cancel). A dialog without one
//                  gets the close event on Escape.
//   kNewGroup      radio button: starts a new group. Radio buttons defined
//                  one after the other form one group, in which checking one
//                  unchecks the others; any other control ends the group.
//   kAlignRight, kAlignCenter   static: text alignment (default left).
//   kBorder        static: drawn sunken in a frame (a read-only value).
//   kFixedFont     list box, static or text edit: fixed-pitch font.
//
// Dialog units keep a layout the same at any font size: one horizontal unit
// is a quarter of the dialog font's average character width, one vertical
// unit an eighth of its line height. The headless back end counts 2 pixels
// for each unit in both directions; the Qt back end measures its font.
// Good sizes: buttons 50 x 14, edits and combo boxes 12 high, statics 8 high
// placed 2 units lower than the field beside them, margins of 7 units.
//
// An example, a dialog with a labelled field, a list and OK / Cancel:
//
//   constexpr ControlDef kNameControls[] = {
//       {kNoId, ControlKind::kStatic, "&Job name:", {7, 9, 40, 8}},
//       {3, ControlKind::kEdit, "", {50, 7, 120, 12}, kNoStyle, 51},
//       {4, ControlKind::kListBox, "", {7, 24, 163, 60}, kMultiSelect},
//       {kOk, ControlKind::kButton, "OK", {66, 90, 50, 14}, kDefaultButton},
//       {kCancel, ControlKind::kButton, "Cancel", {120, 90, 50, 14}, kCancelButton},
//   };
//   constexpr WindowDef kName{129, WindowKind::kDialog, "New Job Name", {177, 111},
//                             kNameControls};
//
// Menu bar (MenuBarDef): id and its menus from left to right. Each menu
// (MenuDef) has a label with its mnemonic and its items (MenuItemDef):
//   command(id, label, accelerator)  an item; accelerator is the key that
//             runs it without the menu ("Ctrl+X", "Del", "F1"): it is shown
//             beside the label and active while the item is enabled.
//   separator()                      a line between groups.
//   submenu(label, items)            a nested menu.
// A command item may carry kDisabled. Mnemonics must be unique within one
// menu. Commands reach the task window's handler as event 13 with the id.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "toolkit/event.h"

namespace px::tk {

enum class ControlKind : std::uint8_t {
  kStatic,        // a fixed text or label
  kGroupBox,      // a titled frame around other controls
  kButton,        // a push button
  kEdit,          // a one-line text field
  kCheckBox,
  kRadioButton,
  kListBox,       // rows of text, single or multiple selection
  kComboBox,      // a text field with a drop-down list of choices
  kDropDownList,  // a drop-down list without a text field
  kHScrollBar,
  kVScrollBar,    // also serves as the spin arrows beside a number field
  kTextEdit,      // many lines of text (paragraphs), for logs and files
};

using Styles = std::uint32_t;
inline constexpr Styles kNoStyle = 0;
inline constexpr Styles kHidden = 1u << 0;
inline constexpr Styles kDisabled = 1u << 1;
inline constexpr Styles kMultiSelect = 1u << 2;
inline constexpr Styles kPassword = 1u << 3;
inline constexpr Styles kReadOnly = 1u << 4;
inline constexpr Styles kDefaultButton = 1u << 5;
inline constexpr Styles kCancelButton = 1u << 6;
inline constexpr Styles kNewGroup = 1u << 7;
inline constexpr Styles kAlignRight = 1u << 8;
inline constexpr Styles kAlignCenter = 1u << 9;
inline constexpr Styles kBorder = 1u << 10;
inline constexpr Styles kFixedFont = 1u << 11;

inline constexpr int kNoId = -1;

// A rectangle in dialog units.
struct UnitBox {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

struct ControlDef {
  int id = kNoId;
  ControlKind kind = ControlKind::kStatic;
  std::string_view label;
  UnitBox box;
  Styles style = kNoStyle;
  int limit = 0;
};

enum class WindowKind : std::uint8_t { kTask, kDocument, kPlain, kDialog };

struct UnitSize {
  int width = 0;
  int height = 0;
};

struct WindowDef {
  int id = 0;
  WindowKind kind = WindowKind::kDialog;
  std::string_view title;
  UnitSize size;
  std::span<const ControlDef> controls;
  std::span<const Key> keys = {};
};

enum class MenuItemKind : std::uint8_t { kCommand, kSeparator, kSubmenu };

struct MenuItemDef {
  MenuItemKind kind = MenuItemKind::kCommand;
  int id = 0;
  std::string_view label;
  std::string_view accelerator;
  std::span<const MenuItemDef> submenu;
  Styles style = kNoStyle;
};

constexpr MenuItemDef command(int id, std::string_view label, std::string_view accelerator = {},
                              Styles style = kNoStyle) {
  return MenuItemDef{MenuItemKind::kCommand, id, label, accelerator, {}, style};
}
constexpr MenuItemDef separator() { return MenuItemDef{MenuItemKind::kSeparator, 0, {}, {}, {}, 0}; }
constexpr MenuItemDef submenu(std::string_view label, std::span<const MenuItemDef> items) {
  return MenuItemDef{MenuItemKind::kSubmenu, 0, label, {}, items, 0};
}

struct MenuDef {
  std::string_view label;
  std::span<const MenuItemDef> items;
};

struct MenuBarDef {
  int id = 0;
  std::span<const MenuDef> menus;
};

// True for the kinds that take the keyboard focus (and so a label's Alt key).
bool takes_focus(ControlKind kind);

// The label without its mnemonic marks: "&Save" gives "Save", "A&&B" "A&B".
std::string strip_mnemonic(std::string_view label);
// The mnemonic letter in lower case; 0 when the label has none.
char mnemonic_letter(std::string_view label);

}  // namespace px::tk
