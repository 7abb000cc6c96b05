#include "views/file_listing.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <utility>
#include <memory>

#include "common/file_pattern.h"
#include "common/text.h"
#include "views/time_readers.h"

namespace px::views {

namespace {

using DirHandle = std::unique_ptr<DIR, int (*)(DIR*)>;

DirHandle open_directory(const std::string& directory) {
  return DirHandle(directory.empty() ? nullptr : opendir(directory.c_str()), closedir);
}

// Entries a batch holds: enough that handing one to a thread costs little
// beside the stat calls it holds.
constexpr size_t kBatchEntries = 1024;

// Times to read before a listing starts threads: below this, starting them
// costs more than they save.
constexpr size_t kThreadsFrom = 4096;

}  // namespace

void FileListing::add(std::string_view name, int64_t modified_ns) {
  files_.push_back({names_.size(), name.size(), modified_ns});
  names_.append(name);
}

void FileListing::reserve(size_t files, size_t name_bytes) {
  files_.reserve(files);
  names_.reserve(name_bytes);
}

// The directory is read in batches of entries. The time of a plain file the
// cache knows is taken from it at once; the others are read by the batch,
// on threads once there are enough of them (a batch is given away as soon
// as it is full, so the times are read while the directory still is). The
// listings are then made from the batches in the directory's order.
std::optional<std::vector<FileListing>> list_files(const std::string& directory,
                                                   std::span<const std::string_view> patterns,
                                                   ListingCache* cache, unsigned threads) {
  DirHandle dir = open_directory(directory);
  if (!dir) return std::nullopt;
  const int dir_fd = dirfd(dir.get());
  if (cache != nullptr && !cache->begin(dir_fd)) cache = nullptr;
  if (threads == 0) threads = default_time_readers();
  std::vector<std::unique_ptr<EntryBatch>> batches;
  std::optional<TimeReaders> readers;  // after batches: ends before them
  size_t given = 0;
  size_t to_read = 0;
  auto give_full_batches = [&] {
    for (; given + 1 < batches.size(); ++given) readers->give(*batches[given]);
  };
  std::vector<char> matched(patterns.size());
  // What each listing will hold at most, to make room for it once.
  std::vector<std::pair<size_t, size_t>> sizes(patterns.size());
  while (const dirent* entry = readdir(dir.get())) {
    // The entry's type, where the file system gives it, spares a stat of
    // every subdirectory.
    if (entry->d_type == DT_DIR) continue;
    std::string_view name = entry->d_name;
    bool any = false;
    for (size_t k = 0; k < patterns.size(); ++k) {
      matched[k] = matches_file_pattern(name, patterns[k]);
      if (matched[k]) {
        ++sizes[k].first;
        sizes[k].second += name.size();
        any = true;
      }
    }
    if (!any) continue;
    if (batches.empty() || batches.back()->size() == kBatchEntries) {
      batches.push_back(std::make_unique<EntryBatch>(patterns.size()));
      if (readers) give_full_batches();
    }
    EntryBatch::Entry& added = batches.back()->add(name, entry->d_ino, matched);
    // A symbolic link is always followed afresh.
    added.cacheable = cache != nullptr && entry->d_type == DT_REG;
    std::optional<int64_t> known;
    if (added.cacheable) known = cache->known_time(name, entry->d_ino);
    if (known) {
      added.is_file = true;
      added.modified_ns = *known;
    } else {
      added.to_read = true;
      if (++to_read == kThreadsFrom && threads > 1) {
        readers.emplace(dir_fd, threads);
        give_full_batches();
      }
    }
  }
  if (readers) {
    for (; given < batches.size(); ++given) readers->give(*batches[given]);
    readers->finish();
  } else {
    for (auto& batch : batches) batch->read_times(dir_fd);
  }
  std::vector<FileListing> listings(patterns.size());
  for (size_t k = 0; k < patterns.size(); ++k) listings[k].reserve(sizes[k].first, sizes[k].second);
  for (const auto& batch : batches) {
    for (size_t i = 0; i < batch->size(); ++i) {
      const EntryBatch::Entry& entry = batch->entry(i);
      if (!entry.is_file) continue;
      if (entry.to_read && entry.cacheable) {
        cache->remember(batch->name(i), entry.inode, entry.modified_ns);
      }
      for (size_t k = 0; k < patterns.size(); ++k) {
        if (batch->matches(i, k)) listings[k].add(batch->name(i), entry.modified_ns);
      }
    }
  }
  if (cache != nullptr) cache->end();
  return listings;
}

std::optional<FileListing> list_files(const std::string& directory, std::string_view pattern,
                                      ListingCache* cache) {
  auto listings = list_files(directory, std::span<const std::string_view>(&pattern, 1), cache);
  if (!listings) return std::nullopt;
  return std::move(listings->front());
}

bool directory_exists(const std::string& directory) { return open_directory(directory) != nullptr; }

namespace {

// Each name in listing order goes into place among those placed before it:
// a pinned one at the head (the first) or right after the first pinned one
// (the later ones), any other one before the first name placed after the
// first pinned one that is younger than it. Only two or more pinned names
// (in different case) give an order that differs from the stable sort.
void insert_by_age(const FileListing& listing, std::string_view pinned,
                   std::vector<std::string>& out) {
  std::vector<size_t> placed;
  size_t start = 0;
  for (size_t i = 0; i < listing.size(); ++i) {
    size_t slot = start;
    bool is_pinned = iequals(listing.name(i), pinned);
    while (!is_pinned && slot < placed.size() &&
           listing.modified_ns(placed[slot]) <= listing.modified_ns(i)) {
      ++slot;
    }
    placed.insert(placed.begin() + static_cast<std::ptrdiff_t>(slot), i);
    if (is_pinned) start = 1;
  }
  for (size_t at : placed) out.emplace_back(listing.name(at));
}

size_t count_pinned(const FileListing& listing, std::string_view pinned) {
  size_t count = 0;
  for (size_t i = 0; i < listing.size(); ++i) count += iequals(listing.name(i), pinned) ? 1 : 0;
  return count;
}

// A file's age as a key and its position in the listing.
struct AgeKey {
  uint64_t age;
  size_t at;
};

// Puts keys in order of age, keys of the same age in their given order: a
// stable radix sort a byte a pass, lowest first, that skips the bytes every
// key shares (the high bytes of times close together). Over a big listing
// it costs a few passes instead of the comparisons of a sort.
void sort_by_age(std::vector<AgeKey>& keys) {
  if (keys.size() < 2) return;
  constexpr int kBytes = sizeof(uint64_t);
  std::vector<std::array<size_t, 256>> counts(kBytes);
  uint64_t differing = 0;
  for (const AgeKey& key : keys) {
    differing |= key.age ^ keys.front().age;
    for (int b = 0; b < kBytes; ++b) ++counts[b][(key.age >> (8 * b)) & 0xFF];
  }
  std::vector<AgeKey> sorted(keys.size());
  for (int b = 0; b < kBytes; ++b) {
    if (((differing >> (8 * b)) & 0xFF) == 0) continue;
    size_t next = 0;
    for (size_t& count : counts[b]) next += std::exchange(count, next);
    for (const AgeKey& key : keys) sorted[counts[b][(key.age >> (8 * b)) & 0xFF]++] = key;
    keys.swap(sorted);
  }
}

}  // namespace

void sort_by_age(const FileListing& listing, std::string_view pinned,
                 std::vector<std::string>& out) {
  if (count_pinned(listing, pinned) > 1) {
    out.reserve(out.size() + listing.size());
    insert_by_age(listing, pinned, out);
    return;
  }
  std::vector<AgeKey> keys;
  keys.reserve(listing.size());
  out.reserve(out.size() + listing.size());
  for (size_t i = 0; i < listing.size(); ++i) {
    if (iequals(listing.name(i), pinned)) {
      out.emplace_back(listing.name(i));
    } else {
      // The sign bit flipped, times before 1970 sort before those after.
      keys.push_back({static_cast<uint64_t>(listing.modified_ns(i)) ^ (uint64_t{1} << 63), i});
    }
  }
  sort_by_age(keys);
  for (const AgeKey& key : keys) out.emplace_back(listing.name(key.at));
}

}  // namespace px::views
