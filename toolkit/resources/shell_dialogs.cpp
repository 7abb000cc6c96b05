// Dialogs the shell opens for the control commands: "Reload Printer for %s"
// (131), the Printer Reload choice.
#include "toolkit/resources/groups.h"
#include "toolkit/resources/resource_ids.h"

namespace px::tk {

namespace {

using K = ControlKind;

// The printers are listed padded to nine characters, so the list uses the
// fixed-pitch font. The title's "%s" is filled with the instance's title.
constexpr ControlDef kReloadPrinterControls[] = {
    {kNoId, K::kGroupBox, "Printers", {7, 5, 120, 108}},
    {kNoId, K::kStatic, "&Available", {14, 17, 100, 8}},
    {kReloadPrinterList, K::kListBox, "", {14, 27, 106, 80}, kMultiSelect | kFixedFont},
    {kReloadAllPrinters, K::kCheckBox, "&Select all printers", {134, 27, 86, 10}},
    {kReloadAllForms, K::kCheckBox, "Select all fo&rms", {134, 43, 86, 10}},
    {kNoId, K::kStatic, "&Form file name:", {7, 123, 66, 8}},
    {kReloadPrinterForm, K::kEdit, "", {76, 121, 144, 12}, kNoStyle, 81},
    {kOk, K::kButton, "OK", {116, 143, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {170, 143, 50, 14}, kCancelButton},
};
constexpr WindowDef kReloadPrinter{kReloadPrinterDialog, WindowKind::kDialog,
                                   "Reload Printer for %s", {227, 164}, kReloadPrinterControls};

constexpr const WindowDef* kShellDialogs[] = {&kReloadPrinter};

}  // namespace

std::span<const WindowDef* const> shell_dialog_defs() { return kShellDialogs; }

}  // namespace px::tk
