// The numbered messages and button labels the shell shows. Their texts live
// in section Messages of the console's INI file; code passes only these
// numbers and the arguments named here.
#pragma once

namespace px::msg {

inline constexpr int kWindowNotCreated = 100;
inline constexpr int kDialogNotCreated = 101;
inline constexpr int kNoInstanceToSelect = 166;  // @P1 console INI file (shortened)

// The question before unsaved JMD edits would be lost, and its buttons.
inline constexpr int kSaveJmdQuestion = 291;
inline constexpr int kButtonSave = 249;
inline constexpr int kButtonDiscard = 250;
inline constexpr int kButtonCancel = 140;

}  // namespace px::msg
