// The INI profile engine: the program's own INI file, a cache of whole files,
// lookups of strings, integers and key lists, and rewrites of single keys.
//
// Settings are read only through this engine. Files are cached whole on first
// use and not read again until their cache entry is dropped (a write drops it),
// so another program's change is not seen until then. A file that cannot be
// read is cached as empty and answers every lookup with its default.
//
// An empty file argument means the default INI file. The engine's state (the
// cache, the default file name, the live delimiter set) is process-wide and
// used from one thread.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/file_replace.h"
#include "common/ini_syntax.h"

namespace px::ini {

// The value of key in section, or fallback when the key is absent; cut to
// size - 1 characters. An empty value that is present is returned as empty.
std::string get_string(std::string_view section, std::string_view key,
                       std::string_view fallback, size_t size, std::string_view file = {});

// The keys of section: the names in order and the characters they take as a
// NUL-separated list; used is -1 when they do not fit in size - 1 characters.
KeyList get_key_list(std::string_view section, size_t size, std::string_view file = {});

// The value as a leading decimal integer (atoi rules), or fallback when the
// key is absent.
int get_int(std::string_view section, std::string_view key, int fallback,
            std::string_view file = {});

// True when the value of a Yes/No switch says yes: it begins with "y" or
// "Y". Every Yes/No switch of every INI file is read by this one rule, and
// written "Yes" or "No".
bool is_yes(std::string_view value);

// Every key of section (the list that buffers grown 10,240 characters at a
// time until it fits would hold), read in one scan.
std::vector<std::string> get_key_array(std::string_view section, std::string_view file = {});

// What a rewrite does beside the change.
struct WriteOptions {
  // Keep the file as it was before the rewrite as NAME.bak (NAME the file's
  // real path), replacing the previous backup.
  bool keep_backup = false;
  // The file steps, when not the real ones (tests fail them).
  FileSystem* files = nullptr;
};

// Sets key to value in section and rewrites the file; no value deletes the
// key, no key deletes every entry of the section. A missing file is created.
// The rewrite is crash-safe and locked against other writers
// (common/file_replace.h); on failure the file is left as it was and the
// result names the failed step (failure_message gives its message). A change
// that could not be read back as written (see unwritable_part) is refused
// with step kRefused before the file is touched.
FileResult write_string(std::string_view section, std::optional<std::string_view> key,
                        std::optional<std::string_view> value, std::string_view file = {},
                        const WriteOptions& options = {});

// write_string with the value formatted as a decimal integer.
FileResult write_int(std::string_view section, std::string_view key, int value,
                     std::string_view file = {}, const WriteOptions& options = {});

// Several changes made in order in one locked rewrite, so a save of many keys
// is one step for readers and keeps one backup. No change writes nothing.
FileResult write_changes(std::span<const IniChange> changes, std::string_view file = {},
                         const WriteOptions& options = {});

// Makes name (cut to 255 characters) the default INI file, resets the
// delimiters and loads the file.
void set_file(std::string_view name);

// The default INI file, worked out on first use: the program's path with its
// extension replaced by ".ini", looked for by its bare name in the program's
// directory, the current directory, /etc and each PATH entry; the path beside
// the program when none has it.
std::string default_file();

// Changes the program path the default INI file is worked out from. pxctl uses
// it to share the console's INI file.
void set_program_path(std::string_view path);

// Forgets one file's cached text (the default file when name is empty).
void drop_file(std::string_view name = {});

// Forgets every cached file.
void flush_cache();

// The live delimiter set. Callers may change it; it is reset to the defaults
// whenever a file is loaded into the cache or rewritten.
Delimiters& delimiters();

}  // namespace px::ini
