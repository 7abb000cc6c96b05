// INI lookups over a 2,000-key file: cached lookups of keys near the start and
// end of the file, a key list, and a rewrite of one key. Then the growth:
// key lists of 100,000 and 1,000,000 keys, and a lookup and a rewrite behind
// a line of 1 MB and 10 MB.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <limits>
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
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(px::ini::get_string("Section0", "Key50", "", 256, file));
  }
}
BENCHMARK(BM_LookupFirstSection);

void BM_LookupLastKey(benchmark::State& state) {
  const std::string& file = big_ini_file();
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(px::ini::get_string("Section19", "Key99", "", 256, file));
  }
}
BENCHMARK(BM_LookupLastKey);

void BM_LookupMissingKey(benchmark::State& state) {
  const std::string& file = big_ini_file();
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(px::ini::get_string("Section19", "Nope", "", 256, file));
  }
}
BENCHMARK(BM_LookupMissingKey);

void BM_KeyArrayOfLastSection(benchmark::State& state) {
  const std::string& file = big_ini_file();
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(px::ini::get_key_array("Section19", file));
}
BENCHMARK(BM_KeyArrayOfLastSection);

void BM_RewriteOneKeyInMemory(benchmark::State& state) {
  std::string text = big_ini_text();
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(
        px::rewrite_text(text, {"Section10", "Key50", "new value"}, px::Delimiters{}));
  }
}
BENCHMARK(BM_RewriteOneKeyInMemory);

void BM_WriteStringToFile(benchmark::State& state) {
  const std::string& file = big_ini_file();
  int n = 0;
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(px::ini::write_int("Section10", "Key50", ++n, file));
  }
}
BENCHMARK(BM_WriteStringToFile);

// Sections of state.range(0) keys: the key list and a lookup of the last key
// must grow linearly with the section.
std::string section_of_keys(int64_t keys) {
  std::string text = "[Big]\n";
  for (int64_t k = 0; k < keys; ++k) text += "Key" + std::to_string(k) + "=value\n";
  return text;
}

void BM_KeyListOfSection(benchmark::State& state) {
  std::string text = section_of_keys(state.range(0));
  for ([[maybe_unused]] auto _ : state) {
    px::KeyList list = px::find_keys(text, "Big", std::numeric_limits<size_t>::max(), {});
    benchmark::DoNotOptimize(list);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_KeyListOfSection)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

// The same through the engine, from the file, as pxctl ini keys does.
void BM_KeyArrayFromFile(benchmark::State& state) {
  std::string name = "/tmp/px_bench_keys_" + std::to_string(getpid()) + ".ini";
  std::string text = section_of_keys(state.range(0));
  std::FILE* f = std::fopen(name.c_str(), "w");
  std::fwrite(text.data(), 1, text.size(), f);
  std::fclose(f);
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(px::ini::get_key_array("Big", name));
  }
  px::ini::drop_file(name);
  std::remove(name.c_str());
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_KeyArrayFromFile)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

// A lookup behind one line of state.range(0) bytes.
void BM_LookupAfterLongLine(benchmark::State& state) {
  std::string text = "[A]\nlong=" + std::string(static_cast<size_t>(state.range(0)), 'x') +
                     "\nlast=found\n";
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(px::find_value(text, "A", "last", 256, {}));
  }
  state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_LookupAfterLongLine)->Arg(1 << 20)->Arg(10 << 20)->Unit(benchmark::kMillisecond);

// Rewriting a key behind one line of state.range(0) bytes.
void BM_RewriteAfterLongLine(benchmark::State& state) {
  std::string text = "[A]\nlong=" + std::string(static_cast<size_t>(state.range(0)), 'x') +
                     "\nlast=found\n";
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(px::rewrite_text(text, {"A", "last", "new"}, px::Delimiters{}));
  }
  state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_RewriteAfterLongLine)->Arg(1 << 20)->Arg(10 << 20)->Unit(benchmark::kMillisecond);

}  // namespace
