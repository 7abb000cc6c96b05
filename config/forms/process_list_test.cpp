#include "config/forms/process_list.h"

#include <gtest/gtest.h>

#include "common/directory_map.h"
#include "common/ini_profile.h"
#include "config/recording_operator.h"
#include "tests/support/test_dir.h"

namespace px::forms {
namespace {

class ProcessListTest : public ::testing::Test {
 protected:
  ~ProcessListTest() override { ini::flush_cache(); }

  std::string config(const std::string& text) { return dir_.write("north.ini", text); }

  TestDir dir_;
  RecordingOperator op_;
};

TEST_F(ProcessListTest, ListsNamesWithoutTheirGroupWord) {
  std::string file = config(
      "[Processes]\nPXSERVER=Plexar Nexa Server\nPXEMIO=plexar E-Mail Agent\n"
      "RELAY=Ortane Relay Relay Agent\nOTHER=Plain\n");
  ProcessListing listing = list_processes(file, false, op_);
  ASSERT_EQ(listing.processes.size(), 4u);
  EXPECT_EQ(listing.processes[0].name, "Nexa Server");
  EXPECT_EQ(listing.processes[1].name, "E-Mail Agent");
  EXPECT_EQ(listing.processes[2].name, "Relay Agent");
  EXPECT_EQ(listing.processes[3].name, "Plain");
  EXPECT_EQ(key_for_row(listing, "E-Mail Agent"), "PXEMIO");
  EXPECT_FALSE(key_for_row(listing, "e-mail agent").has_value());
  EXPECT_TRUE(op_.shown().empty());
}

TEST_F(ProcessListTest, FailuresAndTheOtherNode) {
  std::string file = config("[Processes]\nPXSERVER=Plexar Nexa Server\n");
  EXPECT_TRUE(list_processes(file, true, op_).processes.empty());
  EXPECT_TRUE(op_.shown().empty());

  ProcessListing missing = list_processes(dir_.file("absent.ini"), false, op_);
  EXPECT_FALSE(missing.opened);
  EXPECT_EQ(op_.shown().back().number, kMsgConfigNotOpened);

  ProcessListing none = list_processes(config("[Plexar]\n"), false, op_);
  EXPECT_TRUE(none.closes);
  EXPECT_EQ(op_.shown().back(), (ShownMessage{kMsgProcessesMissing, {"Processes", display_path(dir_.file("north.ini"))}}));
}

TEST_F(ProcessListTest, EditorsByKey) {
  std::string file = config(
      "[Processes]\nPXSERVER=a\nPXEMIO=b\nPXMERGE=c\nNOINI=d\nODD=e\npxemio2=f\n"
      "[PXSERVER]\nEditCfgRtn=editor --file %s --literal 100%%\n"
      "[PXEMIO]\nIniFileName=" + dir_.file("pxemio.ini") + "\n"
      "[PXMERGE]\nIniFileName=" + dir_.file("pxmerge.ini") + "\n"
      "[NOINI]\nIniFileName= \n[ODD]\nIniFileName=" + dir_.file("odd.ini") + "\n");
  std::optional<ProcessEditor> server = process_editor(file, "PXSERVER", op_);
  ASSERT_TRUE(server.has_value());
  EXPECT_EQ(server->kind, EditorKind::kCommand);  // even for the server
  EXPECT_EQ(server->command, "editor --file " + file + " --literal 100%");

  std::optional<ProcessEditor> email = process_editor(file, "PXEMIO", op_);
  ASSERT_TRUE(email.has_value());
  EXPECT_EQ(email->kind, EditorKind::kEmail);
  EXPECT_EQ(email->ini_file, dir_.file("pxemio.ini"));
  EXPECT_EQ(process_editor(file, "PXMERGE", op_)->kind, EditorKind::kPrint);

  EXPECT_FALSE(process_editor(file, "NOINI", op_).has_value());
  EXPECT_EQ(op_.shown().back().args.back(), "IniFileName");
  EXPECT_FALSE(process_editor(file, "ODD", op_).has_value());
  EXPECT_EQ(op_.shown().back(), (ShownMessage{kMsgSettingMissing, {"ODD", display_path(file), "EditCfgRtn"}}));

  ProcessListing listing = list_processes(file, false, op_);
  EXPECT_EQ(find_process_key(listing, "pxmerge"), "PXMERGE");
  EXPECT_FALSE(find_process_key(listing, "PXNONE").has_value());
}

TEST_F(ProcessListTest, AProcessListLongerThanItsRoomOffersTheProcessesThatFit) {
  std::string processes;
  for (int i = 0; i < 80; ++i) processes += "PXPROCESSNUMBER" + std::to_string(10000 + i) + "=P\n";
  std::string file = config("[Processes]\n" + processes);
  ProcessListing listing = list_processes(file, false, op_);
  EXPECT_FALSE(listing.closes);
  EXPECT_TRUE(op_.shown().empty());
  // 21 characters a key with its NUL: 48 of them fit in 1023.
  ASSERT_EQ(listing.processes.size(), 48u);
  EXPECT_EQ(listing.processes.back().key, "PXPROCESSNUMBER10047");
  // Only an offered process can be edited.
  EXPECT_TRUE(find_process_key(listing, "PXPROCESSNUMBER10047").has_value());
  EXPECT_FALSE(find_process_key(listing, "PXPROCESSNUMBER10048").has_value());
}

}  // namespace
}  // namespace px::forms
