#include "toolkit/dialog_base.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "toolkit/headless/headless_fixture.h"

namespace px::tk {
namespace {

using namespace sample;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::Not;

// Records which of its parts the base called, as short lines.
class Probe : public DialogBase {
 public:
  std::vector<std::string> calls;

 private:
  void create(Window) override { calls.push_back("create"); }
  void control(Window, const Event& e) override { calls.push_back(Recorder::line(e)); }
  void destroyed(Window) override { calls.push_back("destroyed"); }
};

using DialogBaseTest = HeadlessTest;

TEST_F(DialogBaseTest, CancelAndTheCloseBoxCloseWithoutReachingTheDialog) {
  for (bool by_close_box : {false, true}) {
    Probe probe;
    tk.on_dialog(kSampleDialog, [&](Window d) {
      EXPECT_TRUE(by_close_box ? tk.close(d) : tk.click(d, kCancel));
      EXPECT_FALSE(d.exists());
    });
    ASSERT_TRUE(probe.run_modal(tk, kSampleDialog));
    ASSERT_FALSE(probe.calls.empty());
    EXPECT_EQ(probe.calls.front(), "create");
    EXPECT_EQ(probe.calls.back(), "destroyed");
    EXPECT_THAT(probe.calls, Not(Contains("15 2 clicked")));
  }
}

TEST_F(DialogBaseTest, EveryOtherNoticeGoesToTheDialogWhichDecidesWhenToClose) {
  Probe probe;
  tk.on_dialog(kSampleDialog, [&](Window d) {
    tk.click(d, kOk);
    tk.type(d, kName, "ab");
    EXPECT_TRUE(d.exists());  // OK is the dialog's own
    d.destroy();
  });
  ASSERT_TRUE(probe.run_modal(tk, kSampleDialog));
  ASSERT_FALSE(probe.calls.empty());
  EXPECT_EQ(probe.calls.front(), "create");
  EXPECT_EQ(probe.calls.back(), "destroyed");
  EXPECT_THAT(probe.calls, AllOf(Contains("15 1 clicked"), Contains("15 3 changed")));
}

TEST_F(DialogBaseTest, ADialogThatCannotBeCreatedReportsIt) {
  Probe probe;
  EXPECT_FALSE(probe.run_modal(tk, 4242));
  EXPECT_TRUE(probe.calls.empty());
  failures.clear();
}

}  // namespace
}  // namespace px::tk
