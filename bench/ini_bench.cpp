// INI lookups over a 2,000-key file: cached lookups of keys near the start and
// end of the file, a key list, and a rewrite of one key.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "common/ini_profile.h"
#include "common/ini_syntax.h"

namespace {

std::string big_ini_text() {
  std::string text = "[Options]\nVerbosity=0\n";
  for (int s = 0; s < 20; ++s) {
    text += "\n[Section" + std::to_string(s) + "]\n";
    for (int k = 0; k < 100; ++k) {
      text += "Key" + std::to_string(k) + " = value of key " + std::to_string(s * 100 + k) + "\n";
    }
  }
  return text;
}

const std::string& big_ini_file() {
  static const std::string path = [] {
    std::string name = "/tmp/px_bench_" + std::to_string(getpid()) + ".ini";
    std::string text = big_ini_text();
    std::FILE* f = std::fopen(name.c_str(), "w");
    std::fwrite(text.data(), 1, text.size(), f);
    std::fclose(f);
    static const std::string to_remove = name;
    std::atexit([] { std::remove(to_remove.c_str()); });
    return name;
  }();
  return path;
}

void BM_LookupFirstSection(benchmark::State& state) {
  const std::string& file = big_ini_file();
  for (auto _ : state) {
    benchmark::DoNotOptimize(px::ini::get_string("Section0", "Key50", "", 256, file));
  }
}
BENCHMARK(BM_LookupFirstSection);

void BM_LookupLastKey(benchmark::State& state) {
  const std::string& file = big_ini_file();
  for (auto _ : state) {
    benchmark::DoNotOptimize(px::ini::get_string("Section19", "Key99", "", 256, file));
  }
}
BENCHMARK(BM_LookupLastKey);

void BM_LookupMissingKey(benchmark::State& state) {
  const std::string& file = big_ini_file();
  for (auto _ : state) {
    benchmark::DoNotOptimize(px::ini::get_string("Section19", "Nope", "", 256, file));
  }
}
BENCHMARK(BM_LookupMissingKey);

void BM_KeyArrayOfLastSection(benchmark::State& state) {
  const std::string& file = big_ini_file();
  for (auto _ : state) benchmark::DoNotOptimize(px::ini::get_key_array("Section19", file));
}
BENCHMARK(BM_KeyArrayOfLastSection);

void BM_RewriteOneKeyInMemory(benchmark::State& state) {
  std::string text = big_ini_text();
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        px::rewrite_text(text, {"Section10", "Key50", "new value"}, px::Delimiters{}));
  }
}
BENCHMARK(BM_RewriteOneKeyInMemory);

void BM_WriteStringToFile(benchmark::State& state) {
  const std::string& file = big_ini_file();
  int n = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(px::ini::write_int("Section10", "Key50", ++n, file));
  }
}
BENCHMARK(BM_WriteStringToFile);

}  // namespace
