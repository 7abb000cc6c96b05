// Runs a program and prints what it took: wall-clock seconds, its maximum
// resident size (kB, as the kernel counts it: the pages of files it maps
// included), the peak of its anonymous memory (kB: what it allocated itself:
// heap, stacks, anonymous mappings) and the peak of the file pages it has
// mapped in (kB: the page cache it reads through mappings), both sampled from
// /proc every millisecond. For bench/run_jmd_memory.
// Usage: peak_memory PROGRAM [ARGS...]; exit status 1 when the program fails.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

namespace {

struct Resident {
  long anonymous_kb = -1;  // RssAnon
  long file_kb = -1;       // RssFile
};

// The resident parts of process pid; -1 for what cannot be read.
Resident resident(pid_t pid) {
  std::ifstream status("/proc/" + std::to_string(pid) + "/status");
  std::string line;
  Resident now;
  while (std::getline(status, line)) {
    if (line.rfind("RssAnon:", 0) == 0) now.anonymous_kb = std::strtol(line.c_str() + 8, nullptr, 10);
    if (line.rfind("RssFile:", 0) == 0) now.file_kb = std::strtol(line.c_str() + 8, nullptr, 10);
  }
  return now;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: peak_memory PROGRAM [ARGS...]\n");
    return 2;
  }
  auto start = std::chrono::steady_clock::now();
  pid_t pid = fork();
  if (pid < 0) return 1;
  if (pid == 0) {
    execvp(argv[1], argv + 1);
    std::perror(argv[1]);
    _exit(127);
  }
  Resident peak{0, 0};
  int status = 0;
  rusage usage{};
  for (;;) {
    pid_t done = wait4(pid, &status, WNOHANG, &usage);
    if (done == pid) break;
    if (done < 0) return 1;
    Resident now = resident(pid);
    peak.anonymous_kb = std::max(peak.anonymous_kb, now.anonymous_kb);
    peak.file_kb = std::max(peak.file_kb, now.file_kb);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  std::printf("%.2f %ld %ld %ld\n", seconds, usage.ru_maxrss, peak.anonymous_kb, peak.file_kb);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? 0 : 1;
}
