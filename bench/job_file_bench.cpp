// Job-file reading speed on a large generated file: iterating every field,
// and looking up the last one (a full scan).
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "common/job_file.h"

namespace {

constexpr int kFields = 50000;

// A job file of kFields fields, every fourth of them three lines long, in a
// private directory removed at exit.
class LargeJobFile {
 public:
  LargeJobFile() {
    std::string dir = (std::filesystem::temp_directory_path() / "jobbench.XXXXXX").string();
    if (mkdtemp(dir.data()) == nullptr) abort();
    dir_ = dir;
    path_ = dir + "/large.job";
    write();
  }
  ~LargeJobFile() {
    std::error_code ignored;
    std::filesystem::remove_all(dir_, ignored);
  }
  const std::string& path() const { return path_; }
  long bytes() const { return static_cast<long>(std::filesystem::file_size(path_)); }

 private:
  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  void write() const {
    std::unique_ptr<std::FILE, Closer> file(std::fopen(path_.c_str(), "w"));
    if (!file) abort();
    std::fputs("^job BENCHJOB\n^form BENCHFORM\n", file.get());
    for (int i = 0; i < kFields; ++i) {
      std::fprintf(file.get(), "^field name%d\nvalue of field %d\n", i, i);
      if (i % 4 == 0) std::fputs("second line of the value\nthird line of the value\n", file.get());
    }
  }

  std::string dir_;
  std::string path_;
};

const LargeJobFile& large_file() {
  static const LargeJobFile file;
  return file;
}

void BM_NextFieldAll(benchmark::State& state) {
  const LargeJobFile& file = large_file();
  px::JobFile job(file.path());
  for ([[maybe_unused]] auto _ : state) {
    job.open(file.path());
    px::Field field;
    int count = 0;
    while (job.next_field(field) == 0 && !field.name.empty()) ++count;
    if (count != kFields) state.SkipWithError("wrong field count");
  }
  state.SetItemsProcessed(state.iterations() * kFields);
  state.SetBytesProcessed(state.iterations() * file.bytes());
}
BENCHMARK(BM_NextFieldAll)->Unit(benchmark::kMillisecond);

void BM_FieldValueLast(benchmark::State& state) {
  const LargeJobFile& file = large_file();
  px::JobFile job(file.path());
  const std::string last = "NAME" + std::to_string(kFields - 1);
  for ([[maybe_unused]] auto _ : state) {
    std::optional<std::string> value = job.field_value(last);
    if (!value) state.SkipWithError("last field not found");
    benchmark::DoNotOptimize(value);
  }
  state.SetBytesProcessed(state.iterations() * file.bytes());
}
BENCHMARK(BM_FieldValueLast)->Unit(benchmark::kMillisecond);

}  // namespace
