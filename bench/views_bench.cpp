// The monitoring views on big data, beside the command-line tools an
// operator would use instead:
// - indexing a 1 GiB log, and "wc -l" on the same file (both from the page
//   cache, in the same run);
// - showing a page of 30 lines of that log: the first, a middle one, the
//   last, and pages after jumps to random lines;
// - extending the index after 1 MiB was appended, and reading that 1 MiB,
//   timed by turns in the same rounds;
// - listing a queue directory of 100,000 files sorted by age (first listing,
//   and refreshes through the listing cache), and "ls -f | sort" and
//   "ls -tr" on it, timed by turns in the same rounds.
// The files live in a directory under /tmp that is removed at the end.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "common/unique_fd.h"
#include "views/file_listing.h"
#include "views/log_index.h"

namespace {

constexpr uint64_t kLogBytes = uint64_t{1} << 30;
constexpr int kQueueFiles = 100000;
constexpr size_t kAppendBytes = size_t{1} << 20;

const std::string& work_directory() {
  static const std::string path = [] {
    std::string name = "/tmp/px_views_bench_" + std::to_string(getpid());
    std::filesystem::create_directories(name);
    static const std::string to_remove = name;
    std::atexit([] { std::filesystem::remove_all(to_remove); });
    return name;
  }();
  return path;
}

// Log lines of the server's shape, about 90 bytes each.
std::string log_lines(uint64_t first, size_t bytes) {
  std::string text;
  text.reserve(bytes + 200);
  for (uint64_t i = first; text.size() < bytes; ++i) {
    char line[160];
    int n = std::snprintf(line, sizeof line,
                          "2611%02u %02u:%02u:%02u pxserver: [1229]Transaction file ORD%07u.DAT "
                          "collected for job INVOICE\n",
                          unsigned(20 + i / 3000000 % 9), unsigned(i / 3600 % 24),
                          unsigned(i / 60 % 60), unsigned(i % 60), unsigned(i % 10000000));
    text.append(line, static_cast<size_t>(n));
  }
  return text;
}

void append_file(const std::string& path, const std::string& text) {
  std::FILE* f = std::fopen(path.c_str(), "ab");
  std::fwrite(text.data(), 1, text.size(), f);
  std::fclose(f);
}

const std::string& big_log() {
  static const std::string path = [] {
    std::string name = work_directory() + "/big.log";
    uint64_t line = 0;
    for (uint64_t written = 0; written < kLogBytes;) {
      std::string chunk = log_lines(line, std::min<uint64_t>(kLogBytes - written, 64 << 20));
      line += 1000000;
      append_file(name, chunk);
      written += chunk.size();
    }
    return name;
  }();
  return path;
}

const px::views::LogIndex& big_index() {
  static const px::views::LogIndex& index = *[] {
    static px::views::LogIndex built(big_log());
    built.build();
    return &built;
  }();
  return index;
}

const std::string& queue_directory() {
  static const std::string path = [] {
    std::string name = work_directory() + "/queue";
    std::filesystem::create_directories(name);
    std::mt19937 random(7);
    for (int i = 0; i < kQueueFiles; ++i) {
      std::string file = name + "/ORD" + std::to_string(1000000 + i) + ".DAT";
      int fd = ::open(file.c_str(), O_CREAT | O_WRONLY | O_TRUNC, 0644);
      ::close(fd);
      struct timespec when[2] = {{time_t(1700000000 + random() % 1000000), 0}, {0, 0}};
      when[1] = when[0];
      ::utimensat(AT_FDCWD, file.c_str(), when, 0);
    }
    return name;
  }();
  return path;
}

void run_shell(const std::string& command, benchmark::State& state) {
  if (std::system(command.c_str()) != 0) state.SkipWithError(("failed: " + command).c_str());
}

void BM_IndexLog1GiB(benchmark::State& state) {
  const std::string& path = big_log();
  for ([[maybe_unused]] auto _ : state) {
    px::views::LogIndex index(path);
    if (!index.build()) state.SkipWithError("the log did not index");
    benchmark::DoNotOptimize(index.line_count());
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kLogBytes));
}
BENCHMARK(BM_IndexLog1GiB)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);

void BM_WcL1GiB(benchmark::State& state) {
  std::string command = "wc -l '" + big_log() + "' > /dev/null";
  for ([[maybe_unused]] auto _ : state) run_shell(command, state);
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kLogBytes));
}
BENCHMARK(BM_WcL1GiB)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);

// A page of 30 lines at line: first (0), middle (1), last (2).
void BM_Page(benchmark::State& state) {
  const px::views::LogIndex& index = big_index();
  int64_t lines = index.line_count();
  int64_t first = state.range(0) == 0 ? 0 : state.range(0) == 1 ? lines / 2 + 57 : lines - 30;
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(index.read_lines(first, 30));
}
BENCHMARK(BM_Page)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);

void BM_PageAfterJump(benchmark::State& state) {
  const px::views::LogIndex& index = big_index();
  std::mt19937_64 random(11);
  for ([[maybe_unused]] auto _ : state) {
    int64_t first = int64_t(random() % uint64_t(index.line_count() - 30));
    benchmark::DoNotOptimize(index.read_lines(first, 30));
  }
}
BENCHMARK(BM_PageAfterJump)->Unit(benchmark::kMicrosecond);

// The median of samples (taken by value: it reorders them).
double median(std::vector<double> samples) {
  if (samples.empty()) return 0;
  auto middle = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
  std::nth_element(samples.begin(), middle, samples.end());
  return *middle;
}

double seconds_since(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Writes over 64 MiB, twice the last-level cache, so that what follows finds
// nothing of the log in the processor's caches, only in the page cache.
void flush_processor_caches() {
  static std::vector<char> scratch(64 << 20);
  for (size_t i = 0; i < scratch.size(); i += 64) scratch[i] = static_cast<char>(scratch[i] + 1);
  benchmark::DoNotOptimize(scratch.data());
}

// Extending the index after 1 MiB was appended, against the least that
// seeing the new bytes can cost: reading that 1 MiB (open, one pread of the
// MiB into a buffer of its size, close), and the pread alone from a
// descriptor kept open. Each round appends 1 MiB with write(2), then times
// the three by turns (the order rotates from round to round), so that they
// meet the same machine load and cache state; the counters are the medians
// of the rounds in microseconds, the ratios are of those medians.
// Arg 0 times them right after the append, when the new bytes are still in
// the processor's caches; Arg 1 flushes those caches before each one, as
// when the log was written a while before the refresh.
void BM_ExtendVsRead1MiB(benchmark::State& state) {
  const bool cold = state.range(0) == 1;
  const std::string path = work_directory() + "/growing" + std::to_string(state.range(0)) + ".log";
  append_file(path, log_lines(0, 16 << 20));
  px::views::LogIndex index(path);
  index.build();
  const std::string more = log_lines(500000, kAppendBytes);
  std::vector<char> buffer(more.size());
  px::UniqueFd writer(::open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
  px::UniqueFd reader(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  std::vector<double> extend, read, pread_only;
  uint64_t size = index.indexed_size();
  int round = 0;
  for ([[maybe_unused]] auto _ : state) {
    if (::write(writer.get(), more.data(), more.size()) != static_cast<ssize_t>(more.size())) {
      state.SkipWithError("the append failed");
      break;
    }
    const off_t at = static_cast<off_t>(size);
    size += more.size();
    double extend_s = 0;
    for (int turn = 0; turn < 3; ++turn) {
      if (cold) flush_processor_caches();
      auto start = std::chrono::steady_clock::now();
      switch ((turn + round) % 3) {
        case 0:
          if (index.update() != px::views::LogIndex::Change::kGrew)
            state.SkipWithError("no growth");
          extend_s = seconds_since(start);
          extend.push_back(extend_s * 1e6);
          break;
        case 1: {
          int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
          benchmark::DoNotOptimize(::pread(fd, buffer.data(), buffer.size(), at));
          ::close(fd);
          read.push_back(seconds_since(start) * 1e6);
          break;
        }
        default:
          benchmark::DoNotOptimize(::pread(reader.get(), buffer.data(), buffer.size(), at));
          pread_only.push_back(seconds_since(start) * 1e6);
      }
    }
    ++round;
    state.SetIterationTime(extend_s);
  }
  const double extend_us = median(extend), read_us = median(read), pread_us = median(pread_only);
  state.counters["extend_us"] = extend_us;
  state.counters["read_us"] = read_us;
  state.counters["pread_us"] = pread_us;
  state.counters["extend/read"] = extend_us / read_us;
  state.counters["extend/pread"] = extend_us / pread_us;
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(more.size()));
}
BENCHMARK(BM_ExtendVsRead1MiB)
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMicrosecond)
    ->UseManualTime()
    ->Iterations(201);

// CPU time of this process, and of its waited-for children (the shell
// commands), in seconds.
double cpu_seconds(int who) {
  struct rusage usage {};
  ::getrusage(who, &usage);
  auto seconds = [](const timeval& t) { return double(t.tv_sec) + double(t.tv_usec) / 1e6; };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// The machine's load average over the last minute.
double load_average() {
  double load = 0;
  return ::getloadavg(&load, 1) == 1 ? load : -1;
}

// Listing the queue directory of 100,000 "*.DAT" files sorted by age, as
// the status view does (control jobs "px*.msg" and the transaction files
// from one read of the directory, each group oldest first, "stopserv.msg"
// pinned), against the command-line tools on the same directory:
// - "ls -f DIR | sort": the names in directory order (no stat), then
//   sorted by name (LC_ALL=C: byte order, the cheapest sort), the cost the
//   listing is held to;
// - "ls -tr DIR": the tool that does our job, sorted by age oldest first
//   (one stat per file, as ours).
// Ours is timed three ways: a first listing (no cache: pxctl status, a
// view's first fill; the times read on a thread a processor core as the
// pipeline's two processes run on two), a refresh through the cache with
// nothing changed, and a refresh after 1,000 of the files were touched.
// Each round times all of them by turns (the order rotates), so that they
// meet the same machine load; the counters are the medians in milliseconds,
// wall clock and CPU (ours: this process, all its threads; the tools: the
// shell and its commands), with the CPU ratio beside the wall one, the
// processor cores, and the load average (1 minute) before and after. On a
// machine others load, run it as "chrt -f 10 views_bench" (as root) or under
// "nice -n -5" so that it times the programs rather than their share of the
// processors.
void BM_ListQueueVsTools100k(benchmark::State& state) {
  const std::string& directory = queue_directory();
  const std::string_view patterns[] = {"px*.msg", "*.DAT"};
  auto list_sorted = [&](px::views::ListingCache* cache) {
    std::vector<std::string> names;
    auto groups = px::views::list_files(directory, patterns, cache);
    if (!groups || (*groups)[1].size() != size_t(kQueueFiles)) {
      state.SkipWithError("wrong listing");
      return;
    }
    for (const auto& group : *groups) {
      px::views::sort_by_age(group, px::views::kServerStopFile, names);
    }
    benchmark::DoNotOptimize(names.data());
  };
  const std::string ls_sort = "LC_ALL=C ls -f '" + directory + "' | LC_ALL=C sort > /dev/null";
  const std::string ls_by_age = "LC_ALL=C ls -tr '" + directory + "' > /dev/null";
  px::views::ListingCache cache;
  list_sorted(&cache);
  std::mt19937 random(3);
  enum { kFirst, kRefresh, kRefreshTouched, kLsSort, kLsByAge, kContenders };
  const char* names[kContenders] = {"first", "refresh", "refresh_1k_touched", "ls_f_sort", "ls_tr"};
  std::vector<double> wall[kContenders], cpu[kContenders];
  auto touch_files = [&](int count) {
    for (int i = 0; i < count; ++i) {
      std::string file =
          directory + "/ORD" + std::to_string(1000000 + random() % kQueueFiles) + ".DAT";
      struct timespec when[2] = {{time_t(1700000000 + random() % 1000000), 0}, {0, 0}};
      when[1] = when[0];
      ::utimensat(AT_FDCWD, file.c_str(), when, 0);
    }
  };
  double first_s = 0;
  auto timed = [&](int which, const std::function<void()>& work) {
    const int who = which == kLsSort || which == kLsByAge ? RUSAGE_CHILDREN : RUSAGE_SELF;
    const double cpu_start = cpu_seconds(who);
    auto start = std::chrono::steady_clock::now();
    work();
    const double took = seconds_since(start);
    wall[which].push_back(took * 1e3);
    cpu[which].push_back((cpu_seconds(who) - cpu_start) * 1e3);
    if (which == kFirst) first_s = took;
  };
  const std::function<void()> groups[] = {
      [&] { timed(kFirst, [&] { list_sorted(nullptr); }); },
      [&] {
        touch_files(1000);
        timed(kRefreshTouched, [&] { list_sorted(&cache); });
        timed(kRefresh, [&] { list_sorted(&cache); });
      },
      [&] { timed(kLsSort, [&] { run_shell(ls_sort, state); }); },
      [&] { timed(kLsByAge, [&] { run_shell(ls_by_age, state); }); },
  };
  const double load_before = load_average();
  size_t round = 0;
  for ([[maybe_unused]] auto _ : state) {
    for (size_t g = 0; g < std::size(groups); ++g) groups[(g + round) % std::size(groups)]();
    ++round;
    state.SetIterationTime(first_s);
  }
  for (int k = 0; k < kContenders; ++k) {
    state.counters[std::string(names[k]) + "_ms"] = median(wall[k]);
    state.counters[std::string(names[k]) + "_cpu_ms"] = median(cpu[k]);
  }
  const double ls_sort_ms = median(wall[kLsSort]);
  state.counters["first/ls_f_sort"] = median(wall[kFirst]) / ls_sort_ms;
  state.counters["refresh/ls_f_sort"] = median(wall[kRefresh]) / ls_sort_ms;
  state.counters["refresh_1k/ls_f_sort"] = median(wall[kRefreshTouched]) / ls_sort_ms;
  state.counters["first_cpu/ls_f_sort_cpu"] = median(cpu[kFirst]) / median(cpu[kLsSort]);
  state.counters["first/ls_tr"] = median(wall[kFirst]) / median(wall[kLsByAge]);
  state.counters["cores"] = std::thread::hardware_concurrency();
  state.counters["load_before"] = load_before;
  state.counters["load_after"] = load_average();
}
BENCHMARK(BM_ListQueueVsTools100k)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(15);

}  // namespace
