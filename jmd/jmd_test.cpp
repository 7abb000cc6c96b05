#include "jmd/jmd.h"

#include <gtest/gtest.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "common/ini_profile.h"
#include "common/messages.h"
#include "jmd/engine/btree.h"
#include "jmd/jmd_writer.h"
#include "jmd/recording_reporter.h"
#include "tests/support/file_size_limit.h"
#include "tests/support/test_dir.h"

namespace px::jmd {
namespace {

using Entry = RecordingReporter::Entry;

const std::string kHead = std::string(kHeader) + "\n";

// Each test gets its own temporary directory for the tables' files and an
// INI file with title lines.
class JmdTest : public ::testing::Test {
 protected:
  void SetUp() override {
    tables_ = dir_.file("tables");
    std::filesystem::create_directory(tables_);
    const char* old = std::getenv("TMPDIR");
    old_tmpdir_ = old ? old : "";
    setenv("TMPDIR", tables_.c_str(), 1);
    ini::set_file(dir_.write("pxcntrl.ini", "[Titles]\n!f1=# Jobs\n!p1=# Printers\n!p2=#  name id\n"));
  }
  void TearDown() override {
    if (old_tmpdir_.empty()) {
      unsetenv("TMPDIR");
    } else {
      setenv("TMPDIR", old_tmpdir_.c_str(), 1);
    }
    ini::flush_cache();
  }

  std::unique_ptr<Jmd> load(std::string_view text) {
    return load_jmd(dir_.write("in.jmd", text), reporter_);
  }
  // Loads text and saves it again; the saved text.
  std::string resave(std::string_view text) {
    std::unique_ptr<Jmd> jmd = load(text);
    if (!jmd) return "load failed";
    bool saved = static_cast<bool>(save_jmd(*jmd, dir_.file("out.jmd")));
    EXPECT_TRUE(close_jmd(std::move(jmd)));
    return saved ? dir_.read("out.jmd") : "save failed";
  }
  size_t table_files() const {
    size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(tables_)) {
      EXPECT_EQ(entry.path().filename().string().rfind("PXX", 0), 0u) << entry.path();
      ++count;
    }
    return count;
  }

  TestDir dir_;
  std::string tables_;
  std::string old_tmpdir_;
  RecordingReporter reporter_;
};

TEST_F(JmdTest, SaveSortsBySortColumnAndKeepsStepsInFileOrder) {
  std::string text = kHead +
                     "!f zeta LASER z.mdf * 2 Y T1 N N N last\n"
                     "!f Alpha LASER a.mdf pre 1 Y T1 N N N \"step one\"\n"
                     "!p LASER L1 /dev/lp0 \"-o raw\" 5 \"by the door\"\n"
                     "!f alpha INK b.mdf pre 1 Y T2 N N N \"step two\"\n"
                     "!m L1 2048 base\n"
                     "!x T2 Cls prog.exe * *\n"
                     "!p Ink I1 /dev/lp1 * 1 *\n"
                     "!x t1 Cls other.exe \"-a \"\"q\"\"\" *\n";
  std::string expected = kHead +
                         "# Jobs\n"
                         "!f Alpha LASER a.mdf pre 1 Y T1 N N N \"step one\"\n"
                         "!f alpha INK b.mdf pre 1 Y T2 N N N \"step two\"\n"
                         "!f zeta LASER z.mdf * 2 Y T1 N N N last\n"
                         "# Printers\n"
                         "#  name id\n"
                         "!p Ink I1 /dev/lp1 * 1 *\n"
                         "!p LASER L1 /dev/lp0 \"-o raw\" 5 \"by the door\"\n"
                         "!x t1 Cls other.exe \"-a \"\"q\"\"\" *\n"
                         "!x T2 Cls prog.exe * *\n"
                         "!m L1 2048 base\n";
  EXPECT_EQ(resave(text), expected);
  // What a save writes, a load and save give back byte for byte.
  EXPECT_EQ(resave(expected), expected);
  EXPECT_EQ(reporter_.traces(),
            (std::vector<std::string>{"jmd.c: database initialized successfully",
                                      "jmd.c: jmd file opened and verified",
                                      "jmd.c: database initialized successfully",
                                      "jmd.c: jmd file opened and verified"}));
  EXPECT_EQ(table_files(), 0u);
}

// A JMD far larger than the engine's memory limits (a node cache of a few
// nodes, no room for value copies) saves exactly as with the usual ones.
TEST_F(JmdTest, TightMemoryLimitsSaveTheSameFile) {
  std::string text = kHead;
  for (int k = 0; k < 4000; ++k) {
    int form = (k * 7919) % 1500;
    text += "!f " + std::string(form % 2 ? "Form" : "FORM") + std::to_string(form) + " P" +
            std::to_string(k % 300) + " m.mdf * " + std::to_string(k % 50) + " Y T N N N *\n";
  }
  for (int k = 0; k < 600; ++k) {
    int p = (k * 7919) % 600;
    text += "!p " + std::string(p % 2 ? "pr" : "PR") + std::to_string(p) + " I" +
            std::to_string(p) + " /dev/lp0 * 1 *\n";
  }
  std::string usual = resave(text);
  ASSERT_NE(usual.find("!p pr599 "), std::string::npos);
  int nodes = engine::node_cache::capacity();
  size_t budget = engine::value_budget::budget();
  ASSERT_TRUE(engine::node_cache::set_capacity(engine::kNodeCacheMinimum));
  engine::value_budget::set_budget(0);
  std::string tight = resave(text);
  engine::value_budget::set_budget(budget);
  engine::node_cache::set_capacity(nodes);
  EXPECT_TRUE(tight == usual);
  EXPECT_EQ(table_files(), 0u);
}

TEST_F(JmdTest, EmptyValuesComeBackAsStars) {
  std::unique_ptr<Jmd> first = load(kHead + "!f FORM\n");
  ASSERT_TRUE(first);
  ASSERT_TRUE(save_jmd(*first, dir_.file("once.jmd")));
  close_jmd(std::move(first));
  std::unique_ptr<Jmd> again = load_jmd(dir_.file("once.jmd"), reporter_);
  ASSERT_TRUE(again);
  std::vector<std::string> values;
  EXPECT_TRUE(for_each_sorted(*again, kJobTable, [&](std::span<const char> record) {
    for (const FieldDef& field : table_schema(kJobTable).fields) {
      values.push_back(field_text(record, field));
    }
    return true;
  }));
  EXPECT_EQ(values, (std::vector<std::string>{"F", "FORM", "*", "*", "*", "0", "*", "*", "*",
                                              "*", "*", "*"}));
}

TEST_F(JmdTest, PrinterCommentTravelsButIsNoColumn) {
  std::unique_ptr<Jmd> jmd = load(kHead + "!p P1 ID1 dev * 3 \"kept comment\"\n");
  ASSERT_TRUE(jmd);
  EXPECT_EQ(column_definitions(kPrinterTable).size(), 6u);
  EXPECT_EQ(jmd->table(kPrinterTable).find_column("Comment"), -1);
  EXPECT_EQ(jmd->table(kPrinterTable).find_column("Priority"), 5);
  EXPECT_EQ(jmd->table(kTaskTable).find_column("Comment"), 5);
  std::string line;
  for_each_sorted(*jmd, kPrinterTable, [&](std::span<const char> record) {
    line = record_line(table_schema(kPrinterTable), record);
    return true;
  });
  EXPECT_EQ(line, "!p P1 ID1 dev * 3 \"kept comment\"\n");
}

TEST_F(JmdTest, EqualUniqueKeyWithoutRegardToCaseFailsTheWholeLoad) {
  EXPECT_FALSE(load(kHead + "!f J1\n!p LASER L1 d1 x 1\n!p laser L2 \"d 2\" y 2\n!f J2\n"));
  // The table's own reason comes first: the repeated key, with the column.
  std::vector<Entry> messages = reporter_.messages();
  ASSERT_EQ(messages.size(), 2u);
  EXPECT_EQ(messages[0].number, -370);
  ASSERT_EQ(messages[0].args.size(), 2u);
  EXPECT_EQ(messages[0].args[1], "PrinterName");
  EXPECT_EQ(messages[1], (Entry{kMsgRecordRefused, {"!p laser L2 d 2 y"}}));
  EXPECT_EQ(table_files(), 0u);

  for (std::string_view lines : {"!x T1 a\n!x t1 b\n", "!m M1 1\n!m m1 2\n"}) {
    RecordingReporter reporter;
    EXPECT_FALSE(load_jmd(dir_.write("dup.jmd", kHead + std::string(lines)), reporter));
    ASSERT_EQ(reporter.messages().size(), 2u);
    EXPECT_EQ(reporter.messages()[0].number, -370);
    EXPECT_EQ(reporter.messages()[1].number, kMsgRecordRefused);
  }
  EXPECT_EQ(table_files(), 0u);
}

// A job row has no unique key: when one is refused because its record
// cannot be written (here a file-size limit), that is what the operator is
// told before the refusal, not a repeated key.
TEST_F(JmdTest, ARecordThatCannotBeWrittenIsRefusedAsAWriteFailure) {
  std::string text = kHead;
  for (int k = 0; k < 3000; ++k) text += "!f FORM" + std::to_string(k) + " LASER m.mdf * 0 Y T1 N N N *\n";
  std::string path = dir_.write("big.jmd", text);
  {
    FileSizeLimit limit(uint64_t{256} * 1024);  // the job table needs 1.5 MB
    ASSERT_TRUE(limit.set());
    EXPECT_FALSE(load_jmd(path, reporter_));
  }
  std::vector<Entry> messages = reporter_.messages();
  ASSERT_EQ(messages.size(), 2u);
  EXPECT_EQ(messages[0].number, -357);
  EXPECT_EQ(messages[1].number, kMsgRecordRefused);
  ASSERT_EQ(messages[1].args.size(), 1u);
  EXPECT_EQ(messages[1].args[0].rfind("!f FORM", 0), 0u) << messages[1].args[0];
  std::vector<std::string> traces = reporter_.traces();
  EXPECT_TRUE(std::any_of(traces.begin(), traces.end(), [](const std::string& t) {
    return t.rfind("VLPut failed - Name '", 0) == 0;
  }));
  EXPECT_EQ(table_files(), 0u);
}

// A directory opens for reading on Linux but is no file to load.
TEST_F(JmdTest, ADirectoryCannotBeOpenedAsAJmd) {
  EXPECT_FALSE(load_jmd(tables_, reporter_));
  EXPECT_EQ(reporter_.messages(), (std::vector<Entry>{{kMsgCannotOpen, {tables_}}}));
  std::vector<std::string> traces = reporter_.traces();
  EXPECT_TRUE(std::any_of(traces.begin(), traces.end(), [](const std::string& t) {
    return t.rfind("Open of jmd failed in jmd.c: errno ", 0) == 0;
  }));
  EXPECT_EQ(table_files(), 0u);
}

TEST_F(JmdTest, LoadRemovesTableFilesOfEndedProcesses) {
  std::string left = tables_ + "/PXX1A2B.i01";
  dir_.write("tables/PXX1A2B.i01", "");
  struct timespec times[2] = {{::time(nullptr) - 3600, 0}, {::time(nullptr) - 3600, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, left.c_str(), times, 0), 0);
  std::unique_ptr<Jmd> jmd = load(kHead);
  ASSERT_TRUE(jmd);
  EXPECT_FALSE(std::filesystem::exists(left));
  EXPECT_TRUE(close_jmd(std::move(jmd)));
}

TEST_F(JmdTest, TraceTextsGoToTheTraceFile) {
  messages::reset();
  messages::set_trace_file(dir_.file("trace.txt"));
  LogReporter log;
  EXPECT_FALSE(load_jmd(dir_.file("none.jmd"), log));
  std::string trace = dir_.read("trace.txt");
  messages::reset();
  EXPECT_NE(trace.find(": jmd.c: database initialized successfully\n"), std::string::npos) << trace;
  EXPECT_NE(trace.find(": Open of jmd failed in jmd.c: errno 2\n"), std::string::npos) << trace;
}

TEST_F(JmdTest, MissingFileBadHeaderAndCutValues) {
  std::string missing = dir_.file("none.jmd");
  EXPECT_FALSE(load_jmd(missing, reporter_));
  EXPECT_EQ(reporter_.entries,
            (std::vector<Entry>{{kMsgTrace, {"jmd.c: database initialized successfully"}},
                                {kMsgTrace, {"Open of jmd failed in jmd.c: errno 2"}},
                                {kMsgCannotOpen, {missing}}}));

  RecordingReporter header;
  EXPECT_FALSE(load_jmd(dir_.write("h.jmd", "# Some other file\n!f A\n"), header));
  EXPECT_EQ(header.messages(), (std::vector<Entry>{{kMsgBadHeader, {dir_.file("h.jmd")}}}));

  std::unique_ptr<Jmd> jmd = load(kHead + "!m MEMORYID2LONG 5\n!m M2 6\n");
  ASSERT_TRUE(jmd);
  EXPECT_EQ(reporter_.messages().back(), (Entry{kMsgValueCut, {"MEMORYID"}}));
  EXPECT_EQ(jmd->row_count(kMemoryTable), 2);
  EXPECT_EQ(jmd->row_count(kJobTable), 0);
  EXPECT_EQ(table_files(), 0u);  // the open tables' files have no name
  EXPECT_TRUE(close_jmd(std::move(jmd)));
  EXPECT_EQ(table_files(), 0u);
  EXPECT_TRUE(close_jmd(nullptr));
}

// The engine holds ten tables: a third JMD finds two free, fails on its
// third table and gives back the two it had.
TEST_F(JmdTest, TableThatCannotBeOpenedFailsTheLoad) {
  std::unique_ptr<Jmd> first = load(kHead + "!f A\n");
  std::unique_ptr<Jmd> second = load(kHead + "!f B\n");
  ASSERT_TRUE(first && second);
  size_t files = table_files();
  RecordingReporter reporter;
  EXPECT_FALSE(load_jmd(dir_.file("in.jmd"), reporter));
  ASSERT_EQ(reporter.traces().size(), 1u);
  std::string trace = reporter.traces()[0];
  EXPECT_EQ(trace.rfind("open of table '" + tables_ + "/PXX", 0), 0u) << trace;
  EXPECT_TRUE(trace.ends_with(".tmp' failed\n")) << trace;
  EXPECT_EQ(table_files(), files);
  close_jmd(std::move(second));
  EXPECT_TRUE(load(kHead + "!f C\n"));
}

TEST_F(JmdTest, SaveFailsWhereTheFileCannotBeWritten) {
  std::unique_ptr<Jmd> jmd = load(kHead + "!f A\n");
  ASSERT_TRUE(jmd);
  EXPECT_FALSE(save_jmd(*jmd, dir_.file("no/such/dir.jmd")));
  // An empty table still writes its title lines.
  ASSERT_TRUE(save_jmd(*jmd, dir_.file("ok.jmd")));
  EXPECT_EQ(dir_.read("ok.jmd"), kHead + "# Jobs\n!f A * * * 0 * * * * * *\n# Printers\n#  name id\n");
}

}  // namespace
}  // namespace px::jmd
