// Runs the pxctl jmd editing commands on real files.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "cli/pxctl_test_fixture.h"
#include "tests/support/small_jmd.h"

namespace px {
namespace {

const std::string kHead = kJmdHeader;
const std::string kJmd = kSmallJmd;

class PxctlJmdEditTest : public PxctlFixture {
 protected:
  void SetUp() override {
    ini_ = dir_.write("test.ini",
                      "[Messages]\n"
                      "Msg112=30 printer @P1 exists\n"
                      "Msg279=10 Task id   Program name\n"
                      "Msg280=10 Printer       Printer id Physical device\n"
                      "Msg295=30 blank in @P1\n"
                      "Msg301=30 device @P1\n"
                      "Msg1500=30 no @P1 in @P2\n"
                      "Msg1502=30 job @P1 exists\n"
                      "Msg1503=30 no step @P1 of @P2 (@P3 steps)\n"
                      "Msg1507=20 step @P2 of @P1 lacks printer @P3\n"
                      "Msg1508=20 step @P2 of @P1 lacks task @P3\n"
                      "Msg1700=30 read-only: @P1\n"
                      "[Options]\n"
                      "AuditLog=" + dir_.file("audit.log") + "\n");
    jmd_ = dir_.write("jobs.jmd", kJmd);
  }
  // Runs pxctl jmd with the words after FILE.
  ProgramResult jmd(const std::string& action, std::vector<std::string> words = {}) {
    words.insert(words.begin(), {"jmd", action, jmd_});
    return pxctl(words);
  }
  std::string file() { return dir_.read("jobs.jmd"); }
  std::string jmd_;
};

TEST_F(PxctlJmdEditTest, ShowPrintsTheHeaderAndTheLinesOfAPage) {
  ProgramResult printers = jmd("show", {"printers"});
  EXPECT_EQ(printers.status, 0) << printers.err;
  EXPECT_EQ(printers.out,
            "Printer       Printer id Physical device\n"
            "LASER1        HP4        LPT1                    \n"
            "LASER2        *          LPT2                    \n");
  EXPECT_EQ(jmd("show", {"steps", "invoice"}).out,
            "PXMERGE   inv.mdf              LASER1   \n"
            "PXMERGE   inv2.mdf             LASER2   \n");
  EXPECT_EQ(jmd("show", {"tasks", "--page", "2"}).out, "Task id   Program name\n");
  ProgramResult missing = jmd("show", {"steps", "NONE"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err, "[1500]no NONE in jobs\n");
  EXPECT_EQ(jmd("show", {"queues"}).status, 2);
  EXPECT_EQ(jmd("show", {"jobs", "--page", "0"}).status, 2);
}

TEST_F(PxctlJmdEditTest, RefusedEditsShowTheirMessageAndLeaveTheFile) {
  ProgramResult device = jmd("add", {"printers", "PrinterName=P9", "PrinterId=Com3"});
  EXPECT_EQ(device.status, 1);
  EXPECT_EQ(device.err, "[301]device Com3\n");
  EXPECT_EQ(jmd("add", {"printers", "PrinterName=laser1"}).err, "[112]printer laser1 exists\n");
  EXPECT_EQ(jmd("edit", {"printers", "NOPE", "Priority=1"}).err, "[1500]no NOPE in printers\n");
  EXPECT_EQ(jmd("new-job", {"INVOICE"}).err, "[1502]job INVOICE exists\n");
  EXPECT_EQ(jmd("new-job", {"TWO\tWORDS"}).err, "[295]blank in TWO\tWORDS\n");
  ProgramResult leading = jmd("new-job", {"  NEW"});
  EXPECT_EQ(leading.status, 1);
  EXPECT_EQ(leading.err.substr(0, 6), "[1501]");
  EXPECT_EQ(jmd("delete-step", {"INVOICE", "1", "3"}).err, "[1503]no step 3 of INVOICE (2 steps)\n");
  EXPECT_EQ(jmd("delete", {"tasks", "PXMERGE", "NOPE"}).status, 1);
  EXPECT_EQ(jmd("copy-job", {"INVOICE", "CHEQUE"}).status, 1);
  EXPECT_EQ(file(), kJmd);
  // Usage errors: unknown or disabled columns, bad numbers.
  EXPECT_EQ(jmd("add", {"printers", "Colour=red"}).status, 2);
  EXPECT_EQ(jmd("add", {"jobs", "FormName=X"}).status, 2);
  EXPECT_EQ(jmd("edit-step", {"INVOICE", "1", "FormName=X"}).status, 2);
  EXPECT_EQ(jmd("move-step", {"INVOICE", "2", "1", "up"}).status, 2);
  EXPECT_EQ(jmd("add-step", {"INVOICE", "--before", "x"}).status, 2);
  // A line break would split the saved line: no field and no job name takes one.
  EXPECT_EQ(jmd("add", {"tasks", "TaskId=T9", "Comment=two\nlines"}).status, 2);
  EXPECT_EQ(jmd("edit-step", {"INVOICE", "1", "MDFName=a\r\n!p X"}).status, 2);
  EXPECT_EQ(jmd("add-step", {"TWO\nLINES"}).err, "[295]blank in TWO\nLINES\n");
  EXPECT_EQ(file(), kJmd);
}

TEST_F(PxctlJmdEditTest, RowEditsFollowTheDialogsRules) {
  EXPECT_EQ(jmd("add", {"printers", "PrinterName=LONGPRINTERNAME", "PrinterId=lpt10",
                        "PhysicalDev="}).status, 0);
  EXPECT_EQ(jmd("edit", {"printers", "laser2", "Priority=7x", "Comment=second floor"}).status, 0);
  EXPECT_EQ(jmd("add", {"tasks", "TaskId=T2", "TaskName="}).status, 0);
  EXPECT_EQ(jmd("edit", {"tasks", "PXMERGE", "TaskParms=-q"}).status, 0);
  EXPECT_EQ(jmd("add", {"memory", "PrinterId=M1", "Amount="}).status, 0);
  EXPECT_EQ(jmd("edit", {"memory", "HP4", "Amount=12a3"}).status, 0);
  EXPECT_EQ(file(), kHead +
                        "!f CHEQUE LASER2 /forms/chq.mdf * 2 T PXMERGE N N C *\n"
                        "!f INVOICE LASER1 inv.mdf * 1 T PXMERGE N N C \"first step\"\n"
                        "!f INVOICE LASER2 inv2.mdf * 1 T PXMERGE N N C *\n"
                        "!p LASER1 HP4 LPT1 * 50 *\n"
                        "!p LASER2 * LPT2 * 7 \"second floor\"\n"
                        "!p LONGPRINT lpt10 LPT1 * 50 *\n"
                        "!x PXMERGE WClass pxmerge.exe -q *\n"
                        "!x T2 * PXMERGE * *\n"
                        "!m HP4 123 \"four k\"\n"
                        "!m M1 0 *\n");
}

TEST_F(PxctlJmdEditTest, StepAndJobEditsKeepTheStepOrder) {
  EXPECT_EQ(jmd("add-step", {"INVOICE", "--before", "2", "MDFName=/x/mid.mdf", "TaskId=T9",
                             "LoadFlag=p"}).status, 0);
  EXPECT_EQ(jmd("move-step", {"invoice", "2", "3", "up"}).status, 0);
  EXPECT_EQ(jmd("edit-step", {"INVOICE", "3", "MacroNum=", "PrinterName=LASER9"}).status, 0);
  EXPECT_EQ(jmd("add-step", {"NEWJOB"}).status, 0);
  EXPECT_EQ(jmd("copy-job", {"INVOICE", "COPY"}).status, 0);
  EXPECT_EQ(jmd("delete-step", {"COPY", "3", "1"}).status, 0);
  EXPECT_EQ(jmd("delete", {"jobs", "cheque"}).status, 0);
  EXPECT_EQ(jmd("new-job", {"EMPTY"}).status, 0);
  EXPECT_EQ(file(), kHead +
                        "!f COPY LASER2 inv2.mdf * 1 T PXMERGE N N C *\n"
                        "!f INVOICE * /x/mid.mdf * 1 P T9 * * C *\n"
                        "!f INVOICE LASER2 inv2.mdf * 1 T PXMERGE N N C *\n"
                        "!f INVOICE LASER9 inv.mdf * 1 T PXMERGE N N C \"first step\"\n"
                        "!f NEWJOB * NEWJOB.mdf * 1 T PXMERGE * * C *\n"
                        "!p LASER1 HP4 LPT1 * 50 *\n"
                        "!p LASER2 * LPT2 * 50 *\n"
                        "!x PXMERGE WClass pxmerge.exe * *\n"
                        "!m HP4 4096 \"four k\"\n");
}

// A quote, a TAB, "!", ";" and outer blanks typed through the commands come
// back from the saved file as the dialogs stored them: show and a rewrite of
// the file (save, which loads it again) give what the edits gave.
TEST_F(PxctlJmdEditTest, HostileCharactersReadBackAsStored) {
  ASSERT_EQ(jmd("edit-step", {"INVOICE", "1", "InFile=\"", "OutFile=\t", "OnErrorFlag=;",
                              "LoadFlag=!", "Comment= a\"b\t "}).status, 0);
  ASSERT_EQ(jmd("add-step", {"INVOICE", "TaskId=\"", "PrinterName= ;! ", "MDFName=\"\""}).status,
            0);
  ASSERT_EQ(jmd("add", {"tasks", "TaskId=!x", "TaskName=\t\"", "TaskParms=\"", "Comment=;"}).status,
            0);
  ASSERT_EQ(jmd("add", {"printers", "PrinterName=\"!", "PrinterId=a\tb", "Comment=\" "}).status, 0);
  ASSERT_EQ(jmd("add", {"memory", "PrinterId=\"\"", "Comment= \" "}).status, 0);
  std::string written = file();
  EXPECT_NE(written.find("!f INVOICE LASER1 inv.mdf * 1 ! PXMERGE \"\" * ; \" a\"\"b \"\n"),
            std::string::npos) << written;
  EXPECT_NE(written.find("!f INVOICE ;! \"\"\"\" * 1 T \"\" * * C *\n"), std::string::npos)
      << written;
  EXPECT_NE(written.find("!x !x * \"\" \"\" ;\n"), std::string::npos) << written;
  // Printer and memory comments are trimmed; a step's is kept as typed.
  EXPECT_NE(written.find("!p \"\"\"!\" ab LPT1 * 50 \"\"\n"), std::string::npos) << written;
  EXPECT_NE(written.find("!m \"\"\"\" 0 \"\"\n"), std::string::npos) << written;
  EXPECT_EQ(jmd("show", {"steps", "INVOICE"}).out,
            "PXMERGE   inv.mdf              LASER1   \n"
            "PXMERGE   inv2.mdf             LASER2   \n"
            "\"         \"\"                   ;!       \n");
  EXPECT_EQ(jmd("check").status, 0);
  std::string again = dir_.file("again.jmd");
  ASSERT_EQ(pxctl({"jmd", "save", jmd_, again}).status, 0);
  EXPECT_EQ(dir_.read("again.jmd"), written);
}

// Steps move within their page of 1000, as in the job window.
TEST_F(PxctlJmdEditTest, AMoveAcrossTwoPagesOfStepsIsRefused) {
  std::string text = kHead;
  for (int i = 1; i <= 1001; ++i) text += "!f BIG * f" + std::to_string(i) + " * 1 T X N N C *\n";
  dir_.write("jobs.jmd", text);
  ProgramResult across = jmd("move-step", {"BIG", "1000", "1001", "down"});
  EXPECT_EQ(across.status, 1);
  EXPECT_EQ(across.err.substr(0, 6), "[1521]") << across.err;
  EXPECT_EQ(jmd("move-step", {"BIG", "1001", "1002", "up"}).err,
            "[1503]no step 1002 of BIG (1001 steps)\n");
  EXPECT_EQ(file(), text);
  EXPECT_EQ(jmd("move-step", {"BIG", "1001", "1001", "up"}).status, 0);
  EXPECT_EQ(file(), text);  // the first step of its page
  EXPECT_EQ(jmd("move-step", {"BIG", "999", "999", "down"}).status, 0);
  EXPECT_NE(file().find("f1000 * 1 T X N N C *\n!f BIG * f999 "), std::string::npos);
}

TEST_F(PxctlJmdEditTest, CheckWarnsOfStepsNamingWhatIsNotThere) {
  ASSERT_EQ(jmd("delete", {"printers", "LASER2"}).status, 0);
  ASSERT_EQ(jmd("add-step", {"INVOICE", "TaskId=NOTASK", "PrinterName=*"}).status, 0);
  ProgramResult check = pxctl({"jmd", "check", jmd_});
  EXPECT_EQ(check.status, 0);
  EXPECT_EQ(check.out, "jobs 4 printers 1 tasks 1 memory 1\n");
  EXPECT_EQ(check.err,
            "[1507]step 1 of CHEQUE lacks printer LASER2\n"
            "[1507]step 2 of INVOICE lacks printer LASER2\n"
            "[1508]step 3 of INVOICE lacks task NOTASK\n");
}

// Every editing command is an operator action: refused in read-only mode
// with the file left as it was, and recorded in the audit log under the
// words that say what it changed (the list, the row's key, the job and its
// step numbers), without the values typed into fields.
TEST_F(PxctlJmdEditTest, EditsAreOperatorActions) {
  struct Edit {
    std::string command;
    std::vector<std::string> words;
    std::string action;  // after "jmd COMMAND FILE"
  };
  const std::vector<Edit> edits = {
      {"add", {"printers", "PrinterName=P9"}, " printers"},
      {"edit", {"printers", "LASER1", "Priority=7"}, " printers LASER1"},
      {"delete", {"tasks", "PXMERGE"}, " tasks PXMERGE"},
      {"new-job", {"EMPTY"}, " EMPTY"},
      {"add-step", {"INVOICE", "--before", "2", "MDFName=x.mdf"}, " INVOICE --before 2"},
      {"edit-step", {"INVOICE", "1", "MacroNum=3"}, " INVOICE 1"},
      {"delete-step", {"INVOICE", "2"}, " INVOICE 2"},
      {"move-step", {"INVOICE", "1", "1", "down"}, " INVOICE 1 1 down"},
      {"copy-job", {"INVOICE", "COPY"}, " INVOICE COPY"},
  };
  auto action = [&](const Edit& edit) { return "jmd " + edit.command + " " + jmd_ + edit.action; };
  for (const Edit& edit : edits) {
    std::vector<std::string> args = {"-aro", "jmd", edit.command, jmd_};
    args.insert(args.end(), edit.words.begin(), edit.words.end());
    ProgramResult refused = pxctl(args);
    EXPECT_EQ(refused.status, 1) << edit.command;
    EXPECT_EQ(refused.err, "[1700]read-only: " + action(edit) + "\n");
  }
  EXPECT_EQ(file(), kJmd);
  EXPECT_EQ(jmd("add", {"printers", "PrinterName=P9", "PrinterId=Com3"}).status, 1);
  for (const Edit& edit : edits) {
    EXPECT_EQ(jmd(edit.command, edit.words).status, 0) << edit.command;
  }
  // Each record: time, user, host, program, instance, action, result, message.
  std::vector<std::string> records;
  std::istringstream log(dir_.read("audit.log"));
  for (std::string line; std::getline(log, line);) {
    std::vector<std::string> fields;
    std::istringstream split(line);
    for (std::string field; std::getline(split, field, '\t');) fields.push_back(field);
    ASSERT_EQ(fields.size(), 8u) << line;
    records.push_back(fields[5] + " " + fields[6] + " " + fields[7]);
  }
  std::vector<std::string> expected;
  for (const Edit& edit : edits) expected.push_back(action(edit) + " refused 1700");
  expected.push_back("jmd add " + jmd_ + " printers failed 301");
  for (const Edit& edit : edits) expected.push_back(action(edit) + " done 0");
  EXPECT_EQ(records, expected);
  EXPECT_EQ(dir_.read("audit.log").find("P9"), std::string::npos);  // a typed value
}

}  // namespace
}  // namespace px
