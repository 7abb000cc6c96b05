// Numbered messages, the log, the trace and the worst message of the run.
//
// Every text the programs log or show is a numbered message kept in section
// Messages of the program's INI file under key "Msg<n>" (n without its sign):
// a severity level, one blank, and the text. Texts are loaded once and cached
// with their level; with the number prefix on (the default) a text is stored
// as "[n]text". Emitting a message expands its "@" words, keeps it as the
// worst message when its level is the highest below 40 so far, and writes a
// stamped line "<date> <program>: <text>" to the log when its level reaches
// the verbosity. The state is process-wide, set up once by init.
#pragma once

#include <string>
#include <string_view>

namespace px::messages {

// Level of the placeholder for a message the INI file does not have, and of
// the text that replaces one that could not be stored.
inline constexpr int kMissingLevel = 30;
// Messages from this level up never become the worst message.
inline constexpr int kWorstLimit = 40;
// Message emitted to the last-message file when the log cannot be written.
inline constexpr int kLogUnavailable = -6;

// Clears the state (number prefix on, program name and log name kept when
// already set), records the program name and reads LogFile, TraceFile,
// Verbosity and MsgDateStampFormat from section Options, then Plexar.
void init(std::string_view program_name);

// Forgets every message, name and setting.
void reset();

void set_verbosity(int level);
int verbosity();
// "stdout" and "stderr", in any case, name the standard streams.
void set_log_file(std::string_view name);
const std::string& log_file();
void set_trace_file(std::string_view name);
const std::string& trace_file();
// A strftime pattern; empty means "%y%m%d %H:%M:%S".
void set_date_format(std::string_view pattern);
const std::string& date_format();
void set_program_name(std::string_view name);
const std::string& program_name();
void set_number_prefix(bool on);
bool number_prefix();
// When set, every message of level 0 or more is also written to this file,
// replacing what it held.
void set_last_message_file(std::string_view name);
// Skips the waits between log retries (set while the program shuts down).
void set_shutting_down(bool on);
// When on, a log file that cannot be opened is given up at once: no retries
// and no panic file; the notice "Redirecting logfile output to stderr." goes
// to standard error, so standard output keeps only the program's own output.
// For programs run from scripts (pxctl). Kept by init, cleared by reset.
void set_quick_log_fallback(bool on);

// The text of message n (loaded and cached on first use); sets the current
// level to its level.
std::string message_text(int n);
// Message n's text without its "[n]" number, for labels, titles, buttons
// and list rows; sets the current level as message_text does.
std::string message_label(int n);
// The level of the message most recently looked up.
int current_level();

// Logs raw, the text already looked up for message n, expanded, at the
// current level.
void emit(int n, std::string_view raw);
// Logs a text that is not a numbered message when level reaches the
// verbosity.
void log_line(int level, std::string_view text);
// Looks up message n, expands it and emits it; returns the expanded text.
std::string show(int n);

// The worst message's number (0 when none) and its text.
int worst_message(std::string& text);

// "<date> <program>: <text>" with the date stamped in the date format.
std::string stamped_line(std::string_view text);

// Appends a stamped line to the trace file, if one is set and has not failed.
void trace(std::string_view text);

// Prints the lines of section Usage (keys Usage1, Usage2, ...), expanded, on
// standard output; returns how many there were.
int print_usage();

}  // namespace px::messages
