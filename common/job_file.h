// Reader for "^"-command job files: transaction files, control jobs and
// response files all share this line syntax.
//
// File format
// -----------
// Text, one line per record, ended by LF; a CR directly before the LF is
// dropped, so files written with CR LF read the same. Lines are read through
// a 1,024-character buffer: a longer line arrives as several lines of at most
// 1,023 characters each (the LF, or CR LF, counts as one character of the
// piece it ends), as fgets with such a buffer would deliver it. Bytes are
// kept as read, NUL included.
//
// A line that starts with "^" is a command; the command word is matched
// without regard to case and, where the command takes an argument, is
// followed by one blank. Every other line is data.
//
//   ^job NAME ...    job header; NAME is the first word after the command
//   ^form NAME ...   form name, found the same way; starts a form
//   ^field NAME      starts a field; NAME is the rest of the line
//   ^eject           page eject
//   ^file PATH       includes PATH (the line from its 7th character on)
//   ^anything else   ignored
//
// Words are separated by blanks and TABs; leading ones are skipped. A "^field"
// line with nothing after the blank names no field and is ignored everywhere,
// since an empty name is how iteration reports its end.
//
// A field's value is its data lines joined by single LFs, with no LF after
// the last; an empty data line adds an empty line. The value ends at the next
// "^" line or at the end of the data.
//
// Includes: the PATH is used as written; a relative path is taken from the
// current directory, not from the including file. Included lines stand in
// place of the "^file" line, so a field may continue across the end of an
// included file. At most ten files are open at once (the job file and nine
// nested includes); a "^file" line met while ten are open is skipped. The same
// limit applies to whole-file scans (job_name, form_name, field_value), which
// keeps a file that includes itself finite and lets scans and iteration see
// the same lines. An include that cannot be opened is skipped by iteration but
// ends a whole-file scan with kJobFileMissing.
#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/readable_file.h"

namespace px {

// Result codes.
inline constexpr int kJobFileMissing = -602;  // the job file cannot be opened
inline constexpr int kItemEject = -607;       // next_item met "^eject"
inline constexpr int kItemForm = -608;        // next_item met "^form"

// Limits of the reader.
inline constexpr size_t kJobFileNameLimit = 511;  // characters of a job file name
inline constexpr size_t kJobLineBuffer = 1024;    // a line piece holds one less
inline constexpr size_t kJobMaxOpenFiles = 10;    // job file plus nested includes

// One field (or, from next_item, one form or eject).
struct Field {
  std::string name;
  std::string value;
};

// Delivers the lines of a job file with its includes expanded. Used by
// JobFile; usable alone for tools that want the raw lines.
class JobLineReader {
 public:
  enum class MissingInclude { kSkip, kFail };
  enum class Status { kLine, kEnd, kMissingInclude };

  explicit JobLineReader(MissingInclude policy);

  // Opens the job file as the only file of the stack, closing any others.
  // False when it cannot be opened.
  bool start(const std::string& name);

  // Reads the next line (LF and a CR before it removed). kEnd once every
  // file is read; kMissingInclude (stack closed) when an include cannot be
  // opened under MissingInclude::kFail.
  Status read(std::string& line);

  // Closes every open file.
  void close() { files_.clear(); }

  // True while a file is open.
  bool active() const { return !files_.empty(); }

 private:
  using FilePtr = ReadStream;

  bool include(const std::string& line);

  MissingInclude policy_;
  std::vector<FilePtr> files_;
};

// A job file: its names, field lookups and in-order iteration. Lookups and
// iteration are independent: a lookup reads the file afresh and never moves
// the iteration.
class JobFile {
 public:
  // default_name is read until open() names another file.
  explicit JobFile(std::string default_name);

  // Selects the job file (cut to kJobFileNameLimit characters; an empty name
  // selects the default again), closes the iteration's files, forgets the
  // pending line and the cached names.
  void open(const std::string& name);

  // The name of the file in use.
  const std::string& name() const;

  // The first word after the first "^job " (or "^form ") line, or nullopt
  // when there is none or the file cannot be read (see last_error). The
  // answer of a scan that could read its files is cached until open().
  std::optional<std::string> job_name();
  std::optional<std::string> form_name();

  // The value of the first field whose name equals wanted without regard to
  // case, or nullopt (see last_error).
  std::optional<std::string> field_value(std::string_view wanted);

  // Outcome of the last job_name, form_name or field_value: 0, or
  // kJobFileMissing when the job file or one of its includes could not be
  // opened.
  int last_error() const { return last_error_; }

  // Iteration. next_field returns 0 with the next field in out, or 0 with an
  // empty out.name at the end (and again on every later call until open());
  // kJobFileMissing when the job file cannot be opened (the next call
  // retries). next_item also reports "^form" lines (kItemForm, out.name
  // "^form", out.value the form name) and "^eject" lines (kItemEject,
  // out.name "^eject", empty value).
  int next_field(Field& out);
  int next_item(Field& out);

 private:
  struct CachedName {
    bool known = false;
    std::optional<std::string> value;
  };
  enum class State { kFresh, kReading, kDone };

  std::optional<std::string> cached_name(CachedName& cache, std::string_view command);
  int iterate(Field& out, bool items);
  bool next_line(std::string& line);
  std::string read_value();

  std::string default_name_;
  std::string name_;
  JobLineReader reader_{JobLineReader::MissingInclude::kSkip};
  State state_ = State::kFresh;
  std::optional<std::string> pending_;
  CachedName job_;
  CachedName form_;
  int last_error_ = 0;
};

// True when the stream holds XML: after an optional byte-order mark (FF FE,
// FE FF or EF BB BF) come the characters "<?xml" in any case. Reads up to
// eight bytes from the current position, then leaves the stream just after
// the byte-order mark, or where it started when there is none. The stream
// must be seekable.
bool is_xml(std::FILE* stream);

}  // namespace px
