// The simulator's numbered messages, its own log, and the lines it writes
// into an instance's status and log files.
//
// Texts are messages of the console's catalogue (section Messages of the INI
// file the simulator runs with); code passes only numbers and arguments.
// Status and log lines have the server's form "<yymmdd HH:MM:SS> <program>:
// <text>", so a status line has three words before its text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace px::sim {

// The simulator's own reports (its log, standard error by default).
inline constexpr int kMsgBadArgument = 1200;
inline constexpr int kMsgNotInstalled = 1201;
inline constexpr int kMsgSettingMissing = 1202;
inline constexpr int kMsgAgentSettingMissing = 1203;
inline constexpr int kMsgListenFailed = 1204;
inline constexpr int kMsgSocketInUse = 1205;
inline constexpr int kMsgDatagramPortFailed = 1206;
inline constexpr int kMsgEventFailed = 1207;
inline constexpr int kMsgServing = 1208;
inline constexpr int kMsgDatagramReceived = 1209;
inline constexpr int kMsgDatagramNotUnderstood = 1210;
inline constexpr int kMsgLauncherUnknown = 1211;
inline constexpr int kMsgStopping = 1212;
inline constexpr int kMsgStatusNotWritten = 1213;

// Lines of the instances' own logs and status files.
inline constexpr int kMsgServerStarted = 1220;
inline constexpr int kMsgServerRunning = 1221;  // the running status text
inline constexpr int kMsgControlJobRead = 1222;
inline constexpr int kMsgControlJobBad = 1223;
inline constexpr int kMsgServerPaused = 1224;
inline constexpr int kMsgServerResumed = 1225;
inline constexpr int kMsgJobTableReloaded = 1226;
inline constexpr int kMsgPrinterReloaded = 1227;
inline constexpr int kMsgServerShutDown = 1228;
inline constexpr int kMsgTransactionCollected = 1229;
inline constexpr int kMsgTransactionBad = 1230;
inline constexpr int kMsgAgentStarted = 1231;
inline constexpr int kMsgMailPassed = 1232;
inline constexpr int kMsgStopFileFound = 1233;
inline constexpr int kMsgAgentStopped = 1234;
inline constexpr int kMsgMailBad = 1235;

// Program names in the instances' status and log lines.
inline constexpr std::string_view kServerProgram = "pxserver";
inline constexpr std::string_view kAgentProgram = "pxemio";

// Message n with its arguments expanded, as logged: "[n]text".
std::string message_line(int n, const std::vector<std::string>& args = {});

// The same without the "[n]" number prefix, as status lines show it.
std::string message_body(int n, const std::vector<std::string>& args = {});

// Shows message n with its arguments in the simulator's own log.
void report(int n, const std::vector<std::string>& args = {});

// "<yymmdd HH:MM:SS> <program>: <text>" stamped with the current local time.
std::string stamped(std::string_view program, std::string_view text);

// Makes stamped(program, text) the whole content of the status file, replacing
// it in one step so that a reader never sees half a line. False when the
// file cannot be written.
bool write_status_line(const std::string& path, std::string_view program, std::string_view text);

// Appends stamped(program, text) to a log file; an empty path logs nothing.
bool append_log_line(const std::string& path, std::string_view program, std::string_view text);

}  // namespace px::sim
