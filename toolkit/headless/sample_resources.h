// For the toolkit's own tests, under either back end: sample resources with
// every kind of control (a dialog, a document window and a dialog without a
// cancel button, found beside the catalogue through lookup()), and a
// handler that records its events as short lines.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "toolkit/resources/catalog.h"
#include "toolkit/resources/resource_ids.h"
#include "toolkit/toolkit.h"

namespace px::tk::sample {

using K = ControlKind;

inline constexpr int kSampleDialog = 900;
inline constexpr int kSampleWindow = 901;
inline constexpr int kBareDialog = 902;

// Control ids of the sample dialog.
inline constexpr int kName = 3, kKeep = 4, kMinutes = 5, kSeconds = 6, kLeft = 7, kRight = 8,
                     kSingle = 9, kMulti = 10, kCombo = 11, kDrop = 12, kSpin = 13, kText = 14,
                     kHiddenButton = 15, kLocked = 16, kShown = 17;

inline constexpr ControlDef kSampleControls[] = {
    {kNoId, K::kStatic, "&Name:", {7, 9, 40, 8}},
    {kName, K::kEdit, "", {50, 7, 60, 12}, kNoStyle, 5},
    {kKeep, K::kCheckBox, "&Keep", {120, 7, 50, 10}},
    {kMinutes, K::kRadioButton, "&Minutes", {7, 24, 50, 10}},
    {kSeconds, K::kRadioButton, "&Seconds", {60, 24, 50, 10}},
    {kLeft, K::kRadioButton, "&Left", {120, 24, 40, 10}, kNewGroup},
    {kRight, K::kRadioButton, "&Right", {160, 24, 40, 10}},
    {kSingle, K::kListBox, "", {7, 38, 90, 40}},
    {kMulti, K::kListBox, "", {100, 38, 90, 40}, kMultiSelect},
    {kCombo, K::kComboBox, "", {7, 82, 90, 40}, kNoStyle, 4},
    {kDrop, K::kDropDownList, "", {100, 82, 90, 40}},
    {kSpin, K::kVScrollBar, "", {195, 38, 10, 40}},
    {kText, K::kTextEdit, "", {7, 126, 198, 40}, kReadOnly, 3},
    {kHiddenButton, K::kButton, "&Hidden", {7, 170, 50, 14}, kHidden},
    {kLocked, K::kEdit, "locked", {60, 170, 40, 12}, kDisabled},
    {kShown, K::kEdit, "shown", {103, 170, 40, 12}, kReadOnly},
    {kOk, K::kButton, "OK", {100, 190, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {155, 190, 50, 14}, kCancelButton},
};
inline constexpr WindowDef kSample{kSampleDialog, WindowKind::kDialog, "Sample %s", {212, 210},
                                   kSampleControls};

inline constexpr ControlDef kWindowControls[] = {
    {2, K::kListBox, "", {5, 5, 100, 60}},
    {kOk, K::kButton, "Close", {110, 5, 50, 14}},
    {3, K::kEdit, "", {5, 66, 100, 12}},
};
inline constexpr Key kWindowKeys[] = {Key::kCtrlF, Key::kF3, Key::kEnter};
inline constexpr WindowDef kWindow{kSampleWindow, WindowKind::kDocument, "Sample window",
                                   {170, 80}, kWindowControls, kWindowKeys};

inline constexpr ControlDef kBareControls[] = {
    {kOk, K::kButton, "OK", {10, 10, 50, 14}, kDefaultButton},
};
inline constexpr WindowDef kBare{kBareDialog, WindowKind::kDialog, "Bare", {70, 34}, kBareControls};

inline ResourceLookup lookup() {
  ResourceLookup r;
  r.window = [](int id) -> const WindowDef* {
    if (id == kSampleDialog) return &kSample;
    if (id == kSampleWindow) return &kWindow;
    if (id == kBareDialog) return &kBare;
    return find_window_def(id);
  };
  return r;
}

// Records every event it receives as a short line: the event number, then
// what the event carries ("15 3 changed", "13 1037", "16 1").
class Recorder {
 public:
  Handler handler() {
    return [this](const Event& e) { lines.push_back(line(e)); };
  }
  static std::string line(const Event& e) {
    std::string out = std::to_string(e.number());
    switch (e.type) {
      case EventType::kCommand: return out + " " + std::to_string(e.command);
      case EventType::kTimer: return out + " " + std::to_string(e.timer);
      case EventType::kUser: return out + " " + std::to_string(e.user_id);
      case EventType::kQuit: return out + (e.query ? " query" : "");
      case EventType::kHelp: return out + " " + std::to_string(e.control);
      case EventType::kResize:
        return out + " " + std::to_string(e.size.width) + "x" + std::to_string(e.size.height);
      case EventType::kControl: {
        static const char* const kNotices[] = {"clicked", "changed", "in", "out", "selection",
                                               "double", "scrolled", "key"};
        out += " " + std::to_string(e.control) + " " + kNotices[static_cast<int>(e.notice)];
        if (e.notice == Notice::kScrolled) out += " " + std::to_string(e.position);
        static const char* const kKeys[] = {"none", "insert", "enter", "ctrl+f", "f3", "shift+f3"};
        if (e.notice == Notice::kKey) out += std::string(" ") + kKeys[static_cast<int>(e.key)];
        return out;
      }
      default: return out;
    }
  }
  std::vector<std::string> take() { return std::exchange(lines, {}); }
  std::vector<std::string> lines;
};

}  // namespace px::tk::sample
