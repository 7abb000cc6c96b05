// Runs pxctl jmd check, save and list on real files.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <vector>

#include "cli/pxctl_test_fixture.h"
#include "common/file_util.h"
#include "tests/support/file_size_limit.h"

namespace px {
namespace {

const std::string kHead = "# Plexar Job Management Database (JMD) file\n";

class PxctlJmdTest : public PxctlFixture {
 protected:
  void SetUp() override {
    ini_ = dir_.write("test.ini",
                      "[Titles]\n!f1=# Jobs: form printer mdf\n!x1=# Tasks\n!x2=\n!x3=# hidden\n"
                      "[Messages]\n"
                      "Msg357=30 table trouble\n"
                      "Msg361=20 cut to @P1\n"
                      "Msg370=30 repeated @P2\n"
                      "Msg384=30 not a JMD: @P1\n"
                      "Msg386=30 cannot open @P1\n"
                      "Msg387=30 refused: @P1\n"
                      "Msg901=30 bad use of @P1\n"
                      "Msg910=30 cannot write @P1\n"
                      "Msg1300=30 no new file beside @P1 because @P2\n");
    jmd_ = dir_.write("in.jmd", kHead +
                                    "!f PAY LASER pay.mdf * 10 Y T1 N N N \"pay slips\"\n"
                                    "!f bill LASER bill.mdf pre 0 Y T1 N N N *\n"
                                    "!p LASER L1 /dev/lp0 * 3 \"first floor\"\n"
                                    "!x T1 Cls run.sh \"-q \"\"x\"\"\" *\n"
                                    "!m L1 4096 *\n");
  }
  std::string jmd_;
};

TEST_F(PxctlJmdTest, CheckSaveAndList) {
  ProgramResult check = pxctl({"jmd", "check", jmd_});
  EXPECT_EQ(check.status, 0) << check.err;
  EXPECT_EQ(check.out, "jobs 2 printers 1 tasks 1 memory 1\n");
  EXPECT_EQ(check.err, "");

  std::string saved = kHead +
                      "# Jobs: form printer mdf\n"
                      "!f bill LASER bill.mdf pre 0 Y T1 N N N *\n"
                      "!f PAY LASER pay.mdf * 10 Y T1 N N N \"pay slips\"\n"
                      "!p LASER L1 /dev/lp0 * 3 \"first floor\"\n"
                      "# Tasks\n"
                      "!x T1 Cls run.sh \"-q \"\"x\"\"\" *\n"
                      "!m L1 4096 *\n";
  EXPECT_EQ(pxctl({"jmd", "save", jmd_, dir_.file("out.jmd")}).status, 0);
  EXPECT_EQ(dir_.read("out.jmd"), saved);
  EXPECT_EQ(pxctl({"jmd", "save", dir_.file("out.jmd"), dir_.file("again.jmd")}).status, 0);
  EXPECT_EQ(dir_.read("again.jmd"), saved);

  ProgramResult jobs = pxctl({"jmd", "list", jmd_, "jobs"});
  EXPECT_EQ(jobs.status, 0);
  EXPECT_EQ(jobs.out,
            "bill LASER bill.mdf pre 0 Y T1 N N N *\n"
            "PAY LASER pay.mdf * 10 Y T1 N N N \"pay slips\"\n");
  EXPECT_EQ(pxctl({"jmd", "list", jmd_, "memory"}).out, "L1 4096 *\n");
}

TEST_F(PxctlJmdTest, FailuresShowTheirMessage) {
  std::string bad = dir_.write("dup.jmd", kHead + "!p LASER A d * 1\n!p Laser B d * 1\n");
  ProgramResult dup = pxctl({"jmd", "check", bad});
  EXPECT_EQ(dup.status, 1);
  EXPECT_EQ(dup.out, "");
  EXPECT_EQ(dup.err, "[-370]repeated PrinterName\n[-387]refused: !p Laser B d *\n");

  // A job row that cannot be written (a file-size limit) is refused for that.
  std::string jobs = kHead;
  for (int k = 0; k < 3000; ++k) jobs += "!f F" + std::to_string(k) + " L m * 0 Y T N N N *\n";
  std::string big = dir_.write("big.jmd", jobs);
  ProgramResult limited;
  {
    FileSizeLimit limit(uint64_t{256} * 1024);
    ASSERT_TRUE(limit.set());
    limited = pxctl({"jmd", "save", big, dir_.file("big-out.jmd")});
  }
  EXPECT_EQ(limited.status, 1);
  EXPECT_EQ(limited.err.rfind("[-357]table trouble\n[-387]refused: !f F", 0), 0u) << limited.err;
  EXPECT_EQ(limited.err.find("[-370]"), std::string::npos) << limited.err;

  // A directory is no file to open.
  EXPECT_EQ(pxctl({"jmd", "check", dir_.path()}).err, "[-386]cannot open " + dir_.path() + "\n");

  ProgramResult missing = pxctl({"jmd", "list", dir_.file("none.jmd"), "jobs"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err, "[-386]cannot open " + dir_.file("none.jmd") + "\n");

  std::string other = dir_.write("other.txt", "[Section]\n");
  EXPECT_EQ(pxctl({"jmd", "check", other}).err, "[-384]not a JMD: " + other + "\n");

  ProgramResult cut = pxctl({"jmd", "check", dir_.write("cut.jmd", kHead + "!m MEMORY-ID-TOO-LONG 1\n")});
  EXPECT_EQ(cut.status, 0);
  EXPECT_EQ(cut.err, "[-361]cut to MEMORY-I\n");

  ProgramResult unwritable = pxctl({"jmd", "save", jmd_, dir_.file("no/dir/out.jmd")});
  EXPECT_EQ(unwritable.status, 1);
  EXPECT_EQ(unwritable.err, "[1300]no new file beside " + dir_.file("no/dir/out.jmd") +
                               " because No such file or directory\n[910]cannot write " +
                               dir_.file("no/dir/out.jmd") + "\n");

  EXPECT_EQ(pxctl({"jmd"}).status, 2);
  EXPECT_EQ(pxctl({"jmd", "check"}).status, 2);
  ProgramResult usage = pxctl({"jmd", "list", jmd_, "queues"});
  EXPECT_EQ(usage.status, 2);
  EXPECT_EQ(usage.err, "[901]bad use of jmd list\n");
}

// jmd save is an operator action: its record in the audit log carries the
// number of the message that told the operator why it failed, whether the
// load or the write failed.
TEST_F(PxctlJmdTest, SaveRecordsTheMessageOfItsFailure) {
  dir_.write("test.ini", dir_.read("test.ini") + "[Options]\nAuditLog=" + dir_.file("audit.log") + "\n");
  std::string out = dir_.file("out.jmd");
  EXPECT_EQ(pxctl({"jmd", "save", dir_.file("none.jmd"), out}).status, 1);
  EXPECT_EQ(pxctl({"jmd", "save", dir_.write("bad.jmd", "[Section]\n"), out}).status, 1);
  EXPECT_EQ(pxctl({"jmd", "save", jmd_, dir_.file("no/dir/out.jmd")}).status, 1);
  EXPECT_EQ(pxctl({"jmd", "save", jmd_, out}).status, 0);
  EXPECT_EQ(pxctl({"-aro", "jmd", "save", jmd_, out}).status, 1);
  std::vector<std::string> outcomes;
  std::istringstream log(dir_.read("audit.log"));
  for (std::string line; std::getline(log, line);) {
    size_t result = line.rfind('\t', line.rfind('\t') - 1);
    outcomes.push_back(line.substr(result + 1));
  }
  EXPECT_EQ(outcomes, (std::vector<std::string>{"failed\t-386", "failed\t-384", "failed\t910",
                                                 "done\t0", "refused\t1700"}));
  EXPECT_FALSE(std::filesystem::exists(dir_.file("no/dir/out.jmd")));
}

// The demo installation's JMD is saved back byte for byte with the demo's
// title lines.
TEST(PxctlJmdDemoTest, DemoJmdSavesBackUnchanged) {
  std::filesystem::path source = PX_SOURCE_DIR;
  std::string demo = (source / "demo/data/pxjmd.jmd").string();
  TestDir dir;
  std::string ini = (source / "demo/pxcntrl.ini").string();
  ProgramResult save =
      run_program(PXCTL_PATH, {"-aii" + ini, "jmd", "save", demo, dir.file("out.jmd")}, dir.path());
  EXPECT_EQ(save.status, 0) << save.err;
  EXPECT_EQ(save.err, "");
  std::string original = read_file(demo).value_or("missing");
  EXPECT_GT(original.size(), 1000u);
  EXPECT_EQ(dir.read("out.jmd"), original);
}

}  // namespace
}  // namespace px
