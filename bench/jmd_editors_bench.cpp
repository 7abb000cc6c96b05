// The JMD editors' lists on a JMD of 1,000,000 job rows (about 500,000 job
// names): opening the jobs list (its rows read through the job-names
// table's query and the first page formatted), paging to its last page, and
// a filter over every row. The JMD is loaded, and its job-names table made,
// once before the timings; making that table, and the whole first open of
// the list, are timed on their own.
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "bench/jmd_bench_data.h"
#include "config/operator.h"
#include "jmd/editors/jmd_file.h"
#include "jmd/editors/row_list.h"

namespace {

using px::editors::ListKind;
using px::editors::RowList;

constexpr long kJobRows = 1'000'000;

class QuietOperator : public px::Operator {
 public:
  void show(int, const std::vector<std::string>&) override {}
  size_t ask(int, const std::vector<std::string>&, const std::vector<int>&) override { return 0; }
  px::PrinterReloadChoice choose_printer_reload(std::string_view,
                                                const std::vector<std::string>&) override {
    return {};
  }
};

// The generated JMD loaded once, in a private directory removed at exit.
struct Loaded {
  Loaded() {
    std::string dir = (std::filesystem::temp_directory_path() / "jmdeditbench.XXXXXX").string();
    if (mkdtemp(dir.data()) == nullptr) std::abort();
    directory = dir;
    setenv("TMPDIR", directory.c_str(), 1);
    std::string path = directory + "/big.jmd";
    std::FILE* out = std::fopen(path.c_str(), "w");
    std::string text = px::bench::make_jmd(kJobRows);
    std::fwrite(text.data(), 1, text.size(), out);
    std::fclose(out);
    file = std::make_unique<px::editors::JmdFile>(path, op);
    if (!file->load()) std::abort();
  }
  ~Loaded() {
    file.reset();
    std::error_code ignored;
    std::filesystem::remove_all(directory, ignored);
  }
  px::engine::Table& names() { return *file->editor().table(ListKind::kJobNames); }

  std::string directory;
  QuietOperator op;
  std::unique_ptr<px::editors::JmdFile> file;
};

Loaded& loaded() {
  static Loaded jmd;
  return jmd;
}

void BM_JobNamesTable(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    loaded().file->editor().service().close();
    loaded().file = std::make_unique<px::editors::JmdFile>(loaded().file->path(), loaded().op);
    if (!loaded().file->load()) std::abort();
    state.ResumeTiming();
    benchmark::DoNotOptimize(&loaded().names());
  }
}

// The first open of the jobs list on a JMD just loaded: the job-names table
// made, its rows listed and the first page formatted.
void BM_JobListFirstOpen(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    loaded().file->editor().service().close();
    loaded().file = std::make_unique<px::editors::JmdFile>(loaded().file->path(), loaded().op);
    if (!loaded().file->load()) std::abort();
    state.ResumeTiming();
    px::engine::Table& names = loaded().names();
    RowList list(ListKind::kJobNames);
    list.reload(names);
    benchmark::DoNotOptimize(list.page_lines(names));
  }
}

void BM_JobListOpen(benchmark::State& state) {
  px::engine::Table& names = loaded().names();
  for (auto _ : state) {
    RowList list(ListKind::kJobNames);
    list.reload(names);
    benchmark::DoNotOptimize(list.page_lines(names));
    state.counters["rows"] = static_cast<double>(list.total());
  }
}

void BM_JobListLastPage(benchmark::State& state) {
  px::engine::Table& names = loaded().names();
  RowList list(ListKind::kJobNames);
  list.reload(names);
  for (auto _ : state) {
    list.show_from(0);
    list.show_page_of(list.total() - 1);
    benchmark::DoNotOptimize(list.page_lines(names));
  }
}

void BM_JobListFilter(benchmark::State& state) {
  px::engine::Table& names = loaded().names();
  for (auto _ : state) {
    RowList list(ListKind::kJobNames);
    list.set_filter("m00012");
    list.reload(names);
    state.counters["kept"] = static_cast<double>(list.total());
  }
}

void BM_JobWindowOpen(benchmark::State& state) {
  px::engine::Table& jobs = loaded().file->editor().service().jmd()->table(0);
  for (auto _ : state) {
    RowList list(ListKind::kSteps, "FORM0000003");
    list.reload(jobs);
    benchmark::DoNotOptimize(list.total());
  }
}

}  // namespace

BENCHMARK(BM_JobListOpen)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_JobListLastPage)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_JobListFilter)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_JobWindowOpen)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_JobNamesTable)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_JobListFirstOpen)->Unit(benchmark::kMillisecond)->Iterations(2);
