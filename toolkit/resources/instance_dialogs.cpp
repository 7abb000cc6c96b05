// The shell's instance and process dialogs: "Nexa Control Configuration"
// (121), "Configure Nexa and Agents" (123), "Edit Nexa Control
// Configuration" (124), and the directory browser "Select Directory" (150).
#include "toolkit/resources/groups.h"
#include "toolkit/resources/resource_ids.h"

namespace px::tk {

namespace {

using K = ControlKind;

// The instance list, with its actions beside it. Button 1 is "Edit..." here,
// so OK is 5; "Delete" is created hidden and left to the code to show.
constexpr ControlDef kInstanceConfigControls[] = {
    {kNoId, K::kStatic, "&Available Instances of Nexa:", {7, 7, 169, 8}},
    {kInstanceList, K::kListBox, "", {7, 18, 169, 88}},
    {kInstanceEdit, K::kButton, "&Edit...", {183, 18, 60, 14}},
    {kInstanceMakeDefault, K::kButton, "&Make Default", {183, 36, 60, 14}},
    {kInstanceDelete, K::kButton, "&Delete", {183, 54, 60, 14}, kHidden},
    {kInstanceOk, K::kButton, "OK", {139, 113, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {193, 113, 50, 14}, kCancelButton},
};
constexpr WindowDef kInstanceConfig{kInstanceConfigDialog, WindowKind::kDialog,
                                    "Nexa Control Configuration", {250, 134},
                                    kInstanceConfigControls};

// The handler replaces the title and button 1's text by numbered messages.
constexpr ControlDef kConfigureControls[] = {
    {kNoId, K::kStatic, "Available Processes:", {7, 7, 186, 8}},
    {kConfigureList, K::kListBox, "", {7, 18, 186, 74}},
    {kOk, K::kButton, "Edit File...", {89, 99, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {143, 99, 50, 14}, kCancelButton},
};
constexpr WindowDef kConfigure{kConfigureDialog, WindowKind::kDialog, "Configure Nexa and Agents",
                               {200, 120}, kConfigureControls};

// One instance: its name, description and configuration file.
constexpr ControlDef kInstanceRecordControls[] = {
    {kNoId, K::kStatic, "&Nexa Name:", {7, 9, 82, 8}},
    {kRecordName, K::kEdit, "", {92, 7, 201, 12}, kNoStyle, 74},
    {kNoId, K::kStatic, "&Description:", {7, 25, 82, 8}},
    {kRecordDescription, K::kEdit, "", {92, 23, 201, 12}, kNoStyle, 256},
    {kNoId, K::kStatic, "&Configuration File:", {7, 41, 82, 8}},
    {kRecordConfigFile, K::kEdit, "", {92, 39, 201, 12}, kNoStyle, 256},
    {kOk, K::kButton, "OK", {189, 61, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {243, 61, 50, 14}, kCancelButton},
};
constexpr WindowDef kInstanceRecord{kInstanceRecordDialog, WindowKind::kDialog,
                                    "Edit Nexa Control Configuration", {300, 82},
                                    kInstanceRecordControls};

// The current directory (static 4) above its sub-directories, the drives
// below; the handler fills all three.
constexpr ControlDef kSelectDirectoryControls[] = {
    {kDirectoriesLabel, K::kStatic, "&Directories:", {7, 7, 150, 8}},
    {kDirectoryCurrent, K::kStatic, "c:", {7, 17, 150, 8}},
    {kDirectoryList, K::kListBox, "", {7, 28, 150, 92}},
    {kDrivesLabel, K::kStatic, "Dri&ves:", {7, 126, 150, 8}},
    {kDriveList, K::kDropDownList, "", {7, 136, 150, 12}},
    {kOk, K::kButton, "OK", {163, 7, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {163, 25, 50, 14}, kCancelButton},
};
constexpr WindowDef kSelectDirectory{kSelectDirectoryDialog, WindowKind::kDialog, "Select Directory",
                                     {220, 155}, kSelectDirectoryControls};

constexpr const WindowDef* kInstanceDialogs[] = {&kInstanceConfig, &kConfigure, &kInstanceRecord,
                                                 &kSelectDirectory};

}  // namespace

std::span<const WindowDef* const> instance_dialog_defs() { return kInstanceDialogs; }

}  // namespace px::tk
