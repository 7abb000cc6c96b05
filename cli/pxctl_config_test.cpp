// pxctl config, processes and instances on a small installation: output
// lines, refusals, exit codes and the bytes the files end up with.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "cli/pxctl_test_fixture.h"
#include "tests/support/file_size_limit.h"

namespace px {
namespace {

class PxctlConfigTest : public PxctlFixture {
 protected:
  void SetUp() override {
    ini_ = dir_.write("test.ini",
                      "[Plexar]\nInstall=" + dir_.file("install.ini") +
                          "\n[Messages]\n"
                          "Msg167=30 missing @P3 in @P1\n"
                          "Msg175=30 no @P1\n"
                          "Msg211=10 Nexa Control\n"
                          "Msg218=30 cannot open @P1\n"
                          "Msg303=30 yield out of range\n"
                          "Msg901=30 bad use of @P1\n"
                          "Msg1600=30 no process @P1\n"
                          "Msg1601=30 @P1 is elsewhere\n"
                          "Msg1602=30 @P1 changed\n"
                          "Msg1606=20 @P1 cut to @P2\n"
                          "Msg1613=20 @P1 took @P2 as @P3\n"
                          "Msg1617=30 @P1 has its own editor @P2\n"
                          "Msg1618=30 @P1 cannot be saved\n"
                          "Msg1607=30 no instance @P1\n"
                          "Msg1608=30 @P1 exists\n"
                          "Msg1609=30 bad name @P1\n");
    email_ = dir_.write("pxemio.ini",
                        "[Options]\nCycleTime=2000\nSeconds=yes\nEMailSystem=VIM\n"
                        "[PxEmio-VIM]\nMailBoxID=orders\nPassword=north1\nPostOffice=/po\n");
    north_ = dir_.write("north.ini",
                        "; north\r\n[Plexar]\r\nWindowTitle=North\r\nNode=here\r\n"
                        "[Processes]\r\nPXSERVER=Plexar Nexa Server\r\n"
                        "PXEMIO=Plexar E-Mail Agent\r\nPXMERGE=Plexar Print Agent\r\n"
                        "[Options]\r\nPauseTime=120\r\n[PXEMIO]\r\nIniFileName=" +
                            email_ + "\r\n[PXMERGE]\r\nIniFileName= \r\n");
    far_ = dir_.write("far.ini", "[Plexar]\nWindowTitle=Far\nNode=elsewhere\n"
                                 "[Processes]\nPXSERVER=Plexar Nexa Server\n");
    dir_.write("install.ini", "[Plexar]\nNode=here\n[Configuration]\nnorth=" + north_ +
                                  "\nfar=" + far_ + "\n");
  }

  std::string email_;
  std::string north_;
  std::string far_;
};

TEST_F(PxctlConfigTest, ShowPrintsTheFieldsAsTheDialogOpens) {
  ProgramResult server = pxctl({"config", "show", "PXSERVER"});
  EXPECT_EQ(server.status, 0) << server.err;
  EXPECT_EQ(server.out,
            "PauseTime\t2\nUnit\tminutes\nFileSpec\t*.DAT\nDeleteExt\tDA*\nBackupFiles\tNo\n"
            "LogFile\t\nLogFileSize\t100000\nVerbosity\t-10\n");
  ProgramResult email = pxctl({"config", "show", "pxemio"});
  EXPECT_EQ(email.out,
            "CycleTime\t999\nSeconds\tYes\nLogToFile\tNo\nDeleteAfterRead\tNo\nBackupFiles\tNo\n"
            "MailBoxID\torders\nPassword\t******\nPostOffice\t/po\n");
  EXPECT_EQ(pxctl({"config", "show", "PXSERVER", "network"}).out,
            "NetworkQueues\tNo\nNetworkCaptureCmd\t\nNetworkLocalDevice\t\n"
            "NetworkExcludeQueues\t\nNetworkIncludeQueues\t\n");
}

TEST_F(PxctlConfigTest, SetTypesConvertsAndWritesOnlyTheFormsKeys) {
  ProgramResult r = pxctl({"config", "set", "PXSERVER", "PauseTime=999", "Unit=minutes",
                           "Verbosity=12a34", "BackupFiles=yes"});
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.err, "[1606]Verbosity cut to 3\n");
  // The form's keys in its save order; every other line as it was, line end included.
  std::string text = dir_.read("north.ini");
  std::string plain = text;
  std::erase(plain, '\r');
  EXPECT_EQ(plain,
            "; north\n[Plexar]\nWindowTitle=North\nNode=here\nLogFile=\nLogFileSize=100000\n"
            "Verbosity=123\n[Processes]\nPXSERVER=Plexar Nexa Server\nPXEMIO=Plexar E-Mail Agent\n"
            "PXMERGE=Plexar Print Agent\n[Options]\nPauseTime=59940\nBackupFiles=Yes\n"
            "FileSpec=*.DAT\nDeleteExt=DA*\n[PXEMIO]\nIniFileName=" +
                email_ + "\n[PXMERGE]\nIniFileName= \n");
  for (const std::string& untouched :
       {std::string("; north\r\n[Plexar]\r\nWindowTitle=North\r\nNode=here\r\n"),
        std::string("[Processes]\r\nPXSERVER=Plexar Nexa Server\r\nPXEMIO=Plexar E-Mail Agent\r\n"
                    "PXMERGE=Plexar Print Agent\r\n[Options]\r\n"),
        "[PXEMIO]\r\nIniFileName=" + email_ + "\r\n[PXMERGE]\r\nIniFileName= \r\n"}) {
    EXPECT_NE(text.find(untouched), std::string::npos) << untouched;
  }
}

TEST_F(PxctlConfigTest, WhatShowPrintsGivenBackToSetChangesNothing) {
  const std::vector<std::vector<std::string>> forms = {
      {"PXSERVER"}, {"PXSERVER", "locations"}, {"PXEMIO"}, {"PXEMIO", "locations"},
      {"PXEMIO", "jobcard"}};
  for (const std::vector<std::string>& form : forms) {
    std::vector<std::string> show = {"config", "show"};
    show.insert(show.end(), form.begin(), form.end());
    ProgramResult before = pxctl(show);
    ASSERT_EQ(before.status, 0) << before.err;
    std::vector<std::string> set = {"config", "set"};
    set.insert(set.end(), form.begin(), form.end());
    std::string lines = before.out;
    for (std::size_t at = 0; at < lines.size();) {
      std::size_t end = lines.find('\n', at);
      std::string line = lines.substr(at, end - at);
      set.push_back(line.replace(line.find('\t'), 1, "="));
      at = end + 1;
    }
    ProgramResult r = pxctl(set);
    EXPECT_EQ(r.status, 0) << form[0] << " " << r.err;
    EXPECT_EQ(r.err, "") << form[0];
    EXPECT_EQ(pxctl(show).out, before.out) << form[0];
  }
  // The password's asterisks kept the password.
  EXPECT_NE(dir_.read("pxemio.ini").find("\nPassword=north1\n"), std::string::npos);
}

// The lines of text starting with prefix.
std::vector<std::string> lines_starting(const std::string& text, std::string_view prefix) {
  std::vector<std::string> found;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = std::min(text.find('\n', at), text.size());
    if (text.compare(at, prefix.size(), prefix) == 0) found.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return found;
}

TEST_F(PxctlConfigTest, AFieldOfItsFullLengthSavesAndIsRewrittenWithoutATail) {
  std::string full(255, 'f');
  ProgramResult r = pxctl({"config", "set", "PXSERVER", "FileSpec=" + full});
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.err, "");
  EXPECT_NE(pxctl({"config", "show", "PXSERVER"}).out.find("\nFileSpec\t" + full + "\n"),
            std::string::npos);
  std::string saved = dir_.read("north.ini");
  ASSERT_EQ(lines_starting(saved, "FileSpec="), std::vector<std::string>{"FileSpec=" + full});

  // Each rewrite changes the one line: a shorter value, then one whose
  // second 255-character piece reads like the key itself, then a short one.
  std::string like_key = std::string(246, 'g') + "FileSpec=";
  std::string like_header = std::string(246, 'h') + "[Options]";
  for (const std::string& value : {std::string("*.TXT"), like_key, like_header, full}) {
    std::string old_line = lines_starting(saved, "FileSpec=").at(0);
    ProgramResult again = pxctl({"config", "set", "PXSERVER", "FileSpec=" + value});
    ASSERT_EQ(again.status, 0) << again.err;
    std::string expected = saved;
    expected.replace(expected.find(old_line), old_line.size(), "FileSpec=" + value);
    saved = dir_.read("north.ini");
    EXPECT_EQ(saved, expected) << value;
    EXPECT_NE(pxctl({"config", "show", "PXSERVER"}).out.find("\nFileSpec\t" + value + "\n"),
              std::string::npos);
  }
}

TEST_F(PxctlConfigTest, DryRunListsChangesAndWritesNothing) {
  std::string before = dir_.read("pxemio.ini");
  ProgramResult r = pxctl({"config", "set", "PXEMIO", "Password=abc", "Unit=minutes",
                           "--dry-run"});
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out,
            "Seconds\tyes\tNo\nCycleTime\t2000\t999\nLogToFile\t(none)\tNo\n"
            "DeleteAfterRead\t(none)\tNo\nBackupFiles\t(none)\tNo\nPassword\t******\t***\n");
  EXPECT_EQ(dir_.read("pxemio.ini"), before);
}

TEST_F(PxctlConfigTest, RefusalsAndUsageErrors) {
  std::string before = dir_.read("north.ini");
  EXPECT_EQ(pxctl({"config", "set", "PXSERVER", "Nonsense=1"}).status, 2);
  EXPECT_EQ(pxctl({"config", "set", "PXSERVER", "Unit=hours"}).status, 2);
  EXPECT_EQ(pxctl({"config", "show", "PXSERVER", "jobcard"}).status, 2);
  EXPECT_EQ(pxctl({"config", "show"}).status, 2);
  EXPECT_EQ(dir_.read("north.ini"), before);

  ProgramResult digits = pxctl({"config", "set", "PXSERVER", "LogFileSize=5x0", "PauseTime=0"});
  EXPECT_EQ(digits.status, 0);
  EXPECT_EQ(digits.err, "[1613]LogFileSize took 5x0 as 50\n[1613]PauseTime took 0 as 1\n");
  EXPECT_NE(dir_.read("north.ini").find("LogFileSize=50"), std::string::npos);
  dir_.write("north.ini", before);

  // A mail system without a post office has no such field to type into.
  std::string email = dir_.read("pxemio.ini");
  dir_.write("pxemio.ini", "[Options]\nEMailSystem=mapi\n[PxEmio-mapi]\nMailBoxID=m\n");
  EXPECT_EQ(pxctl({"config", "set", "PXEMIO", "PostOffice=/po"}).status, 2);
  EXPECT_EQ(dir_.read("pxemio.ini"), "[Options]\nEMailSystem=mapi\n[PxEmio-mapi]\nMailBoxID=m\n");
  dir_.write("pxemio.ini", email);

  // A value the file would not give back is refused as OK's own check:
  // "MailBoxID=" and 502 characters pass the 511 of a line the reader returns.
  std::string mail = dir_.read("pxemio.ini");
  ProgramResult too_long =
      pxctl({"config", "set", "PXEMIO", "MailBoxID=" + std::string(502, 'm')});
  EXPECT_EQ(too_long.status, 1);
  EXPECT_EQ(too_long.err, "[1618]MailBoxID cannot be saved\n");
  EXPECT_EQ(dir_.read("pxemio.ini"), mail);
  EXPECT_EQ(dir_.read("north.ini"), before);

  ProgramResult missing = pxctl({"config", "show", "PXNONE"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err, "[1600]no process PXNONE\n");
  ProgramResult blank = pxctl({"config", "show", "PXMERGE"});
  EXPECT_EQ(blank.status, 1);
  EXPECT_EQ(blank.err, "[167]missing IniFileName in PXMERGE\n");
  ProgramResult far = pxctl({"--instance", "far", "config", "show", "PXSERVER"});
  EXPECT_EQ(far.status, 1);
  EXPECT_EQ(far.err, "[1601]far is elsewhere\n");
}

TEST_F(PxctlConfigTest, AProcessWithItsOwnEditorHasNoFormEvenTheServer) {
  std::string before = dir_.read("north.ini");
  std::string own = before;
  own.replace(own.find("[Options]"), 0, "[PXSERVER]\r\nEditCfgRtn=vi %s\r\n");
  own.replace(own.find("[PXEMIO]\r\n") + 10, 0, "EditCfgRtn=mailcfg -f %s\r\n");
  dir_.write("north.ini", own);
  for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
           {"config", "show", "PXSERVER"}, {"config", "set", "PXSERVER", "PauseTime=45"}}) {
    ProgramResult r = pxctl(words);
    EXPECT_EQ(r.status, 1) << words[1];
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, "[1617]PXSERVER has its own editor vi " + north_ + "\n");
  }
  ProgramResult email = pxctl({"config", "show", "PXEMIO", "jobcard"});
  EXPECT_EQ(email.status, 1);
  EXPECT_EQ(email.err, "[1617]PXEMIO has its own editor mailcfg -f " + email_ + "\n");
  EXPECT_EQ(dir_.read("north.ini"), own);
}

TEST_F(PxctlConfigTest, YieldOutOfRangeIsRefusedAndWritesNothing) {
  std::string merge = dir_.write("pxmerge.ini", "[Plexar]\nYieldPercent=40\n");
  dir_.write("north.ini", dir_.read("north.ini").replace(
                              dir_.read("north.ini").find("IniFileName= "), 13,
                              "IniFileName=" + merge));
  ProgramResult r = pxctl({"config", "set", "PXMERGE", "YieldPercent=101"});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "[303]yield out of range\n");
  EXPECT_EQ(dir_.read("pxmerge.ini"), "[Plexar]\nYieldPercent=40\n");
  EXPECT_EQ(pxctl({"config", "set", "PXMERGE", "YieldPercent=100"}).status, 0);
  EXPECT_EQ(pxctl({"config", "show", "PXMERGE"}).out,
            "Verbosity\t0\nFormPath\t\nLogoPath\t\nDataPath\t\n");
  EXPECT_EQ(pxctl({"config", "set", "PXMERGE", "currency", "CurrencyLocation=right"}).status, 0);
  EXPECT_NE(dir_.read("pxmerge.ini").find("CurrencyLocation=Right"), std::string::npos);
}

TEST_F(PxctlConfigTest, ProcessesListsTheConfigureRows) {
  ProgramResult r = pxctl({"processes"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "Nexa Control\nNexa Server\nE-Mail Agent\nPrint Agent\n");
  EXPECT_EQ(pxctl({"--instance", "far", "processes"}).out, "Nexa Control\n");
  dir_.write("north.ini", "[Plexar]\nNode=here\n");
  ProgramResult none = pxctl({"processes"});
  EXPECT_EQ(none.status, 1);
  EXPECT_EQ(none.out, "");
}

TEST_F(PxctlConfigTest, InstancesAddEditDefaultRemove) {
  std::string west = dir_.file("west.ini");
  EXPECT_EQ(pxctl({"instances", "add", "west", "West office", west}).status, 0);
  EXPECT_EQ(pxctl({"instances", "default", "west"}).status, 0);
  EXPECT_EQ(pxctl({"instances", "edit", "north", "--title", "North office"}).status, 0);
  EXPECT_EQ(pxctl({"instances", "remove", "far"}).status, 0);
  EXPECT_EQ(pxctl({"instances"}).out, "west\tWest office\t" + west + "\nnorth\tNorth office\t" +
                                          north_ + "\n");
  EXPECT_EQ(dir_.read("install.ini"), "[Plexar]\nNode=here\n[Configuration]\nwest=" + west +
                                          "\nnorth=" + north_ + "\n");
  EXPECT_EQ(dir_.read("west.ini"), "[Plexar]\nWindowTitle=West office\n");

  EXPECT_EQ(pxctl({"instances", "add", "WEST", "x", west}).err, "[1608]WEST exists\n");
  EXPECT_EQ(pxctl({"instances", "add", "a=b", "x", west}).status, 1);
  EXPECT_EQ(pxctl({"instances", "remove", "nobody"}).status, 1);
  // A title the file would not give back: refused before any file is written.
  std::string install = dir_.read("install.ini");
  ProgramResult blank = pxctl({"instances", "add", "east", "East ", dir_.file("east.ini")});
  EXPECT_EQ(blank.status, 1);
  EXPECT_EQ(blank.err, "[1618]WindowTitle cannot be saved\n");
  EXPECT_EQ(dir_.read("install.ini"), install);
  EXPECT_FALSE(std::filesystem::exists(dir_.file("east.ini")));
  EXPECT_EQ(pxctl({"instances", "edit", "north", "--colour", "red"}).status, 2);
  EXPECT_EQ(pxctl({"instances", "add", "only-a-name"}).status, 2);
  EXPECT_EQ(pxctl({"instances", "rename", "x"}).status, 2);
}

TEST_F(PxctlConfigTest, UsageErrorsOfInstanceChangesAreNotAuditedAsActions) {
  std::string audit = dir_.file("audit.log");
  dir_.write("test.ini", dir_.read("test.ini") + "[Options]\nAuditLog=" + audit + "\n");
  std::string install = dir_.read("install.ini");
  for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
           {"instances", "edit", "north", "--colour", "red"},
           {"instances", "edit", "north", "--title", "N", "--bad", "x"},
           {"instances", "edit", "north", "--title"},
           {"instances", "remove", "far", "extra"}}) {
    ProgramResult r = pxctl(words);
    EXPECT_EQ(r.status, 2) << words[3];
    EXPECT_EQ(r.err.find("[17"), std::string::npos) << r.err;
  }
  EXPECT_EQ(dir_.read("install.ini"), install);
  EXPECT_FALSE(std::filesystem::exists(audit)) << dir_.read("audit.log");
  // A well-formed edit still is one.
  EXPECT_EQ(pxctl({"instances", "edit", "north", "--title", "N"}).status, 0);
  EXPECT_NE(dir_.read("audit.log").find("instances edit north"), std::string::npos);
}

// A changing command that fails before it reaches its file or the server
// (no such instance, an instance on another node, a process not offered)
// is still an operator action: recorded as failed with its message, and in
// read-only mode refused with 1700 before anything is looked at. A usage
// error found on the way is none.
TEST_F(PxctlConfigTest, ActionsThatFailEarlyAreAuditedAndReadOnlyRefusesThemFirst) {
  std::string audit = dir_.file("audit.log");
  dir_.write("test.ini", dir_.read("test.ini") + "[Options]\nAuditLog=" + audit + "\n");
  std::string north = dir_.read("north.ini");
  const std::vector<std::pair<std::vector<std::string>, int>> runs = {
      {{"--instance", "far", "config", "set", "PXSERVER", "PauseTime=45"}, 1},
      {{"config", "set", "NOSUCH", "PauseTime=45"}, 1},
      {{"config", "set", "PXSERVER", "Bogus=1"}, 2},
      {{"config", "set", "PXSERVER", "nosuchform", "PauseTime=1"}, 2},
      {{"--instance", "ghost", "pause"}, 1},
      {{"--instance", "ghost", "jmd-save"}, 1},
      {{"--instance", "ghost", "kick"}, 1},
      {{"--instance", "ghost", "reload-printer", "--all-printers", "--all-forms"}, 1},
      {{"-aro", "--instance", "ghost", "start"}, 1},
      {{"-aro", "--instance", "far", "config", "set", "PXSERVER", "PauseTime=45"}, 1},
      {{"-aro", "stop-email"}, 1},
  };
  for (const auto& [words, status] : runs) {
    ProgramResult r = pxctl(words);
    EXPECT_EQ(r.status, status) << words[0] << " " << words[1] << ": " << r.err;
    if (words[0] == "-aro") {
      EXPECT_TRUE(r.err.starts_with("[1700]")) << r.err;
    }
  }
  EXPECT_EQ(dir_.read("north.ini"), north);
  std::vector<std::string> records;
  std::istringstream log(dir_.read("audit.log"));
  for (std::string line; std::getline(log, line);) {
    size_t instance = 0;
    for (int tab = 0; tab < 4; ++tab) instance = line.find('\t', instance) + 1;
    records.push_back(line.substr(instance));
  }
  EXPECT_EQ(records, (std::vector<std::string>{
                         "far\tconfig set PXSERVER\tfailed\t1601",
                         "north\tconfig set NOSUCH\tfailed\t1600",
                         "ghost\tpause\tfailed\t165",
                         "ghost\tjmd-save\tfailed\t165",
                         "ghost\tkick\tfailed\t165",
                         "ghost\treload-printer\tfailed\t165",
                         "ghost\tstart\trefused\t1700",
                         "far\tconfig set PXSERVER\trefused\t1700",
                         "north\tstop-email\trefused\t1700",
                     }));
}

TEST_F(PxctlConfigTest, AFailedWriteShowsWhyThenItsOwnMessageAndLeavesTheFile) {
  // A file larger than pxctl may write: its new version cannot be written.
  std::string big = dir_.read("north.ini") + "; " + std::string(60000, 'x') + "\r\n";
  dir_.write("north.ini", big);
  ProgramResult r;
  {
    FileSizeLimit limit(40000);
    ASSERT_TRUE(limit.set());
    r = pxctl({"config", "set", "PXSERVER", "PauseTime=45"});
  }
  EXPECT_EQ(r.status, 1);
  EXPECT_TRUE(r.err.starts_with("[1301]")) << r.err;
  EXPECT_NE(r.err.find("\n[902]"), std::string::npos) << r.err;
  EXPECT_EQ(dir_.read("north.ini"), big);
  EXPECT_FALSE(std::filesystem::exists(north_ + ".bak"));
  for (const auto& entry : std::filesystem::directory_iterator(dir_.path())) {
    EXPECT_FALSE(entry.path().filename().string().starts_with(".north.ini")) << entry.path();
  }
  // The agent's file is a directory: it cannot be locked for the change.
  std::filesystem::remove(email_);
  std::filesystem::create_directory(email_);
  ProgramResult locked = pxctl({"config", "set", "PXEMIO", "CycleTime=5"});
  EXPECT_EQ(locked.status, 1);
  EXPECT_TRUE(locked.err.starts_with("[130")) << locked.err;
  EXPECT_NE(locked.err.find("\n[902]"), std::string::npos) << locked.err;

  // Written whole, with the old file as its backup.
  EXPECT_EQ(pxctl({"config", "set", "PXSERVER", "PauseTime=45"}).status, 0);
  EXPECT_EQ(dir_.read("north.ini.bak"), big);
}

TEST_F(PxctlConfigTest, ReadOnlyRefusesSetsAndInstanceChangesAndAuditsThem) {
  std::string audit = dir_.file("audit.log");
  dir_.write("test.ini", dir_.read("test.ini") + "[Options]\nReadOnly=Yes\nAuditLog=" + audit +
                             "\n");
  std::string north = dir_.read("north.ini");
  std::string install = dir_.read("install.ini");
  const std::vector<std::vector<std::string>> refused = {
      {"config", "set", "PXSERVER", "PauseTime=45"},
      {"config", "set", "PXEMIO", "jobcard", "JobCardPrefix=x"},
      {"instances", "add", "west", "West", dir_.file("west.ini")},
      {"instances", "edit", "north", "--title", "N"},
      {"instances", "default", "far"},
      {"instances", "remove", "far"}};
  for (const std::vector<std::string>& words : refused) {
    ProgramResult r = pxctl(words);
    EXPECT_EQ(r.status, 1) << words[1];
    EXPECT_TRUE(r.err.starts_with("[1700]")) << r.err;
  }
  EXPECT_EQ(dir_.read("north.ini"), north);
  EXPECT_EQ(dir_.read("install.ini"), install);
  EXPECT_FALSE(std::filesystem::exists(dir_.file("west.ini")));
  std::string log = dir_.read("audit.log");
  for (const char* action : {"config set PXSERVER", "config set PXEMIO jobcard",
                             "instances add west", "instances edit north",
                             "instances default far", "instances remove far"}) {
    EXPECT_NE(log.find(action), std::string::npos) << action << "\n" << log;
  }
  EXPECT_NE(log.find("refused"), std::string::npos);
  // Looking is not changing: show and a dry run still work.
  EXPECT_EQ(pxctl({"config", "show", "PXSERVER"}).status, 0);
  ProgramResult dry = pxctl({"config", "set", "PXSERVER", "PauseTime=45", "--dry-run"});
  EXPECT_EQ(dry.status, 0) << dry.err;
  EXPECT_EQ(dir_.read("north.ini"), north);
}

}  // namespace
}  // namespace px
