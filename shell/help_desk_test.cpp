// On-line help opened on demand: the prompt for a missing help file, the
// queue of topics registered before it was opened, and windows that go away
// before then.
#include "shell/help_desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "tests/support/test_dir.h"
#include "toolkit/headless/headless_toolkit.h"
#include "toolkit/make_event.h"
#include "toolkit/resources/resource_ids.h"

namespace px::shell {
namespace {

using ::testing::ElementsAre;

constexpr const char* kPage = "<html><body><a name=\"splash\">Splash</a></body></html>\n";

class HelpDeskTest : public ::testing::Test {
 protected:
  HelpDeskTest() : old_directory_(std::filesystem::current_path()) {
    std::filesystem::current_path(dir_.path());  // the toolkit's default directory
    tk_.set_failure_handler([this](const std::string& what) { failures_.push_back(what); });
    desk_.install();
    window_ = tk_.create_window(tk::kSplashWindow, [this](const tk::Event& e) {
      if (e.type == tk::EventType::kDestroy) desk_.forget(e.window.id());
    });
  }
  ~HelpDeskTest() override { std::filesystem::current_path(old_directory_); }
  void TearDown() override {
    tk_.verify_scripts_used();
    EXPECT_TRUE(failures_.empty()) << failures_.front();
  }

  std::filesystem::path old_directory_;
  TestDir dir_;
  std::vector<std::string> failures_;
  tk::HeadlessToolkit tk_;
  HelpDesk desk_{tk_};
  tk::Window window_;
};

TEST_F(HelpDeskTest, TheFirstRequestOpensTheFileAndShowsATopicQueuedBefore) {
  dir_.write(kHelpFileName, kPage);
  desk_.associate(window_.id(), 0, "splash", HelpKind::kWindow);
  EXPECT_EQ(desk_.queued(), 1u);
  EXPECT_FALSE(tk_.help_file_open());
  EXPECT_TRUE(tk_.request_help(window_));
  EXPECT_TRUE(tk_.help_file_open());
  EXPECT_THAT(tk_.help_topics_shown(), ElementsAre("splash"));
  EXPECT_EQ(desk_.queued(), 0u);
  desk_.associate(window_.id(), 0, "again", HelpKind::kWindow);
  EXPECT_EQ(desk_.queued(), 0u) << "with the file open a topic goes straight to the toolkit";
}

TEST_F(HelpDeskTest, OnlyHelpRequestsAndTheHelpMenuOpenTheFile) {
  EXPECT_FALSE(desk_.hook(tk::command_event(tk::kCmdAbout)));
  EXPECT_FALSE(desk_.hook(tk::mouse_event({1, 1}, tk::MouseAction::kDown, tk::MouseButton::kLeft)));
  EXPECT_TRUE(tk_.file_requests().empty());
  dir_.write(kHelpFileName, kPage);
  EXPECT_TRUE(desk_.hook(tk::command_event(tk::kHelpMenuFirst)));
  EXPECT_TRUE(tk_.help_file_open());
}

TEST_F(HelpDeskTest, AMissingFileIsAskedForUntilAGoodOneIsChosen) {
  std::filesystem::create_directories(dir_.file("folder"));
  std::string plain = dir_.write("notes.txt", "no page here\n");
  std::string good = dir_.write("manual.html", kPage);
  tk_.answer_file_dialog(dir_.file("folder"));
  tk_.expect_error(kHelpInvalid);
  tk_.answer_file_dialog(dir_.file("gone.html"));
  tk_.expect_error(kHelpUnreadable);
  tk_.answer_file_dialog(plain);
  tk_.expect_note(kHelpInvalid);
  tk_.answer_file_dialog(good);
  EXPECT_TRUE(tk_.request_help(window_));
  EXPECT_TRUE(tk_.help_file_open());
  ASSERT_EQ(tk_.file_requests().size(), 4u);
  EXPECT_EQ(tk_.file_requests()[0].prompt, kHelpPrompt);
}

TEST_F(HelpDeskTest, ACancelledPromptLeavesHelpClosedUntilTheNextRequest) {
  desk_.associate(window_.id(), 0, "splash", HelpKind::kWindow);
  tk_.answer_file_dialog(std::nullopt);
  tk_.request_help(window_);
  EXPECT_FALSE(tk_.help_file_open());
  EXPECT_EQ(desk_.queued(), 1u);
  tk_.answer_file_dialog(dir_.write("manual.html", kPage));
  tk_.request_help(window_);
  EXPECT_THAT(tk_.help_topics_shown(), ElementsAre("splash"));
}

TEST_F(HelpDeskTest, AWindowGoneBeforeHelpWasOpenedLeavesNothingQueued) {
  desk_.associate(window_.id(), 0, "splash", HelpKind::kWindow);
  desk_.associate(window_.id(), tk::kCmdAbout, "about", HelpKind::kMenuItem);
  tk::Window other = tk_.create_window(tk::kSplashWindow, {});
  desk_.associate(other.id(), 0, "other", HelpKind::kWindow);
  window_.destroy();
  EXPECT_EQ(desk_.queued(), 1u);
  desk_.close();
  EXPECT_EQ(desk_.queued(), 0u);
}

}  // namespace
}  // namespace px::shell
