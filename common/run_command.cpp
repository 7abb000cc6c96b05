#include "common/run_command.h"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <mutex>
#include <string>
#include <vector>

#include "common/command_line.h"

namespace px {
namespace {

std::atomic<unsigned> g_start_minimised{1};

// Children started without waiting. They are collected once finished so
// they do not stay zombies; only these pids are waited for, never "any
// child", so statuses other code waits for are left alone.
class LaunchedChildren {
 public:
  void add(pid_t pid) {
    std::lock_guard<std::mutex> lock(mutex_);
    pids_.push_back(pid);
  }

  void collect_finished() {
    std::lock_guard<std::mutex> lock(mutex_);
    std::erase_if(pids_, [](pid_t pid) {
      pid_t result;
      do {
        result = ::waitpid(pid, nullptr, WNOHANG);
      } while (result < 0 && errno == EINTR);
      return result != 0;  // finished, or no longer a child of ours
    });
  }

 private:
  std::mutex mutex_;
  std::vector<pid_t> pids_;
};

LaunchedChildren& launched_children() {
  static LaunchedChildren children;
  return children;
}

// Spawn attributes giving the child an empty signal mask and the default
// SIGPIPE action, whatever this process blocks or ignores.
class SpawnAttributes {
 public:
  SpawnAttributes() {
    ready_ = ::posix_spawnattr_init(&attributes_) == 0;
    if (!ready_) return;
    sigset_t empty;
    sigset_t defaults;
    sigemptyset(&empty);
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    ::posix_spawnattr_setsigmask(&attributes_, &empty);
    ::posix_spawnattr_setsigdefault(&attributes_, &defaults);
    ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  SpawnAttributes(const SpawnAttributes&) = delete;
  SpawnAttributes& operator=(const SpawnAttributes&) = delete;
  ~SpawnAttributes() {
    if (ready_) ::posix_spawnattr_destroy(&attributes_);
  }

  const posix_spawnattr_t* get() const { return ready_ ? &attributes_ : nullptr; }

 private:
  posix_spawnattr_t attributes_;
  bool ready_ = false;
};

// Starts words[0] from PATH with words as its argument vector; the child's
// pid, or -1. The C library reports a program that is missing or cannot be
// executed as an error here rather than as a child exiting with 127, so a
// real exit status of 127 still reaches the caller unchanged.
pid_t spawn(const std::vector<std::string>& words) {
  std::vector<char*> argv;
  for (const std::string& word : words) argv.push_back(const_cast<char*>(word.c_str()));
  argv.push_back(nullptr);
  SpawnAttributes attributes;
  pid_t pid = -1;
  int error = ::posix_spawnp(&pid, argv[0], nullptr, attributes.get(), argv.data(), environ);
  return error == 0 ? pid : -1;
}

int wait_for_exit(pid_t pid) {
  int status = 0;
  pid_t result;
  do {
    result = ::waitpid(pid, &status, 0);
  } while (result < 0 && errno == EINTR);
  if (result != pid || !WIFEXITED(status)) return kRunFailed;
  return WEXITSTATUS(status);
}

}  // namespace

void set_start_minimised(unsigned value) { g_start_minimised = value; }

unsigned start_minimised() { return g_start_minimised; }

int run_command(std::string_view command_line, bool wait) {
  launched_children().collect_finished();
  std::vector<std::string> words = split_arguments(command_line);
  if (words.empty()) return kRunFailed;
  pid_t pid = spawn(words);
  if (pid < 0) return kRunFailed;
  if (wait) return wait_for_exit(pid);
  launched_children().add(pid);
  return 0;
}

int launch(std::string_view command_line) { return run_command(command_line, false); }

int run_and_wait(std::string_view command_line) { return run_command(command_line, true); }

}  // namespace px
