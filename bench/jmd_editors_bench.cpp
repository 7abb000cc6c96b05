// The JMD editors' lists on a JMD of 1,000,000 job rows (500,000 job names,
// in no order): opening the jobs list, paging to its last page, and a filter
// over every name. Loading the JMD file is not timed. BM_JobListFirstOpen is
// what the operator waits for when the jobs window first opens on a JMD
// just loaded: the job-names list made, the first page put in order and
// formatted. The window marks the jobs naming a missing printer or task a
// moment later: BM_JobListFirstMarks (it holds the first record read after
// the load, which maps the job table's file). BM_JobListLastPage pages from
// the first page of a list just made to its last page. The others reuse the
// list made once: BM_JobListOpen lists it again (a window opened a second
// time), BM_JobListFilter filters every name.
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "bench/jmd_bench_data.h"
#include "config/operator.h"
#include "jmd/editors/jmd_file.h"
#include "jmd/editors/references.h"
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
  std::shared_ptr<px::jmd::JobNames> names() { return file->editor().job_names(); }
  // A fresh load of the file, its job-names list not yet made.
  void reload_file() {
    file->editor().service().close();
    file = std::make_unique<px::editors::JmdFile>(file->path(), op);
    if (!file->load()) std::abort();
  }

  std::string directory;
  QuietOperator op;
  std::unique_ptr<px::editors::JmdFile> file;
};

Loaded& loaded() {
  static Loaded jmd;
  return jmd;
}

px::editors::JmdEditor& editor() { return loaded().file->editor(); }

// The setup of the first-open benchmarks, run with the timing paused: the
// JMD loaded afresh and its jobs list opened as the jobs window opens it.
RowList jobs_list_on_fresh_load() {
  loaded().reload_file();
  RowList list(ListKind::kJobNames);
  editor().reload(list);
  return list;
}

// What a list window does to show its list: the rows read again, the page
// put in order and formatted.
std::vector<std::string> shown_page(RowList& list) {
  editor().reload(list);
  return editor().page_lines(list);
}

// The job-names list made from names with filter; the rows it kept.
double rows_kept(const std::shared_ptr<px::jmd::JobNames>& names, const std::string& filter) {
  RowList list(ListKind::kJobNames);
  list.set_filter(filter);
  list.reload(names);
  return static_cast<double>(list.total());
}

void BM_JobNamesList(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) {
    state.PauseTiming();
    loaded().reload_file();
    state.ResumeTiming();
    benchmark::DoNotOptimize(loaded().names().get());
  }
}

void BM_JobListFirstOpen(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) {
    state.PauseTiming();
    loaded().reload_file();
    state.ResumeTiming();
    RowList list(ListKind::kJobNames);
    benchmark::DoNotOptimize(shown_page(list));
  }
}

// The marks of the first open alone.
void BM_JobListFirstMarks(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) {
    state.PauseTiming();
    RowList list = jobs_list_on_fresh_load();
    state.ResumeTiming();
    benchmark::DoNotOptimize(px::editors::page_marks(editor(), list));
  }
}

// The first change of a list just opened: a name added (the whole list
// sorted once) and the page read again.
void BM_JobNamesFirstChange(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) {
    state.PauseTiming();
    RowList list = jobs_list_on_fresh_load();
    state.ResumeTiming();
    editor().add_job_name("NEWJOB");
    benchmark::DoNotOptimize(shown_page(list));
  }
}

// The first open of a job list changed since its names were made: its marks
// come from queries by job name, whose index is built here.
void BM_JobListMarksAfterAChange(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) {
    state.PauseTiming();
    RowList list = jobs_list_on_fresh_load();
    editor().delete_rows(ListKind::kJobNames, {list.page()[0]});
    editor().reload(list);
    state.ResumeTiming();
    benchmark::DoNotOptimize(px::editors::page_marks(editor(), list));
  }
}

void BM_JobListOpen(benchmark::State& state) {
  std::shared_ptr<px::jmd::JobNames> names = loaded().names();
  for ([[maybe_unused]] auto _ : state) {
    RowList list(ListKind::kJobNames);
    list.reload(names);
    benchmark::DoNotOptimize(list.page_lines(*names));
    state.counters["rows"] = static_cast<double>(list.total());
  }
}

// From the first page of a list just opened to its last page: the last
// page is put in order then.
void BM_JobListLastPage(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) {
    state.PauseTiming();
    loaded().reload_file();
    std::shared_ptr<px::jmd::JobNames> names = loaded().names();
    RowList list(ListKind::kJobNames);
    list.reload(names);
    state.ResumeTiming();
    list.show_page_of(list.total() - 1);
    benchmark::DoNotOptimize(list.page_lines(*names));
  }
}

void BM_JobListFilter(benchmark::State& state) {
  std::shared_ptr<px::jmd::JobNames> names = loaded().names();
  for ([[maybe_unused]] auto _ : state) state.counters["kept"] = rows_kept(names, "m00012");
}

// A filter that keeps every name, on a list just made (in no order yet).
void BM_JobListFilterKeepingAll(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) {
    state.PauseTiming();
    loaded().reload_file();
    std::shared_ptr<px::jmd::JobNames> names = loaded().names();
    state.ResumeTiming();
    state.counters["kept"] = rows_kept(names, "form");
  }
}

void BM_JobWindowOpen(benchmark::State& state) {
  px::engine::Table& jobs = editor().service().jmd()->table(0);
  for ([[maybe_unused]] auto _ : state) {
    RowList list(ListKind::kSteps, "FORM0000003");
    list.reload(jobs);
    benchmark::DoNotOptimize(list.total());
  }
}

// The first job window opened from the jobs list of a JMD just loaded: its
// steps come from the rows the job names were listed from (no index over the
// job table is built), and the first record read maps the job table's file.
void BM_JobWindowFirstOpen(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) {
    state.PauseTiming();
    RowList jobs = jobs_list_on_fresh_load();  // stays open, as the jobs window does
    state.ResumeTiming();
    RowList steps(ListKind::kSteps, "FORM0000003");
    benchmark::DoNotOptimize(shown_page(steps));
  }
}

}  // namespace

BENCHMARK(BM_JobListOpen)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_JobListLastPage)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_JobListFilter)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_JobListFilterKeepingAll)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_JobWindowOpen)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_JobWindowFirstOpen)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_JobNamesList)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_JobListFirstOpen)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_JobListFirstMarks)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_JobNamesFirstChange)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_JobListMarksAfterAChange)->Unit(benchmark::kMillisecond)->Iterations(2);
