#include "common/ini_profile.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <limits>
#include <memory>
#include <string>

#include "common/file_util.h"
#include "common/readable_file.h"
#include "common/text.h"

namespace px::ini {

namespace {

constexpr size_t kMaxFileNameLength = 255;
// A larger file is treated as one that cannot be read.
constexpr size_t kMaxFileSize = size_t{1} << 30;

struct CachedFile {
  std::string name;
  std::string text;  // empty when the file could not be read
};

struct ProfileState {
  std::deque<CachedFile> cache;  // in order of first use; references stay valid
  std::optional<std::string> default_name;
  std::string program_path;
  Delimiters delimiters;
};

ProfileState& state() {
  static ProfileState s;
  return s;
}

std::string own_program_path() {
  std::string& path = state().program_path;
  if (path.empty()) {
    char buffer[4096];
    ssize_t n = readlink("/proc/self/exe", buffer, sizeof buffer - 1);
    path = n > 0 ? std::string(buffer, static_cast<size_t>(n)) : "pxcntrl";
  }
  return path;
}

// The program path with every extension cut off and ".ini" added.
std::string ini_name_beside_program(const std::string& program) {
  std::string name = program;
  for (size_t i = name.size(); i-- > 0;) {
    char c = name[i];
    if (c == ':' || is_separator(c)) break;
    if (c == '.') name.resize(i);
  }
  return name + ".ini";
}

std::optional<std::string> search_for(const std::string& bare, const std::string& program) {
  std::vector<std::string> places{directory_part(program)};
  char cwd[4096];
  if (getcwd(cwd, sizeof cwd) != nullptr) places.emplace_back(cwd);
  places.emplace_back("/etc");
  if (const char* path = std::getenv("PATH")) {
    std::string_view rest(path);
    while (!rest.empty()) {
      size_t colon = rest.find(':');
      places.emplace_back(rest.substr(0, colon));
      rest = colon == std::string_view::npos ? std::string_view() : rest.substr(colon + 1);
    }
  }
  for (const std::string& place : places) {
    if (place.empty()) continue;
    std::string candidate = join_path(bare, place);
    if (access(candidate.c_str(), R_OK) == 0 && !is_directory(candidate)) return candidate;
  }
  return std::nullopt;
}

// The backup of an INI file: its real path (links resolved) + ".bak".
std::string resolved_backup_name(const std::string& name) {
  std::unique_ptr<char, decltype(&std::free)> real(::realpath(name.c_str(), nullptr), &std::free);
  return (real ? std::string(real.get()) : name) + ".bak";
}

std::string resolve(std::string_view file) {
  return file.empty() ? default_file() : std::string(file);
}

// The cached text of file, loading it on first use.
const std::string& load(std::string_view file) {
  std::string name = resolve(file);
  ProfileState& s = state();
  for (const CachedFile& node : s.cache) {
    if (iequals(node.name, name)) return node.text;
  }
  s.delimiters = Delimiters{};
  std::string text = read_whole_file(name, kMaxFileSize).value_or(std::string());
  // The text ends at its first NUL, as a C string of the file would.
  size_t nul = text.find('\0');
  if (nul != std::string::npos) text.resize(nul);
  s.cache.push_back({name, std::move(text)});
  return s.cache.back().text;
}

}  // namespace

std::string get_string(std::string_view section, std::string_view key,
                       std::string_view fallback, size_t size, std::string_view file) {
  const std::string& text = load(file);
  std::optional<std::string> value = find_value(text, section, key, size, state().delimiters);
  return value ? *value : cut_to_buffer(fallback, size);
}

KeyList get_key_list(std::string_view section, size_t size, std::string_view file) {
  const std::string& text = load(file);
  return find_keys(text, section, size, state().delimiters);
}

int get_int(std::string_view section, std::string_view key, int fallback,
            std::string_view file) {
  const std::string& text = load(file);
  std::optional<std::string> value = find_value(text, section, key, 100, state().delimiters);
  return value ? parse_int(*value) : fallback;
}

bool is_yes(std::string_view value) {
  return !value.empty() && (value[0] == 'y' || value[0] == 'Y');
}

// Growing the buffer by kKeyArrayStep until the list fits ends with every key
// of the section, so one scan with no bound gives the same list without
// reading a long section once per step.
std::vector<std::string> get_key_array(std::string_view section, std::string_view file) {
  return get_key_list(section, std::numeric_limits<size_t>::max(), file).keys;
}

FileResult write_string(std::string_view section, std::optional<std::string_view> key,
                        std::optional<std::string_view> value, std::string_view file,
                        const WriteOptions& options) {
  IniChange change{section, key, value};
  return write_changes(std::span<const IniChange>(&change, 1), file, options);
}

FileResult write_int(std::string_view section, std::string_view key, int value,
                     std::string_view file, const WriteOptions& options) {
  return write_string(section, key, std::to_string(value), file, options);
}

// The file is locked from before it is read to after the new one is in
// place, so concurrent writers of other keys never undo each other.
FileResult write_changes(std::span<const IniChange> changes, std::string_view file,
                         const WriteOptions& options) {
  // A change that could not be read back as written is refused before the
  // file is touched.
  for (const IniChange& change : changes) {
    if (unwritable_part(change, Delimiters{}) != Unwritable::kNone) {
      return FileResult{FileStep::kRefused, EINVAL};
    }
  }
  std::string name = resolve(file);
  drop_file(name);
  ProfileState& s = state();
  s.delimiters = Delimiters{};
  ReplaceOptions replace;
  if (options.keep_backup) replace.backup = resolved_backup_name(name);
  return rewrite_file(
      name,
      [&](const std::optional<std::string>& old_text) -> std::optional<std::string> {
        if (changes.empty()) return std::nullopt;
        std::string text = old_text ? rewrite_text(*old_text, changes[0], s.delimiters)
                                    : new_file_text(changes[0], s.delimiters);
        for (const IniChange& change : changes.subspan(1)) {
          text = rewrite_text(text, change, s.delimiters);
        }
        return text;
      },
      options.files ? *options.files : system_file_system(), replace);
}

void set_file(std::string_view name) {
  ProfileState& s = state();
  s.default_name = std::string(name.substr(0, kMaxFileNameLength));
  s.delimiters = Delimiters{};
  load(*s.default_name);
}

std::string default_file() {
  ProfileState& s = state();
  if (!s.default_name) {
    std::string program = own_program_path();
    std::string beside = ini_name_beside_program(program);
    s.default_name = search_for(file_part(beside), program).value_or(beside);
  }
  return *s.default_name;
}

void set_program_path(std::string_view path) {
  ProfileState& s = state();
  s.program_path = std::string(path);
  s.default_name.reset();
}

void drop_file(std::string_view name) {
  std::string resolved = resolve(name);
  std::deque<CachedFile>& cache = state().cache;
  for (auto it = cache.begin(); it != cache.end(); ++it) {
    if (iequals(it->name, resolved)) {
      cache.erase(it);
      return;
    }
  }
}

void flush_cache() { state().cache.clear(); }

Delimiters& delimiters() { return state().delimiters; }

}  // namespace px::ini
