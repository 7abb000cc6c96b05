// The numbered messages of the JMD editors. Texts live in section Messages of
// the console's INI file; code passes only these numbers and the arguments
// named here.
#pragma once

namespace px::editors::msg {

inline constexpr int kWindowNotCreated = 100;
inline constexpr int kDialogNotCreated = 101;
inline constexpr int kMemoryIdEmpty = 107;
inline constexpr int kMemoryIdExists = 109;     // @P1 printer id
inline constexpr int kPrinterNameEmpty = 111;
inline constexpr int kPrinterExists = 112;      // @P1 printer name
inline constexpr int kTaskIdEmpty = 115;
inline constexpr int kTaskExists = 116;         // @P1 task id
inline constexpr int kDeleteButton = 139;       // label of the first button of 290
inline constexpr int kCancelButton = 140;
inline constexpr int kClipboardNotCreated = 182;
inline constexpr int kSaveButton = 249;
inline constexpr int kDiscardButton = 250;
inline constexpr int kJobNameLabel = 275;       // drawn in the job window
inline constexpr int kStepsLabel = 276;
inline constexpr int kStepColumns = 277;
inline constexpr int kEditStepTitle = 282;
inline constexpr int kTaskTitle = 284;
inline constexpr int kMemoryTitle = 285;
inline constexpr int kPrinterTitle = 289;
inline constexpr int kDeleteQuestion = 290;
inline constexpr int kSaveQuestion = 291;
inline constexpr int kLineNotReplaced = 292;
inline constexpr int kEditJobTitle = 293;       // @P1 job name
inline constexpr int kNewJobTitle = 294;        // @P1 job name
inline constexpr int kJobNameHasBlank = 295;    // @P1 job name
inline constexpr int kReservedDevice = 301;     // @P1 the printer id

// The editors' own.
inline constexpr int kNotListed = 1500;         // @P1 key, @P2 list ("jobs", ...)
inline constexpr int kJobNameEmpty = 1501;
inline constexpr int kJobExists = 1502;         // @P1 job name
inline constexpr int kNoSuchStep = 1503;        // @P1 step number, @P2 job, @P3 its steps
inline constexpr int kInternalError = 1504;     // @P1 "'module', line n"
inline constexpr int kNullCursor = 1505;        // @P1 "module  line"
inline constexpr int kFileNotWritten = 1506;    // @P1 the JMD file
inline constexpr int kMissingPrinter = 1507;    // @P1 job, @P2 step, @P3 printer
inline constexpr int kMissingTask = 1508;       // @P1 job, @P2 step, @P3 task
inline constexpr int kNothingToUndo = 1509;
inline constexpr int kLineTooLong = 1520;       // @P1 the row's key, @P2 its line's length
inline constexpr int kStepsOnTwoPages = 1521;   // @P1 first step, @P2 last step, @P3 job

}  // namespace px::editors::msg
