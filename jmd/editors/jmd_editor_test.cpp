#include "jmd/editors/jmd_editor.h"

#include <gtest/gtest.h>

#include "jmd/editors/editor_messages.h"
#include "jmd/editors/editor_test_support.h"
#include "jmd/jmd_writer.h"

namespace px::editors {
namespace {

RowForm typed_form(JmdEditor& editor, ListKind kind,
                   const std::vector<std::pair<int, std::string>>& fields) {
  RowForm form = editor.new_form(kind);
  for (const auto& [control, text] : fields) form.type(control, text);
  return form;
}

TEST(LineFormat, EveryKindPadsAndCutsItsFields) {
  EditorFixture jmd;
  ASSERT_TRUE(jmd.loaded());
  EXPECT_EQ(jmd.lines(ListKind::kJobNames),
            (std::vector<std::string>{std::string("CHEQUE") + std::string(45, ' '),
                                      std::string("INVOICE") + std::string(44, ' ')}));
  EXPECT_EQ(jmd.lines(ListKind::kTasks),
            std::vector<std::string>{"PXMERGE   pxmerge.exe" + std::string(29, ' ')});
  EXPECT_EQ(jmd.lines(ListKind::kPrinters)[0],
            "LASER1        HP4        LPT1" + std::string(20, ' '));
  EXPECT_EQ(jmd.lines(ListKind::kMemory),
            std::vector<std::string>{"HP4" + std::string(13, ' ') + "4096  four k" + std::string(22, ' ')});
  // The form file without its directory.
  EXPECT_EQ(jmd.lines(ListKind::kSteps, "cheque"),
            std::vector<std::string>{"PXMERGE   chq.mdf              LASER2   "});
}

TEST(LineFormat, LongFieldsAreCutToTheirWidth) {
  EditorFixture jmd(std::string(kJmdHeader) + "!p ABCDEFGHI ABCDEFGH " + std::string(40, 'D') +
                    " * 50 *\n");
  ASSERT_TRUE(jmd.loaded());
  std::string line = jmd.lines(ListKind::kPrinters).at(0);
  EXPECT_EQ(line, "ABCDEFGHI     ABCDEFGH   " + std::string(24, 'D'));
}

TEST(Typing, FieldsAreCutToLengthAndDigitsFieldsDropOtherCharacters) {
  RowForm printer(ListKind::kPrinters, FormMode::kEdit);
  EXPECT_EQ(printer.type(4, "ABCDEFGHIJKL"), 3);
  EXPECT_EQ(printer.text(4), "ABCDEFGHI");
  EXPECT_EQ(printer.type(14, "7x"), 1);
  EXPECT_EQ(printer.text(14), "7");
  EXPECT_EQ(printer.type(14, "-5"), 0);
  EXPECT_EQ(printer.text(14), "-5");
  // A change that leaves several bad characters drops only the first.
  RowForm memory(ListKind::kMemory, FormMode::kNew);
  Typed typed = apply_change(*memory.rule_for_control(6), "1a2b");
  EXPECT_EQ(typed.text, "12b");
  EXPECT_EQ(typed.caret_back, 1);
  EXPECT_EQ(memory.type(6, "1234567890"), 1);
  EXPECT_EQ(memory.text(6), "123456789");
  EXPECT_EQ(memory.type(6, "5-"), 1);
  EXPECT_EQ(memory.text(6), "5");
}

TEST(Printers, ReservedDeviceNamesAreRefusedAsPrinterIds) {
  EditorFixture jmd;
  JmdEditor& editor = jmd.editor();
  for (const char* id : {"LPT1", "Com3", "prn", "AUX", "con"}) {
    OkResult result = editor.ok(typed_form(editor, ListKind::kPrinters, {{4, "P9"}, {6, id}}));
    EXPECT_EQ(result.message, msg::kReservedDevice) << id;
    EXPECT_EQ(result.focus, 6);
  }
  EXPECT_TRUE(editor.ok(typed_form(editor, ListKind::kPrinters, {{4, "P10"}, {6, "lpt10"}}))
                  .accepted());
  EXPECT_TRUE(
      editor.ok(typed_form(editor, ListKind::kPrinters, {{4, "P11"}, {6, "nul"}})).accepted());
  EXPECT_FALSE(editor.modified() == false);
}

TEST(Printers, NamesAreRequiredAndUniqueAndEmptyFieldsTakeTheirDefaults) {
  EditorFixture jmd;
  JmdEditor& editor = jmd.editor();
  EXPECT_EQ(editor.ok(typed_form(editor, ListKind::kPrinters, {{4, "   "}})).message,
            msg::kPrinterNameEmpty);
  EXPECT_EQ(editor.ok(typed_form(editor, ListKind::kPrinters, {{4, " laser1 "}})).message,
            msg::kPrinterExists);
  EXPECT_FALSE(editor.modified());
  RowForm form = typed_form(editor, ListKind::kPrinters, {{4, " NEW "}, {9, ""}});
  form.set(14, "");
  ASSERT_TRUE(editor.ok(form).accepted());
  EXPECT_NE(jmd.saved().find("!p NEW * LPT1 * 50 *\n"), std::string::npos);
}

TEST(Printers, AnEditKeepsTheRowAndRefusesAnotherPrintersName) {
  EditorFixture jmd;
  JmdEditor& editor = jmd.editor();
  long row = editor.find_row(ListKind::kPrinters, "laser2");
  std::optional<RowForm> form = editor.edit_form(ListKind::kPrinters, row);
  ASSERT_TRUE(form);
  EXPECT_EQ(form->text(9), "LPT2");
  form->type(14, "7x");
  ASSERT_TRUE(editor.ok(*form, row).accepted());
  form->type(4, "LASER1");
  EXPECT_EQ(editor.ok(*form, row).message, msg::kPrinterExists);
  std::string saved = jmd.saved();
  EXPECT_NE(saved.find("!p LASER2 * LPT2 * 7 *\n"), std::string::npos) << saved;
}

TEST(Tasks, IdRequiredUniqueProgramDefaultAndWindowsClassKept) {
  EditorFixture jmd;
  JmdEditor& editor = jmd.editor();
  EXPECT_EQ(editor.ok(typed_form(editor, ListKind::kTasks, {{4, ""}})).message,
            msg::kTaskIdEmpty);
  EXPECT_EQ(editor.ok(typed_form(editor, ListKind::kTasks, {{4, "pxmerge"}})).message,
            msg::kTaskExists);
  ASSERT_TRUE(editor.ok(typed_form(editor, ListKind::kTasks, {{4, "T2"}, {6, "  "}})).accepted());
  long row = editor.find_row(ListKind::kTasks, "PXMERGE");
  std::optional<RowForm> form = editor.edit_form(ListKind::kTasks, row);
  ASSERT_TRUE(form);
  form->type(8, "-x 1");
  ASSERT_TRUE(editor.ok(*form, row).accepted());
  std::string saved = jmd.saved();
  EXPECT_NE(saved.find("!x PXMERGE WClass pxmerge.exe \"-x 1\" *\n"), std::string::npos);
  EXPECT_NE(saved.find("!x T2 * PXMERGE * *\n"), std::string::npos);
}

TEST(ManagedMemory, IdRequiredNotADeviceUniqueAndEmptyIsZero) {
  EditorFixture jmd;
  JmdEditor& editor = jmd.editor();
  EXPECT_EQ(editor.ok(typed_form(editor, ListKind::kMemory, {{4, " "}})).message,
            msg::kMemoryIdEmpty);
  EXPECT_EQ(editor.ok(typed_form(editor, ListKind::kMemory, {{4, "Prn"}})).message,
            msg::kReservedDevice);
  EXPECT_EQ(editor.ok(typed_form(editor, ListKind::kMemory, {{4, "hp4"}})).message,
            msg::kMemoryIdExists);
  ASSERT_TRUE(editor.ok(typed_form(editor, ListKind::kMemory, {{4, "A"}, {6, ""}})).accepted());
  ASSERT_TRUE(editor.ok(typed_form(editor, ListKind::kMemory, {{4, "B"}, {6, "0"}})).accepted());
  std::string saved = jmd.saved();
  EXPECT_NE(saved.find("!m A 0 *\n!m B 0 *\n"), std::string::npos);
  EXPECT_EQ(jmd.op().numbers(),
            (std::vector<int>{msg::kMemoryIdEmpty, msg::kReservedDevice, msg::kMemoryIdExists}));
}

TEST(Steps, EmptyFieldsTakeTheStepDefaults) {
  EXPECT_EQ(default_form_file("INV"), "INV.mdf");
  EXPECT_EQ(default_form_file("INV.X"), "INV.mdf");
  EXPECT_EQ(default_form_file("a.b/INV"), "a.b/INV.mdf");
  EditorFixture jmd;
  JmdEditor& editor = jmd.editor();
  RowForm form = editor.new_form(ListKind::kSteps, "NEWJOB");
  form.type(13, "s");
  ASSERT_TRUE(editor.ok_step(form, 0, {}, std::nullopt).accepted());
  EXPECT_NE(jmd.saved().find("!f NEWJOB * NEWJOB.mdf * 1 T PXMERGE * * S *\n"),
            std::string::npos);
}

TEST(Steps, NewStepGoesBeforeTheSelectedOneAndMovesSwapNeighbours) {
  EditorFixture jmd;
  JmdEditor& editor = jmd.editor();
  auto forms = [&] {
    std::vector<std::string> names;
    for (const std::string& line : jmd.lines(ListKind::kSteps, "INVOICE")) {
      names.push_back(line.substr(10, 8));
    }
    return names;
  };
  RowForm form = editor.new_form(ListKind::kSteps, "INVOICE");
  form.type(15, "mid.mdf");
  std::vector<long> steps = editor.job_steps("INVOICE");
  ASSERT_TRUE(editor.ok_step(form, 0, steps, 1).accepted());
  EXPECT_EQ(forms(), (std::vector<std::string>{"inv.mdf ", "mid.mdf ", "inv2.mdf"}));
  steps = editor.job_steps("INVOICE");
  EXPECT_FALSE(editor.move_steps(steps, 0, 1, true));
  EXPECT_FALSE(editor.move_steps(steps, 1, 2, false));
  ASSERT_TRUE(editor.move_steps(steps, 1, 2, true));
  EXPECT_EQ(forms(), (std::vector<std::string>{"mid.mdf ", "inv2.mdf", "inv.mdf "}));
  ASSERT_TRUE(editor.move_steps(steps, 0, 0, false));
  EXPECT_EQ(forms(), (std::vector<std::string>{"inv2.mdf", "mid.mdf ", "inv.mdf "}));
  // The order reaches the file.
  std::string saved = jmd.saved();
  EXPECT_LT(saved.find("inv2.mdf"), saved.find("mid.mdf"));
  EXPECT_LT(saved.find("mid.mdf"), saved.find(" inv.mdf"));
}

TEST(JobNames, NewNamesLoseTrailingBlanksAndAreRefusedWithOtherBlanksOrWhenTheJobExists) {
  EditorFixture jmd;
  JmdEditor& editor = jmd.editor();
  std::string name;
  EXPECT_EQ(editor.check_new_job_name("   ", name), msg::kJobNameEmpty);
  // A leading blank is not dropped: the name is not taken, and nothing shown.
  EXPECT_EQ(editor.check_new_job_name("  NEW", name), msg::kJobNameEmpty);
  EXPECT_EQ(editor.check_new_job_name(" NEW ", name), msg::kJobNameEmpty);
  EXPECT_EQ(editor.check_new_job_name("TWO WORDS", name), msg::kJobNameHasBlank);
  EXPECT_EQ(editor.check_new_job_name("TWO\tWORDS", name), msg::kJobNameHasBlank);
  // A line break would split the saved line.
  EXPECT_EQ(editor.check_new_job_name("TWO\nWORDS", name), msg::kJobNameHasBlank);
  EXPECT_EQ(editor.check_new_job_name("invoice", name), msg::kJobExists);
  EXPECT_EQ(editor.check_new_job_name("NEW  ", name), 0);
  EXPECT_EQ(name, "NEW");
  // The blanks after the 51st character are cut with it.
  EXPECT_EQ(editor.check_new_job_name(std::string(50, 'J') + " X", name), 0);
  EXPECT_EQ(name, std::string(50, 'J'));
  EXPECT_EQ(jmd.op().numbers(), (std::vector<int>{msg::kJobNameHasBlank, msg::kJobNameHasBlank,
                                                  msg::kJobNameHasBlank, msg::kJobExists}));
}

TEST(Deleting, AJobNameTakesItsStepsAPrinterLeavesTheStepsNamingIt) {
  EditorFixture jmd;
  JmdEditor& editor = jmd.editor();
  EXPECT_EQ(editor.delete_rows(ListKind::kJobNames,
                               {editor.find_row(ListKind::kJobNames, "INVOICE")}),
            1);
  EXPECT_EQ(editor.delete_rows(ListKind::kPrinters,
                               {editor.find_row(ListKind::kPrinters, "LASER2")}),
            1);
  EXPECT_TRUE(editor.modified());
  EXPECT_EQ(jmd.saved(), std::string(kJmdHeader) +
                             "!f CHEQUE LASER2 /forms/chq.mdf * 2 T PXMERGE N N C *\n"
                             "!p LASER1 HP4 LPT1 * 50 *\n"
                             "!x PXMERGE WClass pxmerge.exe * *\n"
                             "!m HP4 4096 \"four k\"\n");
}

TEST(Clipboard, AJobCopiedAndPastedUnderANewNameHasTheSameSteps) {
  EditorFixture jmd;
  JmdEditor& editor = jmd.editor();
  ASSERT_TRUE(editor.copy(ListKind::kJobNames, {editor.find_row(ListKind::kJobNames, "INVOICE")},
                          false));
  EXPECT_TRUE(editor.can_paste(ListKind::kSteps));
  EXPECT_FALSE(editor.can_paste(ListKind::kPrinters));
  std::string name;
  EXPECT_EQ(editor.paste_job("CHEQUE", name), msg::kJobExists);
  ASSERT_EQ(editor.paste_job("COPY", name), 0);
  EXPECT_EQ(jmd.lines(ListKind::kSteps, "COPY"), jmd.lines(ListKind::kSteps, "INVOICE"));
  EXPECT_EQ(jmd.lines(ListKind::kJobNames).size(), 3u);
}

TEST(Clipboard, ACopyOfAnotherKindEmptiesItAndACutDeletes) {
  EditorFixture jmd;
  JmdEditor& editor = jmd.editor();
  ASSERT_TRUE(editor.copy(ListKind::kSteps, editor.job_steps("INVOICE"), false));
  ASSERT_TRUE(editor.copy(ListKind::kPrinters, {editor.find_row(ListKind::kPrinters, "LASER1")},
                          true));
  EXPECT_TRUE(editor.clipboard_steps().empty());
  EXPECT_EQ(editor.find_row(ListKind::kPrinters, "LASER1"), 0);
  EXPECT_FALSE(editor.paste_form(ListKind::kTasks));
  EXPECT_EQ(jmd.op().last(), msg::kInternalError);
  std::optional<RowForm> form = editor.paste_form(ListKind::kPrinters);
  ASSERT_TRUE(form);
  EXPECT_EQ(form->text(6), "HP4");
  ASSERT_TRUE(editor.ok(*form).accepted());
  EXPECT_NE(editor.find_row(ListKind::kPrinters, "LASER1"), 0);
}

TEST(Clipboard, StepsOfTheSameKindAddUpUntilTheKindChangesAfterAList) {
  EditorFixture jmd;
  JmdEditor& editor = jmd.editor();
  long invoice = editor.find_row(ListKind::kJobNames, "INVOICE");
  long cheque = editor.find_row(ListKind::kJobNames, "CHEQUE");
  // Two jobs copied from the job names: a paste gives the steps of both.
  ASSERT_TRUE(editor.copy(ListKind::kJobNames, {invoice}, false));
  ASSERT_TRUE(editor.copy(ListKind::kJobNames, {cheque}, false));
  std::string name;
  ASSERT_EQ(editor.paste_job("BOTH", name), 0);
  std::vector<std::string> both = jmd.lines(ListKind::kSteps, "INVOICE");
  both.push_back(jmd.lines(ListKind::kSteps, "CHEQUE").at(0));
  EXPECT_EQ(jmd.lines(ListKind::kSteps, "BOTH"), both);
  // Steps of a job window after the job names: emptied first.
  ASSERT_TRUE(editor.copy(ListKind::kSteps, editor.job_steps("CHEQUE"), false));
  EXPECT_EQ(editor.clipboard_steps().size(), 1u);
  // More steps of a job window, and then a job name: added.
  ASSERT_TRUE(editor.copy(ListKind::kSteps, editor.job_steps("INVOICE"), false));
  ASSERT_TRUE(editor.copy(ListKind::kJobNames, {invoice}, false));
  EXPECT_EQ(editor.clipboard_steps().size(), 5u);
  // A printer after the job names, then steps again: only the new steps.
  ASSERT_TRUE(editor.copy(ListKind::kPrinters, {editor.find_row(ListKind::kPrinters, "LASER1")},
                          false));
  EXPECT_FALSE(editor.can_paste(ListKind::kSteps));
  ASSERT_TRUE(editor.copy(ListKind::kSteps, editor.job_steps("CHEQUE"), false));
  EXPECT_EQ(editor.clipboard_steps().size(), 1u);
  editor.empty_clipboard();
  EXPECT_FALSE(editor.can_paste(ListKind::kJobNames));
}

TEST(Clipboard, ClosingTheJmdTakesTheStepsOnTheClipboardWithIt) {
  EditorFixture jmd;
  JmdEditor& editor = jmd.editor();
  ASSERT_TRUE(editor.copy(ListKind::kJobNames, {editor.find_row(ListKind::kJobNames, "INVOICE")},
                          false));
  // Opened again, as after a save question answered or another instance.
  ASSERT_TRUE(jmd.file().load());
  EXPECT_FALSE(editor.can_paste(ListKind::kJobNames));
  EXPECT_FALSE(editor.can_paste(ListKind::kSteps));
  std::string name;
  EXPECT_EQ(editor.paste_job("COPY", name), msg::kInternalError);
  EXPECT_FALSE(editor.job_exists("COPY"));
  EXPECT_FALSE(editor.modified());
}

TEST(Clipboard, StepsPastedIntoAJobGoBeforeTheSelectedStep) {
  EditorFixture jmd;
  JmdEditor& editor = jmd.editor();
  ASSERT_TRUE(editor.copy(ListKind::kSteps, editor.job_steps("CHEQUE"), false));
  std::vector<long> placed = editor.paste_steps("INVOICE", editor.job_steps("INVOICE"), 1);
  ASSERT_EQ(placed.size(), 1u);
  std::vector<std::string> lines = jmd.lines(ListKind::kSteps, "INVOICE");
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[1].substr(10, 7), "chq.mdf");
}

TEST(Saving, ASaveAReloadAndASecondSaveGiveTheSameBytes) {
  std::string first;
  {
    EditorFixture jmd;
    JmdEditor& editor = jmd.editor();
    ASSERT_TRUE(editor.ok(typed_form(editor, ListKind::kTasks, {{4, "T \"q\""}})).accepted());
    RowForm form = editor.new_form(ListKind::kSteps, "ZJOB");
    ASSERT_TRUE(editor.ok_step(form, 0, {}, std::nullopt).accepted());
    first = jmd.saved();
  }
  EditorFixture again(first);
  ASSERT_TRUE(again.loaded());
  EXPECT_EQ(again.saved(), first);
}

}  // namespace
}  // namespace px::editors

namespace px::editors {
namespace {

// The tables' rows in save order, without writing the file.
std::string rows_now(JmdEditor& editor) {
  jmd::Jmd* database = editor.service().jmd();
  std::string text;
  for (int slot = 0; slot < jmd::kTableCount; ++slot) {
    jmd::for_each_sorted(*database, slot, [&](std::span<const char> record) {
      text += jmd::record_line(jmd::table_schema(slot), record);
      return true;
    });
  }
  // And the job names listed.
  RowList names(ListKind::kJobNames);
  if (!editor.reload(names)) return text + "no job names";
  for (const std::string& line : editor.page_lines(names)) text += "jobs: " + line + "\n";
  return text;
}

TEST(Undo, EveryActIsTakenBackAndDoneAgainDownToTheLastSave) {
  EditorFixture jmd;
  JmdEditor& editor = jmd.editor();
  EXPECT_FALSE(editor.can_undo());
  std::vector<std::string> states{rows_now(editor)};
  ASSERT_TRUE(editor.ok(typed_form(editor, ListKind::kPrinters, {{4, "NEW"}})).accepted());
  states.push_back(rows_now(editor));
  ASSERT_TRUE(editor.copy(ListKind::kJobNames, {editor.find_row(ListKind::kJobNames, "INVOICE")},
                          true));
  states.push_back(rows_now(editor));
  std::string name;
  ASSERT_EQ(editor.paste_job("COPY", name), 0);
  states.push_back(rows_now(editor));
  ASSERT_TRUE(editor.move_steps(editor.job_steps("COPY"), 0, 0, false));
  states.push_back(rows_now(editor));
  // A refused edit is no act.
  EXPECT_FALSE(editor.ok(typed_form(editor, ListKind::kPrinters, {{4, "NEW"}})).accepted());

  for (size_t k = states.size() - 1; k > 0; --k) {
    ASSERT_TRUE(editor.undo()) << k;
    EXPECT_EQ(rows_now(editor), states[k - 1]) << k;
  }
  EXPECT_FALSE(editor.undo());
  for (size_t k = 1; k < states.size(); ++k) {
    ASSERT_TRUE(editor.redo()) << k;
    EXPECT_EQ(rows_now(editor), states[k]) << k;
  }
  EXPECT_FALSE(editor.redo());
  // A new act after an undo drops what could have been done again.
  ASSERT_TRUE(editor.undo());
  ASSERT_EQ(editor.delete_rows(ListKind::kTasks, {editor.find_row(ListKind::kTasks, "PXMERGE")}),
            1);
  EXPECT_FALSE(editor.can_redo());
  // A save ends the history.
  jmd.saved();
  EXPECT_FALSE(editor.can_undo());
}

}  // namespace
}  // namespace px::editors
