// The numbered messages that the configuration services and the control
// commands show. Their texts live in section Messages of the console's INI
// file; code passes only these numbers and the arguments named here.
#pragma once

namespace px::msg {

// Instances and configuration files.
inline constexpr int kIniUnreadable = 144;          // @P1 file (shortened)
inline constexpr int kNoInstance = 164;             // @P1 console INI file
inline constexpr int kInstanceWithoutConfig = 165;  // @P1 instance, @P2 console INI file
inline constexpr int kSettingMissing = 167;         // @P1 section, @P2 file, @P3 key
inline constexpr int kFileNotOpened = 177;          // @P1 file (shortened)

// The JMD service.
inline constexpr int kJmdNotLoaded = 179;           // @P1 JMD file (shortened)
inline constexpr int kJobNamesNotCreated = 180;
inline constexpr int kJobNamesNotAdded = 181;       // @P1 how many
inline constexpr int kClipboardNotCreated = 182;
inline constexpr int kJmdNotWritten = 185;          // @P1 JMD file (shortened)

// Control jobs.
inline constexpr int kTemplateMissing = 146;    // @P1 section, @P2 file
inline constexpr int kScratchNotCreated = 147;  // @P1 scratch file
inline constexpr int kTargetNotCreated = 149;   // @P1 control job file
inline constexpr int kPrinterReloadSent = 150;
inline constexpr int kJmdNotOpened = 151;
inline constexpr int kNoPrinters = 152;
inline constexpr int kJobTableReloadSent = 154;
inline constexpr int kShutdownPending = 155;
inline constexpr int kShutdownSent = 156;
inline constexpr int kPauseSent = 157;
inline constexpr int kNoFreeControlName = 158;
inline constexpr int kResumeSent = 161;
inline constexpr int kServerNotRunning = 234;
inline constexpr int kServerRunning = 238;  // resume asked of a running server
inline constexpr int kServerPaused = 239;   // pause asked of a paused server
inline constexpr int kFormRequired = 256;
inline constexpr int kDataPathNotDirectory = 302;  // @P1 section, @P2 file

// Starting and stopping, signals.
inline constexpr int kCannotEnterDirectory = 145;  // @P1 directory
inline constexpr int kExePathUnusable = 189;       // @P1 section, @P2 file
inline constexpr int kServerStartFailed = 190;
inline constexpr int kEmailStartFailed = 201;
inline constexpr int kEmailStopSent = 231;
inline constexpr int kServerAlreadyRunning = 235;
inline constexpr int kEmailAlreadyRunning = 236;
inline constexpr int kEmailNotRunning = 237;
inline constexpr int kLauncherNotOpened = 298;   // @P1 launcher socket
inline constexpr int kSignalWaitFailed = 299;    // @P1 socket
inline constexpr int kSignalNotDelivered = 300;  // @P1 socket or event

}  // namespace px::msg
