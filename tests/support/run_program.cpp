#include "tests/support/run_program.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "tests/support/test_dir.h"

namespace px {

ProgramResult run_program(const std::string& program, const std::vector<std::string>& args,
                          const std::string& directory, const ProgramLimits& limits) {
  TestDir capture;
  std::string out_path = capture.file("out"), err_path = capture.file("err");
  ProgramResult result;
  pid_t pid = fork();
  if (pid == 0) {
    if (chdir(directory.c_str()) != 0) _exit(126);
    // The program starts with the default action for a write past the file
    // size limit, as from a shell, even while this test ignores it.
    signal(SIGXFSZ, SIG_DFL);
    if (limits.address_space > 0) {
      rlimit memory{limits.address_space, limits.address_space};
      if (setrlimit(RLIMIT_AS, &memory) != 0) _exit(126);
    }
    int in = open("/dev/null", O_RDONLY);
    int out = open(out_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    int err = open(err_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(in, 0);
    dup2(out, 1);
    dup2(err, 2);
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    execv(program.c_str(), argv.data());
    _exit(127);
  }
  int status = 0;
  auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(limits.seconds);
  pid_t done = 0;
  while (pid > 0 && (done = waitpid(pid, &status, WNOHANG)) == 0) {
    if (std::chrono::steady_clock::now() > deadline) {
      kill(pid, SIGKILL);
      done = waitpid(pid, &status, 0);
      result.timed_out = true;
      break;
    }
    usleep(5000);
  }
  if (done == pid && WIFEXITED(status)) result.status = WEXITSTATUS(status);
  result.out = capture.read("out");
  result.err = capture.read("err");
  return result;
}

pid_t start_program(const std::string& program, const std::vector<std::string>& args,
                    const std::string& directory) {
  pid_t pid = fork();
  if (pid == 0) {
    if (chdir(directory.c_str()) != 0) _exit(126);
    int in = open("/dev/null", O_RDONLY);
    int out = open("/dev/null", O_WRONLY);
    dup2(in, 0);
    dup2(out, 1);
    dup2(out, 2);
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    execv(program.c_str(), argv.data());
    _exit(127);
  }
  return pid;
}

int wait_program(pid_t pid) {
  int status = 0;
  while (waitpid(pid, &status, 0) < 0) {
    if (errno != EINTR) return -1;
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace px
