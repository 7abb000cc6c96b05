// The Job Management Database editors: the list window all four tables share
// (143), the job window (146), and the row dialogs "New/Edit Job Step" (106),
// "New/Edit Printer" (108), "New/Edit Task" (126), "New/Edit Printer
// Managed Memory" (128) and "New Job Name" (129).
//
// Rows are padded to fixed column widths, so the lists use the fixed-pitch
// font. The handlers draw the column headers on every update in the space
// left for them: the list window's above its list (y 5 to 15), the job
// window's job-name line above control 10 (y 5 to 13) and its two header
// lines above the list (y 33 to 41 and 43 to 51).
#include "toolkit/resources/groups.h"
#include "toolkit/resources/resource_ids.h"

namespace px::tk {

namespace {

using K = ControlKind;

// "Previous" and "Next" are shown only when a table has more rows than a
// page holds.
// Under the paging buttons, a filter narrows the list to the rows holding its
// text; below the list, which rows of how many are shown.
constexpr ControlDef kJmdListControls[] = {
    {kJmdList, K::kListBox, "", {7, 18, 282, 193}, kFixedFont},
    {kJmdCount, K::kStatic, "", {7, 213, 282, 10}},
    {kJmdEdit, K::kButton, "&Edit ...", {296, 18, 57, 14}},
    {kJmdNew, K::kButton, "&New ...", {296, 36, 57, 14}},
    {kJmdDelete, K::kButton, "&Delete", {296, 54, 57, 14}},
    {kJmdPrevious, K::kButton, "&Previous", {296, 78, 57, 14}, kHidden},
    {kJmdNext, K::kButton, "Ne&xt", {296, 96, 57, 14}, kHidden},
    {kNoId, K::kStatic, "&Filter:", {296, 120, 57, 8}},
    {kJmdFilter, K::kEdit, "", {296, 130, 57, 12}},
    {kJmdClose, K::kButton, "&Close", {296, 209, 57, 14}},
};
constexpr WindowDef kJmdListDef{kJmdListWindow, WindowKind::kDocument, "Job Management Database",
                                {360, 230}, kJmdListControls};

// One job's steps, several of which can be selected to move, cut or delete;
// below the list, which steps of how many are shown. The filter narrows the
// steps to those holding its text.
constexpr ControlDef kJobControls[] = {
    {kJobNameField, K::kEdit, "", {7, 15, 150, 12}, kNoStyle, 51},
    {kJmdList, K::kListBox, "", {7, 53, 232, 176}, kMultiSelect | kFixedFont},
    {kJmdCount, K::kStatic, "", {7, 232, 232, 10}},
    {kJmdEdit, K::kButton, "&Edit Step...", {246, 53, 59, 14}},
    {kJmdNew, K::kButton, "&New Step...", {246, 71, 59, 14}},
    {kJmdDelete, K::kButton, "&Delete Step", {246, 89, 59, 14}},
    {kJobStepUp, K::kButton, "&Up", {246, 113, 59, 14}},
    {kJobStepDown, K::kButton, "Do&wn", {246, 131, 59, 14}},
    {kJmdPrevious, K::kButton, "&Previous", {246, 155, 59, 14}, kHidden},
    {kJmdNext, K::kButton, "Ne&xt", {246, 173, 59, 14}, kHidden},
    {kNoId, K::kStatic, "&Filter:", {246, 195, 59, 8}},
    {kJmdFilter, K::kEdit, "", {246, 205, 59, 12}},
    {kJmdClose, K::kButton, "&Close", {246, 229, 59, 14}},
};
constexpr WindowDef kJob{kJobWindow, WindowKind::kDocument, "Job", {312, 250}, kJobControls};

// A job step: long texts take the full width, the one-letter flags share
// rows, and the task and printer choices each have their "Add" button.
constexpr ControlDef kJobStepControls[] = {
    {kNoId, K::kStatic, "&Job name:", {7, 9, 64, 8}},
    {kStepJobName, K::kEdit, "", {74, 7, 196, 12}, kNoStyle, 51},
    {kNoId, K::kStatic, "&Task id:", {7, 25, 64, 8}},
    {kStepTaskId, K::kComboBox, "", {74, 23, 80, 12}, kNoStyle, 9},
    {kStepAddTask, K::kButton, "Add Tas&k...", {160, 22, 66, 14}},
    {kNoId, K::kStatic, "&Input file:", {7, 41, 64, 8}},
    {kStepInFile, K::kEdit, "", {74, 39, 20, 12}, kNoStyle, 1},
    {kNoId, K::kStatic, "&Output file:", {104, 41, 54, 8}},
    {kStepOutFile, K::kEdit, "", {160, 39, 20, 12}, kNoStyle, 1},
    {kNoId, K::kStatic, "On &error:", {190, 41, 40, 8}},
    {kStepOnError, K::kComboBox, "", {232, 39, 38, 12}, kNoStyle, 1},
    {kNoId, K::kStatic, "&Form file:", {7, 57, 64, 8}},
    {kStepFormFile, K::kEdit, "", {74, 55, 196, 12}, kNoStyle, 81},
    {kNoId, K::kStatic, "P&reamble file:", {7, 73, 64, 8}},
    {kStepPreamble, K::kEdit, "", {74, 71, 196, 12}, kNoStyle, 81},
    {kNoId, K::kStatic, "Printer &name:", {7, 89, 64, 8}},
    {kStepPrinterName, K::kComboBox, "", {74, 87, 80, 12}, kNoStyle, 9},
    {kStepAddPrinter, K::kButton, "Add &Printer...", {160, 86, 66, 14}},
    {kNoId, K::kStatic, "&Macro number:", {7, 105, 64, 8}},
    {kStepMacro, K::kEdit, "", {74, 103, 40, 12}, kNoStyle, 9},
    {kNoId, K::kStatic, "&Load flag:", {190, 105, 40, 8}},
    {kStepLoadFlag, K::kComboBox, "", {232, 103, 38, 12}, kNoStyle, 1},
    {kNoId, K::kStatic, "&Comments:", {7, 121, 64, 8}},
    {kStepComment, K::kEdit, "", {74, 119, 196, 12}, kNoStyle, 81},
    {kOk, K::kButton, "OK", {166, 141, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {220, 141, 50, 14}, kCancelButton},
};
constexpr WindowDef kJobStep{kJobStepDialog, WindowKind::kDialog, "New/Edit Job Step", {277, 162},
                             kJobStepControls};

// A printer; its id comes from the managed-memory table, where "Add Managed
// Memory..." adds one.
constexpr ControlDef kPrinterControls[] = {
    {kNoId, K::kStatic, "&Printer Name:", {7, 9, 70, 8}},
    {kPrinterName, K::kEdit, "", {80, 7, 50, 12}, kNoStyle, 9},
    {kNoId, K::kStatic, "Printer i&d:", {7, 25, 70, 8}},
    {kPrinterId, K::kComboBox, "", {80, 23, 70, 12}, kNoStyle, 8},
    {kPrinterAddMemory, K::kButton, "Add Managed &Memory...", {156, 22, 106, 14}},
    {kNoId, K::kStatic, "Physical De&vice:", {7, 41, 70, 8}},
    {kPrinterDevice, K::kEdit, "", {80, 39, 190, 12}, kNoStyle, 51},
    {kNoId, K::kStatic, "Print Agent", {7, 57, 70, 8}},
    {kNoId, K::kStatic, "op&tions:", {7, 65, 70, 8}},
    {kPrinterOptions, K::kEdit, "", {80, 59, 190, 12}, kNoStyle, 127},
    {kNoId, K::kStatic, "P&riority:", {7, 79, 70, 8}},
    {kPrinterPriority, K::kEdit, "", {80, 77, 20, 12}, kNoStyle, 2},
    {kNoId, K::kStatic, "&Comments:", {7, 95, 70, 8}},
    {kPrinterComment, K::kEdit, "", {80, 93, 190, 12}, kNoStyle, 81},
    {kOk, K::kButton, "OK", {166, 115, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {220, 115, 50, 14}, kCancelButton},
};
constexpr WindowDef kPrinter{kPrinterDialog, WindowKind::kDialog, "New/Edit Printer", {277, 136},
                             kPrinterControls};

constexpr ControlDef kTaskControls[] = {
    {kNoId, K::kStatic, "&Task Id:", {7, 9, 70, 8}},
    {kTaskIdField, K::kEdit, "", {80, 7, 50, 12}, kNoStyle, 9},
    {kNoId, K::kStatic, "Program &name:", {7, 25, 70, 8}},
    {kTaskProgram, K::kEdit, "", {80, 23, 200, 12}, kNoStyle, 255},
    {kNoId, K::kStatic, "Program &options:", {7, 41, 70, 8}},
    {kTaskOptions, K::kEdit, "", {80, 39, 200, 12}, kNoStyle, 1023},
    {kNoId, K::kStatic, "&Comments:", {7, 57, 70, 8}},
    {kTaskComment, K::kEdit, "", {80, 55, 200, 12}, kNoStyle, 81},
    {kOk, K::kButton, "OK", {176, 77, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {230, 77, 50, 14}, kCancelButton},
};
constexpr WindowDef kTask{kTaskDialog, WindowKind::kDialog, "New/Edit Task", {287, 98}, kTaskControls};

constexpr ControlDef kMemoryControls[] = {
    {kNoId, K::kStatic, "&Printer id:", {7, 9, 74, 8}},
    {kMemoryPrinterId, K::kEdit, "", {84, 7, 50, 12}, kNoStyle, 8},
    {kNoId, K::kStatic, "Managed &memory", {7, 23, 74, 8}},
    {kNoId, K::kStatic, "(bytes):", {7, 31, 74, 8}},
    {kMemoryAmount, K::kEdit, "", {84, 25, 50, 12}, kNoStyle, 9},
    {kNoId, K::kStatic, "&Comments:", {7, 45, 74, 8}},
    {kMemoryComment, K::kEdit, "", {84, 43, 186, 12}, kNoStyle, 81},
    {kOk, K::kButton, "OK", {166, 65, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {220, 65, 50, 14}, kCancelButton},
};
constexpr WindowDef kMemory{kManagedMemoryDialog, WindowKind::kDialog,
                            "New/Edit Printer Managed Memory", {277, 86}, kMemoryControls};

constexpr ControlDef kJobNameControls[] = {
    {kJobNameLabel, K::kStatic, "&Job name:", {7, 9, 42, 8}},
    {kJobNameEdit, K::kEdit, "", {52, 7, 161, 12}, kNoStyle, 51},
    {kOk, K::kButton, "OK", {109, 28, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {163, 28, 50, 14}, kCancelButton},
};
constexpr WindowDef kJobName{kJobNameDialog, WindowKind::kDialog, "New Job Name", {220, 49},
                             kJobNameControls};

constexpr const WindowDef* kJmdEditors[] = {&kJobStep, &kPrinter, &kTask,   &kMemory,
                                            &kJobName, &kJmdListDef, &kJob};

}  // namespace

std::span<const WindowDef* const> jmd_editor_defs() { return kJmdEditors; }

}  // namespace px::tk
