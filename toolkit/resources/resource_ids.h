// Resource ids, menu command ids and the control ids that the GUI code names.
// Window and dialog ids are those the console has always used; the task window
// and the splash, which had none, get 90 and 91.
#pragma once

namespace px::tk {

// Menu bars: the base bar, and the bar with the E-mail Agent items.
inline constexpr int kMenuBarBase = 1000;
inline constexpr int kMenuBarEmail = 1010;

// Windows.
inline constexpr int kTaskWindow = 90;
inline constexpr int kSplashWindow = 91;
inline constexpr int kLogWindow = 120;
inline constexpr int kStatusQueueWindow = 137;
inline constexpr int kRejectsWindow = 142;
inline constexpr int kJmdListWindow = 143;
inline constexpr int kEmailQueueWindow = 144;
inline constexpr int kJobWindow = 146;

// Dialogs.
inline constexpr int kSelectInstanceDialog = 102;
inline constexpr int kJobStepDialog = 106;
inline constexpr int kPrinterDialog = 108;
inline constexpr int kLogProcessDialog = 113;
inline constexpr int kInstanceConfigDialog = 121;
inline constexpr int kConfigureDialog = 123;
inline constexpr int kInstanceRecordDialog = 124;
inline constexpr int kTaskDialog = 126;
inline constexpr int kManagedMemoryDialog = 128;
inline constexpr int kJobNameDialog = 129;
inline constexpr int kReloadPrinterDialog = 131;
inline constexpr int kAboutDialog = 132;
inline constexpr int kEmailConfigDialog = 133;
inline constexpr int kServerConfigDialog = 134;
inline constexpr int kNetworkCommandDialog = 136;
inline constexpr int kPrintAgentConfigDialog = 138;
inline constexpr int kCurrencyDialog = 139;
inline constexpr int kSpecialCharactersDialog = 140;
inline constexpr int kServerLocationsDialog = 147;
inline constexpr int kEmailLocationsDialog = 148;
inline constexpr int kJobCardDialog = 149;
inline constexpr int kSelectDirectoryDialog = 150;

// Buttons every dialog has.
inline constexpr int kOk = 1;
inline constexpr int kCancel = 2;

// Menu commands.
inline constexpr int kCmdSelectInstance = 1006;
inline constexpr int kCmdConfigure = 1007;
inline constexpr int kCmdExit = 1008;
inline constexpr int kCmdStartServer = 1009;
inline constexpr int kCmdStartEmail = 1011;
inline constexpr int kCmdSaveSecond = 1012;  // follows Save's state; on no menu bar
inline constexpr int kCmdJobs = 1013;
inline constexpr int kCmdPrinters = 1014;
inline constexpr int kCmdStatusQueue = 1016;
inline constexpr int kCmdServerLog = 1017;
inline constexpr int kCmdServerRejects = 1019;
inline constexpr int kCmdEmailQueue = 1020;
inline constexpr int kCmdEmailRejects = 1021;
inline constexpr int kCmdShutDownServer = 1023;
inline constexpr int kCmdReloadPrinter = 1024;
inline constexpr int kCmdReloadJmd = 1025;
inline constexpr int kCmdResumeServer = 1026;
inline constexpr int kCmdTasks = 1027;
inline constexpr int kCmdAbout = 1031;
inline constexpr int kCmdManagedMemory = 1033;
inline constexpr int kCmdShutDownEmail = 1035;
inline constexpr int kCmdPauseServer = 1037;
inline constexpr int kCmdViewDocumentation = 1039;
inline constexpr int kCmdKnowledgeBase = 1040;  // on no menu bar
inline constexpr int kCmdDelete = 1043;
inline constexpr int kCmdSave = 1047;
inline constexpr int kCmdEmailLog = 1048;
inline constexpr int kCmdCut = 32027;
inline constexpr int kCmdCopy = 32028;
inline constexpr int kCmdPaste = 32029;

// Select Instance of Nexa (102).
inline constexpr int kSelectInstanceList = 3;

// About Nexa Control (132).
inline constexpr int kAboutCompany = 6;
inline constexpr int kAboutProduct = 7;
inline constexpr int kAboutVersion = 8;

}  // namespace px::tk
