// Reading the JMD text file (format in jmd/jmd_schema.h): lines, tokens,
// record lines into records, and the whole file with its header check.
// Storing the records is the caller's: read_jmd hands each one over and stops
// the moment one is refused.
#pragma once

#include <cstdio>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "jmd/jmd_report.h"
#include "jmd/jmd_schema.h"

namespace px::jmd {

// The JMD's lines as the reader takes them: pieces of at most kLineLimit
// characters, a newline counting as one character of the piece it ends and
// CR LF as one newline, without the newline, each cut at its first NUL.
class LineSource {
 public:
  // Reads an open file from its current position; the caller closes it.
  explicit LineSource(std::FILE* file);
  // Reads text held in memory, which must outlive the source.
  explicit LineSource(std::string_view text);

  // The next line; false at the end of the input (a read error ends it
  // too, as it ends fgets). The view is valid until the next call.
  bool next(std::string_view& line);

 private:
  // Makes at least kLineLimit + 1 bytes available unless the input ends first.
  void fill();

  std::FILE* file_ = nullptr;
  std::vector<char> buffer_;
  std::string_view data_;  // the unread bytes
  bool at_end_ = false;
};

// The tokens of one line.
class Tokenizer {
 public:
  explicit Tokenizer(std::string_view line) : line_(line) {}

  // Reads the next token, keeping at most limit characters and consuming the
  // rest; cut tells whether characters were dropped. False when the line has
  // no further token (token is then empty). The token views the line, or the
  // tokenizer's own copy when quotes had to be taken out; it is valid until
  // the next call.
  bool next(std::string_view& token, size_t limit, bool& cut);

 private:
  std::string_view line_;
  size_t pos_ = 0;
  std::string scratch_;
};

// Fills record (the table's record size) with the fields of one record line
// after its line key: Deleted becomes kNotDeleted and every other field is
// overwritten. A value cut to its field is reported with kMsgValueCut.
void parse_record_fields(Tokenizer& tokens, const TableSchema& schema, std::span<char> record,
                         Reporter& reporter);

// The text of message kMsgRecordRefused for a record: its line key and first
// four values ("!m %s %d" for managed memory).
std::string refused_record_text(int slot, std::span<const char> record);

// Stores one record into table slot; false when the table refuses it.
using AddRecord = std::function<bool(int slot, std::span<const char> record)>;

// Reads a whole JMD: the header line (kMsgBadHeader with path when the input
// is empty or the header is wrong), the trace "jmd.c: jmd file opened and
// verified", then every record line, handed to add in file order. A refused
// record is reported with kMsgRecordRefused and ends the read. True when
// every record was stored.
bool read_jmd(LineSource& lines, const std::string& path, Reporter& reporter,
              const AddRecord& add);

}  // namespace px::jmd
