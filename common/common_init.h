// The start of every program: the command line is rebuilt and split again
// (expanding "@" indirect files), the common "-a" options are taken, and the
// INI file, log, trace and response file are set up.
//
// Options are recognised anywhere on the line by their first four characters
// without regard to case, with the value written directly behind them; a later
// one overrides an earlier one. They are applied in this order:
//   -asn<name>     server name (63 characters)
//   -aii<file>     the INI file
//   LogFile in Plexar, then -all<file>  the log ("stdout"/"stderr" allowed)
//   MsgDateStampFormat, TraceFile, RspFile (default "plexar.rsp") and
//   RspFileFormat (default "field") in Plexar
//   -arf<format>   response format ("basic" in any case, else field)
//   -arx<file>     response file
//   -adt<number>   the integer option
//   -aro           read-only mode (no value; see read_only_option)
//   LogBuild in Plexar: when set and not "no", the build time is logged once.
// The options stay in the argument vector.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace px {

// Rebuilds args through the command-line rules and sets up the runtime.
// Returns 0, or kOutOfMemory / kIndirectFileFailed after reporting it; args
// are then left as they were.
int common_init(std::vector<std::string>& args);

// common_init for a program whose own words start at verbatim_from: those
// arguments are kept exactly as given (empty ones, quotes and "@" inside them
// included) and only the ones before them are rebuilt and expanded. The "-a"
// options among them still count.
int common_init(std::vector<std::string>& args, size_t verbatim_from);

// The text reported for an initialisation failure: key "Msg<code>" (with its
// sign) of section Messages when present, otherwise the built-in text.
std::string init_error_text(int code);

// The "-asn" server name, else ServerName of section PxServer (default
// "PXSRVR").
std::string server_name();

// For a program's outermost catch of std::bad_alloc: shows kOutOfMemory as
// "[-603]text" on stderr and logs it. Never throws.
void report_out_of_memory() noexcept;

// The "-adt" value; 0 when not given.
int integer_option();

// True when "-aro" was on the command line: the console only looks.
bool read_only_option();

// True for the common option names "-asn", "-aii", "-all", "-arf", "-arx",
// "-adt" and "-aro" at the start of arg, in any case.
bool is_common_option(std::string_view arg);

}  // namespace px
