// Runs the pxctl program itself and checks its output, messages and exit
// codes.
#include <gtest/gtest.h>

#include <filesystem>

#include "cli/pxctl_test_fixture.h"

namespace px {
namespace {

class PxctlTest : public PxctlFixture {
 protected:
  void SetUp() override {
    ini_ = dir_.write("test.ini",
                      "[Plexar]\nInstall=" + dir_.file("install.ini") +
                          "\n[Options]\nMsgDateStampFormat=T\n"
                          "[Messages]\n"
                          "Msg20=10 file @P1 is missing from @P2\n"
                          "Msg901=30 bad use of @P1\n"
                          "Msg902=30 cannot write @P1\n"
                          "Msg1304=30 cannot lock @P1 because @P2\n");
  }
};

TEST_F(PxctlTest, IniRoundTripIsByteExact) {
  std::string file = dir_.write("s.ini", "[A]\nk=1\n\n[B]\nx=2\n");
  EXPECT_EQ(pxctl({"ini", "set", file, "A", "j", "two words"}).status, 0);
  EXPECT_EQ(pxctl({"ini", "set", file, "C", "n", "3"}).status, 0);
  EXPECT_EQ(dir_.read("s.ini"), "[A]\nk=1\nj=two words\n\n[B]\nx=2\n\n[C]\nn=3\n");

  ProgramResult get = pxctl({"ini", "get", file, "a", "J"});
  EXPECT_EQ(get.out, "two words\n");
  EXPECT_EQ(pxctl({"ini", "get", file, "A", "none", "fallback"}).out, "fallback\n");
  EXPECT_EQ(pxctl({"ini", "keys", file, "A"}).out, "k\nj\n");

  EXPECT_EQ(pxctl({"ini", "delete", file, "A", "k"}).status, 0);
  EXPECT_EQ(pxctl({"ini", "delete", file, "B"}).status, 0);
  EXPECT_EQ(dir_.read("s.ini"), "[A]\nj=two words\n\n[B]\n\n[C]\nn=3\n");
}

TEST_F(PxctlTest, CrLfFilesAreRewrittenSoTheValueReadsBack) {
  std::string file = dir_.write("c.ini", "[A]\r\nflag\r\n\r\n[B]\r\n");
  EXPECT_EQ(pxctl({"ini", "set", file, "A", "flag", "on"}).status, 0);
  EXPECT_EQ(pxctl({"ini", "get", file, "A", "flag", "DEF"}).out, "on\n");
  EXPECT_EQ(pxctl({"ini", "set", file, "A", "more", "1"}).status, 0);
  EXPECT_EQ(dir_.read("c.ini"), "[A]\r\nflag=on\nmore=1\n\r\n[B]\r\n");
}

TEST_F(PxctlTest, ProgramPathWithABlankAndNoArgumentsShowsTheHelp) {
  std::filesystem::path built(PXCTL_PATH);
  std::filesystem::create_directory(dir_.file("Px Dir"));
  std::filesystem::copy_file(built, dir_.file("Px Dir/pxctl"));
  std::filesystem::copy_file(built.parent_path() / "pxcntrl.ini", dir_.file("Px Dir/pxcntrl.ini"));
  // The same help as from the path without a blank, not a message about an
  // unknown command "Dir/pxctl".
  ProgramResult help = run_program(dir_.file("Px Dir/pxctl"), {}, dir_.path());
  ProgramResult plain = run_program(PXCTL_PATH, {}, dir_.path());
  EXPECT_EQ(help.out.rfind("Usage: pxctl", 0), 0u) << help.out;
  EXPECT_EQ(help.out, plain.out);
  EXPECT_EQ(help.err, "");
  EXPECT_EQ(help.status, plain.status);
}

TEST_F(PxctlTest, FailuresAndUsageErrors) {
  ProgramResult write = pxctl({"ini", "set", dir_.file("no/dir.ini"), "A", "k", "v"});
  EXPECT_EQ(write.status, 1);
  EXPECT_EQ(write.err, "[1304]cannot lock " + dir_.file("no/dir.ini") +
                           " because No such file or directory\n[902]cannot write " +
                           dir_.file("no/dir.ini") + "\n");

  ProgramResult usage = pxctl({"ini", "get", "only-a-file"});
  EXPECT_EQ(usage.status, 2);
  EXPECT_EQ(usage.err, "[901]bad use of ini get\n");
  EXPECT_EQ(pxctl({"frobnicate"}).status, 2);
  EXPECT_EQ(pxctl({"msg", "twelve"}).status, 2);
  EXPECT_EQ(pxctl({}).status, 2);
}

TEST_F(PxctlTest, ChangesThatWouldNotReadBackAreRefused) {
  std::string file = dir_.write("s.ini", "[S]\nK=1\n");
  ProgramResult injected = pxctl({"ini", "set", file, "S", "K", "a\n[Evil]\nX=1"});
  EXPECT_EQ(injected.status, 1);
  EXPECT_EQ(injected.err.rfind("[1352]", 0), 0u) << injected.err;
  EXPECT_EQ(pxctl({"ini", "set", file, "A]B", "K", "v"}).err.rfind("[1350]", 0), 0u);
  EXPECT_EQ(pxctl({"ini", "set", file, "S", "K=", "v"}).err.rfind("[1351]", 0), 0u);
  ProgramResult deleted = pxctl({"ini", "delete", file, "S]", "K"});
  EXPECT_EQ(deleted.status, 1);
  EXPECT_EQ(deleted.err.rfind("[1350]", 0), 0u) << deleted.err;
  EXPECT_EQ(dir_.read("s.ini"), "[S]\nK=1\n");
}

TEST_F(PxctlTest, ALongValueIsSetAndReplacedAsOneLine) {
  std::string file = dir_.write("s.ini", "[S]\nK=1\nJ=2\n");
  // From the 255th character on, the value reads like a line of its own.
  std::string long_value = std::string(253, 'v') + "K=tail" + std::string(41, 'w');
  ASSERT_EQ(pxctl({"ini", "set", file, "S", "K", long_value}).status, 0);
  EXPECT_EQ(dir_.read("s.ini"), "[S]\nK=" + long_value + "\nJ=2\n");
  EXPECT_EQ(pxctl({"ini", "get", file, "S", "K"}).out, long_value + "\n");
  ASSERT_EQ(pxctl({"ini", "set", file, "S", "K", "short"}).status, 0);
  EXPECT_EQ(dir_.read("s.ini"), "[S]\nK=short\nJ=2\n");

  // "K=" and 509 characters fill the longest line the reader returns.
  ASSERT_EQ(pxctl({"ini", "set", file, "S", "K", std::string(509, 'x')}).status, 0);
  ProgramResult too_long = pxctl({"ini", "set", file, "S", "K", std::string(510, 'y')});
  EXPECT_EQ(too_long.status, 1);
  EXPECT_EQ(too_long.err.rfind("[1352]", 0), 0u) << too_long.err;
  EXPECT_EQ(dir_.read("s.ini"), "[S]\nK=" + std::string(509, 'x') + "\nJ=2\n");
  ASSERT_EQ(pxctl({"ini", "delete", file, "S", "K"}).status, 0);
  EXPECT_EQ(dir_.read("s.ini"), "[S]\nJ=2\n");
}

TEST_F(PxctlTest, MessageIsPrintedAndLogged) {
  ProgramResult r = pxctl({"-alltest.log", "msg", "20", "a.dat", "/in"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "10\t[20]file a.dat is missing from /in\n");
  EXPECT_EQ(dir_.read("test.log"), "T pxctl: [20]file a.dat is missing from /in\n");
  EXPECT_EQ(pxctl({"msg", "-77"}).out, "30\t[-77]** Message Msg77 not in .ini file **\n");
}

TEST_F(PxctlTest, ArgumentsAfterCommonInitialisation) {
  dir_.write("more.txt", "x\t\"y z\"\n");
  ProgramResult r = pxctl({"args", "a b", "@more.txt", "-aii", "path"});
  EXPECT_EQ(r.out, "a b\nx\ny z\n-aii\npath\n");

  ProgramResult missing = pxctl({"args", "@nothing.txt"});
  EXPECT_EQ(missing.status, 1);
  // The INI file is not set up yet, so the text comes from the console's own.
  EXPECT_EQ(missing.err.rfind("[-604]", 0), 0u) << missing.err;
}

TEST_F(PxctlTest, OwnWordsReachTheCommandAsTheShellGaveThem) {
  std::string file = dir_.write("s.ini", "[S]\nK=1\n");
  EXPECT_EQ(pxctl({"ini", "set", file, "S", "K", ""}).status, 0);
  EXPECT_EQ(pxctl({"ini", "set", file, "S", "J", "it's"}).status, 0);
  ProgramResult mail = pxctl({"ini", "set", file, "S", "M", "mail @support"});
  EXPECT_EQ(mail.status, 0) << mail.err;
  EXPECT_EQ(pxctl({"ini", "set", file, "S", "Q", "\"a  b\""}).status, 0);
  EXPECT_EQ(dir_.read("s.ini"), "[S]\nK=\nJ=it's\nM=mail @support\nQ=\"a  b\"\n");
  EXPECT_EQ(pxctl({"ini", "get", file, "S", "none", ""}).out, "\n");

  // Options and "@" files before the command, and options after it, still
  // count; the command word itself may come from an "@" file.
  dir_.write("words.txt", "-allown.log ini");
  ProgramResult indirect = pxctl({"@words.txt", "get", file, "S", "J", "-asnX"});
  EXPECT_EQ(indirect.out, "it's\n");
  EXPECT_EQ(pxctl({"ini", "get", file, "S", "J", "-alllater.log"}).out, "it's\n");
  EXPECT_EQ(pxctl({"-alllater.log", "msg", "20", "a", "b"}).status, 0);
  EXPECT_NE(dir_.read("later.log").find("[20]"), std::string::npos);
}

TEST_F(PxctlTest, HelpComesFromUsageSectionWhenPresent) {
  ProgramResult builtin = pxctl({"--help"});
  EXPECT_EQ(builtin.status, 0);
  EXPECT_NE(builtin.out.find("ini get FILE SECTION KEY"), std::string::npos);
  dir_.write("test.ini", "[Usage]\nUsage1=use me\nUsage2=  second line\n");
  EXPECT_EQ(pxctl({"--help"}).out, "use me\nsecond line\n");
}

TEST_F(PxctlTest, DirectoryMapOfAnInstance) {
  dir_.write("install.ini", "[Directories-north]\n/data=/srv/north\n[Special-north]\nCaseMap=Upper\n");
  EXPECT_EQ(pxctl({"ini", "map", "north", "/data/in/a.dat"}).out, "/srv/north/IN/A.DAT\n");
  EXPECT_EQ(pxctl({"ini", "map", "south", "/data/in"}).out, "/data/in\n");
}

}  // namespace
}  // namespace px
