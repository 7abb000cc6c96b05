#include "common/messages.h"

#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <unistd.h>

#include "common/expand.h"
#include "common/ini_profile.h"
#include "tests/support/test_dir.h"

namespace px {
namespace {

class MessagesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ini::flush_cache();
    messages::reset();
    clear_named_values();
    ini::set_file(dir_.write("prog.ini",
                             "[Options]\n"
                             "MsgDateStampFormat=STAMP\n"
                             "[Messages]\n"
                             "Msg7=-5 word\n"
                             "Msg10=10 low level\n"
                             "Msg11=10 also low\n"
                             "Msg20=20 file @P1 is missing\n"
                             "Msg40=40 fatal\n"
                             "Msg50=5 [not a prefix] text\n"
                             "[Usage]\n"
                             "Usage1=first @P1\n"
                             "Usage2=second\n"
                             "Usage4=never reached\n"));
    messages::init("prog");
  }
  void TearDown() override {
    messages::reset();
    clear_named_values();
    ini::flush_cache();
  }
  TestDir dir_;
};

TEST_F(MessagesTest, LevelAndTextAreSplit) {
  EXPECT_EQ(messages::message_text(7), "[7]word");
  EXPECT_EQ(messages::current_level(), -5);
  EXPECT_EQ(messages::message_label(7), "word");
  messages::reset();
  messages::set_number_prefix(false);
  EXPECT_EQ(messages::message_text(7), "word");
  EXPECT_EQ(messages::message_text(50), "[not a prefix] text");
  // Only the message's own number is a prefix to take off.
  EXPECT_EQ(messages::message_label(50), "[not a prefix] text");
  EXPECT_EQ(messages::current_level(), 5);
}

TEST_F(MessagesTest, MissingMessagesGetPlaceholders) {
  EXPECT_EQ(messages::message_text(-12), "[-12]** Message Msg12 not in .ini file **");
  EXPECT_EQ(messages::current_level(), messages::kMissingLevel);
  set_message_arguments({"the detail"});
  EXPECT_EQ(messages::show(-400), "[-400]the detail");
  EXPECT_EQ(messages::current_level(), -10);
  EXPECT_EQ(messages::show(400), "[400]the detail");
  EXPECT_EQ(messages::current_level(), -10);
}

TEST_F(MessagesTest, CacheKeepsTextUntilReset) {
  EXPECT_EQ(messages::message_text(10), "[10]low level");
  ini::write_string("Messages", "Msg10", "10 changed", ini::default_file());
  EXPECT_EQ(messages::message_text(10), "[10]low level");
}

TEST_F(MessagesTest, VerbosityAndWorstMessage) {
  std::string log = dir_.file("prog.log");
  messages::set_log_file(log);
  messages::set_verbosity(20);
  messages::show(10);
  EXPECT_EQ(dir_.read("prog.log"), "");
  std::string worst;
  EXPECT_EQ(messages::worst_message(worst), 10);
  messages::show(11);  // same level replaces
  EXPECT_EQ(messages::worst_message(worst), 11);
  EXPECT_EQ(worst, "[11]also low");
  messages::show(40);  // level 40 never becomes the worst
  EXPECT_EQ(messages::worst_message(worst), 11);
  EXPECT_EQ(dir_.read("prog.log"), "STAMP prog: [40]fatal\n");
}

TEST_F(MessagesTest, ArgumentsAreExpandedInTheLog) {
  std::string log = dir_.file("prog.log");
  messages::set_log_file(log);
  set_message_arguments({"/a/b.dat"});
  EXPECT_EQ(messages::show(20), "[20]file /a/b.dat is missing");
  EXPECT_EQ(dir_.read("prog.log"), "STAMP prog: [20]file /a/b.dat is missing\n");
}

TEST_F(MessagesTest, StandardStreamNamesIgnoreCase) {
  messages::set_log_file("STDOUT");
  testing::internal::CaptureStdout();
  messages::show(40);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "STAMP prog: [40]fatal\n");
}

TEST_F(MessagesTest, UnwritableLogPanicsAndRedirects) {
  char cwd[4096];
  ASSERT_NE(getcwd(cwd, sizeof cwd), nullptr);
  ASSERT_EQ(chdir(dir_.path().c_str()), 0);
  messages::set_shutting_down(true);
  messages::set_log_file(dir_.file("no/such/dir.log"));
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  messages::show(40);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Redirecting logfile output to stderr.\n");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "STAMP prog: [40]fatal\n");
  EXPECT_EQ(messages::log_file(), "stderr");
  std::string panic = dir_.read("panic.000");
  EXPECT_EQ(panic, "PANIC ERROR: 'STAMP prog: prog:  The logfile \"" + dir_.file("no/such/dir.log") +
                       "\" has been unavailable for too long.'\n");
  ASSERT_EQ(chdir(cwd), 0);
}

TEST_F(MessagesTest, QuickFallbackRedirectsAtOnceWithTheNoticeOnStderr) {
  char cwd[4096];
  ASSERT_NE(getcwd(cwd, sizeof cwd), nullptr);
  ASSERT_EQ(chdir(dir_.path().c_str()), 0);
  messages::set_quick_log_fallback(true);
  messages::set_log_file(dir_.file("no/such/dir.log"));
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  time_t start = time(nullptr);
  messages::show(40);
  EXPECT_LE(time(nullptr) - start, 1);  // no retries two seconds apart
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Redirecting logfile output to stderr.\nSTAMP prog: [40]fatal\n");
  EXPECT_EQ(messages::log_file(), "stderr");
  EXPECT_FALSE(std::filesystem::exists(dir_.file("panic.000")));
  messages::set_quick_log_fallback(false);
  ASSERT_EQ(chdir(cwd), 0);
}

TEST_F(MessagesTest, TraceThatFailsIsNotRetried) {
  messages::set_trace_file(dir_.file("missing/trace.txt"));
  messages::trace("one");
  ASSERT_EQ(mkdir(dir_.file("missing").c_str(), 0700), 0);
  messages::trace("two");
  EXPECT_EQ(dir_.read("missing/trace.txt"), "");
  messages::set_trace_file(dir_.file("trace.txt"));
  messages::trace("three");
  EXPECT_EQ(dir_.read("trace.txt"), "STAMP prog: three\n");
}

TEST_F(MessagesTest, UsageStopsAtFirstMissingLine) {
  set_message_arguments({"x"});
  testing::internal::CaptureStdout();
  EXPECT_EQ(messages::print_usage(), 2);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "first x\nsecond\n");
}

TEST_F(MessagesTest, InitReadsOptionsThenPlexar) {
  ini::set_file(dir_.write("two.ini",
                           "[Options]\nTraceFile=opt.trc\n"
                           "[PLEXAR]\nTraceFile=plexar.trc\nLogFile=plexar.log\nVerbosity=15\n"));
  messages::reset();
  messages::init("prog");
  EXPECT_EQ(messages::trace_file(), "opt.trc");
  EXPECT_EQ(messages::log_file(), "plexar.log");
  EXPECT_EQ(messages::verbosity(), 15);
}

TEST(Expand, Words) {
  TestDir dir;
  ini::flush_cache();
  std::string file = dir.write("p.ini", "[User]\nName=Ann\n[Other]\nName=Bob\n");
  clear_named_values();
  set_message_arguments({"one", "@P1"});
  EXPECT_EQ(expand("a @P1. b"), "a one b");
  EXPECT_EQ(expand("@P2 stays"), "@P1 stays");  // inserted text is not expanded again
  EXPECT_EQ(expand("@P3 @nothing"), "@P3 @nothing");
  EXPECT_EQ(expand("hi @getprofile(Name,," + file + ")!"), "hi Ann!");
  EXPECT_EQ(expand("hi @getprofile(Name, Other, " + file + ")!"), "hi Bob!");
  EXPECT_EQ(expand("@getprofile(unclosed"), "@getprofile(unclosed");
  set_message_arguments({"only"});
  EXPECT_EQ(expand("@P2"), "@P2");  // arguments of an earlier message are gone
  clear_named_values();
  ini::flush_cache();
}

}  // namespace
}  // namespace px
