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
// Undo and redo of the unsaved JMD edits (the console's own, on no menu of
// the original bars).
inline constexpr int kCmdUndo = 1500;
inline constexpr int kCmdRedo = 1501;
inline constexpr int kCmdCut = 32027;
inline constexpr int kCmdCopy = 32028;
inline constexpr int kCmdPaste = 32029;

// Windows of the monitoring views. Nexa Status and Queue (137):
inline constexpr int kStatusClose = 1;
inline constexpr int kStatusList = 2;
inline constexpr int kStatusHeader = 3;

// Rejects (142) and E-Mail Agent queue (144) share their ids; button 5,
// "View File...", is the rejects window's only.
inline constexpr int kFilesClose = 1;
inline constexpr int kFilesCaption = 3;
inline constexpr int kFilesList = 4;
inline constexpr int kRejectsViewFile = 5;

// JMD list window (143) and job window (146). The job window adds the
// step-order buttons and the job name field.
inline constexpr int kJmdList = 1;
inline constexpr int kJmdEdit = 2;
inline constexpr int kJmdNew = 3;
inline constexpr int kJmdDelete = 4;
inline constexpr int kJmdClose = 5;
inline constexpr int kJmdPrevious = 6;
inline constexpr int kJmdNext = 7;
inline constexpr int kJobStepUp = 8;
inline constexpr int kJobStepDown = 9;
inline constexpr int kJobNameField = 10;
// The list window's filter (the rows holding its text) and row count.
inline constexpr int kJmdFilter = 11;
inline constexpr int kJmdCount = 12;

// Select Instance of Nexa (102).
inline constexpr int kSelectInstanceList = 3;

// New/Edit Job Step (106).
inline constexpr int kStepJobName = 4;
inline constexpr int kStepTaskId = 6;
inline constexpr int kStepAddTask = 7;
inline constexpr int kStepInFile = 9;
inline constexpr int kStepOutFile = 11;
inline constexpr int kStepOnError = 13;
inline constexpr int kStepFormFile = 15;
inline constexpr int kStepPreamble = 17;
inline constexpr int kStepPrinterName = 19;
inline constexpr int kStepAddPrinter = 20;
inline constexpr int kStepMacro = 22;
inline constexpr int kStepLoadFlag = 24;
inline constexpr int kStepComment = 26;

// New/Edit Printer (108).
inline constexpr int kPrinterName = 4;
inline constexpr int kPrinterId = 6;
inline constexpr int kPrinterAddMemory = 7;
inline constexpr int kPrinterDevice = 9;
inline constexpr int kPrinterOptions = 12;
inline constexpr int kPrinterPriority = 14;
inline constexpr int kPrinterComment = 16;

// The log view's process choice (113).
inline constexpr int kLogProcessList = 4;

// Log view (120), also the rejected-file view: caption, text, scroll bars.
inline constexpr int kLogCaption = 2;
inline constexpr int kLogText = 3;
inline constexpr int kLogVScroll = 45;
inline constexpr int kLogHScroll = 46;
// Find in the log: the text, and the buttons that look for its next and
// previous line.
inline constexpr int kLogFindText = 47;
inline constexpr int kLogFindNext = 48;
inline constexpr int kLogFindPrevious = 49;

// Nexa Control Configuration (121): OK is 5 here, since 1 is "Edit...".
inline constexpr int kInstanceEdit = 1;
inline constexpr int kInstanceDelete = 3;
inline constexpr int kInstanceMakeDefault = 4;
inline constexpr int kInstanceOk = 5;
inline constexpr int kInstanceList = 7;

// Configure Nexa and Agents (123): button 1 (kOk) is "Edit File...".
inline constexpr int kConfigureList = 3;

// Edit Nexa Control Configuration (124).
inline constexpr int kRecordName = 4;
inline constexpr int kRecordDescription = 6;
inline constexpr int kRecordConfigFile = 8;

// New/Edit Task (126).
inline constexpr int kTaskIdField = 4;
inline constexpr int kTaskProgram = 6;
inline constexpr int kTaskOptions = 8;
inline constexpr int kTaskComment = 10;

// New/Edit Printer Managed Memory (128).
inline constexpr int kMemoryPrinterId = 4;
inline constexpr int kMemoryAmount = 6;
inline constexpr int kMemoryComment = 8;

// New Job Name (129).
inline constexpr int kJobNameEdit = 3;
inline constexpr int kJobNameLabel = 4;

// Reload Printer for %s (131).
inline constexpr int kReloadPrinterList = 4;
inline constexpr int kReloadPrinterForm = 6;
inline constexpr int kReloadAllPrinters = 9;
inline constexpr int kReloadAllForms = 10;

// About Nexa Control (132).
inline constexpr int kAboutCompany = 6;
inline constexpr int kAboutProduct = 7;
inline constexpr int kAboutVersion = 8;

// E-Mail Agent Configuration for %s (133).
inline constexpr int kEmailSpin = 5;
inline constexpr int kEmailMinutes = 6;
inline constexpr int kEmailSeconds = 7;
inline constexpr int kEmailDeleteAfterRead = 8;
inline constexpr int kEmailBackupFiles = 9;
inline constexpr int kEmailLogToFile = 10;
inline constexpr int kEmailFileLocations = 14;
inline constexpr int kEmailJobCard = 15;
inline constexpr int kEmailPostOfficeLabel = 18;
inline constexpr int kEmailMailbox = 19;
inline constexpr int kEmailPassword = 20;
inline constexpr int kEmailPostOffice = 21;
inline constexpr int kEmailScanTime = 22;
inline constexpr int kEmailBrowsePostOffice = 23;
inline constexpr int kEmailChanges = 24;  // "Changes...": what OK would write
inline constexpr int kEmailStatus = 25;   // a note on what a typing rule did

// Main Configuration for %s (134).
inline constexpr int kServerScanTime = 5;
inline constexpr int kServerFileSpec = 7;
inline constexpr int kServerDeleteExt = 9;
inline constexpr int kServerBackupFiles = 10;
inline constexpr int kServerLogFile = 12;
inline constexpr int kServerNetwork = 13;
inline constexpr int kServerSpin = 14;
inline constexpr int kServerFileLocations = 15;
inline constexpr int kServerVerbosity = 17;
inline constexpr int kServerLogFileSize = 20;
inline constexpr int kServerMinutes = 23;
inline constexpr int kServerSeconds = 24;
inline constexpr int kServerBrowseLogFile = 25;
inline constexpr int kServerChanges = 26;  // "Changes...": what OK would write
inline constexpr int kServerStatus = 27;   // a note on what a typing rule did

// Network Command (136): each edit's label is the id before it.
inline constexpr int kNetworkSend = 3;
inline constexpr int kNetworkCommandLabel = 4;
inline constexpr int kNetworkCommand = 5;
inline constexpr int kNetworkDeviceLabel = 6;
inline constexpr int kNetworkDevice = 7;
inline constexpr int kNetworkExcludeLabel = 8;
inline constexpr int kNetworkExclude = 9;
inline constexpr int kNetworkIncludeLabel = 10;
inline constexpr int kNetworkInclude = 11;

// Print Agent Configuration for %s (138).
inline constexpr int kPrintCurrency = 3;
inline constexpr int kPrintCharacters = 4;
inline constexpr int kPrintVerbosity = 9;
inline constexpr int kPrintYieldLabel = 10;
inline constexpr int kPrintYield = 11;
inline constexpr int kPrintFormPath = 14;
inline constexpr int kPrintLogoPath = 16;
inline constexpr int kPrintDataPath = 18;
inline constexpr int kPrintBrowseForm = 19;
inline constexpr int kPrintBrowseLogo = 20;
inline constexpr int kPrintBrowseData = 21;
inline constexpr int kPrintChanges = 22;  // "Changes...": what OK would write
inline constexpr int kPrintStatus = 23;   // a note on what a typing rule did

// Print Agent Currency Options (139).
inline constexpr int kCurrencyComma = 4;
inline constexpr int kCurrencyDot = 6;
inline constexpr int kCurrencyCredit = 8;
inline constexpr int kCurrencyDebit = 10;
inline constexpr int kCurrencyLocation = 12;
inline constexpr int kCurrencySymbol = 14;
inline constexpr int kCurrencyParenthesis = 16;

// Print Agent Special Characters (140).
inline constexpr int kSpecialNewline = 4;
inline constexpr int kSpecialField = 6;
inline constexpr int kSpecialDictionary = 8;
inline constexpr int kSpecialPrefix = 10;
inline constexpr int kSpecialSubstitution = 12;
inline constexpr int kSpecialItcPrefix = 14;

// Nexa File Locations for %s (147): OK is 10 here.
inline constexpr int kLocationsDataPath = 3;
inline constexpr int kLocationsErrorPath = 5;
inline constexpr int kLocationsBackupPath = 7;
inline constexpr int kLocationsMstPath = 9;
inline constexpr int kLocationsOk = 10;
inline constexpr int kLocationsBrowseData = 11;
inline constexpr int kLocationsBrowseError = 12;
inline constexpr int kLocationsBrowseBackup = 13;
inline constexpr int kLocationsBrowseMst = 14;

// E-Mail Agent File Locations for %s (148).
inline constexpr int kEmailDataPath = 4;
inline constexpr int kEmailErrorPath = 6;
inline constexpr int kEmailBackupPath = 8;
inline constexpr int kEmailBrowseData = 9;
inline constexpr int kEmailBrowseError = 10;
inline constexpr int kEmailBrowseBackup = 11;

// Job Card (149); the output directory's label and edit are never shown.
inline constexpr int kJobCardPrefix = 5;
inline constexpr int kJobCardSuffix = 7;
inline constexpr int kJobCardDefault = 9;
inline constexpr int kJobCardOutputLabel = 10;
inline constexpr int kJobCardOutput = 11;

// Select Directory (150).
inline constexpr int kDirectoriesLabel = 3;
inline constexpr int kDirectoryCurrent = 4;
inline constexpr int kDirectoryList = 5;
inline constexpr int kDriveList = 6;
inline constexpr int kDrivesLabel = 7;

}  // namespace px::tk
