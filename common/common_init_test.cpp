#include "common/common_init.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "common/command_line.h"
#include "common/ini_profile.h"
#include "common/messages.h"
#include "common/response_file.h"
#include "tests/support/test_dir.h"

namespace px {
namespace {

using Args = std::vector<std::string>;

class CommonInitTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(getcwd(cwd_, sizeof cwd_), nullptr);
    ASSERT_EQ(chdir(dir_.path().c_str()), 0);
    ini::flush_cache();
    messages::reset();
    ini_ = dir_.write("prog.ini",
                      "[Plexar]\nLogFile=from_ini.log\nRspFile=answer.rsp\n"
                      "[PxServer]\nServerName=ALPHA\n"
                      "[Messages]\nMsg604=25 cannot read\nMsg-604=The @ file could not be read\n");
  }
  void TearDown() override {
    messages::reset();
    set_response_file("");
    ini::flush_cache();
    EXPECT_EQ(chdir(cwd_), 0);
  }
  TestDir dir_;
  std::string ini_;
  char cwd_[4096];
};

TEST_F(CommonInitTest, OptionsAreTakenInOrder) {
  dir_.write("answer.rsp", "stale");
  Args args{"/opt/px/prog", "-AII" + ini_, "-allfirst.log", "job", "-allsecond.log", "-adt42"};
  ASSERT_EQ(common_init(args), 0);
  EXPECT_EQ(args.size(), 6u);  // options stay in the vector
  EXPECT_EQ(ini::default_file(), ini_);
  EXPECT_EQ(messages::log_file(), "second.log");
  EXPECT_EQ(messages::program_name(), "prog");
  EXPECT_EQ(integer_option(), 42);
  EXPECT_FALSE(read_only_option());
  EXPECT_EQ(server_name(), "ALPHA");
  EXPECT_EQ(response_file(), "answer.rsp");
  EXPECT_EQ(access("answer.rsp", F_OK), -1);  // a stale response is deleted
}

TEST_F(CommonInitTest, ProgramPathWithBlankAloneStaysOneArgument) {
  Args args{"/opt/Px Dir/prog"};
  ASSERT_EQ(common_init(args), 0);
  EXPECT_EQ(args, (Args{"/opt/Px Dir/prog"}));
  EXPECT_EQ(messages::program_name(), "prog");
}

TEST_F(CommonInitTest, OwnWordsAreKeptAsGiven) {
  dir_.write("more.txt", "x \"y z\"");
  Args args{"/opt/my px/prog", "@more.txt", "cmd", "", "it's", "mail @support", "-allown.log"};
  ASSERT_EQ(common_init(args, 3), 0);
  EXPECT_EQ(args, (Args{"/opt/my px/prog", "x", "y z", "cmd", "", "it's", "mail @support",
                        "-allown.log"}));
  EXPECT_EQ(messages::log_file(), "own.log");

  Args alone{"/opt/my px/prog", "", "@nothing"};
  ASSERT_EQ(common_init(alone, 1), 0);
  EXPECT_EQ(alone, (Args{"/opt/my px/prog", "", "@nothing"}));

  Args missing{"prog", "@nothing.txt", "cmd"};
  EXPECT_EQ(common_init(missing, 2), kIndirectFileFailed);
}

TEST_F(CommonInitTest, IniOptionNeedsItsValueAttached) {
  Args args{"prog", "-aii", ini_, "-asnBETA"};
  ASSERT_EQ(common_init(args), 0);
  EXPECT_EQ(ini::default_file(), "");
  EXPECT_EQ(args, (Args{"prog", "-aii", ini_, "-asnBETA"}));
  EXPECT_EQ(server_name(), "BETA");
}

TEST_F(CommonInitTest, IndirectFileFailureKeepsArguments) {
  ini::set_file(ini_);
  messages::set_log_file(dir_.file("init.log"));
  messages::set_date_format("D");
  messages::set_program_name("prog");
  Args args{"prog", "@" + dir_.file("missing"), "x"};
  Args before = args;
  EXPECT_EQ(common_init(args), kIndirectFileFailed);
  EXPECT_EQ(args, before);
  EXPECT_EQ(dir_.read("init.log"), "D prog: The @ file could not be read\n");
  EXPECT_EQ(init_error_text(kOutOfMemory), "Out of memory");
  EXPECT_EQ(init_error_text(-1), "Unknown error");
}

TEST_F(CommonInitTest, IndirectFileSuppliesOptions) {
  std::string at = dir_.write("opts", "-aii" + ini_ + " -arfBASIC -arxmine.rsp -ARO\n");
  Args args{"prog", "@" + at, "cmd"};
  ASSERT_EQ(common_init(args), 0);
  EXPECT_EQ(args, (Args{"prog", "-aii" + ini_, "-arfBASIC", "-arxmine.rsp", "-ARO", "cmd"}));
  EXPECT_TRUE(read_only_option());
  EXPECT_TRUE(is_common_option("-aro"));
  EXPECT_EQ(response_format(), ResponseFormat::kBasic);
  write_response(3, "done");
  EXPECT_EQ(dir_.read("mine.rsp"), "3\ndone");
  EXPECT_EQ(response_file(), "");  // written once
}

TEST_F(CommonInitTest, BuildTimeIsLoggedOncePerRun) {
  std::string ini = dir_.write("build.ini", "[Plexar]\nLogBuild=Yes\nMsgDateStampFormat=D\n");
  Args args{"prog", "-aii" + ini, "-allbuild.log"};
  ASSERT_EQ(common_init(args), 0);
  ASSERT_EQ(common_init(args), 0);
  std::string log = dir_.read("build.log");
  EXPECT_EQ(log.rfind("D prog: Executable Built ", 0), 0u) << log;
  EXPECT_EQ(log.find('\n'), log.size() - 1);  // one line only
}

TEST_F(CommonInitTest, FieldResponseWithExtras) {
  set_response_format(ResponseFormat::kField);
  set_response_file("out.rsp");
  write_response(0, "fine", {{"count", "2"}});
  EXPECT_EQ(dir_.read("out.rsp"), "^field status\n0\n^field message\nfine\n^field count\n2\n");
}

TEST_F(CommonInitTest, ReadResponseBack) {
  std::string field = "^field status\n7\n^field message\nall done\n";
  for (int i = 0; i < 17; ++i) field += "^field x" + std::to_string(i) + "\nv\n";
  dir_.write("field.txt", field);
  Response r = run_and_read_response("cp field.txt plexar.rsp");
  EXPECT_EQ(r.status, 7);
  EXPECT_EQ(r.message, "all done");
  EXPECT_EQ(r.extras.size(), kMaxResponseExtras);
  EXPECT_EQ(access("plexar.rsp", F_OK), -1);

  dir_.write("basic.txt", "-2\n\nbasic message\r\nignored\n");
  r = run_and_read_response("cp basic.txt plexar.rsp");
  EXPECT_EQ(r.status, -2);
  EXPECT_EQ(r.message, "basic message");

  r = run_and_read_response("sh -c 'exit 4'");
  EXPECT_EQ(r.status, 4);
  EXPECT_EQ(r.message, "");
}

}  // namespace
}  // namespace px
