// Writes the benchmark's generated JMD of a given number of job rows to a
// file, for measurements of whole programs (bench/run_jmd_memory).
// Usage: jmd_gen ROWS FILE
#include <cstdio>
#include <cstdlib>
#include <string>

#include "bench/jmd_bench_data.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: jmd_gen ROWS FILE\n");
    return 2;
  }
  long rows = std::strtol(argv[1], nullptr, 10);
  std::string text = px::bench::make_jmd(rows);
  std::FILE* out = std::fopen(argv[2], "w");
  if (out == nullptr) {
    std::perror(argv[2]);
    return 1;
  }
  bool written = std::fwrite(text.data(), 1, text.size(), out) == text.size();
  return std::fclose(out) == 0 && written ? 0 : 1;
}
