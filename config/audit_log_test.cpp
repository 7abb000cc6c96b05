#include "config/audit_log.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <atomic>
#include <sstream>
#include <thread>
#include <vector>

#include "common/ini_profile.h"
#include "common/messages.h"
#include "config/operator_action.h"
#include "config/recording_operator.h"
#include "tests/support/test_dir.h"

namespace px {
namespace {

class AuditLogTest : public ::testing::Test {
 protected:
  void SetUp() override {
    messages::set_program_name("pxctl");
    log_ = dir_.file("audit.log");
    use_options("AuditLog=" + log_ + "\n");
  }
  void TearDown() override {
    ini::set_file("");
    ini::flush_cache();
    messages::reset();
  }
  void use_options(const std::string& lines) {
    ini::flush_cache();
    ini::set_file(dir_.write("pxcntrl.ini", "[Options]\n" + lines));
  }
  std::vector<std::string> lines() const {
    std::vector<std::string> out;
    std::istringstream in(dir_.read("audit.log"));
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
  }
  TestDir dir_;
  std::string log_;
  RecordingOperator op_;
};

TEST_F(AuditLogTest, LineHoldsEightFieldsAndReadsBack) {
  AuditRecord r{1795000000, "ann", "host1", "pxcntrl", "", "ini set a\tb.ini S\nK", "done", 0};
  std::string line = format_audit_line(r);
  EXPECT_EQ(line, "2026-11-18T11:06:40Z\tann\thost1\tpxcntrl\t-\tini set a b.ini S K\tdone\t0\n");
  std::optional<AuditRecord> back = parse_audit_line(line.substr(0, line.size() - 1));
  ASSERT_TRUE(back);
  EXPECT_EQ(back->time, r.time);
  EXPECT_EQ(back->action, "ini set a b.ini S K");
  EXPECT_EQ(back->instance, "-");
  EXPECT_EQ(back->message, 0);
  for (const char* bad : {"", "2026-11-18T09:46:40Z\tann", "yesterday\ta\tb\tc\td\te\tf\t0",
                          "2026-11-18T09:46:40Z\ta\tb\tc\td\te\tf\t0\textra"}) {
    EXPECT_FALSE(parse_audit_line(bad)) << bad;
  }
  EXPECT_EQ(audit_syslog_text(r),
            "audit: user=ann host=host1 instance=- action=\"ini set a b.ini S K\" result=done message=0");
}

TEST_F(AuditLogTest, EarlyYearsAreWrittenWithFourDigitsSoTheyReadBack) {
  std::string line = "0026-11-24T13:59:06Z\ta\tb\tc\td\te\tf\t1";
  std::optional<AuditRecord> record = parse_audit_line(line);
  ASSERT_TRUE(record);
  EXPECT_EQ(format_audit_line(*record), line + "\n");
}

TEST_F(AuditLogTest, TimesOfSince) {
  EXPECT_EQ(parse_audit_time("2026-11-18T11:06:40Z"), std::time_t{1795000000});
  EXPECT_EQ(parse_audit_time("2026-11-18T11:06Z"), std::time_t{1795000000 - 40});
  EXPECT_EQ(parse_audit_time("2026-11-18Z"), std::time_t{1795000000 - 11 * 3600 - 6 * 60 - 40});
  std::optional<std::time_t> local = parse_audit_time("2026-11-18 09:46:40");
  ASSERT_TRUE(local);
  std::tm parts{};
  localtime_r(&*local, &parts);
  EXPECT_EQ(parts.tm_hour, 9);
  EXPECT_EQ(parts.tm_min, 46);
  // A day the calendar does not have is as bad as a month 13.
  EXPECT_EQ(parse_audit_time("2024-02-29Z"), std::time_t{1709164800});
  EXPECT_EQ(parse_audit_time("2000-02-29Z"), std::time_t{951782400});
  for (const char* bad : {"", "2026-13-01", "2026-11-18T25:00", "2026-11-18T09", "18.11.2026",
                          "2026-11-18T09:46:40Zx", "2026-1-18", "2026-02-29", "2026-02-30Z",
                          "2026-04-31", "1900-02-29", "2026-11-31T08:00"}) {
    EXPECT_FALSE(parse_audit_time(bad)) << bad;
  }
}

TEST_F(AuditLogTest, ActionsAreRecordedWithTheirResultAndLastMessage) {
  {
    OperatorAction action(op_, "pause", "north");
    action.op().show(157);
    action.finish(ActionResult::kDone);
  }
  { OperatorAction unfinished(op_, "jmd-save", "south"); }
  {
    OperatorAction cancelled(op_, "reload-printer", "north");
    cancelled.finish(ActionResult::kCancelled);
    cancelled.finish(ActionResult::kDone);  // ends once
  }
  use_options("AuditLog=" + log_ + "\nReadOnly=Yes\n");
  { OperatorAction refused(op_, "start", "north"); }

  std::vector<std::string> records = lines();
  ASSERT_EQ(records.size(), 4u);
  std::vector<std::string> summary;
  for (const std::string& line : records) {
    std::optional<AuditRecord> r = parse_audit_line(line);
    ASSERT_TRUE(r) << line;
    EXPECT_FALSE(r->user.empty());
    EXPECT_FALSE(r->host.empty());
    EXPECT_EQ(r->program, "pxctl");
    EXPECT_LE(std::time(nullptr) - r->time, 60);
    summary.push_back(r->instance + " " + r->action + " " + r->result + " " + std::to_string(r->message));
  }
  EXPECT_EQ(summary, (std::vector<std::string>{"north pause done 157", "south jmd-save failed 0",
                                               "north reload-printer cancelled 0",
                                               "north start refused 1700"}));
  EXPECT_EQ(op_.numbers(), (std::vector<int>{157, msg::kReadOnlyRefused}));
}

TEST_F(AuditLogTest, WithoutAuditLogNothingIsWrittenAndAFileThatFailsIsReported) {
  use_options("");
  { OperatorAction(op_, "pause", "north").finish(ActionResult::kDone); }
  EXPECT_TRUE(op_.shown().empty());
  EXPECT_EQ(dir_.read("audit.log"), "");

  use_options("AuditLog=" + dir_.file("missing/audit.log") + "\n");
  OperatorAction action(op_, "pause", "north");
  action.op().show(157);
  action.finish(ActionResult::kDone);
  ASSERT_EQ(op_.shown().size(), 2u);
  EXPECT_EQ(op_.shown()[1].number, msg::kAuditNotWritten);
  EXPECT_EQ(op_.shown()[1].args[0], "pause");
  EXPECT_EQ(op_.shown()[1].args[1], dir_.file("missing/audit.log"));
  EXPECT_EQ(action.last_message(), 157);  // the warning is not the action's outcome
}

// The real file system, except that a write goes out in small pieces with
// a pause between them, as a long write may: only the lock then keeps
// records apart (an append of a whole record is seldom split on a local
// disk, so without this a missing lock would go unnoticed).
class PiecemealFileSystem : public FileSystem {
 public:
  int create(const std::string& path, mode_t mode, UniqueFd& file) override {
    return real_.create(path, mode, file);
  }
  int write(int fd, std::string_view data) override {
    for (size_t at = 0; at < data.size(); at += kPiece) {
      if (int error = real_.write(fd, data.substr(at, kPiece))) return error;
      std::this_thread::yield();
    }
    return 0;
  }
  int sync(int fd) override { return real_.sync(fd); }
  int close(UniqueFd& file) override { return real_.close(file); }
  int rename(const std::string& from, const std::string& to) override {
    return real_.rename(from, to);
  }
  int link(const std::string& from, const std::string& to) override { return real_.link(from, to); }
  int remove(const std::string& path) override { return real_.remove(path); }
  int sync_directory(const std::string& directory) override {
    return real_.sync_directory(directory);
  }
  int lock(const std::string& path, bool create, UniqueFd& file, bool& created) override {
    return real_.lock(path, create, file, created);
  }

 private:
  static constexpr size_t kPiece = 64;
  FileSystem& real_ = system_file_system();
};

// Many writers appending long records at once, each written in pieces:
// every line is whole, and none is lost.
TEST_F(AuditLogTest, RecordsAppendedAtOnceNeverInterleave) {
  constexpr int kWriters = 4;
  constexpr int kEach = 100;
  std::atomic<int> ready{0};
  std::vector<std::thread> writers;
  for (int w = 0; w < kWriters; ++w) {
    writers.emplace_back([this, w, &ready] {
      PiecemealFileSystem files;
      ready.fetch_add(1);
      while (ready.load() < kWriters) std::this_thread::yield();  // all start together
      AuditRecord r{1795000000, "user" + std::to_string(w), "host", "pxctl", "north",
                    std::string(1000, static_cast<char>('a' + w)), "done", w};
      std::string error;
      for (int i = 0; i < kEach; ++i) ASSERT_TRUE(append_audit_line(log_, r, error, files)) << error;
    });
  }
  for (std::thread& t : writers) t.join();
  std::vector<int> counts(kWriters, 0);
  for (const std::string& line : lines()) {
    std::optional<AuditRecord> r = parse_audit_line(line);
    ASSERT_TRUE(r) << line.substr(0, 200);
    ASSERT_EQ(r->action, std::string(1000, static_cast<char>('a' + r->message)));
    ASSERT_EQ(r->user, "user" + std::to_string(r->message));
    ++counts[static_cast<size_t>(r->message)];
  }
  EXPECT_EQ(counts, std::vector<int>(kWriters, kEach));
}

}  // namespace
}  // namespace px
