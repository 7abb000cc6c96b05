// One field of a configuration form: what kind of control shows it, which
// INI key holds it, its default and its limit, and the rules every change
// of its text goes through while the operator types.
//
// Field texts are what the dialog shows: check boxes and radio pairs hold
// the value they save ("Yes"/"No", "minutes"/"seconds", "Left"/"Right"),
// a password field holds one "*" per character of the hidden password.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace px::forms {

enum class FieldKind : std::uint8_t {
  kText,      // free text, cut to its limit
  kDigits,    // digits only (a leading minus allowed), cut to its limit
  kInteger,   // typed as kDigits; loaded and saved as a decimal integer
  kCheck,     // check box: "Yes" or "No"
  kRadioYes,  // radio pair whose second button saves "Yes": "Yes" or "No"
  kScanTime,  // scan time: 1 to 999, re-clamped on every change
  kUnit,      // radio pair minutes/seconds that only converts the scan time
  kPassword,  // masked: the text is asterisks, the password is kept aside
  kLocation,  // drop-down list of two entries: "Left" or "Right"
};

// Where the section of a field comes from.
inline constexpr const char* kMailSection = nullptr;  // "PxEmio-<EMailSystem>"

struct FieldDef {
  const char* key;         // the INI key, and the name pxctl uses
  const char* section;     // the INI section; kMailSection for the mail section
  FieldKind kind;
  int control;             // the control that shows it in its dialog
  std::size_t limit;       // the longest text; 0 for none
  const char* fallback;    // the value when the key is absent
  bool hidden = false;     // loaded, checked and saved, but never shown
};

// The longest scan time a field holds, in characters.
inline constexpr std::size_t kScanTimeLength = 3;
inline constexpr int kScanTimeMinimum = 1;
inline constexpr int kScanTimeMaximum = 999;
// The longest password the field takes.
inline constexpr std::size_t kPasswordLength = 99;

// A field's text after a change and what the change cost.
struct EditResult {
  std::string text;
  int caret = 0;
  bool beep = false;        // a rule refused or cut something
  bool cut_to_limit = false;  // the text was longer than the limit
};

// Applies the field's typing rules to text just changed by the operator,
// with the caret where the change left it. For a password field, secret is
// the hidden password and is updated: every character other than "*" is
// taken into it and shown as "*"; a "*" keeps what secret held there.
EditResult apply_typing_rules(const FieldDef& field, std::string_view text, int caret,
                              std::string* secret);

inline const char* yes_no(bool yes) { return yes ? "Yes" : "No"; }

// The value a choice field (check box, radio pair, drop-down) takes from a
// word given for it, or empty when the word does not name one of its
// values: yes/no words for check boxes and the Yes radio pair, "minutes" or
// "seconds" for a unit, "Left" or "Right" for a location (any case).
std::string choice_value(FieldKind kind, std::string_view word);

// True for the kinds whose value is chosen, not typed.
bool is_choice(FieldKind kind);

// The scan time n kept within 1 to 999.
int clamp_scan_time(int n);

}  // namespace px::forms
