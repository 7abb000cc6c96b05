// `pxctl config set` killed with SIGKILL at random moments while it saves
// the server's main form into a large configuration file: afterwards the
// file holds every key of the form with its old value or every key with its
// new one (the save is one rewrite), and the next save clears what the
// killed ones left. The figures of the run are printed.
#include <gtest/gtest.h>
#include <signal.h>
#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tests/support/run_program.h"
#include "tests/support/sanitizer.h"
#include "tests/support/test_dir.h"

namespace px {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

// The server form's keys, as they are before the save and after it.
struct Key {
  const char* name;
  const char* old_value;
  const char* new_value;
};
constexpr Key kKeys[] = {
    {"PauseTime", "120", "45"},         {"BackupFiles", "No", "Yes"},
    {"FileSpec", "*.DAT", "*.NEW"},     {"DeleteExt", "DA*", "NE*"},
    {"LogFile", "old.log", "new.log"},  {"LogFileSize", "100000", "777"},
    {"Verbosity", "-10", "9"},
};

// The configuration file: the form's keys among many others, so a save has
// a few megabytes to rewrite.
std::string big_config(int filler) {
  std::string text = "; north, a large configuration\r\n[Plexar]\r\nWindowTitle=North\r\nNode=here\r\n";
  for (const char* key : {"LogFile", "LogFileSize", "Verbosity"}) {
    auto at = std::find_if(std::begin(kKeys), std::end(kKeys),
                           [&](const Key& k) { return std::string(k.name) == key; });
    text += std::string(key) + "=" + at->old_value + "\r\n";
  }
  text += "[Processes]\r\nPXSERVER=Plexar Nexa Server\r\n[Options]\r\n";
  for (const char* key : {"PauseTime", "BackupFiles", "FileSpec", "DeleteExt"}) {
    auto at = std::find_if(std::begin(kKeys), std::end(kKeys),
                           [&](const Key& k) { return std::string(k.name) == key; });
    text += std::string(key) + "=" + at->old_value + "\r\n";
  }
  text += "\r\n[Printers]\r\n";
  for (int i = 0; i < filler; ++i) {
    text += "printer" + std::to_string(i) + "=queue" + std::to_string(i % 97) +
            " ; a comment that stays\r\n";
  }
  return text;
}

// The value of key (the first line "key=" at a line start), or nullopt.
std::optional<std::string> value_of(const std::string& text, const std::string& key) {
  std::size_t at = text.find("\n" + key + "=");
  if (at == std::string::npos) return std::nullopt;
  at += key.size() + 2;
  return text.substr(at, text.find_first_of("\r\n", at) - at);
}

// 1 when every key of the form is old, 2 when every key is new, else 0.
int form_state(const std::string& text) {
  bool all_old = true;
  bool all_new = true;
  for (const Key& key : kKeys) {
    std::optional<std::string> value = value_of(text, key.name);
    all_old = all_old && value == key.old_value;
    all_new = all_new && value == key.new_value;
  }
  return all_old ? 1 : all_new ? 2 : 0;
}

TEST(ConfigKillEndToEnd, KilledSavesLeaveEveryKeyOldOrEveryKeyNew) {
  TestDir dir;
  std::string north = dir.file("north.ini");
  std::string install = dir.write("install.ini", "[Plexar]\nNode=here\n[Configuration]\nnorth=" +
                                                     north + "\n");
  std::string console = dir.write("pxcntrl.ini", "[Plexar]\nInstall=" + install + "\n");
  const std::vector<std::string> words = {
      "-aii" + console,   "config",           "set",
      "PXSERVER",         "PauseTime=45",     "Unit=seconds",
      "BackupFiles=yes",  "FileSpec=*.NEW",   "DeleteExt=NE*",
      "LogFile=new.log",  "LogFileSize=777",  "Verbosity=9"};
  const std::string old_text = big_config(70000);
  ASSERT_EQ(form_state(old_text), 1);

  // How long a whole save takes: the shortest of three; and what it writes.
  std::string new_text;
  std::chrono::microseconds whole = std::chrono::hours(1);
  for (int i = 0; i < 3; ++i) {
    dir.write("north.ini", old_text);
    Clock::time_point start = Clock::now();
    ProgramResult r = run_program(PXCTL_PATH, words, dir.path());
    whole = std::min(whole,
                     std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start));
    ASSERT_EQ(r.status, 0) << r.err;
    new_text = dir.read("north.ini");
  }
  ASSERT_EQ(form_state(new_text), 2) << new_text.substr(0, 400);

  std::mt19937 random(20261124);
  std::uniform_int_distribution<long> moment(0, whole.count());
  int kills = 0, finished = 0, old_files = 0, new_files = 0, mixed = 0;
  Clock::time_point start = Clock::now();
  const int runs = repeated_runs(320);
  for (int run = 0; run < runs; ++run) {
    dir.write("north.ini", old_text);
    pid_t pid = start_program(PXCTL_PATH, words, dir.path());
    ASSERT_GT(pid, 0);
    long delay = moment(random);
    struct timespec pause {delay / 1000000, (delay % 1000000) * 1000};
    nanosleep(&pause, nullptr);
    ::kill(pid, SIGKILL);
    (wait_program(pid) == -1 ? kills : finished)++;
    std::string now = dir.read("north.ini");
    int state = form_state(now);
    if (state == 1 && now == old_text) {
      ++old_files;
    } else if (state == 2 && now == new_text) {
      ++new_files;
    } else {
      ++mixed;
    }
  }
  double seconds = std::chrono::duration<double>(Clock::now() - start).count();
  std::printf("config set kill loop over %zu bytes (a save takes %ld us): %d kills, %d finished; "
              "%d old files, %d new files, %d mixed, in %.1f s\n",
              old_text.size(), static_cast<long>(whole.count()), kills, finished, old_files,
              new_files, mixed, seconds);
  EXPECT_EQ(mixed, 0);
  EXPECT_GT(kills, runs * 5 / 8);
  EXPECT_GT(old_files, 0);

  // The next save removes the temporaries the killed saves left.
  dir.write("north.ini", old_text);
  ASSERT_EQ(run_program(PXCTL_PATH, words, dir.path()).status, 0);
  EXPECT_EQ(dir.read("north.ini"), new_text);
  int left = 0;
  for (const auto& entry : fs::directory_iterator(dir.path())) {
    left += entry.path().filename().string().starts_with(".north.ini") ? 1 : 0;
  }
  EXPECT_EQ(left, 0);
}

}  // namespace
}  // namespace px
