// The monitoring views' windows: the log view (120) with its process choice
// (113), "Nexa Status and Queue" (137), the rejects window (142) and the
// E-Mail Agent queue (144).
#include "toolkit/resources/groups.h"
#include "toolkit/resources/resource_ids.h"

namespace px::tk {

namespace {

using K = ControlKind;

// The log view: a caption line, the find field with its two buttons, the
// read-only text and the two scroll bars that move it (the text edit has
// none of its own). The handler sets the title and the caption. The
// rejected-file view opens the same window.
constexpr ControlDef kLogControls[] = {
    {kLogCaption, K::kStatic, "Log file:", {7, 5, 250, 8}},
    {kNoId, K::kStatic, "&Find:", {262, 5, 20, 8}},
    {kLogFindText, K::kEdit, "", {284, 3, 58, 12}, kNoStyle, 255},
    {kLogFindNext, K::kButton, "&Next", {344, 3, 28, 12}},
    {kLogFindPrevious, K::kButton, "Pre&vious", {374, 3, 39, 12}},
    {kLogText, K::kTextEdit, "", {7, 16, 396, 226}, kReadOnly | kFixedFont},
    {kLogVScroll, K::kVScrollBar, "", {403, 16, 10, 226}},
    {kLogHScroll, K::kHScrollBar, "", {7, 242, 396, 8}},
};
// Ctrl+F goes to the find field; F3 and Enter in the field find the next
// line, Shift+F3 the previous.
constexpr Key kLogKeys[] = {Key::kCtrlF, Key::kF3, Key::kShiftF3, Key::kEnter};
constexpr WindowDef kLog{kLogWindow, WindowKind::kDocument, "Nexa Log", {420, 257}, kLogControls,
                         kLogKeys};

// When a server has several processes with logs, the operator picks one.
constexpr ControlDef kLogProcessControls[] = {
    {kNoId, K::kStatic, "&Processes:", {7, 7, 186, 8}},
    {kLogProcessList, K::kListBox, "", {7, 18, 186, 74}},
    {kOk, K::kButton, "OK", {89, 99, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {143, 99, 50, 14}, kCancelButton},
};
constexpr WindowDef kLogProcess{kLogProcessDialog, WindowKind::kDialog, "Select Process Log",
                                {200, 120}, kLogProcessControls};

// The header's spacing lines it up over the list's two columns, so both use
// the fixed-pitch font. The resize handler keeps the list 50 units short of
// the right edge, with "Close" beside it. The window opens wide enough for
// the header and the "last updated" time that paint draws after it.
constexpr ControlDef kStatusControls[] = {
    {kStatusHeader, K::kStatic,
     "Instance name / Collector directory              Status / File list", {7, 5, 403, 8},
     kFixedFont},
    {kStatusList, K::kListBox, "", {7, 16, 403, 217}, kFixedFont},
    {kStatusClose, K::kButton, "&Close", {417, 16, 36, 14}},
};
constexpr WindowDef kStatus{kStatusQueueWindow, WindowKind::kDocument, "Nexa Status and Queue",
                            {500, 240}, kStatusControls};

// Rejects and the E-Mail Agent queue: a caption over a list of file names.
// The handlers set the titles and the captions.
constexpr ControlDef kRejectsControls[] = {
    {kFilesCaption, K::kStatic, "Rejected files:", {7, 5, 226, 8}},
    {kFilesList, K::kListBox, "", {7, 16, 226, 177}},
    {kRejectsViewFile, K::kButton, "&View File...", {240, 16, 53, 14}},
    {kFilesClose, K::kButton, "&Close", {240, 34, 53, 14}},
};
constexpr WindowDef kRejects{kRejectsWindow, WindowKind::kDocument, "Nexa Rejects", {300, 200},
                             kRejectsControls};

constexpr ControlDef kEmailQueueControls[] = {
    {kFilesCaption, K::kStatic, "Queued files:", {7, 5, 226, 8}},
    {kFilesList, K::kListBox, "", {7, 16, 226, 177}},
    {kFilesClose, K::kButton, "&Close", {240, 16, 53, 14}},
};
constexpr WindowDef kEmailQueue{kEmailQueueWindow, WindowKind::kDocument, "E-Mail Agent Queue",
                                {300, 200}, kEmailQueueControls};

constexpr const WindowDef* kViewWindows[] = {&kLogProcess, &kLog, &kStatus, &kRejects, &kEmailQueue};

}  // namespace

std::span<const WindowDef* const> view_window_defs() { return kViewWindows; }

}  // namespace px::tk
