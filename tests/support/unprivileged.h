// Test helper: runs a piece of a test as a user whom permissions bind. The
// superuser passes every permission check, so a test of a read-only file or
// directory run as root would prove nothing; there the piece runs in a child
// process that has become the user "nobody" first.
#pragma once

#include <grp.h>
#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <string>

namespace px {

struct TestUser {
  uid_t uid;
  gid_t gid;
  bool other;  // not this process's own user: run_as switches to it in a child
};

// This process's own user, or "nobody" when the process is the superuser.
inline TestUser unprivileged_user() {
  if (::geteuid() != 0) return {::geteuid(), ::getegid(), false};
  const passwd* nobody = ::getpwnam("nobody");
  if (nobody == nullptr) return {65534, 65534, true};
  return {nobody->pw_uid, nobody->pw_gid, true};
}

// Runs body as user and returns its text: empty when everything it checked
// held, else what did not. For another user body runs in a child process
// that has taken on that user's ids; a child that cannot do so or does not
// end normally gives a text saying so.
inline std::string run_as(const TestUser& user, const std::function<std::string()>& body) {
  if (!user.other) return body();
  int pipe_ends[2];
  if (::pipe(pipe_ends) != 0) return "no pipe to the child";
  pid_t child = ::fork();
  if (child < 0) return "the child could not be started";
  if (child == 0) {
    ::close(pipe_ends[0]);
    std::string result = ::setgroups(0, nullptr) == 0 && ::setgid(user.gid) == 0 &&
                                 ::setuid(user.uid) == 0
                             ? body()
                             : "the child could not become the unprivileged user";
    if (result.empty()) result = "ok";
    (void)!::write(pipe_ends[1], result.data(), result.size());
    ::_exit(0);
  }
  ::close(pipe_ends[1]);
  std::string result;
  char buffer[512];
  for (ssize_t n; (n = ::read(pipe_ends[0], buffer, sizeof buffer)) != 0;) {
    if (n > 0) result.append(buffer, static_cast<size_t>(n));
    else if (errno != EINTR) break;
  }
  ::close(pipe_ends[0]);
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (!WIFEXITED(status) || result.empty()) return "the child did not end normally";
  return result == "ok" ? std::string() : result;
}

}  // namespace px
