// Test helpers for the control code: a private installation with one
// instance, and a Unix-socket listener standing in for a server's control
// socket or the launcher. Used by the *_test.cpp files of this folder only.
#pragma once

#include <stdlib.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <optional>
#include <string>

#include "common/directory_map.h"
#include "common/ini_profile.h"
#include "config/instances.h"
#include "control/node.h"
#include "common/unique_fd.h"
#include "tests/support/test_dir.h"

namespace px {

// A local time for the test clock: year, month 1-12, day, hour, minute, second.
inline std::tm test_moment(int year, int month, int day, int hour, int minute, int second) {
  std::tm t{};
  t.tm_year = year - 1900;
  t.tm_mon = month - 1;
  t.tm_mday = day;
  t.tm_hour = hour;
  t.tm_min = minute;
  t.tm_sec = second;
  return t;
}

// The console's INI file, an install file naming this node "alpha", and the
// instance "north" on it: status file, data and control directories, status
// texts and a control-job template. The pipe directory is private too.
class TestInstallation {
 public:
  TestInstallation() {
    dir_.write("pxcntrl.ini", "[Plexar]\nInstall=" + dir_.file("install.ini") + "\n");
    ini::set_file(dir_.file("pxcntrl.ini"));
    dir_.write("install.ini",
               "[Plexar]\nNode=alpha\n[Configuration]\nnorth=" + dir_.file("north.ini") + "\n");
    std::filesystem::create_directories(dir_.file("data"));
    std::filesystem::create_directories(dir_.file("control"));
    std::filesystem::create_directories(dir_.file("pipes"));
    std::filesystem::create_directories(dir_.file("scratch"));
    write_config(standard_config());
    instance.name = "north";
    instance.window_title = "North office";
    instance.config_file = dir_.file("north.ini");
    ::setenv("PLEXAR_PIPE_DIR", dir_.file("pipes").c_str(), 1);
    ::unsetenv("PLEXAR_PLATFORM");
    reset_node_state();
  }
  ~TestInstallation() {
    ::unsetenv("PLEXAR_PIPE_DIR");
    ::unsetenv("PLEXAR_PLATFORM");
    ini::flush_cache();
    load_directory_map("");  // the default INI file is gone: the map empties
    reset_node_state();
  }
  TestInstallation(const TestInstallation&) = delete;
  TestInstallation& operator=(const TestInstallation&) = delete;

  std::string standard_config() const {
    return "[Plexar]\nWindowTitle=North office\nNode=alpha\nStatusFile=" + dir_.file("status") +
           "\n[Paths]\nDataPath=" + dir_.file("data") + "\nControlPath=" + dir_.file("control") +
           "\n[Messages]\nMsg310=10 Nexa is not running\nMsg315=10 Nexa is paused\n"
           "[PXCNTRLJOB]\nHeader=^job PXCNTRLJOB\nCommand=!CommandString\n"
           "Printers=!LogicalPrinter\nForm=!MDFFileName\nDate=!SystemDate\n"
           "Time=!SystemTime\nBy=!RequestorID\n";
  }
  // Replaces the instance's configuration file.
  void write_config(const std::string& text) {
    ini::drop_file(dir_.file("north.ini"));
    dir_.write("north.ini", text);
  }
  // Replaces a file read through the profile engine.
  void write_ini(const std::string& name, const std::string& text) {
    ini::drop_file(dir_.file(name));
    dir_.write(name, text);
  }
  void set_running() { dir_.write("status", "230101 10:00:00 Nexa is processing\n"); }
  void set_paused() { dir_.write("status", "230101 10:00:00 Nexa is paused\n"); }
  void set_stopped() { dir_.write("status", "230101 10:00:00 Nexa is not running\n"); }

  const TestDir& dir() const { return dir_; }
  std::string control_file(const std::string& name) const { return dir_.file("control/" + name); }

  Instance instance;

 private:
  TestDir dir_;
};

// A Unix stream socket bound at path (listening unless told otherwise) that
// never accepts on its own; tests take the queued connections.
class UnixListener {
 public:
  explicit UnixListener(const std::string& path, bool listening = true) : path_(path) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    fd_.reset(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "%s", path.c_str());
    ::unlink(path.c_str());
    bound_ = ::bind(fd_.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    if (listening) bound_ = bound_ && ::listen(fd_.get(), 8) == 0;
  }
  ~UnixListener() { ::unlink(path_.c_str()); }
  UnixListener(const UnixListener&) = delete;
  UnixListener& operator=(const UnixListener&) = delete;

  bool ok() const { return bound_; }
  void listen() { ::listen(fd_.get(), 8); }
  // How many connections are waiting; each is accepted and closed.
  int take_connections() {
    int count = 0;
    for (;;) {
      UniqueFd c(::accept4(fd_.get(), nullptr, nullptr, SOCK_CLOEXEC));
      if (!c.valid()) return count;
      ++count;
    }
  }
  // Everything the next waiting connection sent up to its end; nullopt when
  // no connection waits.
  std::optional<std::string> read_next() {
    UniqueFd c(::accept4(fd_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!c.valid()) return std::nullopt;
    std::string text;
    char chunk[256];
    for (ssize_t n; (n = ::read(c.get(), chunk, sizeof chunk)) > 0;) {
      text.append(chunk, static_cast<size_t>(n));
    }
    return text;
  }

 private:
  std::string path_;
  UniqueFd fd_;
  bool bound_ = false;
};

}  // namespace px
