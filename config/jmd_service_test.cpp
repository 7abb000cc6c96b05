#include "config/jmd_service.h"

#include <cstring>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <filesystem>
#include <set>

#include "common/ini_profile.h"
#include "config/jmd_printers.h"
#include "config/message_numbers.h"
#include "config/recording_operator.h"
#include "jmd/jmd_writer.h"
#include "tests/support/faulty_file_system.h"
#include "tests/support/test_dir.h"
#include "tests/support/unprivileged.h"

namespace px {
namespace {

// A JMD as an operator might have left it: rows out of order, no titles.
const char* const kOldJmd =
    "# Plexar Job Management Database (JMD) file\n"
    "!f INVOICE LASER1 inv.mdf * 1 T PXMERGE N N C \"first step\"\n"
    "!f CHEQUE LASER2 chq.mdf * 2 T PXMERGE N N C *\n"
    "!f INVOICE LASER2 inv2.mdf * 1 T PXMERGE N N C *\n"
    "!p LASER2 * LPT2 * 50 *\n"
    "!p LASER1 * LPT1 * 50 *\n";

std::string jmd_text(const std::vector<std::string>& job_lines) {
  std::string text = "# Plexar Job Management Database (JMD) file\n";
  for (const std::string& line : job_lines) text += "!f " + line + " P1 a.mdf * 1 T X N N C *\n";
  return text;
}

class JmdServiceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (const char* old = std::getenv("TMPDIR")) saved_tmpdir_ = old;
    std::filesystem::create_directories(dir_.file("tmp"));
    std::filesystem::create_directories(dir_.file("data"));
    ::setenv("TMPDIR", dir_.file("tmp").c_str(), 1);
    ini::set_file(dir_.write("pxcntrl.ini", "[Titles]\n!f1=# Jobs\n!p1=# Printers\n"));
    jmd_ = dir_.write("data/jobs.jmd", kOldJmd);
    backup_ = dir_.file("data/jobs.JBK");
    use_instance("north", "[Options]\nJMDFileName=" + jmd_ + "\n");
  }
  void TearDown() override {
    service_.close();
    if (saved_tmpdir_.empty()) {
      ::unsetenv("TMPDIR");
    } else {
      ::setenv("TMPDIR", saved_tmpdir_.c_str(), 1);
    }
    ini::flush_cache();
  }

  // Makes an instance with this configuration text current.
  std::string use_instance(const std::string& name, const std::string& config) {
    std::string file = dir_.write(name + ".ini", config);
    set_current_instance({name, name, file});
    return file;
  }

  // What the JMD writer makes of text, as pxctl jmd save writes it.
  std::string written_by_writer(const std::string& text) {
    std::string in = dir_.write("writer-in.jmd", text);
    jmd::LogReporter reporter;
    std::unique_ptr<jmd::Jmd> loaded = jmd::load_jmd(in, reporter);
    EXPECT_TRUE(loaded);
    EXPECT_TRUE(jmd::save_jmd(*loaded, dir_.file("writer-out.jmd")));
    jmd::close_jmd(std::move(loaded));
    return dir_.read("writer-out.jmd");
  }

  std::set<std::string> files_in(const std::string& sub) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(dir_.file(sub))) {
      names.insert(entry.path().filename().string());
    }
    return names;
  }

  // The job names the "jobname" list holds, in the order they were made.
  std::vector<std::string> job_names() {
    std::shared_ptr<jmd::JobNames> names = service_.job_names(op_);
    if (names == nullptr) return {};
    std::vector<std::string> result;
    for (long id = 1; id <= names->entries(); ++id) {
      EXPECT_TRUE(names->listed(id));
      result.emplace_back(names->name(id));
    }
    return result;
  }

  TestDir dir_;
  std::string saved_tmpdir_;
  std::string jmd_;
  std::string backup_;
  RecordingOperator op_;
  JmdService service_;
};

TEST(JmdBackupName, CutsTheExtensionOfTheLastComponentOnly) {
  EXPECT_EQ(jmd_backup_name("/data/jobs.jmd"), "/data/jobs.JBK");
  EXPECT_EQ(jmd_backup_name("jobs"), "jobs.JBK");
  EXPECT_EQ(jmd_backup_name("a.b\\jobs"), "a.b\\jobs.JBK");
  EXPECT_EQ(jmd_backup_name("a.b/jobs"), "a.b/jobs.JBK");
  EXPECT_EQ(jmd_backup_name("/d/jobs.tar.gz"), "/d/jobs.tar.JBK");
}

TEST_F(JmdServiceTest, OpensOnceAndKeepsItUntilClosedOrTheInstanceChanges) {
  EXPECT_FALSE(service_.is_open());
  jmd::Jmd* first = service_.open(op_);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->row_count(jmd::kJobTable), 3);
  dir_.write("data/jobs.jmd", jmd_text({"ONLY"}));  // not read again while open
  EXPECT_EQ(service_.open(op_), first);
  EXPECT_EQ(service_.jmd(), first);
  EXPECT_EQ(first->row_count(jmd::kJobTable), 3);
  service_.set_modified(true);
  EXPECT_TRUE(service_.modified());

  service_.close();
  EXPECT_FALSE(service_.is_open());
  EXPECT_FALSE(service_.modified());
  ASSERT_NE(service_.open(op_), nullptr);
  EXPECT_EQ(service_.jmd()->row_count(jmd::kJobTable), 1);
  service_.set_modified(true);

  std::string south_jmd = dir_.write("data/south.jmd", jmd_text({"A", "B"}));
  use_instance("south", "[Options]\nJMDFileName=" + south_jmd + "\n");
  EXPECT_FALSE(service_.is_open());
  EXPECT_FALSE(service_.modified());
  ASSERT_NE(service_.open(op_), nullptr);
  EXPECT_EQ(service_.jmd()->row_count(jmd::kJobTable), 2);
  EXPECT_TRUE(op_.shown().empty());
}

// The tables' files have no name even while open, so neither a normal end
// nor a killed process leaves anything in the temporary directory.
TEST_F(JmdServiceTest, ProcessServiceLeavesNoTableFiles) {
  EXPECT_EXIT(
      {
        bool opened = jmd_service().open(op_) != nullptr && jmd_service().clipboard(op_) &&
                      jmd_service().job_names(op_);
        std::exit(opened && files_in("tmp").empty() ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
  EXPECT_EXIT(
      {
        if (jmd_service().open(op_) != nullptr) ::kill(::getpid(), SIGKILL);
        std::exit(1);
      },
      ::testing::KilledBySignal(SIGKILL), "");
  EXPECT_TRUE(files_in("tmp").empty());
}

TEST_F(JmdServiceTest, OpenShowsWhyItFailed) {
  set_current_instance({"gone", "gone", dir_.file("gone.ini")});
  EXPECT_EQ(service_.open(op_), nullptr);
  EXPECT_EQ(op_.shown().back(),
            (ShownMessage{msg::kIniUnreadable, {display_path(dir_.file("gone.ini"))}}));
  std::filesystem::create_directory(dir_.file("folder.ini"));
  set_current_instance({"folder", "folder", dir_.file("folder.ini")});
  EXPECT_EQ(service_.open(op_), nullptr);
  EXPECT_EQ(op_.shown().back(),
            (ShownMessage{msg::kIniUnreadable, {display_path(dir_.file("folder.ini"))}}));

  std::string bare = use_instance("bare", "[Options]\nJMDFileName= \n");
  EXPECT_EQ(service_.open(op_), nullptr);
  EXPECT_EQ(op_.shown().back(),
            (ShownMessage{msg::kSettingMissing, {"Options", display_path(bare), "JMDFileName"}}));

  std::string missing = dir_.file("data/missing.jmd");
  use_instance("lost", "[Options]\nJMDFileName=" + missing + "\n");
  op_.clear();
  EXPECT_EQ(service_.open(op_), nullptr);
  EXPECT_EQ(op_.shown(),
            (std::vector<ShownMessage>{{jmd::kMsgCannotOpen, {display_path(missing)}},
                                       {msg::kJmdNotLoaded, {display_path(missing)}}}));
  EXPECT_FALSE(service_.is_open());
}

TEST_F(JmdServiceTest, SaveKeepsThePreviousFileAsTheBackup) {
  ASSERT_NE(service_.open(op_), nullptr);
  service_.set_modified(true);
  ASSERT_TRUE(service_.save(op_));
  EXPECT_FALSE(service_.modified());
  std::string saved = written_by_writer(kOldJmd);
  EXPECT_EQ(dir_.read("data/jobs.jmd"), saved);
  EXPECT_EQ(dir_.read("data/jobs.JBK"), kOldJmd);

  // A second save keeps only the version before it.
  ASSERT_TRUE(service_.save(op_));
  EXPECT_EQ(dir_.read("data/jobs.JBK"), saved);
  EXPECT_EQ(files_in("data"), (std::set<std::string>{"jobs.JBK", "jobs.jmd"}));
  EXPECT_TRUE(op_.shown().empty());

  service_.close();
  EXPECT_TRUE(service_.save(op_));  // nothing open: nothing done
  EXPECT_EQ(dir_.read("data/jobs.JBK"), saved);
}

TEST_F(JmdServiceTest, SaveOfAJmdNamedLikeItsBackupMakesNoBackup) {
  std::string odd = dir_.write("data/odd.JBK", kOldJmd);
  use_instance("odd", "[Options]\nJMDFileName=" + odd + "\n");
  ASSERT_NE(service_.open(op_), nullptr);
  ASSERT_TRUE(service_.save(op_));
  EXPECT_EQ(dir_.read("data/odd.JBK"), written_by_writer(kOldJmd));
}

TEST_F(JmdServiceTest, FailedSaveLeavesTheJmdAndTheBackupAsTheyWere) {
  dir_.write("data/jobs.JBK", "old backup\n");
  ASSERT_NE(service_.open(op_), nullptr);
  auto to_jmd = [](const std::string& path) { return !path.ends_with(".JBK"); };
  for (auto fault : {FaultyFileSystem::kCreate, FaultyFileSystem::kWrite, FaultyFileSystem::kSync,
                     FaultyFileSystem::kClose, FaultyFileSystem::kRename}) {
    SCOPED_TRACE(fault);
    op_.clear();
    service_.set_modified(true);
    FaultyFileSystem files(fault, ENOSPC, to_jmd);
    EXPECT_FALSE(service_.save(op_, files));
    EXPECT_EQ(op_.shown(),
              (std::vector<ShownMessage>{{msg::kJmdNotWritten, {display_path(jmd_)}}}));
    EXPECT_TRUE(service_.modified());
    EXPECT_EQ(dir_.read("data/jobs.jmd"), kOldJmd);
    EXPECT_EQ(dir_.read("data/jobs.JBK"), "old backup\n");
    EXPECT_EQ(files_in("data"), (std::set<std::string>{"jobs.JBK", "jobs.jmd"}));
  }
}

TEST_F(JmdServiceTest, BackupThatCannotBeMadeDoesNotStopTheSave) {
  dir_.write("data/jobs.JBK", "old backup\n");
  ASSERT_NE(service_.open(op_), nullptr);
  auto to_backup = [](const std::string& path) {
    return path.ends_with(".JBK") || path.find(".px") != std::string::npos;
  };
  for (auto fault : {FaultyFileSystem::kLink, FaultyFileSystem::kRename}) {
    SCOPED_TRACE(fault);
    dir_.write("data/jobs.jmd", kOldJmd);
    FaultyFileSystem files(fault, EIO, to_backup);
    EXPECT_TRUE(service_.save(op_, files));
    EXPECT_EQ(dir_.read("data/jobs.jmd"), written_by_writer(kOldJmd));
    EXPECT_EQ(dir_.read("data/jobs.JBK"), "old backup\n");
    EXPECT_EQ(files_in("data"), (std::set<std::string>{"jobs.JBK", "jobs.jmd"}));
  }
  EXPECT_TRUE(op_.shown().empty());
}

TEST_F(JmdServiceTest, SaveIntoADirectoryThatCannotTakeFilesFails) {
  ASSERT_NE(service_.open(op_), nullptr);
  // As a user whom the directory's permissions bind: its owner, with the
  // write bit taken away.
  TestUser user = unprivileged_user();
  for (const std::string& path : {dir_.path(), dir_.file("data"), jmd_}) {
    ASSERT_EQ(::chown(path.c_str(), user.uid, user.gid), 0) << path;
  }
  ::chmod(dir_.file("data").c_str(), 0555);
  std::string outcome = run_as(user, [&]() -> std::string {
    return service_.save(op_) ? "saved into a read-only directory" : "";
  });
  ::chmod(dir_.file("data").c_str(), 0755);
  EXPECT_EQ(outcome, "");
  EXPECT_EQ(dir_.read("data/jobs.jmd"), kOldJmd);
  EXPECT_EQ(files_in("data"), (std::set<std::string>{"jobs.jmd"}));
  // The directory gone since the JMD was loaded.
  std::filesystem::rename(dir_.file("data"), dir_.file("moved"));
  op_.clear();
  EXPECT_FALSE(service_.save(op_));
  EXPECT_EQ(op_.last(), msg::kJmdNotWritten);
  EXPECT_EQ(files_in("moved"), (std::set<std::string>{"jobs.jmd"}));
}

TEST_F(JmdServiceTest, JobNamesCompareOnlyNeighbouringRows) {
  dir_.write("data/jobs.jmd", jmd_text({"A", "A", "B", "A", "C", "C"}));
  EXPECT_EQ(job_names(), (std::vector<std::string>{"A", "B", "A", "C"}));
  EXPECT_EQ(service_.job_names(op_), service_.job_names(op_));
  EXPECT_TRUE(op_.shown().empty());
  // Noted at the load: each name's rows are known.
  std::shared_ptr<jmd::JobNames> loaded = service_.job_names(op_);
  uint64_t changes = service_.jmd()->table(jmd::kJobTable).change_count();
  EXPECT_TRUE(loaded->runs_hold(changes));
  EXPECT_EQ(loaded->run(3), std::make_pair(4L, 5L));
  EXPECT_FALSE(loaded->runs_hold(changes + 1));

  // A deleted row no longer separates its neighbours.
  service_.close();
  jmd::Jmd* database = service_.open(op_);
  ASSERT_NE(database, nullptr);
  engine::Table& jobs = database->table(jmd::kJobTable);
  ASSERT_TRUE(jobs.add_index(1));            // FormName, as the editors' queries build it
  ASSERT_TRUE(jobs.delete_index_row(3, 1));  // the B row
  EXPECT_EQ(job_names(), (std::vector<std::string>{"A", "C"}));
  // Walked past a deleted row: the rows of a name are not known.
  EXPECT_FALSE(service_.job_names(op_)->runs_hold(jobs.change_count()));

  // Names come from the job table as it is now, long ones whole.
  service_.close();
  database = service_.open(op_);
  ASSERT_NE(database, nullptr);
  engine::Table& changed = database->table(jmd::kJobTable);
  std::vector<std::byte> record(static_cast<size_t>(changed.record_size()));
  ASSERT_TRUE(changed.get_row(6, record));
  const std::string long_name = "A JOB NAME LONGER THAN SIXTEEN BYTES";
  std::memcpy(record.data() + 1, long_name.c_str(), long_name.size() + 1);
  ASSERT_TRUE(changed.update_row(6, record));
  EXPECT_EQ(job_names(), (std::vector<std::string>{"A", "B", "A", "C", long_name}));
}

TEST_F(JmdServiceTest, ClipboardIsMadeOnFirstUseAndEmptiedOnRequest) {
  engine::Table* clipboard = service_.clipboard(op_);
  ASSERT_NE(clipboard, nullptr);
  EXPECT_EQ(service_.clipboard(op_), clipboard);
  EXPECT_EQ(clipboard->record_size(), 328);
  std::vector<char> step(328, '\0');
  ASSERT_EQ(clipboard->add_row(std::as_bytes(std::span<const char>(step))), 1);
  service_.empty_clipboard();
  EXPECT_EQ(service_.clipboard(op_)->row_count(), 0);
  ASSERT_NE(service_.job_names(op_), nullptr);
  service_.close();
  EXPECT_TRUE(files_in("tmp").empty());  // the scratch tables' files never had names
}

TEST_F(JmdServiceTest, ListsThatCannotBeMadeAreReported) {
  jmd::Jmd* database = service_.open(op_);
  ASSERT_NE(database, nullptr);
  // A job table changed since the load is walked through its index, which
  // needs a query: every one of them is taken.
  engine::Table& jobs = database->table(jmd::kJobTable);
  ASSERT_TRUE(jobs.add_index(1));
  ASSERT_TRUE(jobs.delete_index_row(1, 1));
  std::vector<engine::Query> queries;
  for (int i = 0; i < 20; ++i) {
    queries.push_back(engine::Query::start(jobs, 1, std::nullopt, false));
    ASSERT_TRUE(queries.back());
  }
  EXPECT_EQ(service_.job_names(op_), nullptr);
  EXPECT_EQ(op_.last(), msg::kJobNamesNotCreated);
  queries.clear();
  ASSERT_NE(service_.job_names(op_), nullptr);
  // The engine's other six table slots taken.
  std::vector<engine::Table> others;
  for (int i = 0; i < 6; ++i) {
    others.push_back(engine::Table::open(dir_.file("tmp/other" + std::to_string(i) + ".tmp"), 8,
                                         engine::kOpenNew, {}));
    ASSERT_TRUE(others.back());
  }
  EXPECT_EQ(service_.clipboard(op_), nullptr);
  EXPECT_EQ(op_.last(), msg::kClipboardNotCreated);
  others.pop_back();
  EXPECT_NE(service_.clipboard(op_), nullptr);
}

TEST_F(JmdServiceTest, PrinterNamesLeaveTheJmdAsTheyFoundIt) {
  EXPECT_EQ(jmd_printer_names(service_, op_), (std::vector<std::string>{"LASER1", "LASER2"}));
  EXPECT_FALSE(service_.is_open());

  jmd::Jmd* database = service_.open(op_);
  service_.set_modified(true);
  EXPECT_TRUE(jmd_printer_names(service_, op_));
  EXPECT_EQ(service_.jmd(), database);
  EXPECT_TRUE(service_.modified());

  use_instance("lost", "[Options]\nJMDFileName=" + dir_.file("nothing.jmd") + "\n");
  EXPECT_EQ(jmd_printer_names(service_, op_), std::nullopt);
  EXPECT_EQ(op_.last(), msg::kJmdNotLoaded);
}

}  // namespace
}  // namespace px
