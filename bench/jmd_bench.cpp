// JMD load, save and keyed lookup at 10k, 100k and 1M job rows, and the same
// rows imported into SQLite (unique NOCASE index per key column, NOCASE index
// on the job form name) and dumped back sorted, in the same run. The summary
// at the end gives both sides and their ratio.
//
// The SQLite side reads the file with the same JMD reader and writes lines
// with the same formatting, so the difference is the storage: our tables in
// temporary files through a 100,000-byte block cache (misses copied from a
// shared mapping of each file), SQLite in a temporary database file (journal
// and sync off, its default page cache).
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench/jmd_bench_data.h"
#include "jmd/jmd.h"
#include "jmd/jmd_reader.h"
#include "jmd/jmd_writer.h"

#ifdef PX_HAVE_SQLITE
#include "bench/jmd_bench_sqlite.h"
#endif

namespace {

using px::bench::form_count;
using px::bench::form_name;

// Reports nothing: the benchmark measures the work, not the message facility.
class QuietReporter : public px::jmd::Reporter {
 public:
  void message(int, const std::vector<std::string>&) override {}
  void trace(std::string_view) override {}
};

// A private directory for the generated files and the tables, removed at exit.
class Workspace {
 public:
  Workspace() {
    std::string dir = (std::filesystem::temp_directory_path() / "jmdbench.XXXXXX").string();
    if (mkdtemp(dir.data()) == nullptr) std::abort();
    dir_ = dir;
    setenv("TMPDIR", dir_.c_str(), 1);
  }
  ~Workspace() {
    std::error_code ignored;
    std::filesystem::remove_all(dir_, ignored);
  }
  std::string file(const std::string& name) const { return dir_ + "/" + name; }

  // The generated JMD of jobs rows, written once.
  const std::string& jmd(long jobs) {
    auto found = files_.find(jobs);
    if (found != files_.end()) return found->second;
    std::string path = file("gen" + std::to_string(jobs) + ".jmd");
    std::string text = px::bench::make_jmd(jobs);
    std::FILE* out = std::fopen(path.c_str(), "w");
    if (!out || std::fwrite(text.data(), 1, text.size(), out) != text.size()) std::abort();
    std::fclose(out);
    return files_.emplace(jobs, path).first->second;
  }

 private:
  std::string dir_;
  std::map<long, std::string> files_;
};

Workspace& workspace() {
  static Workspace w;
  return w;
}

std::unique_ptr<px::jmd::Jmd> load_or_die(const std::string& path) {
  QuietReporter reporter;
  std::unique_ptr<px::jmd::Jmd> jmd = px::jmd::load_jmd(path, reporter);
  if (!jmd) std::abort();
  return jmd;
}

void set_rows(benchmark::State& state) {
  state.counters["rows"] = static_cast<double>(state.range(0));
}

void BM_JmdLoad(benchmark::State& state) {
  const std::string& path = workspace().jmd(state.range(0));
  for ([[maybe_unused]] auto _ : state) {
    std::unique_ptr<px::jmd::Jmd> jmd = load_or_die(path);
    state.PauseTiming();
    px::jmd::close_jmd(std::move(jmd));
    state.ResumeTiming();
  }
  set_rows(state);
}

// A save right after a load, as the console does it: the first query over
// the job table's FormName builds that column's index, so each iteration
// saves a freshly loaded JMD.
void BM_JmdSave(benchmark::State& state) {
  const std::string& path = workspace().jmd(state.range(0));
  std::string out = workspace().file("saved.jmd");
  for ([[maybe_unused]] auto _ : state) {
    state.PauseTiming();
    std::unique_ptr<px::jmd::Jmd> jmd = load_or_die(path);
    state.ResumeTiming();
    if (!px::jmd::save_jmd(*jmd, out)) std::abort();
    state.PauseTiming();
    px::jmd::close_jmd(std::move(jmd));
    state.ResumeTiming();
  }
  set_rows(state);
}

// One lookup: every step of one form, by its name in another spelling.
void BM_JmdLookup(benchmark::State& state) {
  long jobs = state.range(0);
  std::unique_ptr<px::jmd::Jmd> jmd = load_or_die(workspace().jmd(jobs));
  px::engine::Table& table = jmd->table(px::jmd::kJobTable);
  int column = table.find_column("FormName");
  std::vector<std::byte> record(static_cast<size_t>(table.record_size()));
  { px::engine::Query warm = px::engine::Query::start(table, column, std::nullopt, false); }
  const long forms = form_count(jobs);
  if (forms == 0) {  // too few jobs to have a form
    state.SkipWithError("no forms to look up");
    return;
  }
  long k = 0;
  long found = 0;
  for ([[maybe_unused]] auto _ : state) {
    k = (k + 104729) % forms;
    std::string key = form_name(k);
    key[0] = static_cast<char>(key[0] ^ 0x20);  // the other case of the first letter
    px::engine::Query query = px::engine::Query::start(table, column, key, true);
    for (long row = query.next(); row != 0; row = query.next()) {
      if (!table.get_row(row, record)) std::abort();
      ++found;
    }
  }
  if (found == 0) std::abort();
  px::jmd::close_jmd(std::move(jmd));
  set_rows(state);
}

#ifdef PX_HAVE_SQLITE
void BM_SqliteImport(benchmark::State& state) {
  const std::string& path = workspace().jmd(state.range(0));
  std::string db = workspace().file("import.db");
  for ([[maybe_unused]] auto _ : state) {
    px::bench::SqliteJmd sqlite(db);
    if (!sqlite.import(path)) std::abort();
    state.PauseTiming();
    sqlite.close();
    std::filesystem::remove(db);
    state.ResumeTiming();
  }
  set_rows(state);
}

void BM_SqliteDump(benchmark::State& state) {
  std::string db = workspace().file("dump.db");
  px::bench::SqliteJmd sqlite(db);
  if (!sqlite.import(workspace().jmd(state.range(0)))) std::abort();
  std::string out = workspace().file("dumped.jmd");
  for ([[maybe_unused]] auto _ : state) {
    if (!sqlite.dump(out)) std::abort();
  }
  sqlite.close();
  std::filesystem::remove(db);
  set_rows(state);
}

void BM_SqliteLookup(benchmark::State& state) {
  long jobs = state.range(0);
  std::string db = workspace().file("lookup.db");
  px::bench::SqliteJmd sqlite(db);
  if (!sqlite.import(workspace().jmd(jobs))) std::abort();
  const long forms = form_count(jobs);
  if (forms == 0) {  // too few jobs to have a form
    state.SkipWithError("no forms to look up");
    return;
  }
  long k = 0;
  long found = 0;
  for ([[maybe_unused]] auto _ : state) {
    k = (k + 104729) % forms;
    std::string key = form_name(k);
    key[0] = static_cast<char>(key[0] ^ 0x20);
    found += sqlite.lookup_form(key);
  }
  if (found == 0) std::abort();
  sqlite.close();
  std::filesystem::remove(db);
  set_rows(state);
}
#endif

// Every size is timed after a warm-up run, so that each is measured in the
// same state: without it the 1M sizes, which run once, would be timed cold
// and the smaller ones mostly warm, and the growth from 100k to 1M would
// compare the two states rather than the sizes. Each is measured five times
// and the summary takes the median: a single run of the 1M sizes varies by
// a tenth from one run to the next.
void sizes(benchmark::internal::Benchmark* b) {
  b->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond)->MinWarmUpTime(0.5);
  b->Repetitions(5)->ReportAggregatesOnly(true);
}
void lookup_sizes(benchmark::internal::Benchmark* b) {
  b->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
}

BENCHMARK(BM_JmdLoad)->Apply(sizes);
BENCHMARK(BM_JmdSave)->Apply(sizes);
BENCHMARK(BM_JmdLookup)->Apply(lookup_sizes);
#ifdef PX_HAVE_SQLITE
BENCHMARK(BM_SqliteImport)->Apply(sizes);
BENCHMARK(BM_SqliteDump)->Apply(sizes);
BENCHMARK(BM_SqliteLookup)->Apply(lookup_sizes);
#endif

// Keeps the times of every run as "name/rows" -> milliseconds per iteration,
// wall-clock and CPU (user and system) time: the median of the repetitions
// where there are several.
class SummaryReporter : public benchmark::ConsoleReporter {
 public:
  struct Times {
    double real = -1.0;
    double cpu = -1.0;
  };
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      bool single = run.run_type == Run::RT_Iteration && run.iterations > 0;
      bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
      if (run.error_occurred || !(single || median)) continue;
      double to_ms = 1000.0 / benchmark::GetTimeUnitMultiplier(run.time_unit);
      // Keyed by function and argument alone: the full name also carries
      // settings such as the warm-up time.
      times_[run.run_name.function_name + "/" + run.run_name.args] = {
          run.GetAdjustedRealTime() * to_ms, run.GetAdjustedCPUTime() * to_ms};
    }
  }
  // Milliseconds of benchmark name at rows; negative when it did not run.
  Times at(const std::string& name, long rows) const {
    auto found = times_.find(name + "/" + std::to_string(rows));
    return found == times_.end() ? Times{} : found->second;
  }

 private:
  std::map<std::string, Times> times_;
};

void print_table(const SummaryReporter& r, bool cpu) {
  auto ms = [&](const char* name, long rows) {
    SummaryReporter::Times t = r.at(name, rows);
    return cpu ? t.cpu : t.real;
  };
  std::printf("\nJMD against SQLite, %s time (milliseconds; lookups in microseconds)\n",
              cpu ? "CPU" : "wall-clock");
  std::printf("%9s %9s %9s %10s %9s %9s %12s %7s %9s %9s\n", "rows", "load", "save",
              "load+save", "import", "dump", "import+dump", "ratio", "lookup", "sq.lookup");
  for (long rows : {10000L, 100000L, 1000000L}) {
    double load = ms("BM_JmdLoad", rows), save = ms("BM_JmdSave", rows);
    if (load < 0 || save < 0) continue;
    double import = ms("BM_SqliteImport", rows), dump = ms("BM_SqliteDump", rows);
    double ours = load + save, theirs = import + dump;
    std::printf("%9ld %9.1f %9.1f %10.1f %9.1f %9.1f %12.1f %7.2f %9.2f %9.2f\n", rows, load, save,
                ours, import, dump, theirs, import < 0 ? 0.0 : ours / theirs,
                ms("BM_JmdLookup", rows) * 1000.0, ms("BM_SqliteLookup", rows) * 1000.0);
  }
  double small = ms("BM_JmdLoad", 100000L) + ms("BM_JmdSave", 100000L);
  double large = ms("BM_JmdLoad", 1000000L) + ms("BM_JmdSave", 1000000L);
  if (small > 0 && large > 0) {
    double n_log_n = 10.0 * std::log(1e6) / std::log(1e5);
    std::printf("growth of load+save from 100k to 1M rows: %.2fx (n log n: %.2fx)\n",
                large / small, n_log_n);
  }
}

void print_summary(const SummaryReporter& r) {
  print_table(r, false);
  print_table(r, true);
  std::printf("ratio = (load + save) / (import + dump); below 1 is faster than SQLite.\n");
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  SummaryReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  print_summary(reporter);
  benchmark::Shutdown();
  return 0;
}
