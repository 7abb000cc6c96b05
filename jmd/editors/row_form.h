// The fields of the JMD row dialogs, without any toolkit: for each dialog the
// controls, the column each edits, the longest text it takes, the default of
// a new row, and the rule applied as the operator types.
//
//   task (126)      4 TaskId 9, 6 TaskName 255 "PXMERGE", 8 TaskParms 1023 "*",
//                   10 Comment 81 "*"
//   printer (108)   4 PrinterName 9, 6 PrinterId 8 "*", 9 PhysicalDev 51 "LPT1",
//                   12 PrintDirectorParms 127 "*", 14 Priority 2 digits "50",
//                   16 Comment 81 "*"
//   memory (128)    4 PrinterId 8, 6 Amount 9 digits "0", 8 Comment 81 "*"
//   job step (106)  4 FormName 51 (the job), 6 TaskId 9, 9 InFile 1, 11 OutFile 1,
//                   13 OnErrorFlag 1, 15 MDFName 81, 17 PreambleName 81,
//                   19 PrinterName 9, 22 MacroNum 9, 24 LoadFlag 1, 26 Comment 81
//
// Every change of a field drops a TAB or line break (white space other than
// the blank, which the JMD file cannot carry in a value; a beep), then cuts
// its text back to its longest length (a beep when it was longer). A digits field then also drops the first character
// that is not a digit (a minus sign may stand first), with a beep.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "jmd/editors/list_kind.h"
#include "jmd/editors/record.h"

namespace px::editors {

// Modes of a row dialog.
enum class FormMode : int { kEdit = 0, kNew = 1, kPaste = 2 };

struct FieldRule {
  int control = 0;
  const char* column = "";
  size_t longest = 0;
  bool digits = false;
  const char* new_default = "";
};

// The fields of the dialog of kind (kTasks, kPrinters, kMemory or kSteps).
std::span<const FieldRule> field_rules(ListKind kind);

// The result of one change of a field's text.
struct Typed {
  std::string text;
  int beeps = 0;
  // Characters the caret moves back by (one per dropped character).
  int caret_back = 0;
};

// Applies the field's rule to the text a change left in it.
Typed apply_change(const FieldRule& rule, std::string_view changed);

// The texts of a row dialog's fields, with their rules.
class RowForm {
 public:
  RowForm(ListKind kind, FormMode mode);

  ListKind kind() const { return kind_; }
  FormMode mode() const { return mode_; }
  std::span<const FieldRule> rules() const { return rules_; }

  // The rule of a control or of a column (exact name, or without regard to
  // case); nullptr when the dialog has none.
  const FieldRule* rule_for_control(int control) const;
  const FieldRule* rule_for_column(std::string_view column) const;

  // Fills the fields: with the defaults of a new row (for a job step, job
  // names the step's job), or from a record as the dialog shows it (edit and
  // paste).
  void load_defaults(std::string_view job = {});
  void load(const Record& record);

  const std::string& text(int control) const;
  // Sets a field as it stands, without the typing rule (as a dialog fills it).
  void set(int control, std::string text);
  // The operator's change of a field to changed; the rule applied. Beeps.
  int change(int control, std::string_view changed);
  // Clears the field and types text into it one key at a time, each key a
  // change. Beeps.
  int type(int control, std::string_view text);

  // Whether the operator may type into the control (the job name of an
  // edited step and the priority of a new printer are disabled).
  bool enabled(int control) const;

 private:
  size_t index_of(int control) const;
  ListKind kind_;
  FormMode mode_;
  std::span<const FieldRule> rules_;
  std::vector<std::string> texts_;
};

// Text trimmed of leading and trailing blanks (space characters only).
std::string_view trim_blanks(std::string_view text);

}  // namespace px::editors
