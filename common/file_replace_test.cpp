#include "common/file_replace.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <set>
#include <vector>

#include "tests/support/faulty_file_system.h"
#include "tests/support/test_dir.h"
#include "tests/support/unprivileged.h"

namespace px {
namespace {

mode_t mode_of(const std::string& path) {
  struct stat info {};
  stat(path.c_str(), &info);
  return info.st_mode & 07777;
}

// A process id that is certainly not running: a child that has been reaped.
pid_t ended_process() {
  pid_t child = fork();
  if (child == 0) _exit(0);
  waitpid(child, nullptr, 0);
  return child;
}

class FileReplaceTest : public ::testing::Test {
 protected:
  std::set<std::string> names() const {
    std::set<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(dir_.path())) {
      found.insert(entry.path().filename().string());
    }
    return found;
  }

  TestDir dir_;
};

TEST_F(FileReplaceTest, ReplaceKeepsPermissionsAndFollowsLinks) {
  std::string path = dir_.write("f.ini", "old");
  ASSERT_EQ(chmod(path.c_str(), 0640), 0);
  std::string link = dir_.file("link.ini");
  ASSERT_EQ(symlink(path.c_str(), link.c_str()), 0);

  ASSERT_TRUE(replace_file(link, "new"));
  EXPECT_EQ(dir_.read("f.ini"), "new");
  EXPECT_EQ(mode_of(path), 0640u);
  struct stat info {};
  ASSERT_EQ(lstat(link.c_str(), &info), 0);
  EXPECT_TRUE(S_ISLNK(info.st_mode));

  ASSERT_TRUE(replace_file(dir_.file("created"), "x"));
  EXPECT_EQ(dir_.read("created"), "x");
  EXPECT_EQ(names(), (std::set<std::string>{"created", "f.ini", "link.ini"}));
}

TEST_F(FileReplaceTest, ReplaceKeepsOwner) {
  if (geteuid() != 0) GTEST_SKIP() << "needs root to hand the file to another user";
  std::string path = dir_.write("owned.ini", "old");
  ASSERT_EQ(chown(path.c_str(), 65534, 65534), 0);
  ASSERT_TRUE(replace_file(path, "new"));
  struct stat info {};
  ASSERT_EQ(stat(path.c_str(), &info), 0);
  EXPECT_EQ(info.st_uid, 65534u);
  EXPECT_EQ(info.st_gid, 65534u);
  EXPECT_EQ(dir_.read("owned.ini"), "new");
}

// Every step of the rewrite failed with each error a disk gives: the old
// file stays byte for byte, no temporary stays, and the failure names its
// step and message.
TEST_F(FileReplaceTest, EveryFailedStepLeavesTheOldFileWhole) {
  const std::string old_text(3000, 'o');
  const std::string new_text(5000000, 'n');  // more than one buffer of writes
  struct Case {
    FaultyFileSystem::Step step;
    FileStep reported;
    int message;
  };
  const Case cases[] = {
      {FaultyFileSystem::kCreate, FileStep::kCreate, kMsgTempNotCreated},
      {FaultyFileSystem::kWrite, FileStep::kWrite, kMsgTempNotWritten},
      {FaultyFileSystem::kSync, FileStep::kSync, kMsgTempNotSynced},
      {FaultyFileSystem::kClose, FileStep::kWrite, kMsgTempNotWritten},
      {FaultyFileSystem::kRename, FileStep::kRename, kMsgNotRenamed},
  };
  std::string path = dir_.write("data.jmd", old_text);
  for (const Case& c : cases) {
    for (int error : {ENOSPC, EIO, EACCES}) {
      SCOPED_TRACE(std::to_string(c.step) + " " + std::strerror(error));
      FaultyFileSystem files(c.step, error);
      FileReplacement replacement(path, files, {dir_.file("data.bak")});
      replacement.append(new_text.substr(0, 1000));
      replacement.append(new_text.substr(1000));
      FileResult result = replacement.commit();
      EXPECT_FALSE(result);
      EXPECT_EQ(result.failed, c.reported);
      EXPECT_EQ(result.error, error);
      EXPECT_GE(files.failures(), 1);
      EXPECT_EQ(dir_.read("data.jmd"), old_text);
      EXPECT_EQ(names(), (std::set<std::string>{"data.jmd"}));
      FileMessage message = failure_message(result, path);
      EXPECT_EQ(message.number, c.message);
      EXPECT_EQ(message.args, (std::vector<std::string>{path, std::strerror(error)}));
    }
  }
  ASSERT_TRUE(replace_file(path, new_text, system_file_system(), {dir_.file("data.bak")}));
  EXPECT_EQ(dir_.read("data.jmd"), new_text);
  EXPECT_EQ(dir_.read("data.bak"), old_text);
}

TEST_F(FileReplaceTest, ARewriteThatNeedNotLastSkipsTheSyncs) {
  std::string path = dir_.write("a.sts", "old");
  FaultyFileSystem files(FaultyFileSystem::kSync, EIO);
  ReplaceOptions options;
  options.durable = false;
  EXPECT_TRUE(replace_file(path, "new", files, options));
  EXPECT_EQ(files.failures(), 0);
  EXPECT_EQ(dir_.read("a.sts"), "new");
}

TEST_F(FileReplaceTest, BackupThatCannotBeMadeDoesNotStopTheRewrite) {
  std::string path = dir_.write("a.ini", "first");
  dir_.write("a.ini.bak", "older");
  auto held_or_backup = [](const std::string& to) { return !to.ends_with("a.ini"); };
  for (auto step : {FaultyFileSystem::kLink, FaultyFileSystem::kRename}) {
    FaultyFileSystem files(step, EIO, held_or_backup);
    EXPECT_TRUE(replace_file(path, "second", files, {dir_.file("a.ini.bak")}));
    EXPECT_EQ(files.failures(), 1);
    EXPECT_EQ(dir_.read("a.ini"), "second");
    EXPECT_EQ(dir_.read("a.ini.bak"), "older");
    EXPECT_EQ(names(), (std::set<std::string>{"a.ini", "a.ini.bak"}));
    dir_.write("a.ini", "first");
  }
}

TEST_F(FileReplaceTest, ADirectoryThatCannotTakeANewFileRefusesTheRewrite) {
  std::string path = dir_.write("f.ini", "old old old");
  // As a user whom the directory's permissions bind (its owner, with the
  // write bit taken away).
  TestUser user = unprivileged_user();
  ASSERT_EQ(chown(dir_.path().c_str(), user.uid, user.gid), 0);
  ASSERT_EQ(chown(path.c_str(), user.uid, user.gid), 0);
  ASSERT_EQ(chmod(dir_.path().c_str(), 0555), 0);
  std::string outcome = run_as(user, [&]() -> std::string {
    FileResult refused = replace_file(path, "new");
    if (refused.failed != FileStep::kCreate || refused.error != EACCES) {
      return "step " + std::to_string(static_cast<int>(refused.failed)) + ", error " +
             std::to_string(refused.error);
    }
    return {};
  });
  chmod(dir_.path().c_str(), 0755);
  EXPECT_EQ(outcome, "");
  for (int error : {EACCES, EROFS, ENOSPC, EDQUOT}) {
    FaultyFileSystem files(FaultyFileSystem::kCreate, error);
    FileResult refused = replace_file(path, "new", files);
    EXPECT_EQ(failure_message(refused, path).number, kMsgTempNotCreated);
    EXPECT_EQ(dir_.read("f.ini"), "old old old");
  }
  EXPECT_EQ(names(), (std::set<std::string>{"f.ini"}));
}

TEST_F(FileReplaceTest, TemporariesOfEndedProcessesAreRemovedByTheNextRewrite) {
  std::string path = dir_.write("jobs.jmd", "old");
  char host[256] = {};
  ASSERT_EQ(gethostname(host, sizeof host - 1), 0);
  const std::string here = "." + std::string(host).substr(0, 32);  // a plain name here
  const std::string dead = ".jobs.jmd.px" + std::to_string(ended_process()) + "-00a3f2" + here;
  const std::string live = ".jobs.jmd.px" + std::to_string(getppid()) + "-00a3f2" + here;
  const std::string elsewhere = ".jobs.jmd.px" + std::to_string(ended_process()) + "-00a3f2.x";
  const std::string other = ".other.jmd.px" + std::to_string(ended_process()) + "-00a3f2" + here;
  const std::string odd = ".jobs.jmd.px12-";  // not of the form: left alone
  for (const std::string& name : {dead, live, elsewhere, other, odd}) dir_.write(name, "left");

  ASSERT_TRUE(replace_file(path, "new"));
  EXPECT_EQ(names(), (std::set<std::string>{"jobs.jmd", live, elsewhere, other, odd}));
  remove_stale_temporaries(dir_.file("other.jmd"));
  EXPECT_EQ(names(), (std::set<std::string>{"jobs.jmd", live, elsewhere, odd}));
}

TEST_F(FileReplaceTest, RewriteCreatesReadsAndLeavesAlone) {
  auto append_x = [](const std::optional<std::string>& old) -> std::optional<std::string> {
    return old.value_or("new:") + "x";
  };
  std::string path = dir_.file("r.ini");
  ASSERT_TRUE(rewrite_file(path, append_x));
  ASSERT_TRUE(rewrite_file(path, append_x));
  EXPECT_EQ(dir_.read("r.ini"), "new:xx");

  // Nothing to write: the file stays, and one made only for the lock goes.
  auto nothing = [](const std::optional<std::string>&) { return std::optional<std::string>(); };
  EXPECT_TRUE(rewrite_file(path, nothing));
  EXPECT_EQ(dir_.read("r.ini"), "new:xx");
  EXPECT_TRUE(rewrite_file(dir_.file("none.ini"), nothing));
  // A new file whose write fails is not left behind empty.
  FaultyFileSystem full(FaultyFileSystem::kWrite, ENOSPC);
  EXPECT_FALSE(rewrite_file(dir_.file("full.ini"), append_x, full));
  EXPECT_EQ(names(), (std::set<std::string>{"r.ini"}));
}

TEST_F(FileReplaceTest, RewriteRefusesWhatIsNotARegularFile) {
  std::filesystem::create_directory(dir_.file("dir.ini"));
  ASSERT_EQ(mkfifo(dir_.file("fifo.ini").c_str(), 0600), 0);
  auto change = [](const std::optional<std::string>&) { return std::optional<std::string>("x"); };
  for (const std::string& path : {dir_.file("dir.ini"), dir_.file("fifo.ini"), std::string("/dev/null")}) {
    SCOPED_TRACE(path);
    FileResult result = rewrite_file(path, change);
    EXPECT_EQ(result.failed, FileStep::kLock);
    int number = failure_message(result, path).number;
    EXPECT_TRUE(number == kMsgNotRegular || number == kMsgNotLocked) << number;
  }
  EXPECT_TRUE(std::filesystem::is_directory(dir_.file("dir.ini")));
  FaultyFileSystem unlockable(FaultyFileSystem::kLock, ENOLCK);
  FileResult result = rewrite_file(dir_.write("f.ini", "old"), change, unlockable);
  EXPECT_EQ(failure_message(result, "f.ini").number, kMsgNotLocked);
  EXPECT_EQ(dir_.read("f.ini"), "old");
}

TEST_F(FileReplaceTest, KeepExistingPublishesOnlyANewName) {
  ReplaceOptions keep;
  keep.keep_existing = true;
  std::string taken = dir_.write("job00.msg", "first");
  FileResult refused = replace_file(taken, "second", system_file_system(), keep);
  EXPECT_EQ(refused.failed, FileStep::kRename);
  EXPECT_EQ(refused.error, EEXIST);
  EXPECT_EQ(dir_.read("job00.msg"), "first");
  EXPECT_TRUE(replace_file(dir_.file("job01.msg"), "second", system_file_system(), keep));
  EXPECT_EQ(dir_.read("job01.msg"), "second");
  EXPECT_EQ(names(), (std::set<std::string>{"job00.msg", "job01.msg"}));

  // Where the file system has no hard links, a free name is still taken
  // whole, and a taken one still refused.
  FaultyFileSystem no_links(FaultyFileSystem::kLink, EPERM);
  EXPECT_TRUE(replace_file(dir_.file("job02.msg"), "third", no_links, keep));
  EXPECT_EQ(dir_.read("job02.msg"), "third");
  refused = replace_file(taken, "fourth", no_links, keep);
  EXPECT_EQ(refused.error, EPERM);
  EXPECT_EQ(dir_.read("job00.msg"), "first");
  EXPECT_EQ(names(), (std::set<std::string>{"job00.msg", "job01.msg", "job02.msg"}));
}

TEST_F(FileReplaceTest, AppendAddsWholeOrNothing) {
  mode_t umask_was = ::umask(022);
  std::string log = dir_.file("audit.log");
  bool appended = static_cast<bool>(append_file(log, "one\n", 0660));
  ::umask(umask_was);
  ASSERT_TRUE(appended);
  EXPECT_EQ(mode_of(log), 0640u);  // 0660 less the umask
  ASSERT_TRUE(append_file(log, "two\n", 0660));
  EXPECT_EQ(dir_.read("audit.log"), "one\ntwo\n");
  for (auto step : {FaultyFileSystem::kWrite, FaultyFileSystem::kSync, FaultyFileSystem::kClose}) {
    FaultyFileSystem files(step, ENOSPC);
    EXPECT_FALSE(append_file(log, "three\n", 0660, files)) << step;
    EXPECT_EQ(dir_.read("audit.log"), "one\ntwo\n") << step;
  }
  // A file made for a record that failed goes again.
  FaultyFileSystem files(FaultyFileSystem::kWrite, EIO);
  FileResult failed = append_file(dir_.file("new.log"), "x\n", 0660, files);
  EXPECT_EQ(failed.failed, FileStep::kWrite);
  EXPECT_EQ(names(), (std::set<std::string>{"audit.log"}));
}

TEST_F(FileReplaceTest, AppendsOfManyProcessesNeverMix) {
  std::string log = dir_.file("shared.log");
  const std::string line_a(3000, 'a'), line_b(3000, 'b');
  std::vector<pid_t> children;
  for (const std::string* line : {&line_a, &line_b}) {
    pid_t child = fork();
    if (child == 0) {
      for (int i = 0; i < 200; ++i) {
        if (!append_file(log, *line + "\n", 0660)) _exit(1);
      }
      _exit(0);
    }
    children.push_back(child);
  }
  for (pid_t child : children) {
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  std::string text = dir_.read("shared.log");
  ASSERT_EQ(text.size(), 400u * 3001u);
  for (size_t at = 0; at < text.size(); at += 3001) {
    std::string line = text.substr(at, 3000);
    EXPECT_TRUE(line == line_a || line == line_b) << "line at " << at;
  }
}

}  // namespace
}  // namespace px
