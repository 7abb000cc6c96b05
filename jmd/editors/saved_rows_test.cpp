// Whatever an operator types into the row dialogs, the saved JMD reads back
// as the rows the editors held (an empty value coming back as "*", which the
// file format intends).
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "jmd/editors/editor_messages.h"
#include "jmd/editors/editor_test_support.h"
#include "jmd/editors/jmd_editor.h"
#include "jmd/editors/table_rows.h"
#include "jmd/jmd_schema.h"

namespace px::editors {
namespace {

using Rows = std::vector<TextRow>;

// The rows of the file as a fresh load reads them.
std::vector<Rows> rows_read_back(const std::string& text) {
  EditorFixture again(text);
  return again.loaded() ? table_rows(again.editor()) : std::vector<Rows>();
}

RowForm typed_form(JmdEditor& editor, ListKind kind,
                   const std::vector<std::pair<int, std::string>>& fields) {
  RowForm form = editor.new_form(kind);
  for (const auto& [control, text] : fields) form.type(control, text);
  return form;
}

// Text of up to six characters from characters the file treats specially
// (quote, white space, the line-key and comment marks, the empty mark), a
// letter and a digit.
std::string hostile_text(std::mt19937& random) {
  static constexpr std::string_view kAlphabet = "\"\t !;*a7\r";
  std::string text(std::uniform_int_distribution<size_t>(0, 6)(random), ' ');
  for (char& c : text) {
    c = kAlphabet[std::uniform_int_distribution<size_t>(0, kAlphabet.size() - 1)(random)];
  }
  return text;
}

TEST(SavedRows, AQuoteOrATabTypedIntoAStepReadsBackAsTyped) {
  EditorFixture jmd;
  JmdEditor& editor = jmd.editor();
  std::vector<long> steps = editor.job_steps("INVOICE");
  std::optional<RowForm> form = editor.edit_form(ListKind::kSteps, steps.at(0));
  ASSERT_TRUE(form);
  form->type(9, "\"");
  // The TAB is not taken (a beep); the other flags keep what was typed.
  EXPECT_EQ(form->type(11, "\t"), 1);
  EXPECT_EQ(form->text(11), "");
  form->type(26, "say \"hi\"\tthere");
  EXPECT_EQ(form->text(26), "say \"hi\"there");
  ASSERT_TRUE(editor.ok_step(*form, steps.at(0), steps, std::nullopt).accepted());
  std::vector<Rows> held = table_rows(editor);
  std::string saved = jmd.saved();
  EXPECT_NE(saved.find(" T PXMERGE \"\" * C \"say \"\"hi\"\"there\"\n"), std::string::npos)
      << saved;
  EXPECT_EQ(rows_read_back(saved), held) << saved;
}

// Quotes are written twice, so long task texts can make a line longer than
// the reader takes as one; its rest would be read as a line of its own (here
// a printer row of its own).
TEST(SavedRows, ATaskWhoseLineWouldBeSplitIsRefused) {
  EditorFixture jmd;
  JmdEditor& editor = jmd.editor();
  // "!x LONG * PXMERGE \"" is 19 characters: the line's rest would start with "!p".
  std::string options = std::string(186, 'b') + std::string(600, '"') + "!p EVIL x y z 1 *";
  RowForm form = typed_form(editor, ListKind::kTasks, {{4, "LONG"}, {8, options}, {10, "lost"}});
  OkResult refused = editor.ok(form);
  EXPECT_EQ(refused.message, msg::kLineTooLong);
  EXPECT_EQ(refused.focus, 8);
  ASSERT_FALSE(jmd.op().shown().empty());
  EXPECT_EQ(jmd.op().shown().back().args, (std::vector<std::string>{"LONG", "1428"}));
  EXPECT_FALSE(editor.modified());
  EXPECT_EQ(editor.find_row(ListKind::kTasks, "LONG"), 0);
  // Up to the limit the line is whole, and reads back.
  // "!x LONG * " 10, the program 255, " \"" 2, options 532 + 2 * 300, "\" lost" 6.
  form.type(6, std::string(255, 'a'));
  form.type(8, std::string(532, 'b') + std::string(300, '"'));
  ASSERT_TRUE(editor.ok(form).accepted());
  std::vector<Rows> held = table_rows(editor);
  std::string saved = jmd.saved();
  size_t end = saved.find(std::string(600, '"') + "\" lost\n");
  ASSERT_NE(end, std::string::npos);
  EXPECT_EQ(end + 600 + 6 - saved.rfind("\n!x LONG ", end), 1 + 1405u);
  EXPECT_EQ(rows_read_back(saved), held);
}

TEST(SavedRows, RandomHostileTextInEveryDialogReadsBackTheSame) {
  for (unsigned seed = 1; seed <= 40; ++seed) {
    EditorFixture jmd;
    JmdEditor& editor = jmd.editor();
    std::mt19937 random(seed);
    std::string typed;  // for the failure's message
    for (int edit = 0; edit < 12; ++edit) {
      static const std::vector<ListKind> kKinds = {ListKind::kTasks, ListKind::kPrinters,
                                                   ListKind::kMemory, ListKind::kSteps};
      ListKind kind = kKinds[random() % kKinds.size()];
      std::vector<long> steps = editor.job_steps("INVOICE");
      bool edit_step = kind == ListKind::kSteps && random() % 2 == 0;
      RowForm form = edit_step ? *editor.edit_form(kind, steps.at(0))
                               : editor.new_form(kind, "INVOICE");
      for (const FieldRule& rule : form.rules()) {
        if (!form.enabled(rule.control) || random() % 3 == 0) continue;
        std::string text = hostile_text(random);
        // Keys stay unique and non-empty, so that most rows are stored.
        if (rule.control == 4 && kind != ListKind::kSteps) {
          text.insert(0, "K" + std::to_string(seed * 100 + static_cast<unsigned>(edit)));
        }
        typed += std::string(rule.column) + "=[" + text + "] ";
        form.type(rule.control, text);
      }
      if (kind == ListKind::kSteps) {
        editor.ok_step(form, edit_step ? steps.at(0) : 0, steps, std::nullopt);
      } else {
        editor.ok(form);
      }
    }
    std::vector<Rows> held = table_rows(editor);
    std::string saved = jmd.saved();
    ASSERT_EQ(rows_read_back(saved), held) << "seed " << seed << ": " << typed << "\n" << saved;
  }
}

}  // namespace
}  // namespace px::editors
