// The configuration dialogs of the server ("Main Configuration for %s" 134,
// "Network Command" 136, "Nexa File Locations for %s" 147), the E-Mail Agent
// ("E-Mail Agent Configuration for %s" 133, "E-Mail Agent File Locations
// for %s" 148, "Job Card" 149) and the Print Agent ("Print Agent
// Configuration for %s" 138, "Print Agent Currency Options" 139, "Print
// Agent Special Characters" 140). Titles with "%s" get the instance's name.
//
// Shared layout: labels in a column on the left, fields from one x on, a
// "Browse..." button at the right end of each path field, the sub-dialog
// buttons bottom left, "Changes..." (what OK would write, a feature of this
// console) beside them, and OK / Cancel bottom right; under them a status
// line where the dialog says what a typing rule did. A scan time is a three
// digit field with a spin bar (a small vertical scroll bar) beside it.
#include "toolkit/resources/groups.h"
#include "toolkit/resources/resource_ids.h"

namespace px::tk {

namespace {

using K = ControlKind;

// "Net&work..." is hidden by the handler when the dialog opens.
constexpr ControlDef kServerControls[] = {
    {kNoId, K::kStatic, "Scan &time:", {7, 9, 92, 8}},
    {kServerScanTime, K::kEdit, "", {102, 7, 24, 12}, kNoStyle, 3},
    {kServerSpin, K::kVScrollBar, "", {126, 7, 9, 12}},
    {kServerMinutes, K::kRadioButton, "&minutes", {145, 8, 50, 10}},
    {kServerSeconds, K::kRadioButton, "&seconds", {199, 8, 50, 10}},
    {kNoId, K::kStatic, "&File pattern:", {7, 25, 92, 8}},
    {kServerFileSpec, K::kEdit, "", {102, 23, 181, 12}, kNoStyle, 255},
    {kNoId, K::kStatic, "Delete e&xtension:", {7, 41, 92, 8}},
    {kServerDeleteExt, K::kEdit, "", {102, 39, 181, 12}, kNoStyle, 255},
    {kServerBackupFiles, K::kCheckBox, "Save &backup files", {102, 56, 90, 10}},
    {kNoId, K::kGroupBox, "Log file", {7, 71, 276, 50}},
    {kNoId, K::kStatic, "&Name:", {15, 87, 80, 8}},
    {kServerLogFile, K::kEdit, "", {102, 85, 120, 12}, kNoStyle, 255},
    {kServerBrowseLogFile, K::kButton, "Browse...", {226, 84, 50, 14}},
    {kNoId, K::kStatic, "Si&ze:", {15, 103, 80, 8}},
    {kServerLogFileSize, K::kEdit, "", {102, 101, 50, 12}},
    {kNoId, K::kStatic, "Message &display level:", {7, 129, 92, 8}},
    {kServerVerbosity, K::kEdit, "", {102, 127, 24, 12}, kNoStyle, 3},
    {kNoId, K::kStatic, "NOTE:  You must shut down and then restart Nexa", {7, 147, 276, 8}},
    {kNoId, K::kStatic, "for these changes to take effect.", {7, 155, 276, 8}},
    {kServerFileLocations, K::kButton, "File &Locations...", {7, 171, 66, 14}},
    {kServerNetwork, K::kButton, "Net&work...", {77, 171, 50, 14}},
    {kServerChanges, K::kButton, "Chan&ges...", {131, 171, 44, 14}},
    {kOk, K::kButton, "OK", {179, 171, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {233, 171, 50, 14}, kCancelButton},
    {kServerStatus, K::kStatic, "", {7, 190, 276, 8}},
};
constexpr WindowDef kServer{kServerConfigDialog, WindowKind::kDialog, "Main Configuration for %s",
                            {290, 202}, kServerControls};

// The labels carry ids: the check box enables and disables them with their
// fields.
constexpr ControlDef kNetworkControls[] = {
    {kNetworkSend, K::kCheckBox, "Send ne&twork command", {7, 7, 120, 10}},
    {kNetworkCommandLabel, K::kStatic, "&Command:", {17, 25, 66, 8}},
    {kNetworkCommand, K::kEdit, "", {86, 23, 157, 12}, kNoStyle, 255},
    {kNetworkDeviceLabel, K::kStatic, "Local de&vice:", {17, 41, 66, 8}},
    {kNetworkDevice, K::kEdit, "", {86, 39, 157, 12}},
    {kNetworkExcludeLabel, K::kStatic, "Exclude &queues:", {17, 57, 66, 8}},
    {kNetworkExclude, K::kEdit, "", {86, 55, 157, 12}},
    {kNetworkIncludeLabel, K::kStatic, "&Include queues:", {17, 73, 66, 8}},
    {kNetworkInclude, K::kEdit, "", {86, 71, 157, 12}},
    {kOk, K::kButton, "OK", {139, 93, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {193, 93, 50, 14}, kCancelButton},
};
constexpr WindowDef kNetwork{kNetworkCommandDialog, WindowKind::kDialog, "Network Command",
                             {250, 114}, kNetworkControls};

// OK is 10 in this dialog.
constexpr ControlDef kServerLocationsControls[] = {
    {kNoId, K::kStatic, "&Transaction files:", {7, 9, 84, 8}},
    {kLocationsDataPath, K::kEdit, "", {94, 7, 145, 12}, kNoStyle, 255},
    {kLocationsBrowseData, K::kButton, "Browse...", {243, 6, 50, 14}},
    {kNoId, K::kStatic, "&Error files:", {7, 25, 84, 8}},
    {kLocationsErrorPath, K::kEdit, "", {94, 23, 145, 12}, kNoStyle, 255},
    {kLocationsBrowseError, K::kButton, "Browse...", {243, 22, 50, 14}},
    {kNoId, K::kStatic, "&Backup files:", {7, 41, 84, 8}},
    {kLocationsBackupPath, K::kEdit, "", {94, 39, 145, 12}, kNoStyle, 255},
    {kLocationsBrowseBackup, K::kButton, "Browse...", {243, 38, 50, 14}},
    {kNoId, K::kStatic, "&Macro Status Table:", {7, 57, 84, 8}},
    {kLocationsMstPath, K::kEdit, "", {94, 55, 145, 12}, kNoStyle, 255},
    {kLocationsBrowseMst, K::kButton, "Browse...", {243, 54, 50, 14}},
    {kLocationsOk, K::kButton, "OK", {189, 77, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {243, 77, 50, 14}, kCancelButton},
};
constexpr WindowDef kServerLocations{kServerLocationsDialog, WindowKind::kDialog,
                                     "Nexa File Locations for %s", {300, 98},
                                     kServerLocationsControls};

// The post-office row is hidden by the handler for the mail systems that
// have no post office. "File Locations..." is never shown.
constexpr ControlDef kEmailControls[] = {
    {kNoId, K::kStatic, "Scan &time:", {7, 9, 90, 8}},
    {kEmailScanTime, K::kEdit, "12", {104, 7, 24, 12}, kNoStyle, 3},
    {kEmailSpin, K::kVScrollBar, "", {128, 7, 9, 12}},
    {kEmailMinutes, K::kRadioButton, "&minutes", {147, 8, 50, 10}},
    {kEmailSeconds, K::kRadioButton, "&seconds", {201, 8, 50, 10}},
    {kEmailLogToFile, K::kCheckBox, "&Log to file", {104, 24, 90, 10}},
    {kEmailDeleteAfterRead, K::kCheckBox, "&Delete after read", {104, 36, 90, 10}},
    {kEmailBackupFiles, K::kCheckBox, "Save &backup files", {104, 48, 90, 10}},
    {kNoId, K::kGroupBox, "Mail system", {7, 63, 278, 64}},
    {kNoId, K::kStatic, "Mailbo&x:", {15, 77, 84, 8}},
    {kEmailMailbox, K::kEdit, "", {104, 75, 110, 12}},
    {kNoId, K::kStatic, "Pass&word:", {15, 93, 84, 8}},
    {kEmailPassword, K::kEdit, "", {104, 91, 110, 12}, kPassword, 99},
    {kEmailPostOfficeLabel, K::kStatic, "&Post office location:", {15, 109, 84, 8}},
    {kEmailPostOffice, K::kEdit, "", {104, 107, 120, 12}},
    {kEmailBrowsePostOffice, K::kButton, "Browse...", {228, 106, 50, 14}},
    {kNoId, K::kStatic, "NOTE:  You must shut down and then restart the E-Mail Agent",
     {7, 135, 278, 8}},
    {kNoId, K::kStatic, "for these changes to take effect.", {7, 143, 278, 8}},
    {kEmailJobCard, K::kButton, "&Job Card...", {7, 159, 56, 14}},
    {kEmailFileLocations, K::kButton, "&File Locations...", {67, 159, 62, 14}, kHidden},
    {kEmailChanges, K::kButton, "Chan&ges...", {133, 159, 44, 14}},
    {kOk, K::kButton, "OK", {181, 159, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {235, 159, 50, 14}, kCancelButton},
    {kEmailStatus, K::kStatic, "", {7, 178, 278, 8}},
};
constexpr WindowDef kEmail{kEmailConfigDialog, WindowKind::kDialog,
                           "E-Mail Agent Configuration for %s", {292, 190}, kEmailControls};

constexpr ControlDef kEmailLocationsControls[] = {
    {kNoId, K::kStatic, "&Transaction files:", {7, 9, 84, 8}},
    {kEmailDataPath, K::kEdit, "", {94, 7, 145, 12}, kNoStyle, 255},
    {kEmailBrowseData, K::kButton, "Browse...", {243, 6, 50, 14}},
    {kNoId, K::kStatic, "&Error files:", {7, 25, 84, 8}},
    {kEmailErrorPath, K::kEdit, "", {94, 23, 145, 12}, kNoStyle, 255},
    {kEmailBrowseError, K::kButton, "Browse...", {243, 22, 50, 14}},
    {kNoId, K::kStatic, "&Backup files:", {7, 41, 84, 8}},
    {kEmailBackupPath, K::kEdit, "", {94, 39, 145, 12}, kNoStyle, 255},
    {kEmailBrowseBackup, K::kButton, "Browse...", {243, 38, 50, 14}},
    {kOk, K::kButton, "OK", {189, 61, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {243, 61, 50, 14}, kCancelButton},
};
constexpr WindowDef kEmailLocations{kEmailLocationsDialog, WindowKind::kDialog,
                                    "E-Mail Agent File Locations for %s", {300, 82},
                                    kEmailLocationsControls};

// The output directory's label and edit are hidden and disabled, and unused.
constexpr ControlDef kJobCardControls[] = {
    {kNoId, K::kStatic, "Job card &prefix:", {7, 9, 86, 8}},
    {kJobCardPrefix, K::kEdit, "", {96, 7, 165, 12}, kNoStyle, 255},
    {kNoId, K::kStatic, "Job card &suffix:", {7, 25, 86, 8}},
    {kJobCardSuffix, K::kEdit, "", {96, 23, 165, 12}, kNoStyle, 255},
    {kNoId, K::kStatic, "Job card for missing", {7, 39, 86, 8}},
    {kNoId, K::kStatic, "&message types:", {7, 47, 86, 8}},
    {kJobCardDefault, K::kEdit, "", {96, 41, 165, 12}, kNoStyle, 255},
    {kJobCardOutputLabel, K::kStatic, "Job &Output Directory:", {7, 61, 86, 8}, kHidden | kDisabled},
    {kJobCardOutput, K::kEdit, "", {96, 59, 55, 12}, kHidden | kDisabled, 255},
    {kOk, K::kButton, "OK", {157, 63, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {211, 63, 50, 14}, kCancelButton},
};
constexpr WindowDef kJobCard{kJobCardDialog, WindowKind::kDialog, "Job Card", {268, 84},
                             kJobCardControls};

// The yield percentage (label 10, edit 11) is hidden by the handler; it sits
// at the end of the first row so that no gap is left.
constexpr ControlDef kPrintControls[] = {
    {kNoId, K::kStatic, "&Message display level:", {7, 9, 92, 8}},
    {kPrintVerbosity, K::kEdit, "", {102, 7, 24, 12}, kNoStyle, 3},
    {kPrintYieldLabel, K::kStatic, "&Yield percentage:", {160, 9, 74, 8}},
    {kPrintYield, K::kEdit, "", {236, 7, 24, 12}, kNoStyle, 3},
    {kNoId, K::kGroupBox, "Directories", {7, 24, 276, 67}},
    {kNoId, K::kStatic, "&Form files:", {15, 40, 56, 8}},
    {kPrintFormPath, K::kEdit, "", {75, 38, 147, 12}},
    {kPrintBrowseForm, K::kButton, "Browse...", {226, 37, 50, 14}},
    {kNoId, K::kStatic, "&Logo files:", {15, 56, 56, 8}},
    {kPrintLogoPath, K::kEdit, "", {75, 54, 147, 12}},
    {kPrintBrowseLogo, K::kButton, "Browse...", {226, 53, 50, 14}},
    {kNoId, K::kStatic, "&Data files:", {15, 72, 56, 8}},
    {kPrintDataPath, K::kEdit, "", {75, 70, 147, 12}},
    {kPrintBrowseData, K::kButton, "Browse...", {226, 69, 50, 14}},
    {kNoId, K::kStatic, "NOTE: Changes will affect any Print Agent jobs still in the", {7, 99, 276, 8}},
    {kNoId, K::kStatic, "Nexa queue.", {7, 107, 276, 8}},
    {kPrintCurrency, K::kButton, "&Currency...", {7, 123, 56, 14}},
    {kPrintCharacters, K::kButton, "C&haracters...", {67, 123, 56, 14}},
    {kPrintChanges, K::kButton, "Chan&ges...", {127, 123, 48, 14}},
    {kOk, K::kButton, "OK", {179, 123, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {233, 123, 50, 14}, kCancelButton},
    {kPrintStatus, K::kStatic, "", {7, 142, 276, 8}},
};
constexpr WindowDef kPrint{kPrintAgentConfigDialog, WindowKind::kDialog,
                           "Print Agent Configuration for %s", {290, 154}, kPrintControls};

// Every field holds one or a few characters.
constexpr ControlDef kCurrencyControls[] = {
    {kNoId, K::kStatic, "&Thousands separator:", {7, 9, 90, 8}},
    {kCurrencyComma, K::kEdit, "", {100, 7, 30, 12}},
    {kNoId, K::kStatic, "&Decimal character:", {7, 25, 90, 8}},
    {kCurrencyDot, K::kEdit, "", {100, 23, 30, 12}},
    {kNoId, K::kStatic, "&Credit symbol:", {7, 41, 90, 8}},
    {kCurrencyCredit, K::kEdit, "", {100, 39, 30, 12}},
    {kNoId, K::kStatic, "Debit &symbol:", {7, 57, 90, 8}},
    {kCurrencyDebit, K::kEdit, "", {100, 55, 30, 12}},
    {kNoId, K::kStatic, "Currency &location:", {7, 73, 90, 8}},
    {kCurrencyLocation, K::kDropDownList, "", {100, 71, 67, 12}},
    {kNoId, K::kStatic, "Cu&rrency symbol:", {7, 89, 90, 8}},
    {kCurrencySymbol, K::kEdit, "", {100, 87, 30, 12}},
    {kNoId, K::kStatic, "&Parenthesis for", {7, 103, 90, 8}},
    {kNoId, K::kStatic, "negative values:", {7, 111, 90, 8}},
    {kCurrencyParenthesis, K::kEdit, "", {100, 105, 30, 12}},
    {kOk, K::kButton, "OK", {63, 127, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {117, 127, 50, 14}, kCancelButton},
};
constexpr WindowDef kCurrency{kCurrencyDialog, WindowKind::kDialog, "Print Agent Currency Options",
                              {174, 148}, kCurrencyControls};

constexpr ControlDef kSpecialControls[] = {
    {kNoId, K::kStatic, "Alternate &new line identifier:", {7, 9, 126, 8}},
    {kSpecialNewline, K::kEdit, "", {136, 7, 30, 12}},
    {kNoId, K::kStatic, "New &field identifier:", {7, 25, 126, 8}},
    {kSpecialField, K::kEdit, "", {136, 23, 30, 12}},
    {kNoId, K::kStatic, "&Dictionary name separator:", {7, 41, 126, 8}},
    {kSpecialDictionary, K::kEdit, "", {136, 39, 30, 12}},
    {kNoId, K::kStatic, "DFC command &prefix:", {7, 57, 126, 8}},
    {kSpecialPrefix, K::kEdit, "", {136, 55, 30, 12}},
    {kNoId, K::kStatic, "&Variable substitution prefix:", {7, 73, 126, 8}},
    {kSpecialSubstitution, K::kEdit, "", {136, 71, 30, 12}},
    {kNoId, K::kStatic, "I&TC command prefix:", {7, 89, 126, 8}},
    {kSpecialItcPrefix, K::kEdit, "", {136, 87, 30, 12}},
    {kOk, K::kButton, "OK", {62, 109, 50, 14}, kDefaultButton},
    {kCancel, K::kButton, "Cancel", {116, 109, 50, 14}, kCancelButton},
};
constexpr WindowDef kSpecial{kSpecialCharactersDialog, WindowKind::kDialog,
                             "Print Agent Special Characters", {173, 130}, kSpecialControls};

constexpr const WindowDef* kConfigDialogs[] = {&kEmail,    &kServer,  &kNetwork,
                                               &kPrint,    &kCurrency, &kSpecial,
                                               &kServerLocations, &kEmailLocations, &kJobCard};

}  // namespace

std::span<const WindowDef* const> config_dialog_defs() { return kConfigDialogs; }

}  // namespace px::tk
