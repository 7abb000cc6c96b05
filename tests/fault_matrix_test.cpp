// Every write path that changes a file the operator cares about, failed at
// each file step in turn through the file-write seam (common/file_system.h):
// an INI rewrite (with its backup), a JMD save (with its .JBK backup), a
// JMD file written back by the pxctl jmd editing commands, a control job,
// the E-mail Agent's stop file and an audit record. Each step a path makes is failed at each
// of its occurrences with ENOSPC, EIO and EACCES; every time the files that
// were there must be byte for byte as they were, nothing else may be left in
// their directories, and the operator must have been shown a numbered
// message of the catalogue. The matrix of results is printed.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "common/file_replace.h"
#include "common/ini_profile.h"
#include "config/instances.h"
#include "config/jmd_service.h"
#include "config/operator_action.h"
#include "config/recording_operator.h"
#include "control/agents.h"
#include "control/control_job.h"
#include "jmd/editors/jmd_file.h"
#include "tests/support/faulty_file_system.h"
#include "tests/support/test_dir.h"

namespace px {
namespace {

using Step = FaultyFileSystem::Step;

// A file kind's write path, set up afresh in its own directory for each try.
class WritePath {
 public:
  virtual ~WritePath() = default;
  // Lays out the files as they are before the write.
  virtual void set_up(const TestDir& dir) = 0;
  // Makes the write through files; the number of the last message shown,
  // 0 when none.
  virtual int write(const TestDir& dir, FileSystem& files) = 0;
};

// Every file under dir with its contents.
std::map<std::string, std::string> snapshot(const TestDir& dir) {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(dir.path())) {
    if (!entry.is_regular_file()) continue;
    std::string name = std::filesystem::relative(entry.path(), dir.path()).string();
    files[name] = dir.read(name);
  }
  return files;
}

int last_shown(const RecordingOperator& op) {
  return op.shown().empty() ? 0 : op.shown().back().number;
}

// An INI file rewritten as the configuration saves do: locked, with its
// previous version kept as NAME.bak.
class IniRewrite : public WritePath {
 public:
  void set_up(const TestDir& dir) override {
    std::filesystem::create_directories(dir.file("site"));
    dir.write("site/pxserver.ini", "; the operator's notes\r\n[Options]\r\nVerbosity=1\r\n");
    dir.write("site/pxserver.ini.bak", "; an older version\r\n");
  }
  int write(const TestDir& dir, FileSystem& files) override {
    std::string path = dir.file("site/pxserver.ini");
    FileResult result =
        ini::write_string("Options", "Verbosity", "2", path, {.keep_backup = true, .files = &files});
    ini::flush_cache();
    return failure_message(result, path).number;
  }
};

// A JMD in data/jobs.jmd, with an older one as its backup. The table files
// of the loaded JMD go to TMPDIR, set to the try's own directory while it
// lasts.
class JmdPath : public WritePath {
 public:
  ~JmdPath() override {
    if (saved_tmpdir_.empty()) {
      ::unsetenv("TMPDIR");
    } else {
      ::setenv("TMPDIR", saved_tmpdir_.c_str(), 1);
    }
  }
  void set_up(const TestDir& dir) override {
    if (const char* old = std::getenv("TMPDIR")) saved_tmpdir_ = old;
    std::filesystem::create_directories(dir.file("data"));
    dir.write("data/jobs.jmd",
              "# Plexar Job Management Database (JMD) file\n"
              "!f INVOICE LASER1 inv.mdf * 1 T PXMERGE N N C *\n"
              "!p LASER1 * LPT1 * 50 *\n");
    dir.write("data/jobs.JBK", "an older JMD\n");
    std::filesystem::create_directories(dir.file("tmp"));
    ::setenv("TMPDIR", dir.file("tmp").c_str(), 1);
  }

 private:
  std::string saved_tmpdir_;
};

// The instance's JMD saved by the JMD service, the old file kept as .JBK.
class JmdSave : public JmdPath {
 public:
  void set_up(const TestDir& dir) override {
    JmdPath::set_up(dir);
    std::string config = dir.write("north.ini", "[Options]\nJMDFileName=" + dir.file("data/jobs.jmd") + "\n");
    set_current_instance({"north", "north", config});
    service_ = std::make_unique<JmdService>();
    ASSERT_NE(service_->open(op_), nullptr);
    service_->set_modified(true);
  }
  int write(const TestDir&, FileSystem& files) override {
    op_.clear();
    service_->save(op_, files);
    service_.reset();  // its table files go with it
    return last_shown(op_);
  }

 private:
  RecordingOperator op_;
  std::unique_ptr<JmdService> service_;
};

// A JMD file edited by a pxctl jmd editing command: its printer deleted,
// then the file written back over itself (no backup).
class JmdEdit : public JmdPath {
 public:
  void set_up(const TestDir& dir) override {
    JmdPath::set_up(dir);
    file_ = std::make_unique<editors::JmdFile>(dir.file("data/jobs.jmd"), op_);
    ASSERT_TRUE(file_->load());
    editors::JmdEditor& editor = file_->editor();
    long printer = editor.find_row(editors::ListKind::kPrinters, "LASER1");
    ASSERT_NE(printer, 0);
    ASSERT_EQ(editor.delete_rows(editors::ListKind::kPrinters, {printer}), 1);
  }
  int write(const TestDir&, FileSystem& files) override {
    op_.clear();
    file_->save(files);
    file_.reset();  // its table files go with it
    return last_shown(op_);
  }

 private:
  RecordingOperator op_;
  std::unique_ptr<editors::JmdFile> file_;
};

// A Resume Server control job, dropped beside a job the server has not
// taken yet (so it goes under the next free name).
class ControlJob : public WritePath {
 public:
  void set_up(const TestDir& dir) override {
    std::filesystem::create_directories(dir.file("control"));
    dir.write("control/pxctrl00.msg", "^job PXCNTRLJOB\nPause Server\n");
    std::filesystem::create_directories(dir.file("cwd"));
  }
  int write(const TestDir& dir, FileSystem& files) override {
    RecordingOperator op;
    int number = 0;
    write_control_job("^job PXCNTRLJOB\nResume Server\n", dir.file("control/"),
                      ControlCommand::kResume, &number, dir.file("cwd"), op, files);
    return last_shown(op);
  }
};

// The E-mail Agent's stop file, put in its data directory beside a mail
// file it has not sent yet.
class EmailStopFile : public WritePath {
 public:
  void set_up(const TestDir& dir) override {
    std::filesystem::create_directories(dir.file("mail"));
    dir.write("mail/MAIL1.dat", "To: ops\n");
  }
  int write(const TestDir& dir, FileSystem& files) override {
    RecordingOperator op;
    write_email_stop_file(dir.file("mail"), op, files);
    return last_shown(op);
  }
};

// The audit record of an action, appended to the AuditLog file.
class AuditRecordAppend : public WritePath {
 public:
  void set_up(const TestDir& dir) override {
    std::filesystem::create_directories(dir.file("audit"));
    dir.write("audit/audit.log",
              "2026-11-24T08:00:00Z\tann\tops1\tpxctl\tnorth\tpause\tdone\t157\n");
    ini::set_file(dir.write("pxcntrl.ini", "[Options]\nAuditLog=" + dir.file("audit/audit.log") + "\n"));
  }
  int write(const TestDir&, FileSystem& files) override {
    RecordingOperator op;
    {
      OperatorAction action(op, "resume", "north", files);
      action.finish(ActionResult::kDone);
    }
    ini::flush_cache();
    return last_shown(op);
  }
};

struct Call {
  const char* name;
  Step step;
};

struct Kind {
  const char* name;
  std::function<std::unique_ptr<WritePath>()> make;
  Step rename_step;               // a control job is linked, never renamed
  std::set<std::string> missing;  // the calls its path does not make
  // The backup's name ends so. Keeping the backup is not the write: once the
  // new file is in place, a backup that cannot be made does not undo it
  // (common/file_replace.h), so its steps are not failed here.
  std::string backup_suffix;
};

// The catalogue the numbers must be in: the shipped console INI file.
bool in_catalogue(int number) {
  std::string key = "Msg" + std::to_string(number < 0 ? -number : number);
  return !ini::get_string("Messages", key, "", 1024, PX_SOURCE_DIR "/demo/pxcntrl.ini").empty();
}

TEST(FaultMatrix, EveryFailedStepLeavesThePreviousFilesAndShowsANumberedMessage) {
  const Call calls[] = {{"open", Step::kLock},  {"create", Step::kCreate}, {"write", Step::kWrite},
                        {"fsync", Step::kSync}, {"rename", Step::kRename}, {"close", Step::kClose}};
  const std::pair<const char*, int> errors[] = {{"ENOSPC", ENOSPC}, {"EIO", EIO}, {"EACCES", EACCES}};
  const Kind kinds[] = {
      {"INI rewrite", [] { return std::make_unique<IniRewrite>(); }, Step::kRename, {}, ".bak"},
      {"JMD save", [] { return std::make_unique<JmdSave>(); }, Step::kRename, {"open"}, ".JBK"},
      {"JMD edit", [] { return std::make_unique<JmdEdit>(); }, Step::kRename, {"open"}, ""},
      {"control job", [] { return std::make_unique<ControlJob>(); }, Step::kLink, {}, ""},
      {"stop file", [] { return std::make_unique<EmailStopFile>(); }, Step::kRename,
       {"open", "write"}, ""},
      {"audit record", [] { return std::make_unique<AuditRecordAppend>(); }, Step::kRename,
       {"create", "rename"}, ""},
  };

  std::string table = "| call | error |";
  for (const Kind& kind : kinds) table += std::string(" ") + kind.name + " |";
  table += "\n|---|---|";
  for (std::size_t i = 0; i < std::size(kinds); ++i) table += "---|";
  table += "\n";
  for (const Call& call : calls) {
    for (auto [error_name, error] : errors) {
      table += std::string("| ") + call.name + " | " + error_name + " |";
      for (const Kind& kind : kinds) {
        SCOPED_TRACE(std::string(kind.name) + ", " + call.name + ", " + error_name);
        Step step = call.step == Step::kRename ? kind.rename_step : call.step;
        auto of_backup = [&kind](const std::string& file) {
          return !kind.backup_suffix.empty() && file.ends_with(kind.backup_suffix);
        };

        // How often the path makes this call when nothing fails.
        int occurrences = 0;
        {
          TestDir dir;
          std::unique_ptr<WritePath> path = kind.make();
          path->set_up(dir);
          FaultyFileSystem counting(step, error, [&](const std::string& file) {
            if (!of_backup(file)) ++occurrences;
            return false;
          });
          EXPECT_EQ(path->write(dir, counting), 0) << "the write fails with nothing failed";
        }
        EXPECT_EQ(occurrences == 0, kind.missing.count(call.name) == 1)
            << occurrences << " occurrences";
        if (occurrences == 0) {
          table += " n/a |";
          continue;
        }

        std::set<int> shown;
        bool whole = true;
        for (int nth = 1; nth <= occurrences; ++nth) {
          TestDir dir;
          std::unique_ptr<WritePath> path = kind.make();
          path->set_up(dir);
          const std::map<std::string, std::string> before = snapshot(dir);
          FaultyFileSystem failing(step, error,
                                   [&of_backup, nth, seen = 0](const std::string& file) mutable {
                                     return !of_backup(file) && ++seen == nth;
                                   });
          int message = path->write(dir, failing);
          EXPECT_EQ(failing.failures(), 1);
          EXPECT_NE(message, 0) << "occurrence " << nth << ": no message";
          EXPECT_TRUE(in_catalogue(message)) << message;
          std::map<std::string, std::string> after = snapshot(dir);
          // The scratch tables of the JMD service come and go.
          std::erase_if(after, [](const auto& file) { return file.first.starts_with("tmp/"); });
          EXPECT_EQ(after, before) << "occurrence " << nth;
          whole = whole && after == before;
          shown.insert(message);
        }
        std::string cell = whole ? " whole," : " CHANGED,";
        for (int number : shown) cell += " " + std::to_string(number);
        table += cell + " |";
      }
      table += "\n";
    }
  }
  ini::flush_cache();
  std::printf("Fault-injection matrix (call x error x file kind: previous files, messages):\n%s",
              table.c_str());
}

}  // namespace
}  // namespace px
