#include "jmd/editors/row_form.h"

#include <array>
#include <cstdio>

#include "common/text.h"
#include "jmd/jmd_schema.h"

namespace px::editors {

namespace {

constexpr std::array<FieldRule, 4> kTaskRules = {{
    {4, "TaskId", 9, false, ""},
    {6, "TaskName", 255, false, "PXMERGE"},
    {8, "TaskParms", 1023, false, "*"},
    {10, "Comment", 81, false, "*"},
}};

constexpr std::array<FieldRule, 6> kPrinterRules = {{
    {4, "PrinterName", 9, false, ""},
    {6, "PrinterId", 8, false, "*"},
    {9, "PhysicalDev", 51, false, "LPT1"},
    {12, "PrintDirectorParms", 127, false, "*"},
    {14, "Priority", 2, true, "50"},
    {16, "Comment", 81, false, "*"},
}};

constexpr std::array<FieldRule, 3> kMemoryRules = {{
    {4, "PrinterId", 8, false, ""},
    {6, "Amount", 9, true, "0"},
    {8, "Comment", 81, false, "*"},
}};

constexpr std::array<FieldRule, 11> kStepRules = {{
    {4, "FormName", 51, false, ""},
    {6, "TaskId", 9, false, ""},
    {9, "InFile", 1, false, ""},
    {11, "OutFile", 1, false, ""},
    {13, "OnErrorFlag", 1, false, ""},
    {15, "MDFName", 81, false, ""},
    {17, "PreambleName", 81, false, ""},
    {19, "PrinterName", 9, false, ""},
    {22, "MacroNum", 9, false, ""},
    {24, "LoadFlag", 1, false, ""},
    {26, "Comment", 81, false, ""},
}};

const std::string kNoText;

bool is_digit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

std::span<const FieldRule> field_rules(ListKind kind) {
  switch (kind) {
    case ListKind::kTasks: return kTaskRules;
    case ListKind::kPrinters: return kPrinterRules;
    case ListKind::kMemory: return kMemoryRules;
    case ListKind::kSteps: return kStepRules;
    default: return {};
  }
}

std::string_view trim_blanks(std::string_view text) {
  size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  size_t last = text.find_last_not_of(' ');
  return text.substr(first, last - first + 1);
}

Typed apply_change(const FieldRule& rule, std::string_view changed) {
  Typed typed{std::string(changed), 0, 0};
  // A TAB or a line break would end the value's word in the JMD file, which
  // writes such a string as it stands: the field does not take one.
  size_t kept = 0;
  for (char c : typed.text) {
    if (c == ' ' || !is_space(c)) typed.text[kept++] = c;
  }
  if (kept < typed.text.size()) {
    typed.caret_back += static_cast<int>(typed.text.size() - kept);
    typed.text.resize(kept);
    ++typed.beeps;
  }
  if (typed.text.size() > rule.longest) {
    typed.text.resize(rule.longest);
    ++typed.beeps;
  }
  if (rule.digits) {
    for (size_t i = 0; i < typed.text.size(); ++i) {
      char c = typed.text[i];
      if (is_digit(c) || (c == '-' && i == 0)) continue;
      typed.text.erase(i, 1);
      ++typed.beeps;
      ++typed.caret_back;
      break;
    }
  }
  return typed;
}

RowForm::RowForm(ListKind kind, FormMode mode)
    : kind_(kind), mode_(mode), rules_(field_rules(kind)), texts_(rules_.size()) {}

const FieldRule* RowForm::rule_for_control(int control) const {
  for (const FieldRule& rule : rules_) {
    if (rule.control == control) return &rule;
  }
  return nullptr;
}

const FieldRule* RowForm::rule_for_column(std::string_view column) const {
  for (const FieldRule& rule : rules_) {
    if (column == rule.column) return &rule;
  }
  for (const FieldRule& rule : rules_) {
    if (iequals(column, rule.column)) return &rule;
  }
  return nullptr;
}

size_t RowForm::index_of(int control) const {
  for (size_t i = 0; i < rules_.size(); ++i) {
    if (rules_[i].control == control) return i;
  }
  return rules_.size();
}

void RowForm::load_defaults(std::string_view job) {
  for (size_t i = 0; i < rules_.size(); ++i) texts_[i] = rules_[i].new_default;
  if (kind_ == ListKind::kSteps) set(4, std::string(job));
}

void RowForm::load(const Record& record) {
  int slot = table_slot(kind_);
  const jmd::TableSchema& schema = jmd::table_schema(slot);
  for (size_t i = 0; i < rules_.size(); ++i) {
    const jmd::FieldDef* field = jmd::find_field(schema, rules_[i].column);
    if (field == nullptr) continue;
    std::string text = jmd::field_text(record, *field);
    // The dialog shows a flag with "%c" upper-cased.
    if (field->type == jmd::kTypeCharacter) {
      for (char& c : text) c = to_upper(c);
    }
    texts_[i] = std::move(text);
  }
}

const std::string& RowForm::text(int control) const {
  size_t i = index_of(control);
  return i < texts_.size() ? texts_[i] : kNoText;
}

void RowForm::set(int control, std::string text) {
  size_t i = index_of(control);
  if (i < texts_.size()) texts_[i] = std::move(text);
}

int RowForm::change(int control, std::string_view changed) {
  size_t i = index_of(control);
  if (i >= texts_.size()) return 0;
  Typed typed = apply_change(rules_[i], changed);
  texts_[i] = std::move(typed.text);
  return typed.beeps;
}

int RowForm::type(int control, std::string_view text) {
  size_t i = index_of(control);
  if (i >= texts_.size()) return 0;
  texts_[i].clear();
  int beeps = 0;
  for (char key : text) {
    std::string changed = texts_[i] + key;
    beeps += change(control, changed);
  }
  return beeps;
}

bool RowForm::enabled(int control) const {
  if (kind_ == ListKind::kSteps && control == 4) return mode_ != FormMode::kEdit;
  if (kind_ == ListKind::kPrinters && control == 14) return mode_ != FormMode::kNew;
  return true;
}

}  // namespace px::editors
