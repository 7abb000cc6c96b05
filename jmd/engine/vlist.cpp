#include "jmd/engine/vlist.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <new>

#include "jmd/engine/block_cache.h"
#include "jmd/engine/report.h"

namespace px::engine {

namespace {

constexpr char kMagic[] = "VList version 2.0";
constexpr int kMagicCompared = 18;  // the text and its NUL
constexpr long kMaxRecords = INT32_MAX;

int g_last_error = 0;
uint32_t g_sequence = 0;

void put32(std::byte* p, uint32_t v) {
  for (int i = 0; i < 4; ++i) p[i] = static_cast<std::byte>(v >> (8 * i));
}

uint32_t get32(const std::byte* p) {
  uint32_t v = 0;
  for (int i = 0; i < 4; ++i) v |= static_cast<uint32_t>(p[i]) << (8 * i);
  return v;
}

int32_t get_signed(const std::byte* p) { return static_cast<int32_t>(get32(p)); }

bool read_exact(int fd, void* buffer, size_t n, off_t offset) {
  size_t done = 0;
  while (done < n) {
    ssize_t r = pread(fd, static_cast<char*>(buffer) + done, n - done,
                      offset + static_cast<off_t>(done));
    if (r < 0 && errno == EINTR) continue;
    if (r <= 0) return false;
    done += static_cast<size_t>(r);
  }
  return true;
}

// Opens a new, empty file that no name in any directory reaches, so the
// kernel frees it with the last descriptor even when the process is killed:
// an unnamed file in name's directory, or, where the file system cannot
// make one, name created afresh and unlinked at once. A file that has the
// name already is never touched.
int open_unnamed(const std::string& name) {
  size_t slash = name.rfind('/');
  std::string directory = slash == std::string::npos ? "." : name.substr(0, slash + 1);
  int fd = ::open(directory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  if (fd >= 0) return fd;
  fd = ::open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (fd >= 0) ::unlink(name.c_str());
  return fd;
}

}  // namespace

int vlist_last_error() { return g_last_error; }
void set_vlist_last_error(int code) { g_last_error = code; }

std::unique_ptr<VList> VList::open(std::string_view name, int record_size, int mode,
                                   int cache_parameter) {
  if (record_size <= 0) {
    g_last_error = kVListErrorBadRecordSize;
    return nullptr;
  }
  std::unique_ptr<VList> list(new (std::nothrow) VList);
  if (!list) {
    g_last_error = kVListErrorOutOfMemory;
    return nullptr;
  }
  if (mode & kVListCreate) mode = (mode | kVListCreateIfMissing) & ~kVListReadOnly;
  list->name_ = std::string(name);
  list->sequence_ = ++g_sequence;
  list->bucket_mix_ = block_cache::bucket_of(0, list->sequence_);
  list->record_size_ = record_size;
  list->mode_ = mode;
  list->cache_parameter_ = cache_parameter;
  if (record_size <= kBlockSize) {
    list->records_per_block_ = kBlockSize / record_size;
    list->blocks_per_record_ = 1;
  } else {
    list->records_per_block_ = 1;
    list->blocks_per_record_ = (record_size + kBlockSize - 1) / kBlockSize;
  }

  bool existed = false;
  if (!(mode & kVListCreate)) {
    int probe = ::open(list->name_.c_str(), O_RDONLY | O_CLOEXEC);
    if (probe >= 0) {
      existed = true;
      ::close(probe);
    }
  }
  int flags = O_CLOEXEC | ((mode & kVListReadOnly) ? O_RDONLY : O_RDWR);
  if (mode & kVListCreateIfMissing) flags |= O_CREAT;
  if (mode & kVListCreate) flags |= O_TRUNC;
  list->fd_ = (mode & kVListCreate) ? open_unnamed(list->name_)
                                    : ::open(list->name_.c_str(), flags, 0666);
  if (list->fd_ < 0) {
    list->closed_ = true;
    g_last_error = kVListErrorCannotOpen;
    return nullptr;
  }
  struct stat st {};
  if (fstat(list->fd_, &st) == 0) list->file_size_ = st.st_size;
  if (existed && !list->read_header()) {
    list->closed_ = true;
    ::close(list->fd_);
    list->fd_ = -1;
    return nullptr;
  }
  if (!(mode & kVListReadOnly) && !list->write_header()) {
    g_last_error = kVListErrorHeaderWrite;
    list->closed_ = true;
    ::close(list->fd_);
    list->fd_ = -1;
    return nullptr;
  }
  return list;
}

bool VList::read_header() {
  std::array<std::byte, kHeaderRecordSize> h{};
  if (lseek(fd_, 0, SEEK_SET) != 0) {
    g_last_error = kVListErrorSeekFailed;
    return false;
  }
  if (file_size_ < kHeaderRecordSize || !read_exact(fd_, h.data(), h.size(), 0)) {
    g_last_error = kVListErrorHeaderRead;
    return false;
  }
  if (std::memcmp(h.data(), kMagic, kMagicCompared) != 0) {
    g_last_error = kVListErrorBadMagic;
    return false;
  }
  int32_t stored_size = get_signed(&h[36]);
  int32_t per_block = get_signed(&h[56]);
  int32_t per_record = get_signed(&h[60]);
  int32_t records = get_signed(&h[48]);
  int32_t blocks = get_signed(&h[52]);
  if (stored_size != record_size_ || per_block != records_per_block_ ||
      per_record != blocks_per_record_ || records < 0 || blocks < 0) {
    g_last_error = kVListErrorGeometry;
    return false;
  }
  record_count_ = records;
  blocks_in_use_ = blocks;
  return true;
}

bool VList::write_header() {
  std::array<std::byte, kHeaderRecordSize> h{};
  std::memcpy(h.data(), kMagic, sizeof kMagic);
  put32(&h[28], sequence_);
  put32(&h[32], static_cast<uint32_t>(closed_ ? -1 : fd_));
  put32(&h[36], static_cast<uint32_t>(record_size_));
  put32(&h[40], static_cast<uint32_t>(mode_));
  put32(&h[44], static_cast<uint32_t>(cache_parameter_));
  put32(&h[48], static_cast<uint32_t>(record_count_));
  put32(&h[52], static_cast<uint32_t>(blocks_in_use_));
  put32(&h[56], static_cast<uint32_t>(records_per_block_));
  put32(&h[60], static_cast<uint32_t>(blocks_per_record_));
  return BlockCache::write_at(*this, h.data(), h.size(), 0);
}

VList::~VList() { close(); }

bool VList::close() {
  if (closed_) return true;
  bool keep = !(mode_ & kVListCreate);
  bool writable = !(mode_ & kVListReadOnly);
  BlockCache::drop(*this, keep && writable);
  closed_ = true;
  if (keep && writable) write_header();
  mapping_.unmap();
  ::close(fd_);  // a created VList's file has no name: this frees it
  fd_ = -1;
  return true;
}

void VList::report(bool write, long r) const {
  char text[64 + 4096];
  std::snprintf(text, sizeof text, write ? "VLPut failed - Name '%s' RecNum %ld"
                                         : "VLGet failed - Name '%s' RecNum %ld",
                name_.c_str(), r);
  report_text(text);
}

bool VList::grow(long count) {
  if (closed_ || count < 0 || count > kMaxRecords) {
    g_last_error = kVListErrorBadRecordSize;
    return false;
  }
  if (count <= record_count_) return true;
  record_count_ = count;
  long blocks = records_per_block_ > 1
                    ? (count + records_per_block_ - 1) / records_per_block_
                    : count * blocks_per_record_;
  if (blocks > blocks_in_use_) blocks_in_use_ = blocks;
  return true;
}

bool VList::transfer(long r, std::byte* buffer, bool write) {
  size_t record_bytes = static_cast<size_t>(record_size_);
  if (blocks_per_record_ == 1) {
    long block = r / records_per_block_;
    size_t offset = static_cast<size_t>(r % records_per_block_) * record_bytes;
    CacheEntry* e = BlockCache::fetch(*this, block, write && record_size_ == kBlockSize);
    if (!e) return false;
    if (write) {
      std::memcpy(e->data.data() + offset, buffer, record_bytes);
      e->dirty = true;
    } else {
      std::memcpy(buffer, e->data.data() + offset, record_bytes);
    }
    return true;
  }
  long first = r * blocks_per_record_;
  for (int k = 0; k < blocks_per_record_; ++k) {
    size_t done = static_cast<size_t>(k) * kBlockSize;
    size_t piece = std::min<size_t>(kBlockSize, record_bytes - done);
    CacheEntry* e = BlockCache::fetch(*this, first + k, write && piece == kBlockSize);
    if (!e) return false;
    if (write) {
      std::memcpy(e->data.data(), buffer + done, piece);
      e->dirty = true;
    } else {
      std::memcpy(buffer + done, e->data.data(), piece);
    }
  }
  return true;
}

bool VList::get(long r, std::span<std::byte> out) {
  bool ok = false;
  if (closed_ || r < 0 || out.size() < static_cast<size_t>(record_size_)) {
    g_last_error = kVListErrorBadRecordSize;
  } else if (r >= record_count_) {
    g_last_error = kVListErrorBeyondEnd;
  } else {
    ok = transfer(r, out.data(), false);
  }
  if (!ok) report(false, r);
  return ok;
}

void VList::prefetch(long r) const {
  if (closed_ || r < 0 || r >= record_count_) return;
  int64_t offset = blocks_per_record_ == 1
                       ? (r / records_per_block_ + 1) * int64_t{kBlockSize} +
                             (r % records_per_block_) * int64_t{record_size_}
                       : (r * blocks_per_record_ + 1) * int64_t{kBlockSize};
  mapping_.prefetch(offset, static_cast<size_t>(record_size_));
}

bool VList::put(long r, std::span<const std::byte> data) {
  bool ok = false;
  if (closed_ || r < 0 || r >= kMaxRecords || data.size() < static_cast<size_t>(record_size_)) {
    g_last_error = kVListErrorBadRecordSize;
  } else if (mode_ & kVListReadOnly) {
    g_last_error = kVListErrorReadOnly;
  } else if (r >= record_count_ && !grow(r + 1)) {
    // grow set the error
  } else {
    ok = transfer(r, const_cast<std::byte*>(data.data()), true);
  }
  if (!ok) report(true, r);
  return ok;
}

bool VList::flush() {
  if (closed_ || (mode_ & kVListReadOnly)) return !closed_;
  bool ok = BlockCache::flush(*this);
  return write_header() && ok;
}

}  // namespace px::engine
