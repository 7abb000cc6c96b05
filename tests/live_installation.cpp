#include "tests/live_installation.h"

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

extern char** environ;

namespace px {

namespace {

std::string read_text(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

void replace_all(std::string& text, const std::string& from, const std::string& to) {
  for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

// Sets environment entries "NAME=VALUE" for the lifetime of the object.
class ScopedEnvironment {
 public:
  explicit ScopedEnvironment(const std::vector<std::string>& entries) {
    for (const std::string& entry : entries) {
      std::string name = entry.substr(0, entry.find('='));
      const char* old = std::getenv(name.c_str());
      saved_.push_back({name, old != nullptr, old != nullptr ? old : ""});
      setenv(name.c_str(), entry.substr(name.size() + 1).c_str(), 1);
    }
  }
  ~ScopedEnvironment() {
    for (auto it = saved_.rbegin(); it != saved_.rend(); ++it) {
      if (it->had) {
        setenv(it->name.c_str(), it->value.c_str(), 1);
      } else {
        unsetenv(it->name.c_str());
      }
    }
  }

 private:
  struct Saved {
    std::string name;
    bool had;
    std::string value;
  };
  std::vector<Saved> saved_;
};

}  // namespace

bool exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

bool eventually(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
  auto end = std::chrono::steady_clock::now() + limit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return true;
}

LiveInstallation::LiveInstallation() {
  if (const char* old = std::getenv("PLEXAR_PIPE_DIR")) {
    had_pipe_dir_ = true;
    saved_pipe_dir_ = old;
  }
  setenv("PLEXAR_PIPE_DIR", pipe_directory().c_str(), 1);

  std::string console = read_text(PX_SOURCE_DIR "/demo/pxcntrl.ini");
  replace_all(console, "\nInstall=\n", "\nInstall=" + path("plexar.ini") + "\n");
  replace_all(console, "\nLogFile=\n", "\nLogFile=" + path("pxcntrl.log") + "\n");
  dir_.write("pxcntrl.ini", console);
  add_instance("north", "north");
  add_instance("south", "south");
}

LiveInstallation::~LiveInstallation() {
  stop_simulator();
  if (had_pipe_dir_) {
    setenv("PLEXAR_PIPE_DIR", saved_pipe_dir_.c_str(), 1);
  } else {
    unsetenv("PLEXAR_PIPE_DIR");
  }
}

void LiveInstallation::add_instance(const std::string& name, const std::string& source,
                                    const Edits& edits) {
  std::string home = path(name);
  for (const char* sub : {"", "/data", "/errors", "/backup", "/control", "/mst", "/forms", "/logos",
                          "/logs", "/email", "/email/data", "/email/errors", "/email/backup",
                          "/email/postoffice"}) {
    mkdir((home + sub).c_str(), 0755);
  }
  for (const char* file : {"pxserver.ini", "pxemio.ini", "pxmerge.ini"}) {
    std::string text = read_text(PX_SOURCE_DIR "/demo/" + source + "/" + file);
    replace_all(text, "%DEMO%/" + source + "/", home + "/");
    replace_all(text, "%DEMO%", dir_.path());
    if (std::string(file) == "pxserver.ini") {
      for (const auto& [from, to] : edits) replace_all(text, from, to);
    }
    dir_.write(name + "/" + file, text);
  }
  std::error_code ignored;
  std::filesystem::copy_file(PX_SOURCE_DIR "/demo/data/pxjmd.jmd", home + "/pxjmd.jmd", ignored);
  instances_.emplace_back(name, home + "/pxserver.ini");
  write_install_file();
}

void LiveInstallation::write_install_file() const {
  std::string text = "[Plexar]\nNode=localhost\n\n[Configuration]\n";
  for (const auto& [name, config] : instances_) {
    text.append(name).append("=").append(config).append("\n");
  }
  dir_.write("plexar.ini", text);
}

bool LiveInstallation::start_simulator(const std::vector<std::string>& args,
                                       const std::vector<std::string>& environment) {
  std::vector<std::string> words{PXSERVER_SIM_PATH, "-aii" + path("pxcntrl.ini"),
                                 "-all" + path("pxserver-sim.log")};
  words.insert(words.end(), args.begin(), args.end());
  std::vector<std::string> env_words;
  for (char** entry = environ; *entry != nullptr; ++entry) env_words.emplace_back(*entry);
  env_words.insert(env_words.end(), environment.begin(), environment.end());

  std::vector<char*> argv, envp;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  for (std::string& word : env_words) envp.push_back(word.data());
  envp.push_back(nullptr);

  simulator_ = fork();
  if (simulator_ == 0) {
    if (chdir(dir_.path().c_str()) != 0) _exit(126);
    execve(argv[0], argv.data(), envp.data());
    _exit(127);
  }
  if (simulator_ < 0) return false;
  std::string launcher = pipe_directory() + "/PxNexa";
  bool ended = false;
  eventually([&] {
    ended = waitpid(simulator_, nullptr, WNOHANG) == simulator_;
    return ended || exists(launcher);
  });
  if (ended) simulator_ = -1;
  return !ended && exists(launcher);
}

void LiveInstallation::signal_simulator(int signal_number) const {
  if (simulator_ > 0) kill(simulator_, signal_number);
}

int LiveInstallation::stop_simulator() {
  if (simulator_ <= 0) return -1;
  kill(simulator_, SIGCONT);  // a test may have left it stopped
  kill(simulator_, SIGTERM);
  int status = 0;
  pid_t done = 0;
  for (int tick = 0; tick < 1000 && (done = waitpid(simulator_, &status, WNOHANG)) == 0; ++tick) {
    usleep(10000);
  }
  if (done == 0) {
    kill(simulator_, SIGKILL);
    waitpid(simulator_, &status, 0);
    simulator_ = -1;
    return -1;
  }
  simulator_ = -1;
  return done > 0 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

ProgramResult LiveInstallation::run_pxctl(const std::vector<std::string>& args,
                                          const std::vector<std::string>& environment) const {
  ScopedEnvironment scoped(environment);
  std::vector<std::string> words{"-aii" + path("pxcntrl.ini")};
  words.insert(words.end(), args.begin(), args.end());
  return run_program(PXCTL_PATH, words, dir_.path());
}

std::string LiveInstallation::state(const std::string& instance) const {
  std::vector<std::string> args;
  if (!instance.empty()) args = {"--instance", instance};
  args.push_back("state");
  std::string out = run_pxctl(args).out;
  return out.substr(0, out.find('\n'));
}

}  // namespace px
