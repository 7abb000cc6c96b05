#include "config/forms/field.h"

#include <algorithm>

#include "common/text.h"

namespace px::forms {

namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// Cuts result's text back to limit characters (0: no limit).
void cut_to_limit(EditResult& result, std::size_t limit) {
  if (limit == 0 || result.text.size() <= limit) return;
  result.text.resize(limit);
  result.caret = std::min(result.caret, static_cast<int>(limit));
  result.beep = true;
  result.cut_to_limit = true;
}

// Drops the first character that is not a digit; a minus sign may lead.
void keep_digits(EditResult& result) {
  for (std::size_t i = 0; i < result.text.size(); ++i) {
    char c = result.text[i];
    if (is_digit(c) || (i == 0 && c == '-')) continue;
    result.text.erase(i, 1);
    result.caret = std::max(0, result.caret - 1);
    result.beep = true;
    return;
  }
}

void rewrite_scan_time(EditResult& result) {
  cut_to_limit(result, kScanTimeLength);
  int n = parse_int(result.text);
  int kept = clamp_scan_time(n);
  if (kept != n) result.beep = true;
  result.text = std::to_string(kept);
  result.caret = static_cast<int>(result.text.size());
}

// Takes every typed character into the secret and shows "*" in its place.
void mask_password(EditResult& result, std::string& secret) {
  cut_to_limit(result, kPasswordLength);
  if (secret.size() > result.text.size()) secret.resize(result.text.size());
  for (std::size_t i = 0; i < result.text.size(); ++i) {
    char c = result.text[i];
    if (c == '*' && i < secret.size()) continue;
    if (i >= secret.size()) secret.resize(i + 1);
    secret[i] = c;
    result.text[i] = '*';
  }
}

}  // namespace

EditResult apply_typing_rules(const FieldDef& field, std::string_view text, int caret,
                              std::string* secret) {
  EditResult result{std::string(text), std::clamp(caret, 0, static_cast<int>(text.size()))};
  switch (field.kind) {
    case FieldKind::kDigits:
    case FieldKind::kInteger:
      keep_digits(result);
      cut_to_limit(result, field.limit);
      break;
    case FieldKind::kScanTime:
      rewrite_scan_time(result);
      break;
    case FieldKind::kPassword:
      if (secret != nullptr) mask_password(result, *secret);
      break;
    default:
      cut_to_limit(result, field.limit);
      break;
  }
  return result;
}

bool is_choice(FieldKind kind) {
  return kind == FieldKind::kCheck || kind == FieldKind::kRadioYes || kind == FieldKind::kUnit ||
         kind == FieldKind::kLocation;
}

std::string choice_value(FieldKind kind, std::string_view word) {
  switch (kind) {
    case FieldKind::kCheck:
    case FieldKind::kRadioYes:
      if (iequals(word, "yes") || iequals(word, "y")) return "Yes";
      if (iequals(word, "no") || iequals(word, "n")) return "No";
      return {};
    case FieldKind::kUnit:
      if (iequals(word, "minutes")) return "minutes";
      if (iequals(word, "seconds")) return "seconds";
      return {};
    case FieldKind::kLocation:
      if (iequals(word, "left")) return "Left";
      if (iequals(word, "right")) return "Right";
      return {};
    default:
      return {};
  }
}

int clamp_scan_time(int n) { return std::clamp(n, kScanTimeMinimum, kScanTimeMaximum); }

}  // namespace px::forms
