// The console's operator: which box a message gets, questions with message
// labels on their buttons, and the titles that carry the instance's title.
#include "shell/gui_operator.h"

#include <gmock/gmock.h>

#include "shell/shell_test_support.h"
#include "shell/title.h"

namespace px::shell {
namespace {

using ::testing::ElementsAre;

class GuiOperatorTest : public ShellTest {
 protected:
  void SetUp() override { write_console_ini(); }
  GuiOperator op{tk};
};

TEST_F(GuiOperatorTest, ErrorsAndWarningsGetTheExclamationAndNoticesTheInformationBox) {
  tk.expect_error("[144]");
  op.show(144, {display_path("/a/very/long/directory/name/for/the/server.ini")});
  tk.expect_error("[239]");
  op.show(239);
  tk.expect_note("[157]");
  op.show(157);
  ASSERT_EQ(tk.boxes().size(), 3u);
  EXPECT_EQ(tk.boxes()[0].text,
            "[144]Cannot open the configuration file ../name/for/the/server.ini for reading; "
            "check that it exists and is readable.");
  EXPECT_EQ(tk.boxes()[2].caption, "Nexa Control");
}

TEST_F(GuiOperatorTest, AQuestionIsAnsweredByTheIndexOfItsButton) {
  tk.answer_ask(tk::Answer::kSecond, "[291]");
  EXPECT_EQ(op.ask(291, {}, {249, 250, 140}), 1u);
  EXPECT_THAT(tk.boxes()[0].buttons, ElementsAre("Save", "Discard", "Cancel"));
  tk.answer_ask(tk::Answer::kSecond);
  EXPECT_EQ(op.ask(291, {}, {249, 140}), 1u);
  EXPECT_THAT(tk.boxes()[1].buttons, ElementsAre("Save", "Cancel"));
}

TEST(TitleTest, AResourceTitleTakesTheInstancesTitleCutToTheLongestTitle) {
  EXPECT_EQ(fill_title("Reload Printer for %s", "North"), "Reload Printer for North");
  EXPECT_EQ(fill_title("%s", std::string(2000, 'x')).size(), kTitleLength - 1);
}

}  // namespace
}  // namespace px::shell
