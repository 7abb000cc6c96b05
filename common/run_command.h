// Starting other programs from a command line, either fire-and-forget or
// waiting for the exit status.
#pragma once

#include <string_view>

namespace px {

// The process-wide start-minimised flag, initially 1; only its lowest bit is
// meaningful. Programs started here have no window state to set on this
// system, so the flag is only kept for the callers that set and read it.
void set_start_minimised(unsigned value);
unsigned start_minimised();

// The status for a program that could not be started, was killed by a signal,
// or whose status could not be read. A program that exits with 255 looks the
// same.
inline constexpr int kRunFailed = 255;

// Splits command_line into words and starts the first word, searched on PATH,
// with the other words as its arguments; no shell is involved. The child
// inherits the environment, the current directory and every descriptor not
// marked close-on-exec.
//
// Without wait: 0 when the child was started, else kRunFailed. Such children
// are not waited for here; each later call of run_command collects the ones
// that have finished, so they do not linger as zombies.
//
// With wait: blocks until the child ends and returns its exit status, or
// kRunFailed.
int run_command(std::string_view command_line, bool wait);

// run_command without waiting.
int launch(std::string_view command_line);

// run_command with waiting.
int run_and_wait(std::string_view command_line);

}  // namespace px
