// Small path and file operations shared by the whole runtime.
//
// Paths are 8-bit strings. The separator written is "/"; both "/" and "\" are
// recognised when reading, so values taken from INI files made on other
// systems still split where they should.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>

#include "common/unique_fd.h"

namespace px {

// True for "/" and "\".
bool is_separator(char c);

// Appends "/" unless the path is empty or already ends in a separator. This is
// the directory normalisation used before a file name is appended.
std::string add_separator(std::string_view path);

// Removes every trailing separator.
std::string strip_separators(std::string_view path);

// Returns directory + separator (added only when missing) + name. An empty
// directory leaves the name unchanged.
std::string join_path(std::string_view name, std::string_view directory);

// The path up to and including its last separator; empty when it has none.
std::string directory_part(std::string_view path);

// The path after its last separator.
std::string file_part(std::string_view path);

// The path up to its first "\".
std::string cut_at_backslash(std::string_view path);

// Appends "." + ext only when the last path component has no extension yet.
std::string add_extension(std::string_view name, std::string_view ext);

// The name without its extension (cut at the extension's dot).
std::string strip_extension(std::string_view name);

// Up to three characters of the last component's extension; empty when none.
std::string extension(std::string_view name);

// True when the path starts with a separator or contains ":".
bool is_absolute(std::string_view path);

// True when the path names an existing directory.
bool is_directory(const std::string& path);

// Result codes of check_short_name.
inline constexpr int kShortNameOk = 0;
inline constexpr int kShortNameBadChar = -1;
inline constexpr int kShortNameTooLong = -2;

// Checks the last component as an 8.3 name: kShortNameTooLong when the base
// exceeds 8 or the extension 3 characters, kShortNameBadChar when a character
// is below 33, is one of "/:?*<>|" or is DEL (127); else kShortNameOk.
// Characters are checked first: a bad character wins over a length.
int check_short_name(std::string_view name);

// Moves a file, replacing the target. On the default platform branch this is
// rename(2), copying and unlinking across file systems. On the classic branch
// the target is deleted first (so a failed move loses the target).
bool move_file(const std::string& from, const std::string& to);

// Copies a file, overwriting an existing target.
bool copy_file(const std::string& from, const std::string& to);

// The system's temporary directory: TMPDIR, else TMP, else "/tmp"; "." when
// none of those is a directory.
std::string temp_directory();

// A new temporary file name "<3 prefix chars><hex>.tmp" in directory (or the
// temporary directory when empty). The prefix needs three characters, else
// "PXX" is used. The file is created exclusively and deleted at once, so the
// name is free but not reserved. nullopt when no name could be made.
std::optional<std::string> temp_name(std::string_view directory, std::string_view prefix);

// temp_name with its extension replaced by ext.
std::optional<std::string> temp_name_with_extension(std::string_view directory,
                                                    std::string_view prefix,
                                                    std::string_view ext);

// A file name that does not exist yet: the first two prefix characters (or
// "px" when the prefix is shorter), then the process id, seconds and
// milliseconds in upper-case hex, then a letter a..z; ext added when given,
// joined to directory when given. nullopt after 26 names that all exist.
std::optional<std::string> unique_name(std::string_view directory, std::string_view prefix,
                                       std::string_view ext);

// Opens path with open(2), adding O_CLOEXEC (no child program inherits it)
// and O_NOCTTY (a terminal never becomes the controlling one), and opens
// again when a signal interrupts the call. Every open of the runtime goes
// through here. An invalid descriptor with errno set when it fails.
UniqueFd open_file(const std::string& path, int flags, mode_t mode = 0);

// Reads a whole file in binary; nullopt when it cannot be opened or read.
// Only regular files are read (see readable_file.h).
std::optional<std::string> read_file(const std::string& path);

// Writes all of data to fd, going on after a short or interrupted write;
// 0, or the errno of the write that failed.
int write_all(int fd, std::string_view data);

// Writes text to path, made when missing (0666 less the umask): appended
// with append set, else replacing what the file held. The open never
// waits: a FIFO nobody reads fails at once instead of blocking the program;
// one with a reader, or a device, is written as it is. False when path
// cannot be opened or the text not wholly written.
bool write_output_file(const std::string& path, std::string_view text, bool append);

}  // namespace px
