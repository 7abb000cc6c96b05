#include "common/job_file.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "common/readable_file.h"
#include "common/text.h"

namespace px {

namespace {

// Reads one line piece the way fgets with a kJobLineBuffer buffer does: at
// most kJobLineBuffer - 1 characters, the LF included. The LF is removed, and
// a CR directly before it goes with it, so CR LF ends a line exactly as LF
// does. False at the end of the file.
bool read_piece(std::FILE* file, std::string& line) {
  line.clear();
  int c = 0;
  while (line.size() < kJobLineBuffer - 1) {
    c = getc_unlocked(file);
    if (c == EOF || c == '\n') break;
    if (c == '\r') {
      int next = getc_unlocked(file);
      if (next == '\n') break;
      if (next != EOF) ungetc(next, file);
    }
    line.push_back(static_cast<char>(c));
  }
  return c != EOF || !line.empty();
}

// True when line is the command "^" + word followed by a blank.
bool is_command(std::string_view line, std::string_view word) {
  return line.size() > word.size() + 1 && line[0] == '^' &&
         iequals(line.substr(1, word.size()), word) && line[word.size() + 1] == ' ';
}

// The text after "^" + word + blank; is_command must hold.
std::string_view argument(std::string_view line, std::string_view word) {
  return line.substr(word.size() + 2);
}

bool is_eject(std::string_view line) {
  if (line.size() < 6 || line[0] != '^' || !iequals(line.substr(1, 5), "eject")) return false;
  return line.size() == 6 || is_space(line[6]);
}

// The name of a "^field" line, or nullopt when the line starts no field.
std::optional<std::string_view> field_name(std::string_view line) {
  if (!is_command(line, "field")) return std::nullopt;
  std::string_view name = argument(line, "field");
  if (name.empty()) return std::nullopt;
  return name;
}

// The first word of text; words end at blank or TAB.
std::string first_word(std::string_view text) {
  size_t begin = 0;
  while (begin < text.size() && (text[begin] == ' ' || text[begin] == '\t')) ++begin;
  size_t end = begin;
  while (end < text.size() && text[end] != ' ' && text[end] != '\t') ++end;
  return std::string(text.substr(begin, end - begin));
}

bool is_data(const std::string& line) { return line.empty() || line[0] != '^'; }

void append_line(std::string& value, size_t& lines, const std::string& line) {
  if (lines++ > 0) value.push_back('\n');
  value += line;
}

// Reads the whole job file with includes, handing each line to visit until
// it returns false. 0, or kJobFileMissing when a file cannot be opened.
int scan(const std::string& name, const std::function<bool(const std::string&)>& visit) {
  JobLineReader reader(JobLineReader::MissingInclude::kFail);
  if (!reader.start(name)) return kJobFileMissing;
  std::string line;
  for (;;) {
    switch (reader.read(line)) {
      case JobLineReader::Status::kLine:
        if (!visit(line)) return 0;
        break;
      case JobLineReader::Status::kEnd:
        return 0;
      case JobLineReader::Status::kMissingInclude:
        return kJobFileMissing;
    }
  }
}

}  // namespace

// ---- JobLineReader ----

JobLineReader::JobLineReader(MissingInclude policy) : policy_(policy) {}

bool JobLineReader::start(const std::string& name) {
  files_.clear();
  FilePtr file = open_stream_for_reading(name);
  if (!file) return false;
  files_.push_back(std::move(file));
  return true;
}

JobLineReader::Status JobLineReader::read(std::string& line) {
  while (!files_.empty()) {
    if (!read_piece(files_.back().get(), line)) {
      files_.pop_back();
      continue;
    }
    if (!is_command(line, "file")) return Status::kLine;
    if (!include(line) && policy_ == MissingInclude::kFail) {
      files_.clear();
      return Status::kMissingInclude;
    }
  }
  return Status::kEnd;
}

// Pushes the file a "^file" line names. False only when it cannot be opened;
// a line met while the stack is full is skipped and counts as done.
bool JobLineReader::include(const std::string& line) {
  if (files_.size() >= kJobMaxOpenFiles) return true;
  std::string path(argument(line, "file"));
  if (path.find('\0') != std::string::npos) return false;
  FilePtr file = open_stream_for_reading(path);
  if (!file && path.find('\\') != std::string::npos) {
    // Paths written on Windows use "\" between directories.
    std::replace(path.begin(), path.end(), '\\', '/');
    file = open_stream_for_reading(path);
  }
  if (!file) return false;
  files_.push_back(std::move(file));
  return true;
}

// ---- JobFile: names and lookups ----

JobFile::JobFile(std::string default_name) : default_name_(std::move(default_name)) {}

void JobFile::open(const std::string& name) {
  name_ = cut_to_buffer(name, kJobFileNameLimit + 1);
  reader_.close();
  state_ = State::kFresh;
  pending_.reset();
  job_ = CachedName();
  form_ = CachedName();
  last_error_ = 0;
}

const std::string& JobFile::name() const { return name_.empty() ? default_name_ : name_; }

std::optional<std::string> JobFile::job_name() { return cached_name(job_, "job"); }

std::optional<std::string> JobFile::form_name() { return cached_name(form_, "form"); }

std::optional<std::string> JobFile::cached_name(CachedName& cache, std::string_view command) {
  last_error_ = 0;
  if (cache.known) return cache.value;
  std::optional<std::string> found;
  int rc = scan(name(), [&](const std::string& line) {
    if (is_command(line, command)) found = first_word(argument(line, command));
    return !found;
  });
  if (rc != 0) {
    last_error_ = rc;
    return std::nullopt;
  }
  cache.known = true;
  cache.value = std::move(found);
  return cache.value;
}

std::optional<std::string> JobFile::field_value(std::string_view wanted) {
  std::optional<std::string> value;
  size_t lines = 0;
  int rc = scan(name(), [&](const std::string& line) {
    if (!value) {
      std::optional<std::string_view> found = field_name(line);
      if (found && iequals(*found, wanted)) value.emplace();
      return true;
    }
    if (!is_data(line)) return false;
    append_line(*value, lines, line);
    return true;
  });
  last_error_ = rc;
  if (rc != 0) return std::nullopt;
  return value;
}

// ---- JobFile: iteration ----

int JobFile::next_field(Field& out) { return iterate(out, false); }

int JobFile::next_item(Field& out) { return iterate(out, true); }

int JobFile::iterate(Field& out, bool items) {
  out = Field();
  if (state_ == State::kDone) return 0;
  if (state_ == State::kFresh) {
    if (!reader_.start(name())) return kJobFileMissing;
    state_ = State::kReading;
  }
  std::string line;
  while (next_line(line)) {
    if (std::optional<std::string_view> name = field_name(line)) {
      out.name = *name;
      out.value = read_value();
      return 0;
    }
    if (!items) continue;
    if (is_command(line, "form")) {
      out.name = "^form";
      out.value = first_word(argument(line, "form"));
      return kItemForm;
    }
    if (is_eject(line)) {
      out.name = "^eject";
      return kItemEject;
    }
  }
  state_ = State::kDone;
  return 0;
}

// The pending command line first, then the next line of the files.
bool JobFile::next_line(std::string& line) {
  if (pending_) {
    line = std::move(*pending_);
    pending_.reset();
    return true;
  }
  return reader_.read(line) == JobLineReader::Status::kLine;
}

// Collects the data lines after a "^field" line; the command line that ends
// them is kept pending for the next call.
std::string JobFile::read_value() {
  std::string value;
  size_t lines = 0;
  std::string line;
  while (reader_.read(line) == JobLineReader::Status::kLine) {
    if (!is_data(line)) {
      pending_ = std::move(line);
      break;
    }
    append_line(value, lines, line);
  }
  return value;
}

// ---- XML detection ----

bool is_xml(std::FILE* stream) {
  long start = std::ftell(stream);
  std::string head(8, '\0');
  head.resize(std::fread(head.data(), 1, head.size(), stream));
  size_t bom = 0;
  if (head.starts_with("\xFF\xFE") || head.starts_with("\xFE\xFF")) {
    bom = 2;
  } else if (head.starts_with("\xEF\xBB\xBF")) {
    bom = 3;
  }
  if (start >= 0) std::fseek(stream, start + static_cast<long>(bom), SEEK_SET);
  return head.size() >= bom + 5 && iequals(std::string_view(head).substr(bom, 5), "<?xml");
}

}  // namespace px
