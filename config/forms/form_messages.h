// The numbered messages of the configuration forms, their dialogs and
// `pxctl config`, `pxctl processes` and `pxctl instances` beyond those of
// the process list (process_list.h) and the yield check (form.h).
#pragma once

namespace px::forms {

inline constexpr int kMsgProcessNotListed = 1600;      // @P1 process, @P2 file
inline constexpr int kMsgOtherNode = 1601;             // @P1 instance
inline constexpr int kMsgChangedOnDisk = 1602;         // @P1 file: pxctl refuses
inline constexpr int kMsgChangedAsk = 1603;            // @P1 file: the dialog asks
inline constexpr int kMsgReloadButton = 1604;
inline constexpr int kMsgOverwriteButton = 1605;
inline constexpr int kMsgValueCut = 1606;              // @P1 field, @P2 limit
inline constexpr int kMsgNoSuchInstance = 1607;        // @P1 name, @P2 install file
inline constexpr int kMsgInstanceExists = 1608;        // @P1 name
inline constexpr int kMsgUnusableInstanceName = 1609;  // @P1 name
inline constexpr int kMsgNoInstallFile = 1610;         // @P1 console INI file
inline constexpr int kMsgNoChanges = 1611;             // Show changes: nothing would change
inline constexpr int kMsgChangesList = 1612;           // @P1 the changes, one per line
inline constexpr int kMsgValueChanged = 1613;          // @P1 field, @P2 typed, @P3 taken
inline constexpr int kMsgOwnEditor = 1617;             // @P1 process, @P2 its EditCfgRtn command
// OK refused: a value the file would not give back as written (@P1 its key).
inline constexpr int kValueNotSavable = 1618;
// Notes in a dialog's status line after a typing rule beeped.
inline constexpr int kNoteLimit = 1614;                // @P1 the limit
inline constexpr int kNoteDigits = 1615;
inline constexpr int kNoteScanTime = 1616;
inline constexpr int kMsgCancelButton = 140;
// A save that failed, after the message that tells why.
inline constexpr int kMsgNotSaved = 902;  // @P1 file

}  // namespace px::forms
