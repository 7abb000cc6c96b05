#include "common/file_util.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <string>
#include <thread>

#include "tests/support/test_dir.h"

namespace px {
namespace {

// Sets an environment variable for one test and restores the old value.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const char* value) : name_(name) {
    const char* old = std::getenv(name);
    if (old != nullptr) old_ = old;
    if (value != nullptr) {
      setenv(name, value, 1);
    } else {
      unsetenv(name);
    }
  }
  ~ScopedEnv() {
    if (old_) {
      setenv(name_, old_->c_str(), 1);
    } else {
      unsetenv(name_);
    }
  }

 private:
  const char* name_;
  std::optional<std::string> old_;
};

bool exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

TEST(PathTest, SeparatorsAndParts) {
  EXPECT_EQ(add_separator(""), "");
  EXPECT_EQ(add_separator("a/"), "a/");
  EXPECT_EQ(add_separator("a\\"), "a\\");
  EXPECT_EQ(add_separator("a"), "a/");
  EXPECT_EQ(strip_separators("a/\\/"), "a");
  EXPECT_EQ(join_path("f", ""), "f");
  EXPECT_EQ(join_path("f", "d\\"), "d\\f");
  EXPECT_EQ(directory_part("c:\\x/y\\f.txt"), "c:\\x/y\\");
  EXPECT_EQ(directory_part("f.txt"), "");
  EXPECT_EQ(file_part("x/y\\f.txt"), "f.txt");
  EXPECT_EQ(cut_at_backslash("a/b\\c\\d"), "a/b");
  EXPECT_TRUE(is_absolute("\\x"));
  EXPECT_TRUE(is_absolute("c:x"));
  EXPECT_FALSE(is_absolute("x/y"));
}

TEST(PathTest, ExtensionsBelongToTheLastComponent) {
  EXPECT_EQ(add_extension("a.txt", "ini"), "a.txt");
  EXPECT_EQ(add_extension("dir.x/name", "ini"), "dir.x/name.ini");
  EXPECT_EQ(add_extension("dir.x\\name", "ini"), "dir.x\\name.ini");
  EXPECT_EQ(strip_extension("dir.x/name"), "dir.x/name");
  EXPECT_EQ(strip_extension("d/a.b.c"), "d/a.b");
  EXPECT_EQ(extension("dir.x/name"), "");
  EXPECT_EQ(extension("a.long"), "lon");
  EXPECT_EQ(extension("a.b.c"), "c");
}

TEST(PathTest, ShortNames) {
  EXPECT_EQ(check_short_name("abcdefgh.txt"), kShortNameOk);
  EXPECT_EQ(check_short_name("abcdefghi.txt"), kShortNameTooLong);
  EXPECT_EQ(check_short_name("a.text"), kShortNameTooLong);
  EXPECT_EQ(check_short_name("long.directory/ok.txt"), kShortNameOk);
  EXPECT_EQ(check_short_name("a?.txt"), kShortNameBadChar);
  EXPECT_EQ(check_short_name("a b"), kShortNameBadChar);
  EXPECT_EQ(check_short_name("a\x7f"), kShortNameBadChar);
  EXPECT_EQ(check_short_name("abcdefghi?"), kShortNameBadChar);  // characters win
  EXPECT_EQ(check_short_name("caf\xe9.txt"), kShortNameOk);      // high bytes are fine
}

class FileUtilTest : public ::testing::Test {
 protected:
  TestDir dir_;
};

TEST_F(FileUtilTest, MoveReplacesTarget) {
  std::string from = dir_.write("from", "new");
  std::string to = dir_.write("to", "old");
  ASSERT_TRUE(move_file(from, to));
  EXPECT_FALSE(exists(from));
  EXPECT_EQ(dir_.read("to"), "new");
}

TEST_F(FileUtilTest, ClassicMoveDeletesTargetFirst) {
  ScopedEnv classic("PLEXAR_PLATFORM", "classic");
  std::string to = dir_.write("to", "old");
  EXPECT_FALSE(move_file(dir_.file("missing"), to));
  EXPECT_FALSE(exists(to));  // the failed move has lost the target

  dir_.write("to", "old");
  ASSERT_TRUE(move_file(dir_.write("from", "new"), to));
  EXPECT_EQ(dir_.read("to"), "new");
}

TEST_F(FileUtilTest, CopyOverwritesButNeverOntoItself) {
  std::string from = dir_.write("from", std::string("a\0b", 3));
  std::string to = dir_.write("to", "much longer old contents");
  ASSERT_TRUE(copy_file(from, to));
  EXPECT_EQ(read_file(to), std::string("a\0b", 3));
  EXPECT_FALSE(copy_file(from, from));
  EXPECT_EQ(read_file(from), std::string("a\0b", 3));
  EXPECT_FALSE(read_file(dir_.file("missing")));
}

TEST_F(FileUtilTest, TempDirectoryFallsBack) {
  ScopedEnv tmpdir("TMPDIR", dir_.file("missing").c_str());
  ScopedEnv tmp("TMP", dir_.path().c_str());
  EXPECT_EQ(temp_directory(), dir_.path());
}

TEST_F(FileUtilTest, TempNamesAreFreeAndDistinct) {
  std::optional<std::string> first = temp_name(dir_.path(), "ab");
  std::optional<std::string> second = temp_name(dir_.path(), "abcdef");
  ASSERT_TRUE(first && second);
  EXPECT_EQ(directory_part(*first), dir_.path() + "/");
  EXPECT_EQ(file_part(*first).substr(0, 3), "PXX");
  EXPECT_EQ(extension(*first), "tmp");
  EXPECT_FALSE(exists(*first));
  EXPECT_EQ(file_part(*second).substr(0, 3), "abc");
  EXPECT_NE(strip_extension(file_part(*first)).substr(3), strip_extension(file_part(*second)).substr(3));

  std::optional<std::string> dat = temp_name_with_extension(dir_.path(), "pre", "dat");
  ASSERT_TRUE(dat);
  EXPECT_EQ(extension(*dat), "dat");
  EXPECT_FALSE(temp_name(dir_.file("missing"), "abc"));
}

TEST_F(FileUtilTest, UniqueNameSkipsTakenNames) {
  std::optional<std::string> name = unique_name(dir_.path(), "x", "log");
  ASSERT_TRUE(name);
  std::string file = file_part(*name);
  EXPECT_EQ(file.substr(0, 2), "px");
  EXPECT_EQ(file.substr(file.size() - 5), "a.log");
  EXPECT_FALSE(exists(*name));

  dir_.write(file, "taken");
  std::optional<std::string> next = unique_name(dir_.path(), "abc", "");
  ASSERT_TRUE(next);
  EXPECT_EQ(file_part(*next).substr(0, 2), "ab");
  EXPECT_FALSE(exists(*next));
}

TEST_F(FileUtilTest, OutputFilesAreAppendedOrReplacedAndAFifoNeverBlocks) {
  std::string log = dir_.file("out.log");
  EXPECT_TRUE(write_output_file(log, "one\n", true));
  EXPECT_TRUE(write_output_file(log, "two\n", true));
  EXPECT_EQ(dir_.read("out.log"), "one\ntwo\n");
  EXPECT_TRUE(write_output_file(log, "new", false));
  EXPECT_EQ(dir_.read("out.log"), "new");
  EXPECT_FALSE(write_output_file(dir_.file("missing/out.log"), "x", true));
  EXPECT_FALSE(write_output_file(dir_.path(), "x", true));

  // Nobody reads the FIFO: no wait, just a failure. With a reader the text
  // goes down the pipe.
  std::string fifo = dir_.file("fifo");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  EXPECT_FALSE(write_output_file(fifo, "lost", true));
  int reader = ::open(fifo.c_str(), O_RDONLY | O_NONBLOCK);
  ASSERT_GE(reader, 0);
  EXPECT_TRUE(write_output_file(fifo, "read", false));
  char buffer[16] = {};
  EXPECT_EQ(::read(reader, buffer, sizeof buffer), 4);
  EXPECT_EQ(std::string(buffer), "read");
  ::close(reader);
}

// Opened files are kept from child programs; a failed open leaves its errno;
// closing reports what close said, once.
TEST_F(FileUtilTest, OpenedFilesAreNotInheritedAndCloseSaysWhyNot) {
  const std::string path = dir_.file("new");
  UniqueFd file = open_file(path, O_WRONLY | O_CREAT | O_EXCL, 0600);
  ASSERT_TRUE(file.valid());
  EXPECT_NE(::fcntl(file.get(), F_GETFD) & FD_CLOEXEC, 0);
  EXPECT_EQ(file.close(), 0);
  EXPECT_FALSE(file.valid());
  EXPECT_EQ(file.close(), 0);  // nothing held any more

  EXPECT_FALSE(open_file(path, O_WRONLY | O_CREAT | O_EXCL, 0600).valid());
  EXPECT_EQ(errno, EEXIST);

  UniqueFd stale(::dup(STDIN_FILENO));
  ASSERT_TRUE(stale.valid());
  ::close(stale.get());  // closed behind its owner's back
  EXPECT_EQ(stale.close(), EBADF);
}

void ignore_signal(int) {}

// A signal that arrives while an open waits (here for a FIFO's writer) does
// not make the open fail.
TEST_F(FileUtilTest, OpenGoesOnAfterASignal) {
  const std::string fifo = dir_.file("fifo");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  struct sigaction action = {};
  struct sigaction old = {};
  action.sa_handler = ignore_signal;  // no SA_RESTART: the open sees EINTR
  ASSERT_EQ(::sigaction(SIGUSR1, &action, &old), 0);
  const pthread_t opener = ::pthread_self();
  std::atomic<bool> writer_opened = false;
  std::thread writer([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    ::pthread_kill(opener, SIGUSR1);
    // The writer end opens without waiting only while a reader waits.
    for (int tries = 0; tries < 200 && !writer_opened; ++tries) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
      UniqueFd end(::open(fifo.c_str(), O_WRONLY | O_NONBLOCK));
      writer_opened = end.valid();
    }
  });
  UniqueFd reader = open_file(fifo, O_RDONLY);
  writer.join();
  ::sigaction(SIGUSR1, &old, nullptr);
  EXPECT_TRUE(reader.valid());
  EXPECT_TRUE(writer_opened);
}

// More than a pipe holds goes through whole, in as many writes as the
// reader makes room for; a write that fails gives its errno.
TEST(WriteAll, WritesEverythingOrSaysWhyNot) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  std::string data(1 << 20, 'x');
  for (size_t i = 0; i < data.size(); i += 4093) data[i] = static_cast<char>('a' + i % 26);
  std::string received;
  std::thread reader([&] {
    char buffer[3000];  // small reads: the writer is held up many times
    for (ssize_t n; (n = ::read(ends[0], buffer, sizeof buffer)) > 0;) {
      received.append(buffer, static_cast<size_t>(n));
    }
  });
  EXPECT_EQ(write_all(ends[1], data), 0);
  ::close(ends[1]);
  reader.join();
  EXPECT_TRUE(received == data);

  auto old = std::signal(SIGPIPE, SIG_IGN);
  EXPECT_EQ(write_all(ends[0], "x"), EBADF);  // the read end
  ::close(ends[0]);
  ASSERT_EQ(::pipe(ends), 0);
  ::close(ends[0]);
  EXPECT_EQ(write_all(ends[1], "no reader"), EPIPE);
  ::close(ends[1]);
  std::signal(SIGPIPE, old);
  EXPECT_EQ(write_all(-1, ""), 0);  // nothing to write: no call made
}

}  // namespace
}  // namespace px
