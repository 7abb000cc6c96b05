#include "jmd/engine/mapped_file.h"

#include <setjmp.h>
#include <signal.h>
#include <sys/mman.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>

namespace px::engine {

namespace {

// A new mapping reaches at least twice as far as the one before, in steps of
// this many bytes, so that a growing file is mapped again only now and then.
constexpr int64_t kMapStep = int64_t{1} << 20;

// The SIGBUS guard: where a guarded copy on this thread resumes when the
// mapping it reads has lost its file pages; nullptr outside such a copy.
thread_local sigjmp_buf* t_landing = nullptr;

// The SIGBUS action in place before the guard, and whether the guard is in.
struct sigaction g_previous_action;
bool g_guard_installed = false;

// A SIGBUS that no guarded copy expects: does what the earlier action would.
void pass_on(int signal, siginfo_t* info, void* context) {
  const struct sigaction& before = g_previous_action;
  if ((before.sa_flags & SA_SIGINFO) && before.sa_sigaction != nullptr) {
    before.sa_sigaction(signal, info, context);
    return;
  }
  if (!(before.sa_flags & SA_SIGINFO) && before.sa_handler != SIG_DFL &&
      before.sa_handler != SIG_IGN) {
    before.sa_handler(signal);
    return;
  }
  // The default action (a bus error is never really ignored) ends the process.
  struct sigaction fallback {};
  fallback.sa_handler = SIG_DFL;
  sigemptyset(&fallback.sa_mask);
  sigaction(signal, &fallback, nullptr);
  raise(signal);
}

void on_bus_error(int signal, siginfo_t* info, void* context) {
  sigjmp_buf* landing = t_landing;
  if (landing == nullptr) {
    pass_on(signal, info, context);
    return;
  }
  t_landing = nullptr;
  siglongjmp(*landing, 1);
}

bool install_guard() {
  if (g_guard_installed) return true;
  struct sigaction action {};
  action.sa_sigaction = on_bus_error;
  // SA_NODEFER: the jump out of the handler leaves the signal mask as it was,
  // so a later bus error is not found blocked.
  action.sa_flags = SA_SIGINFO | SA_NODEFER;
  sigemptyset(&action.sa_mask);
  if (sigaction(SIGBUS, &action, &g_previous_action) != 0) return false;
  g_guard_installed = true;
  return true;
}

// Copies n bytes; false when the source lost its file pages on the way.
bool guarded_copy(std::byte* out, const std::byte* from, size_t n) {
  sigjmp_buf landing;
  if (sigsetjmp(landing, 0) != 0) return false;
  t_landing = &landing;
  std::atomic_signal_fence(std::memory_order_seq_cst);
  std::memcpy(out, from, n);
  std::atomic_signal_fence(std::memory_order_seq_cst);
  t_landing = nullptr;
  return true;
}

}  // namespace

MappedFile::Copy MappedFile::copy(int fd, int64_t offset, std::byte* out, size_t n,
                                  int64_t file_size) {
  int64_t end = offset + static_cast<int64_t>(n);
  if (offset < 0 || (end > static_cast<int64_t>(length_) && !map(fd, end, file_size))) {
    return Copy::kUnavailable;
  }
  return guarded_copy(out, base_ + offset, n) ? Copy::kDone : Copy::kGone;
}

bool MappedFile::map(int fd, int64_t needed, int64_t file_size) {
  if (failed_ || !install_guard()) {
    failed_ = true;
    return false;
  }
  int64_t want = std::max({needed, file_size, 2 * static_cast<int64_t>(length_)});
  unmap();
  if (want > PTRDIFF_MAX - kMapStep) {
    failed_ = true;
    return false;
  }
  want = (want + kMapStep - 1) / kMapStep * kMapStep;
  // The pages come in at the first touch: each fault maps the neighbouring
  // pages the page cache holds as well (16 at a time), so a table read all
  // over comes in at about the cost of mapping it whole at once, and only
  // the pages actually read count in the resident size.
  void* p = mmap(nullptr, static_cast<size_t>(want), PROT_READ, MAP_SHARED, fd, 0);
  if (p == MAP_FAILED) {
    failed_ = true;
    return false;
  }
  base_ = static_cast<std::byte*>(p);
  length_ = static_cast<size_t>(want);
  return true;
}

void MappedFile::prefetch(int64_t offset, size_t n) const {
  constexpr int64_t kLine = 64;
  int64_t end = offset + static_cast<int64_t>(n);
  if (base_ == nullptr || offset < 0 || end > static_cast<int64_t>(length_)) return;
  for (int64_t at = offset & ~(kLine - 1); at < end; at += kLine) __builtin_prefetch(base_ + at);
}

void MappedFile::unmap() {
  if (base_ != nullptr) munmap(base_, length_);
  base_ = nullptr;
  length_ = 0;
}

}  // namespace px::engine
