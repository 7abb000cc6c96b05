#include "views/log_index.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "common/readable_file.h"
#include "common/unique_fd.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace px::views {

namespace {

constexpr size_t kScanBuffer = 256 << 10;  // fits the second-level cache
constexpr size_t kHeadBytes = 64;

// Reads up to size bytes at offset, retrying interrupted reads; the count
// read, or -1.
ssize_t read_at(int fd, char* data, size_t size, uint64_t offset) {
  for (;;) {
    ssize_t n = ::pread(fd, data, size, static_cast<off_t>(offset));
    if (n >= 0 || errno != EINTR) return n;
  }
}

std::string read_head(int fd, size_t size) {
  std::string head(size, '\0');
  ssize_t n = read_at(fd, head.data(), size, 0);
  head.resize(n > 0 ? static_cast<size_t>(n) : 0);
  return head;
}

#if defined(__x86_64__)
// One bit per byte of the 64 at data that is a line feed: with 16-byte
// compares everywhere, with 32-byte ones where the processor has AVX2.
inline uint64_t line_feed_mask_sse2(const char* data) {
  const __m128i feed = _mm_set1_epi8('\n');
  uint64_t mask = 0;
  for (size_t part = 0; part < 4; ++part) {
    __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data + 16 * part));
    uint64_t bits = static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, feed)));
    mask |= bits << (16 * part);
  }
  return mask;
}

__attribute__((target("avx2"))) inline uint64_t line_feed_mask_avx2(const char* data) {
  const __m256i feed = _mm256_set1_epi8('\n');
  __m256i low = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(data));
  __m256i high = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(data + 32));
  uint64_t low_bits = static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(low, feed)));
  uint64_t high_bits = static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(high, feed)));
  return low_bits | (high_bits << 32);
}

// Counts the line feeds of [data, data + size) 128 bytes at a time
// (the bytes after the last whole block are left; returns the bytes done).
// Most blocks only add their count: the bits are walked one by one just in
// the block that reaches the next checkpoint, so the loop's one branch goes
// the other way once per hundred lines, whatever blocks have line feeds.
// The counts live in locals while the loop runs.
template <uint64_t (*kMask)(const char*)>
inline __attribute__((always_inline)) size_t scan_blocks(const char* data, size_t size,
                                                         uint64_t base, int64_t& line_ends,
                                                         std::vector<uint64_t>& starts) {
  int64_t ends = line_ends;
  int64_t until_checkpoint = kCheckpointLines - ends % kCheckpointLines;
  // Notes each line feed of mask (the block at data + at) one by one.
  auto walk = [&](uint64_t mask, size_t at) {
    for (; mask != 0; mask &= mask - 1) {
      if (++ends % kCheckpointLines == 0) {
        starts.push_back(base + at + static_cast<uint64_t>(__builtin_ctzll(mask)) + 1);
      }
    }
  };
  size_t i = 0;
  // Two blocks a turn: one compare and branch per 128 bytes.
  for (; i + 128 <= size; i += 128) {
    uint64_t first = kMask(data + i);
    uint64_t second = kMask(data + i + 64);
    int64_t found = __builtin_popcountll(first) + __builtin_popcountll(second);
    if (found < until_checkpoint) [[likely]] {
      until_checkpoint -= found;
      ends += found;
      continue;
    }
    walk(first, i);
    walk(second, i + 64);
    until_checkpoint = kCheckpointLines - ends % kCheckpointLines;
  }
  for (; i + 64 <= size; i += 64) walk(kMask(data + i), i);
  line_ends = ends;
  return i;
}

// The loop compiled whole for each instruction set, so that the compares
// are inlined into it (a call per block into AVX2 code costs more than the
// compare itself).
__attribute__((target("avx2,popcnt"))) size_t scan_blocks_avx2(const char* data, size_t size,
                                                               uint64_t base, int64_t& line_ends,
                                                               std::vector<uint64_t>& starts) {
  return scan_blocks<line_feed_mask_avx2>(data, size, base, line_ends, starts);
}

size_t scan_blocks_sse2(const char* data, size_t size, uint64_t base, int64_t& line_ends,
                        std::vector<uint64_t>& starts) {
  return scan_blocks<line_feed_mask_sse2>(data, size, base, line_ends, starts);
}

bool has_avx2() {
  static const bool avx2 = __builtin_cpu_supports("avx2");
  return avx2;
}
#endif

}  // namespace

void LogIndex::reset() {
  fd_.reset();
  device_ = 0;
  inode_ = 0;
  head_.clear();
  scanned_ = 0;
  line_ends_ = 0;
  last_line_start_ = 0;
  starts_.assign(1, 0);
}

void LogIndex::scan_block(const char* data, size_t size, uint64_t base) {
  size_t i = 0;
#if defined(__x86_64__)
  i = has_avx2() ? scan_blocks_avx2(data, size, base, line_ends_, starts_)
                 : scan_blocks_sse2(data, size, base, line_ends_, starts_);
#endif
  for (; i < size; ++i) {
    if (data[i] != '\n') continue;
    if (++line_ends_ % kCheckpointLines == 0) starts_.push_back(base + i + 1);
  }
  // Where the last line begins, from the block's last line feed: found
  // from the end, so it costs a few bytes, not a pass.
  if (const void* last = ::memrchr(data, '\n', size)) {
    last_line_start_ = base + static_cast<uint64_t>(static_cast<const char*>(last) - data) + 1;
  }
}

// Holes of a sparse log hold zero bytes and so no line ends: the scan
// steps over them instead of reading them.
bool LogIndex::skip_hole() {
  off_t data = ::lseek(fd_.get(), static_cast<off_t>(scanned_), SEEK_DATA);
  if (data >= 0) {
    scanned_ = std::max(scanned_, static_cast<uint64_t>(data));
    return true;
  }
  struct stat info {};
  if (errno != ENXIO || ::fstat(fd_.get(), &info) != 0) return true;  // read on as usual
  scanned_ = std::max(scanned_, static_cast<uint64_t>(info.st_size));
  return false;  // nothing but a hole up to the end
}

// Room for the checkpoints up to size, at the lines' usual length so far,
// so that the vector grows at most once per scan, and then at least
// doubles (growing to the exact need each time would copy it every time).
void LogIndex::reserve_checkpoints(uint64_t size) {
  if (line_ends_ == 0) return;
  uint64_t line_bytes = std::max<uint64_t>(1, scanned_ / static_cast<uint64_t>(line_ends_));
  size_t need =
      starts_.size() + static_cast<size_t>((size - scanned_) / (line_bytes * kCheckpointLines)) + 1;
  if (need > starts_.capacity()) starts_.reserve(std::max(need, 2 * starts_.capacity()));
}

bool LogIndex::scan(const struct stat& info) {
  const uint64_t size = static_cast<uint64_t>(info.st_size);
  // Only a file with fewer blocks than bytes can have holes to step over.
  const bool sparse = static_cast<uint64_t>(info.st_blocks) * 512 < size;
  // Kept between scans: a fresh buffer would cost page faults on every
  // small extension.
  if (!buffer_) buffer_ = std::make_unique_for_overwrite<char[]>(kScanBuffer);
  reserve_checkpoints(size);
  // Up to the size seen now; what is appended meanwhile is for the next
  // update.
  while (scanned_ < size) {
    if (sparse && !skip_hole()) return true;
    size_t want = static_cast<size_t>(std::min<uint64_t>(kScanBuffer, size - scanned_));
    ssize_t n = read_at(fd_.get(), buffer_.get(), want, scanned_);
    if (n < 0) return false;
    if (n == 0) return true;  // shrank while being read; the next update sees it
    scan_block(buffer_.get(), static_cast<size_t>(n), scanned_);
    scanned_ += static_cast<uint64_t>(n);
  }
  return true;
}

bool LogIndex::same_head() const {
  char head[kHeadBytes];
  ssize_t n = read_at(fd_.get(), head, head_.size(), 0);
  return n == static_cast<ssize_t>(head_.size()) &&
         std::memcmp(head, head_.data(), head_.size()) == 0;
}

bool LogIndex::build() {
  reset();
  // Only a regular file is a log (common/readable_file.h): a FIFO would block
  // the open and a device never end.
  UniqueFd fd = open_for_reading(path_);
  struct stat info {};
  if (!fd.valid() || ::fstat(fd.get(), &info) != 0) return false;
  fd_ = std::move(fd);
  device_ = info.st_dev;
  inode_ = info.st_ino;
  head_ = read_head(fd_.get(), kHeadBytes);
  ::posix_fadvise(fd_.get(), 0, 0, POSIX_FADV_SEQUENTIAL);
  return scan(info);
}

// The path is looked up, not opened: while it names the file the index was
// built from, that file is read through the descriptor kept since.
LogIndex::Change LogIndex::update() {
  struct stat info {};
  if (::stat(path_.c_str(), &info) != 0) return Change::kFailed;
  const uint64_t size = static_cast<uint64_t>(info.st_size);
  bool same_file = fd_.valid() && info.st_dev == device_ && info.st_ino == inode_ &&
                   size >= scanned_ && same_head();
  if (!same_file) return build() ? Change::kRestarted : Change::kFailed;
  if (size == scanned_) return Change::kNone;
  if (head_.size() < kHeadBytes) head_ = read_head(fd_.get(), kHeadBytes);
  return scan(info) ? Change::kGrew : Change::kFailed;
}

int64_t LogIndex::line_count() const {
  return line_ends_ + (scanned_ > last_line_start_ ? 1 : 0);
}

std::span<const uint64_t> LogIndex::checkpoints() const {
  if (starts_.empty()) return {};
  size_t valid = static_cast<size_t>((line_count() + kCheckpointLines - 1) / kCheckpointLines);
  return std::span<const uint64_t>(starts_).first(std::min(valid, starts_.size()));
}

std::optional<LineReader> LogIndex::open_at_line(int64_t line) const {
  if (line < 0 || line > line_count() || starts_.empty()) return std::nullopt;
  size_t k = std::min(static_cast<size_t>(line / kCheckpointLines), starts_.size() - 1);
  LineReader reader(path_, starts_[k]);
  if (!reader.ok()) return std::nullopt;
  reader.skip(line - static_cast<int64_t>(k) * kCheckpointLines);
  return reader;
}

std::optional<std::vector<std::string>> LogIndex::read_lines(int64_t first, int64_t count) const {
  std::vector<std::string> lines;
  first = std::max<int64_t>(first, 0);
  count = std::min(count, line_count() - first);
  if (count <= 0) return lines;
  auto reader = open_at_line(first);
  if (!reader) return std::nullopt;
  std::string line;
  while (static_cast<int64_t>(lines.size()) < count && reader->next(line)) lines.push_back(line);
  return lines;
}

}  // namespace px::views
