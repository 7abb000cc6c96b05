// The monitoring views on big data, beside the command-line tools an
// operator would use instead:
// - indexing a 1 GiB log, and "wc -l" on the same file (both from the page
//   cache, in the same run);
// - showing a page of 30 lines of that log: the first, a middle one, the
//   last, and pages after jumps to random lines;
// - extending the index after 1 MiB was appended, and reading that 1 MiB;
// - listing a queue directory of 100,000 files sorted by age, and
//   "ls -f | sort" on it.
// The files live in a directory under /tmp that is removed at the end.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

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
  for (auto _ : state) {
    px::views::LogIndex index(path);
    if (!index.build()) state.SkipWithError("the log did not index");
    benchmark::DoNotOptimize(index.line_count());
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kLogBytes));
}
BENCHMARK(BM_IndexLog1GiB)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);

void BM_WcL1GiB(benchmark::State& state) {
  std::string command = "wc -l '" + big_log() + "' > /dev/null";
  for (auto _ : state) run_shell(command, state);
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kLogBytes));
}
BENCHMARK(BM_WcL1GiB)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);

// A page of 30 lines at line: first (0), middle (1), last (2).
void BM_Page(benchmark::State& state) {
  const px::views::LogIndex& index = big_index();
  int64_t lines = index.line_count();
  int64_t first = state.range(0) == 0 ? 0 : state.range(0) == 1 ? lines / 2 + 57 : lines - 30;
  for (auto _ : state) benchmark::DoNotOptimize(index.read_lines(first, 30));
}
BENCHMARK(BM_Page)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);

void BM_PageAfterJump(benchmark::State& state) {
  const px::views::LogIndex& index = big_index();
  std::mt19937_64 random(11);
  for (auto _ : state) {
    int64_t first = int64_t(random() % uint64_t(index.line_count() - 30));
    benchmark::DoNotOptimize(index.read_lines(first, 30));
  }
}
BENCHMARK(BM_PageAfterJump)->Unit(benchmark::kMicrosecond);

const std::string& growing_log() {
  static const std::string path = [] {
    std::string name = work_directory() + "/growing.log";
    append_file(name, log_lines(0, 16 << 20));
    return name;
  }();
  return path;
}

void BM_ExtendIndexAfter1MiB(benchmark::State& state) {
  px::views::LogIndex index(growing_log());
  index.build();
  std::string more = log_lines(500000, kAppendBytes);
  for (auto _ : state) {
    state.PauseTiming();
    append_file(growing_log(), more);
    state.ResumeTiming();
    if (index.update() != px::views::LogIndex::Change::kGrew) state.SkipWithError("no growth seen");
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(more.size()));
}
BENCHMARK(BM_ExtendIndexAfter1MiB)->Unit(benchmark::kMicrosecond)->UseRealTime()->Iterations(200);

// The same appending, then reading just that 1 MiB from a fresh descriptor:
// the least that seeing new lines can cost.
void BM_ReadAppended1MiB(benchmark::State& state) {
  std::string more = log_lines(500000, kAppendBytes);
  std::vector<char> buffer(more.size());
  for (auto _ : state) {
    state.PauseTiming();
    append_file(growing_log(), more);
    off_t at = off_t(std::filesystem::file_size(growing_log()) - more.size());
    state.ResumeTiming();
    int fd = ::open(growing_log().c_str(), O_RDONLY);
    benchmark::DoNotOptimize(::pread(fd, buffer.data(), buffer.size(), at));
    ::close(fd);
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(more.size()));
}
BENCHMARK(BM_ReadAppended1MiB)->Unit(benchmark::kMicrosecond)->UseRealTime()->Iterations(200);

void BM_ListQueueByAge100k(benchmark::State& state) {
  const std::string& directory = queue_directory();
  for (auto _ : state) {
    std::vector<std::string> names;
    auto files = px::views::list_files(directory, "*.DAT");
    if (!files || files->size() != size_t(kQueueFiles)) state.SkipWithError("wrong listing");
    px::views::sort_by_age(std::move(*files), px::views::kServerStopFile, names);
    benchmark::DoNotOptimize(names.data());
  }
}
BENCHMARK(BM_ListQueueByAge100k)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(10);

void BM_LsFSort100k(benchmark::State& state) {
  std::string command = "ls -f '" + queue_directory() + "' | sort > /dev/null";
  for (auto _ : state) run_shell(command, state);
}
BENCHMARK(BM_LsFSort100k)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(10);

}  // namespace
