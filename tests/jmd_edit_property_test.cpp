// Random sequences of JMD edits, run once through pxctl jmd (which loads and
// writes the file for every edit) and once through the editors' rules on one
// open database: after every edit both saved files must be the same bytes.
#include <gtest/gtest.h>

#include <random>

#include "config/recording_operator.h"
#include "jmd/editors/jmd_file.h"
#include "tests/support/run_program.h"
#include "tests/support/test_dir.h"

namespace px {
namespace {

using editors::JmdEditor;
using editors::ListKind;
using editors::RowForm;

const std::string kStart =
    "# Plexar Job Management Database (JMD) file\n"
    "!f CHEQUE LASER2 chq.mdf * 2 T PXMERGE N N C *\n"
    "!f INVOICE LASER1 inv.mdf * 1 T PXMERGE N N C \"first step\"\n"
    "!f INVOICE LASER2 inv2.mdf * 1 T PXMERGE N N C *\n"
    "!p LASER1 HP4 LPT1 * 50 *\n"
    "!x PXMERGE WClass pxmerge.exe * *\n"
    "!m HP4 4096 *\n";

// One edit: the pxctl words after FILE, and the same edit on the editor.
struct Edit {
  std::string action;
  std::vector<std::string> words;
};

template <class T>
const T& pick(std::mt19937& random, const std::vector<T>& from) {
  return from[std::uniform_int_distribution<size_t>(0, from.size() - 1)(random)];
}

std::string number(std::mt19937& random, int low, int high) {
  return std::to_string(std::uniform_int_distribution<int>(low, high)(random));
}

Edit random_edit(std::mt19937& random) {
  static const std::vector<std::string> printers = {"LASER1", "P2", "LONGPRINTER", "laser1"};
  static const std::vector<std::string> ids = {"*", "HP4", "Com3", "lpt10", "M2"};
  static const std::vector<std::string> jobs = {"INVOICE", "CHEQUE", "NEW1", "NEW2"};
  static const std::vector<std::string> texts = {"", "7x", "12", "a b", "-q"};
  // No new-job: a job without steps is listed only until the file is written,
  // so the open database and the rewritten file would rightly differ.
  switch (std::uniform_int_distribution<int>(0, 11)(random)) {
    case 0:
      return {"add", {"printers", "PrinterName=" + pick(random, printers),
                      "PrinterId=" + pick(random, ids), "Priority=" + pick(random, texts)}};
    case 1:
      return {"edit", {"printers", pick(random, printers), "Priority=" + pick(random, texts),
                       "Comment=" + pick(random, texts)}};
    case 2: return {"delete", {"printers", pick(random, printers)}};
    case 3:
      return {"add", {"tasks", "TaskId=" + pick(random, ids), "TaskName=" + pick(random, texts)}};
    case 4:
      return {"add", {"memory", "PrinterId=" + pick(random, ids), "Amount=" + pick(random, texts)}};
    case 5:
      return {"add-step", {pick(random, jobs), "MDFName=" + pick(random, texts),
                           "PrinterName=" + pick(random, printers)}};
    case 6:
      return {"add-step", {pick(random, jobs), "--before", number(random, 1, 3),
                           "TaskId=" + pick(random, ids)}};
    case 7: return {"delete-step", {pick(random, jobs), number(random, 1, 3)}};
    case 8: {
      std::string first = number(random, 1, 3);
      return {"move-step", {pick(random, jobs), first, first, random() % 2 ? "up" : "down"}};
    }
    case 9: return {"copy-job", {pick(random, jobs), pick(random, jobs)}};
    case 10: return {"delete", {"jobs", pick(random, jobs)}};
    default: return {"delete-step", {pick(random, jobs), number(random, 1, 3)}};
  }
}

// Types COLUMN=VALUE words from index first into form.
void type_words(RowForm& form, const std::vector<std::string>& words, size_t first) {
  for (size_t i = first; i < words.size(); ++i) {
    size_t equals = words[i].find('=');
    form.type(form.rule_for_column(words[i].substr(0, equals))->control,
              words[i].substr(equals + 1));
  }
}

ListKind kind_of(const std::string& word) {
  if (word == "printers") return ListKind::kPrinters;
  if (word == "tasks") return ListKind::kTasks;
  if (word == "memory") return ListKind::kMemory;
  return ListKind::kJobNames;
}

// The edit through the editor; false when it was refused.
bool apply(JmdEditor& editor, const Edit& edit) {
  const std::vector<std::string>& w = edit.words;
  if (edit.action == "add") {
    RowForm form = editor.new_form(kind_of(w[0]));
    type_words(form, w, 1);
    return editor.ok(form).accepted();
  }
  if (edit.action == "edit") {
    long row = editor.find_row(kind_of(w[0]), w[1]);
    if (row == 0) return false;
    std::optional<RowForm> form = editor.edit_form(kind_of(w[0]), row);
    type_words(*form, w, 2);
    return editor.ok(*form, row).accepted();
  }
  if (edit.action == "delete") {
    long row = editor.find_row(kind_of(w[0]), w[1]);
    return row != 0 && editor.delete_rows(kind_of(w[0]), {row}) == 1;
  }
  std::vector<long> steps = editor.job_steps(w[0]);
  if (edit.action == "add-step") {
    bool before = w[1] == "--before";
    size_t index = before ? std::stoul(w[2]) - 1 : steps.size();
    if (index > steps.size()) return false;
    if (steps.empty() && editor.find_row(ListKind::kJobNames, w[0]) == 0) {
      std::string name;
      if (editor.check_new_job_name(w[0], name) != 0 || editor.add_job_name(name) == 0) {
        return false;
      }
    }
    RowForm form = editor.new_form(ListKind::kSteps, w[0]);
    type_words(form, w, before ? 3 : 1);
    return editor.ok_step(form, 0, steps, before ? std::optional(index) : std::nullopt)
        .accepted();
  }
  if (edit.action == "copy-job") {
    long from = editor.find_row(ListKind::kJobNames, w[0]);
    std::string name;
    // Each pxctl copy-job starts with an empty clipboard.
    editor.empty_clipboard();
    return from != 0 && editor.copy(ListKind::kJobNames, {from}, false) &&
           editor.paste_job(w[1], name) == 0;
  }
  size_t n = std::stoul(w[1]);
  if (edit.action == "delete-step") {
    return n <= steps.size() && editor.delete_rows(ListKind::kSteps, {steps[n - 1]}) == 1;
  }
  if (edit.action == "move-step") {
    if (n > steps.size()) return false;
    editor.move_steps(steps, n - 1, n - 1, w[3] == "up");
    return true;
  }
  return false;
}

TEST(JmdEditProperty, PxctlAndTheEditorsRulesSaveTheSameFiles) {
  TestDir dir;
  std::string ini = dir.write("test.ini", "[Options]\n");
  for (unsigned seed = 1; seed <= 4; ++seed) {
    std::string by_pxctl = dir.write("pxctl.jmd", kStart);
    std::string by_editor = dir.write("editor.jmd", kStart);
    RecordingOperator op;
    editors::JmdFile file(by_editor, op);
    ASSERT_TRUE(file.load());
    std::mt19937 random(seed);
    for (int step = 0; step < 30; ++step) {
      Edit edit = random_edit(random);
      // The same goes for a job whose last step is deleted.
      while (edit.action == "delete-step" && file.editor().job_steps(edit.words[0]).size() == 1) {
        edit = random_edit(random);
      }
      std::vector<std::string> args = {"-aii" + ini, "jmd", edit.action, by_pxctl};
      args.insert(args.end(), edit.words.begin(), edit.words.end());
      ProgramResult result = run_program(PXCTL_PATH, args, dir.path());
      bool applied = apply(file.editor(), edit);
      std::string what = "seed " + std::to_string(seed) + " step " + std::to_string(step) +
                         ": " + edit.action + " " + testing::PrintToString(edit.words);
      ASSERT_EQ(result.status, applied ? 0 : 1) << what << "\n" << result.err;
      ASSERT_TRUE(file.save()) << what;
      ASSERT_EQ(dir.read("pxctl.jmd"), dir.read("editor.jmd")) << what;
    }
  }
}

}  // namespace
}  // namespace px
