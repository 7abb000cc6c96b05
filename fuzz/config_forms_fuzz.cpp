// Fuzzes the configuration forms' input handling: the mount table parser
// over arbitrary text, and the typing rules of every field kind over
// arbitrary keystrokes. Checks that the drive list starts with "/", that a
// typed text never exceeds its field's limit, that a digits field holds only
// digits after an optional leading minus, and that a scan time stays within
// 1 to 999.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "config/forms/directory_browser.h"
#include "config/forms/field.h"

namespace {

using px::forms::FieldDef;
using px::forms::FieldKind;

constexpr FieldDef kFields[] = {
    {"Text", "S", FieldKind::kText, 1, 5, ""},
    {"Digits", "S", FieldKind::kDigits, 1, 3, ""},
    {"Integer", "S", FieldKind::kInteger, 1, 0, ""},
    {"Scan", "S", FieldKind::kScanTime, 1, 3, "5"},
    {"Password", "S", FieldKind::kPassword, 1, px::forms::kPasswordLength, ""},
};

void check_typing(const FieldDef& field, std::string_view keys) {
  std::string text;
  std::string secret;
  int caret = 0;
  for (char key : keys) {
    if (key == '\b') {
      if (caret > 0) text.erase(static_cast<std::size_t>(--caret), 1);
    } else {
      text.insert(static_cast<std::size_t>(caret), 1, key);
      ++caret;
    }
    px::forms::EditResult r = px::forms::apply_typing_rules(field, text, caret, &secret);
    if (field.limit != 0 && r.text.size() > field.limit) std::abort();
    if (r.caret < 0 || static_cast<std::size_t>(r.caret) > r.text.size()) std::abort();
    if (field.kind == FieldKind::kScanTime) {
      int n = std::atoi(r.text.c_str());
      if (n < 1 || n > 999) std::abort();
    }
    if (field.kind == FieldKind::kPassword &&
        r.text.find_first_not_of('*') != std::string::npos) {
      std::abort();
    }
    text = r.text;
    caret = r.caret;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  std::string_view data(reinterpret_cast<const char*>(bytes), size);
  if (data.empty()) return 0;
  unsigned mode = static_cast<unsigned char>(data[0]);
  data.remove_prefix(1);
  if (mode % 2 == 0) {
    std::vector<px::forms::Drive> drives = px::forms::drives_from_mount_table(data);
    if (drives.empty() || drives.front().mount_point != "/") std::abort();
  } else {
    check_typing(kFields[(mode / 2) % std::size(kFields)], data);
  }
  return 0;
}
