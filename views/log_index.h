// The index of a log's lines that lets a log of any size open at once and
// page cheaply: the line count, and the byte offset at which every
// hundredth line begins (checkpoint k: line 100 x k). Offsets are 64-bit, so
// logs beyond 4 GiB index and page correctly.
//
// A line ends at "\n"; a last line without one counts too. Lines are never
// cut at a length limit, so a long line is one line.
//
// A growing log is indexed incrementally: update() reads only what was
// appended since, through the descriptor opened when the index was built
// (the log's path is only looked up to tell whether it still names that
// file). A log that shrank, was replaced by another file (another
// inode) or whose first bytes changed (rewritten in place) is indexed again
// from its start. The index only reads the log.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "common/unique_fd.h"
#include "views/line_reader.h"

namespace px::views {

inline constexpr int64_t kCheckpointLines = 100;

class LogIndex {
 public:
  explicit LogIndex(std::string path) : path_(std::move(path)) {}

  const std::string& path() const { return path_; }

  // Indexes the log from its start; false when it does not open.
  bool build();

  enum class Change {
    kNone,       // nothing appended
    kGrew,       // lines were appended and indexed
    kRestarted,  // truncated or replaced: indexed again from its start
    kFailed,     // the log does not open now; the index is as it was
  };
  // Brings the index up to date with the log as it is now.
  Change update();

  // Lines in the log when it was last indexed.
  int64_t line_count() const;
  // Those of them that end with a line feed (a last line may still be
  // being written).
  int64_t complete_lines() const { return line_ends_; }
  // Checkpoint k is the offset where line 100 x k begins, for each such
  // line that exists.
  std::span<const uint64_t> checkpoints() const;
  // Bytes of the log indexed so far.
  uint64_t indexed_size() const { return scanned_; }

  // A reader at the start of line (counted from 0): the nearest checkpoint,
  // then at most 99 lines skipped. nullopt when the log does not open or the
  // line is not in the index.
  std::optional<LineReader> open_at_line(int64_t line) const;

  // Up to count lines from line first (fewer at the end of the log); nullopt
  // when the log does not open.
  std::optional<std::vector<std::string>> read_lines(int64_t first, int64_t count) const;

 private:
  void reset();
  // Reads the log from offset scanned_ up to its size in info (its status
  // as seen just before), counting lines.
  bool scan(const struct stat& info);
  // Makes room for the checkpoints of the log up to size bytes.
  void reserve_checkpoints(uint64_t size);
  // True when the log still begins with the bytes head_ holds.
  bool same_head() const;
  // Moves scanned_ past a hole; false when the rest of the log is one.
  bool skip_hole();
  void scan_block(const char* data, size_t size, uint64_t base);

  std::string path_;
  UniqueFd fd_;  // the log as opened by build()
  dev_t device_ = 0;
  ino_t inode_ = 0;
  std::string head_;       // the log's first bytes when indexed
  uint64_t scanned_ = 0;   // bytes indexed
  int64_t line_ends_ = 0;  // "\n" seen
  uint64_t last_line_start_ = 0;
  std::vector<uint64_t> starts_;    // offset of line 100 x k, for 100 x k <= line_ends_
  std::unique_ptr<char[]> buffer_;  // the scan's read buffer, made on first use
};

}  // namespace px::views
