// Crash-safe rewrites seen from outside: pxctl killed at random moments while
// it rewrites a large JMD or INI file, a disk that is full or out of inodes,
// and writers racing on one INI file. The figures of each run are printed.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
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

const std::string kIni = std::string(PX_SOURCE_DIR) + "/demo/pxcntrl.ini";
const std::string kHead = "# Plexar Job Management Database (JMD) file\n";

void write_file(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

std::string read_file(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

std::string big_jmd(int jobs) {
  std::string text = kHead;
  for (int i = 0; i < jobs; ++i) {
    text += "!f JOB" + std::to_string(100000 + i) + " LASER" + std::to_string(i % 7) +
            " forms/f" + std::to_string(i) + ".mdf * 1 Y PXMERGE N N C \"step " +
            std::to_string(i) + "\"\n";
  }
  for (int p = 0; p < 7; ++p) {
    text += "!p LASER" + std::to_string(p) + " L" + std::to_string(p) + " /dev/lp0 * 3 *\n";
  }
  return text;
}

std::string big_ini(int keys) {
  std::string text = "; settings of many agents\n[Agents]\n";
  for (int i = 0; i < keys; ++i) {
    text += "agent" + std::to_string(i) + "=host" + std::to_string(i) + ".example\n";
  }
  return text + "\n[Other]\nx=1\n";
}

// The names in directory that begin with prefix.
int count_starting(const std::string& directory, const std::string& prefix) {
  int count = 0;
  for (const auto& entry : fs::directory_iterator(directory)) {
    if (entry.path().filename().string().starts_with(prefix)) ++count;
  }
  return count;
}

class SafeRewriteEndToEnd : public ::testing::Test {
 protected:
  void SetUp() override {
    tmp_ = dir_.file("tmp");
    fs::create_directory(tmp_);
    const char* old = std::getenv("TMPDIR");
    saved_tmpdir_ = old ? old : "";
    ::setenv("TMPDIR", tmp_.c_str(), 1);  // where pxctl keeps its table files
  }
  void TearDown() override {
    if (saved_tmpdir_.empty()) {
      ::unsetenv("TMPDIR");
    } else {
      ::setenv("TMPDIR", saved_tmpdir_.c_str(), 1);
    }
  }

  std::vector<std::string> pxctl_args(std::vector<std::string> words) {
    words.insert(words.begin(), "-aii" + kIni);
    return words;
  }
  ProgramResult pxctl(const std::vector<std::string>& words) {
    return run_program(PXCTL_PATH, pxctl_args(words), dir_.path());
  }

  struct KillFigures {
    int kills = 0;      // runs killed before they ended
    int finished = 0;   // runs that ended before the kill
    int intact = 0;     // the target held the old or the new text afterwards
    int damaged = 0;
  };

  // Runs pxctl with words runs times (a quarter of them under the sanitizer),
  // killing each run at a random moment of up to what a whole run takes;
  // after each the target must hold exactly the old or the new text, and is
  // set back to the old one.
  KillFigures kill_loop(const std::vector<std::string>& words, const std::string& target,
                        const std::string& old_text, const std::string& new_text, int runs) {
    // How long a whole run takes: the shortest of three.
    std::chrono::microseconds whole = std::chrono::hours(1);
    for (int i = 0; i < 3; ++i) {
      write_file(target, old_text);
      Clock::time_point start = Clock::now();
      EXPECT_EQ(wait_program(start_program(PXCTL_PATH, pxctl_args(words), dir_.path())), 0);
      auto took = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start);
      whole = std::min(whole, took);
      EXPECT_EQ(read_file(target), new_text);
    }

    std::mt19937 random(20261124);
    std::uniform_int_distribution<long> moment(0, whole.count());
    KillFigures figures;
    runs = repeated_runs(runs);
    for (int run = 0; run < runs; ++run) {
      write_file(target, old_text);
      pid_t pid = start_program(PXCTL_PATH, pxctl_args(words), dir_.path());
      long delay = moment(random);
      struct timespec pause {delay / 1000000, (delay % 1000000) * 1000};
      nanosleep(&pause, nullptr);
      ::kill(pid, SIGKILL);
      (wait_program(pid) == -1 ? figures.kills : figures.finished)++;
      std::string now = read_file(target);
      (now == old_text || now == new_text ? figures.intact : figures.damaged)++;
    }
    std::printf("kill loop over %s (%zu bytes, a run takes %ld us): %d kills, %d finished, "
                "%d intact, %d damaged\n",
                fs::path(target).filename().c_str(), old_text.size(),
                static_cast<long>(whole.count()), figures.kills, figures.finished,
                figures.intact, figures.damaged);
    return figures;
  }

  TestDir dir_;
  std::string tmp_;
  std::string saved_tmpdir_;
};

TEST_F(SafeRewriteEndToEnd, KilledJmdSavesLeaveTheOldOrTheNewFile) {
  std::string in = dir_.file("big.jmd");
  write_file(in, big_jmd(40000));
  std::string out = dir_.file("out.jmd");
  // The old OUT: a smaller JMD; the new one: what a whole save writes.
  std::string old_text = big_jmd(3000);
  write_file(out, old_text);
  ASSERT_EQ(pxctl({"jmd", "save", in, out}).status, 0);
  std::string new_text = read_file(out);
  ASSERT_NE(new_text, old_text);

  KillFigures figures = kill_loop({"jmd", "save", in, out}, out, old_text, new_text, 120);
  EXPECT_EQ(figures.damaged, 0);
  EXPECT_GT(figures.kills, repeated_runs(120) / 2);

  // The killed loads left no table files: theirs had no names.
  int table_files = count_starting(tmp_, "");
  int left_beside = count_starting(dir_.path(), ".out.jmd.");
  std::printf("after the kills: %d table files in the temporary directory, %d temporaries "
              "beside OUT\n", table_files, left_beside);
  EXPECT_EQ(table_files, 0);
  // The next save clears what the killed ones left beside OUT.
  ASSERT_EQ(pxctl({"jmd", "save", in, out}).status, 0);
  EXPECT_EQ(count_starting(dir_.path(), ".out.jmd."), 0);
  EXPECT_EQ(read_file(out), new_text);

  // Saving a file over itself keeps it whole, killed or not.
  ProgramResult self = pxctl({"jmd", "save", out, out});
  EXPECT_EQ(self.status, 0) << self.err;
  EXPECT_EQ(read_file(out), new_text);
  std::string only = dir_.file("only.jmd");
  std::string raw = big_jmd(40000);  // no title lines yet: the save adds them
  KillFigures self_figures =
      kill_loop({"jmd", "save", only, only}, only, raw, new_text, 40);
  EXPECT_EQ(self_figures.damaged, 0);
}

TEST_F(SafeRewriteEndToEnd, KilledIniSetsLeaveTheOldOrTheNewFile) {
  std::string ini = dir_.file("agents.ini");
  std::string old_text = big_ini(120000);
  std::vector<std::string> words = {"ini", "set", ini, "Agents", "agent60000", "moved.example"};
  write_file(ini, old_text);
  ASSERT_EQ(pxctl(words).status, 0);
  std::string new_text = read_file(ini);
  ASSERT_NE(new_text.find("agent60000=moved.example\n"), std::string::npos);

  KillFigures figures = kill_loop(words, ini, old_text, new_text, 150);
  EXPECT_EQ(figures.damaged, 0);
  EXPECT_GT(figures.kills, repeated_runs(150) * 2 / 5);
  ASSERT_EQ(pxctl(words).status, 0);
  EXPECT_EQ(count_starting(dir_.path(), ".agents.ini."), 0);
}

// The jmd editing commands write the edited file back over itself: killed
// at any moment it holds the old text or the edited one.
TEST_F(SafeRewriteEndToEnd, KilledJmdEditsLeaveTheOldOrTheEditedFile) {
  std::string jmd = dir_.file("edited.jmd");
  std::string old_text = big_jmd(40000);
  std::vector<std::string> words = {"jmd", "delete", jmd, "printers", "LASER3"};
  write_file(jmd, old_text);
  ProgramResult edit = pxctl(words);
  ASSERT_EQ(edit.status, 0) << edit.err;
  std::string new_text = read_file(jmd);
  ASSERT_EQ(new_text.find("LASER3 L3"), std::string::npos);
  ASSERT_NE(new_text.find("LASER4 L4"), std::string::npos);

  KillFigures figures = kill_loop(words, jmd, old_text, new_text, 40);
  EXPECT_EQ(figures.damaged, 0);
  EXPECT_GT(figures.kills, repeated_runs(40) / 2);
}

// Two writers of different keys at the same moment, 100 times, then 40 at
// once: every change must land.
TEST_F(SafeRewriteEndToEnd, ParallelIniWritersLoseNoChange) {
  std::string ini = dir_.write("shared.ini", big_ini(2000));
  int kept = 0;
  const int trials = 100;
  for (int trial = 0; trial < trials; ++trial) {
    std::string value = "v" + std::to_string(trial);
    pid_t a = start_program(PXCTL_PATH, pxctl_args({"ini", "set", ini, "Agents", "first", value}),
                            dir_.path());
    pid_t b = start_program(PXCTL_PATH, pxctl_args({"ini", "set", ini, "Other", "second", value}),
                            dir_.path());
    EXPECT_EQ(wait_program(a), 0);
    EXPECT_EQ(wait_program(b), 0);
    std::string text = read_file(ini);
    kept += text.find("first=" + value + "\n") != std::string::npos;
    kept += text.find("second=" + value + "\n") != std::string::npos;
  }
  std::printf("two writers: %d trials, %d of %d changes kept\n", trials, kept, 2 * trials);
  EXPECT_EQ(kept, 2 * trials);

  const int writers = 40;
  std::vector<pid_t> started;
  for (int i = 0; i < writers; ++i) {
    started.push_back(start_program(
        PXCTL_PATH, pxctl_args({"ini", "set", ini, "Crowd", "key" + std::to_string(i), "x"}),
        dir_.path()));
  }
  for (pid_t pid : started) EXPECT_EQ(wait_program(pid), 0);
  std::string text = read_file(ini);
  int landed = 0;
  for (int i = 0; i < writers; ++i) {
    landed += text.find("key" + std::to_string(i) + "=x\n") != std::string::npos;
  }
  std::printf("%d writers at once: %d changes kept\n", writers, landed);
  EXPECT_EQ(landed, writers);
  EXPECT_EQ(count_starting(dir_.path(), ".shared.ini."), 0);
}

// A small tmpfs of its own: full, or out of inodes.
class SmallDisk {
 public:
  SmallDisk(const std::string& path, const std::string& options) : path_(path) {
    fs::create_directory(path);
    mounted_ = ::mount("tmpfs", path.c_str(), "tmpfs", 0, options.c_str()) == 0;
  }
  ~SmallDisk() {
    if (mounted_) ::umount2(path_.c_str(), MNT_DETACH);
  }
  bool mounted() const { return mounted_; }
  // Fills the disk with files of size bytes until it refuses one more.
  void fill(size_t size) {
    for (int i = 0;; ++i) {
      std::string name = path_ + "/filler" + std::to_string(i);
      std::ofstream out(name, std::ios::binary);
      out << std::string(size, 'f');
      out.flush();
      if (!out) break;
    }
  }

 private:
  std::string path_;
  bool mounted_ = false;
};

TEST_F(SafeRewriteEndToEnd, AFullDiskLeavesTheOldFilesWhole) {
  SmallDisk disk(dir_.file("disk"), "size=256k");
  if (!disk.mounted()) GTEST_SKIP() << "a tmpfs cannot be mounted here; the seam tests cover it";
  std::string in = dir_.file("big.jmd");
  write_file(in, big_jmd(5000));
  std::string out = dir_.file("disk/out.jmd");
  std::string old_jmd = big_jmd(500);
  write_file(out, old_jmd);
  std::string ini = dir_.file("disk/settings.ini");
  std::string old_ini = big_ini(1000);  // larger than the room left
  write_file(ini, old_ini);
  disk.fill(4096);

  ProgramResult save = pxctl({"jmd", "save", in, out});
  EXPECT_EQ(save.status, 1);
  EXPECT_NE(save.err.find("[1301]"), std::string::npos) << save.err;
  EXPECT_NE(save.err.find("[910]"), std::string::npos) << save.err;
  EXPECT_EQ(read_file(out), old_jmd);

  ProgramResult set = pxctl({"ini", "set", ini, "Other", "x", "2"});
  EXPECT_EQ(set.status, 1);
  EXPECT_NE(set.err.find("[1301]"), std::string::npos) << set.err;
  EXPECT_EQ(read_file(ini), old_ini);
  EXPECT_EQ(count_starting(dir_.file("disk"), "."), 0);
}

TEST_F(SafeRewriteEndToEnd, ADiskWithoutFreeInodesRefusesTheRewrite) {
  SmallDisk disk(dir_.file("disk"), "size=1m,nr_inodes=16");
  if (!disk.mounted()) GTEST_SKIP() << "a tmpfs cannot be mounted here; the seam tests cover it";
  std::string ini = dir_.file("disk/settings.ini");
  std::string old_ini = big_ini(100);
  write_file(ini, old_ini);
  disk.fill(1);

  ProgramResult set = pxctl({"ini", "set", ini, "Other", "x", "2"});
  EXPECT_EQ(set.status, 1);
  EXPECT_NE(set.err.find("[1300]"), std::string::npos) << set.err;
  EXPECT_EQ(read_file(ini), old_ini);
}

}  // namespace
}  // namespace px
