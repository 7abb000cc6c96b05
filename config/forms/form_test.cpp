#include "config/forms/form.h"

#include <gtest/gtest.h>

#include "common/ini_profile.h"
#include "tests/support/test_dir.h"

namespace px::forms {
namespace {

class FormTest : public ::testing::Test {
 protected:
  ~FormTest() override { ini::flush_cache(); }

  Form open(FormKind kind, const std::string& text) {
    file_ = dir_.write("settings.ini", text);
    Form form(form_def(kind), file_);
    form.load();
    return form;
  }
  static std::string text_of(const Form& form, const char* key) {
    return form.text(static_cast<std::size_t>(form.index_of(key)));
  }
  static std::size_t at(const Form& form, const char* key) {
    return static_cast<std::size_t>(form.index_of(key));
  }
  std::string file_text() const { return dir_.read("settings.ini"); }

  TestDir dir_;
  std::string file_;
};

TEST_F(FormTest, ServerScanTimeShowsWholeMinutesInMinutesAndClamps) {
  struct Case {
    const char* stored;
    const char* shown;
    const char* unit;
  };
  for (Case c : {Case{"120", "2", "minutes"}, Case{"90", "90", "seconds"},
                 Case{"0", "1", "minutes"}, Case{"5000", "999", "seconds"},
                 Case{"59940", "999", "minutes"}}) {
    Form form = open(FormKind::kServer, std::string("[Options]\nPauseTime=") + c.stored + "\n");
    EXPECT_EQ(text_of(form, "PauseTime"), c.shown) << c.stored;
    EXPECT_EQ(text_of(form, "Unit"), c.unit) << c.stored;
  }
  Form absent = open(FormKind::kServer, "[Options]\n");
  EXPECT_EQ(text_of(absent, "PauseTime"), "5");
  EXPECT_EQ(text_of(absent, "Unit"), "seconds");
}

TEST_F(FormTest, ServerSaveConvertsMinutesAndWritesInItsOrder) {
  Form form = open(FormKind::kServer,
                   "; server\n[Options]\nPauseTime=5000\nbackupfiles=yes\nOther=1\n\n[Plexar]\n");
  form.type(at(form, "PauseTime"), "999");
  form.choose(at(form, "Unit"), "minutes");
  ASSERT_TRUE(form.save());
  EXPECT_EQ(file_text(),
            "; server\n[Options]\nPauseTime=59940\nBackupFiles=Yes\nOther=1\nFileSpec=*.DAT\n"
            "DeleteExt=DA*\n\n[Plexar]\nLogFile=\nLogFileSize=100000\nVerbosity=-10\n");
}

TEST_F(FormTest, ServerDefaultsAndLowerCaseYes) {
  Form form = open(FormKind::kServer, "[Options]\nBackupFiles=yes\n");
  EXPECT_EQ(text_of(form, "BackupFiles"), "Yes");
  EXPECT_EQ(text_of(form, "DeleteExt"), "DA*");
  EXPECT_EQ(text_of(form, "FileSpec"), "*.DAT");
  EXPECT_EQ(text_of(form, "LogFileSize"), "100000");
  EXPECT_EQ(text_of(form, "Verbosity"), "-10");
}

TEST_F(FormTest, TypingRulesApplyWhenAValueIsTyped) {
  Form form = open(FormKind::kServer, "[Plexar]\nVerbosity=2\n");
  EditResult r = form.type(at(form, "Verbosity"), "12a34");
  EXPECT_EQ(r.text, "123");
  EXPECT_TRUE(r.beep);
  EXPECT_TRUE(r.cut_to_limit);
  r = form.type(at(form, "PauseTime"), "5000");
  EXPECT_EQ(r.text, "500");
  r = form.type(at(form, "PauseTime"), "");
  EXPECT_EQ(r.text, "1");
  r = form.type(at(form, "FileSpec"), "a\nb");
  EXPECT_EQ(r.text, "ab");
  EXPECT_TRUE(form.step(at(form, "PauseTime"), -1));
  EXPECT_EQ(text_of(form, "PauseTime"), "1");
}

TEST_F(FormTest, NetworkNeverLoadsAndOverwritesAllFiveKeys) {
  Form form = open(FormKind::kNetwork,
                   "[Options]\nNetworkQueues=Yes\nNetworkCaptureCmd=capture\nNetworkLocalDevice=L\n");
  EXPECT_EQ(text_of(form, "NetworkQueues"), "No");
  EXPECT_EQ(text_of(form, "NetworkCaptureCmd"), "");
  ASSERT_TRUE(form.save());
  EXPECT_EQ(file_text(),
            "[Options]\nNetworkQueues=No\nNetworkCaptureCmd=\nNetworkLocalDevice=\n"
            "NetworkExcludeQueues=\nNetworkIncludeQueues=\n");
}

TEST_F(FormTest, LocationsSaveInTheirOwnOrder) {
  Form form = open(FormKind::kServerLocations, "[Paths]\nDataPath=/d\n");
  EXPECT_EQ(text_of(form, "DataPath"), "/d");
  ASSERT_TRUE(form.save());
  EXPECT_EQ(file_text(), "[Paths]\nDataPath=/d\nMSTPath=\nBackupPath=\nErrorPath=\n");
}

TEST_F(FormTest, EmailCycleTimeIsNeverMultiplied) {
  Form form = open(FormKind::kEmail, "[Options]\nCycleTime=0\nSeconds=no\n");
  EXPECT_EQ(text_of(form, "CycleTime"), "1");
  EXPECT_EQ(text_of(form, "Seconds"), "No");
  form = open(FormKind::kEmail, "[Options]\nCycleTime=2000\nSeconds=yes\n");
  EXPECT_EQ(text_of(form, "CycleTime"), "999");
  EXPECT_EQ(text_of(form, "Seconds"), "Yes");
  form.choose(at(form, "Seconds"), "no");
  form.type(at(form, "CycleTime"), "20");
  ASSERT_TRUE(form.save());
  EXPECT_NE(file_text().find("CycleTime=20\n"), std::string::npos);
  EXPECT_NE(file_text().find("Seconds=No\n"), std::string::npos);
}

TEST_F(FormTest, EmailMailSectionPostOfficeAndPassword) {
  Form form = open(FormKind::kEmail,
                   "[Options]\nEMailSystem=VIM\n[PxEmio-VIM]\nMailBoxID=orders\nPassword=north1\n"
                   "PostOffice=/po\n");
  EXPECT_EQ(form.mail_section(), "PxEmio-VIM");
  EXPECT_EQ(text_of(form, "Password"), "******");
  EXPECT_EQ(text_of(form, "PostOffice"), "/po");
  EXPECT_FALSE(form.hidden(at(form, "PostOffice")));
  EXPECT_TRUE(form.changes().empty() || form.changes().front().key != "Password");
  ASSERT_TRUE(form.save());
  EXPECT_NE(file_text().find("Password=north1\n"), std::string::npos);
  EXPECT_NE(file_text().find("PostOffice=/po\n"), std::string::npos);

  form = open(FormKind::kEmail,
              "[Options]\nEMailSystem=mapi\n[PxEmio-mapi]\nMailBoxID=m\nPostOffice=/keep\n");
  EXPECT_TRUE(form.hidden(at(form, "PostOffice")));
  EXPECT_EQ(text_of(form, "PostOffice"), "");
  for (const auto& [key, text] : form.lines()) EXPECT_NE(key, "PostOffice");
  ASSERT_TRUE(form.save());
  EXPECT_NE(file_text().find("PostOffice=/keep\n"), std::string::npos);
  for (const Entry& e : form.entries()) EXPECT_NE(e.key, "PostOffice");
}

TEST_F(FormTest, EmailSaveOrderAndPasswordTyped) {
  Form form = open(FormKind::kEmail, "[Options]\n");
  form.type(at(form, "Password"), "s3cret");
  EXPECT_EQ(text_of(form, "Password"), "******");
  std::vector<std::string> keys;
  for (const Entry& e : form.entries()) keys.push_back(e.section + "/" + e.key + "=" + e.value);
  EXPECT_EQ(keys, (std::vector<std::string>{
                      "Options/Seconds=No", "Options/CycleTime=15", "Options/LogToFile=No",
                      "Options/DeleteAfterRead=No", "Options/BackupFiles=No",
                      "PxEmio-VIM/PostOffice=", "PxEmio-VIM/MailBoxID=",
                      "PxEmio-VIM/Password=s3cret"}));
}

TEST_F(FormTest, AnEnteredPasswordKeepsTheStoredCharacterUnderEachStar) {
  const char* stored = "[Options]\n[PxEmio-VIM]\nPassword=north1\n";
  struct Case {
    const char* entered;
    const char* saved;
  };
  for (Case c : {Case{"******", "north1"}, Case{"***x", "norx"}, Case{"******ab", "north1ab"},
                 Case{"s3cret", "s3cret"}, Case{"", ""}}) {
    Form form = open(FormKind::kEmail, stored);
    EditResult r = form.enter(at(form, "Password"), c.entered);
    EXPECT_EQ(r.text, std::string(std::string_view(c.entered).size(), '*')) << c.entered;
    std::vector<Entry> entries = form.entries();
    EXPECT_EQ(entries.back().key, "Password");
    EXPECT_EQ(entries.back().value, c.saved) << c.entered;
  }
  // Other fields take the value key by key: each key goes through the rules.
  Form form = open(FormKind::kServer, "[Plexar]\n");
  EXPECT_EQ(form.enter(at(form, "Verbosity"), "1a2b").text, "12");
}

TEST_F(FormTest, PrintYieldCheck) {
  Form form = open(FormKind::kPrint, "[Plexar]\n");
  EXPECT_EQ(text_of(form, "Verbosity"), "0");
  EXPECT_EQ(text_of(form, "YieldPercent"), "40");
  EXPECT_TRUE(form.hidden(at(form, "YieldPercent")));
  for (const char* ok : {"0", "100"}) {
    form.type(at(form, "YieldPercent"), ok);
    EXPECT_FALSE(form.check().has_value()) << ok;
  }
  for (const char* refused : {"101", "-1"}) {
    form.type(at(form, "YieldPercent"), refused);
    ASSERT_TRUE(form.check().has_value()) << refused;
    EXPECT_EQ(form.check()->message, kYieldOutOfRange);
    EXPECT_EQ(form.check()->field, form.index_of("YieldPercent"));
  }
  form = open(FormKind::kPrint, "[Plexar]\nYieldPercent=150\n");
  EXPECT_TRUE(form.check().has_value());
}

TEST_F(FormTest, AValueTheFileWouldNotGiveBackRefusesOkNamingItsField) {
  // A path field of its full 255 characters saves and loads back whole.
  Form form = open(FormKind::kServer, "[Options]\n");
  std::string full(255, 'f');
  form.type(at(form, "FileSpec"), full);
  EXPECT_FALSE(form.check().has_value());
  ASSERT_TRUE(form.save());
  EXPECT_EQ(text_of(open(FormKind::kServer, file_text()), "FileSpec"), full);

  // "FormPath=" and 502 characters pass the 511 of a line the reader returns.
  form = open(FormKind::kPrint, "[Paths]\n");
  form.type(at(form, "FormPath"), std::string(502, 'p'));
  EXPECT_FALSE(form.check().has_value());
  form.type(at(form, "FormPath"), std::string(503, 'p'));
  ASSERT_TRUE(form.check().has_value());
  EXPECT_EQ(form.check()->message, kValueNotSavable);
  EXPECT_EQ(form.check()->field, form.index_of("FormPath"));
  EXPECT_EQ(form.check()->args, std::vector<std::string>{"FormPath"});

  form = open(FormKind::kJobCard, "[JobCard]\n");
  form.type(at(form, "JobCardSuffix"), "end ");
  ASSERT_TRUE(form.check().has_value());
  EXPECT_EQ(form.check()->field, form.index_of("JobCardSuffix"));
}

TEST_F(FormTest, CurrencyLocationLeftOrRight) {
  Form form = open(FormKind::kCurrency, "[Special]\nCurrencyLocation=right\n");
  EXPECT_EQ(text_of(form, "CurrencyLocation"), "Right");
  form = open(FormKind::kCurrency, "[Special]\nCurrencyLocation=Centre\n");
  EXPECT_EQ(text_of(form, "CurrencyLocation"), "Left");
  ASSERT_TRUE(form.save());
  EXPECT_NE(file_text().find("CurrencyLocation=Left\n"), std::string::npos);
}

TEST_F(FormTest, ChangesListOnlyWhatOkWouldChange) {
  Form form = open(FormKind::kJobCard, "[JobCard]\nJobCardPrefix=^job\nDefault=ACK\n");
  form.type(at(form, "Default"), "NEW");
  std::vector<Change> changes = form.changes();
  ASSERT_EQ(changes.size(), 2u);
  EXPECT_EQ(changes[0].key, "Default");
  EXPECT_EQ(changes[0].old_value, "ACK");
  EXPECT_EQ(changes[0].new_value, "NEW");
  EXPECT_EQ(changes[1].key, "JobCardSuffix");
  EXPECT_FALSE(changes[1].old_value.has_value());
}

TEST_F(FormTest, AChangeOnDiskIsNoticedUntilTheFormSaves) {
  Form form = open(FormKind::kJobCard, "[JobCard]\nDefault=ACK\n");
  EXPECT_FALSE(form.changed_on_disk());
  dir_.write("settings.ini", "[JobCard]\nDefault=OTHER WRITER\n");
  EXPECT_TRUE(form.changed_on_disk());
  ASSERT_TRUE(form.save());
  EXPECT_FALSE(form.changed_on_disk());
}

TEST_F(FormTest, ShownLinesFollowTheDialog) {
  Form form = open(FormKind::kServer, "[Options]\nPauseTime=120\n");
  std::vector<std::pair<std::string, std::string>> lines = form.lines();
  ASSERT_GE(lines.size(), 2u);
  EXPECT_EQ(lines[0], (std::pair<std::string, std::string>{"PauseTime", "2"}));
  EXPECT_EQ(lines[1], (std::pair<std::string, std::string>{"Unit", "minutes"}));
  EXPECT_EQ(lines.size(), 8u);
}

}  // namespace
}  // namespace px::forms
