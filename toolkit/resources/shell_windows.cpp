// The shell's own windows and dialogs: the task window, the splash window,
// "Select Instance of Nexa" (102) and "About Nexa Control" (132).
#include "toolkit/resources/groups.h"
#include "toolkit/resources/resource_ids.h"

namespace px::tk {

namespace {

using K = ControlKind;

// The task window carries the menu bar and nothing else; the shell sets its
// title to the current instance's once an instance is chosen.
constexpr WindowDef kTask{kTaskWindow, WindowKind::kTask, "Velmar Nexa Output Server", {480, 300}, {}};

// The splash is drawn by its handler (the product image); the shell places
// it in the middle of the screen with its own rectangle.
constexpr WindowDef kSplash{kSplashWindow, WindowKind::kPlain, "Nexa Control", {250, 160}, {}};

constexpr ControlDef kSelectInstanceControls[] = {
    {kNoId, K::kStatic, "Available Instances of Nexa:", {7, 7, 186, 8}},
    {kSelectInstanceList, K::kListBox, "", {7, 18, 186, 74}},
    {kOk, K::kButton, "OK", {89, 99, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {143, 99, 50, 14}, kCancelButton},
};
constexpr WindowDef kSelectInstance{kSelectInstanceDialog, WindowKind::kDialog,
                                    "Select Instance of Nexa", {200, 120},
                                    kSelectInstanceControls};

// The version line's text is replaced on create by the program's version.
constexpr ControlDef kAboutControls[] = {
    {kAboutCompany, K::kStatic, "Velmar Software", {7, 10, 186, 8}, kAlignCenter},
    {kAboutProduct, K::kStatic, "Nexa Control", {7, 24, 186, 8}, kAlignCenter},
    {kAboutVersion, K::kStatic, "Version 1.00 (A1)", {7, 38, 186, 8}, kAlignCenter},
    {kOk, K::kButton, "OK", {75, 58, 50, 14}, kDefaultButton | kCancelButton},
};
constexpr WindowDef kAbout{kAboutDialog, WindowKind::kDialog, "About Nexa Control", {200, 79},
                           kAboutControls};

constexpr const WindowDef* kShellWindows[] = {&kTask, &kSplash, &kSelectInstance, &kAbout};

}  // namespace

std::span<const WindowDef* const> shell_window_defs() { return kShellWindows; }

}  // namespace px::tk
