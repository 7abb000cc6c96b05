#include "config/forms/field.h"

#include <gtest/gtest.h>

namespace px::forms {
namespace {

constexpr FieldDef kDigits{"Size", "S", FieldKind::kDigits, 1, 3, ""};
constexpr FieldDef kText{"Name", "S", FieldKind::kText, 1, 5, ""};
constexpr FieldDef kScan{"PauseTime", "S", FieldKind::kScanTime, 1, 3, "5"};
constexpr FieldDef kPassword{"Password", "S", FieldKind::kPassword, 1, kPasswordLength, ""};

TEST(TypingRules, DigitsDropTheFirstNonDigitAndMoveTheCaretBack) {
  EditResult r = apply_typing_rules(kDigits, "1a2", 2, nullptr);
  EXPECT_EQ(r.text, "12");
  EXPECT_EQ(r.caret, 1);
  EXPECT_TRUE(r.beep);
  r = apply_typing_rules(kDigits, "-5", 2, nullptr);
  EXPECT_EQ(r.text, "-5");
  EXPECT_FALSE(r.beep);
  r = apply_typing_rules(kDigits, "5-", 2, nullptr);
  EXPECT_EQ(r.text, "5");
  EXPECT_TRUE(r.beep);
}

TEST(TypingRules, LongTextIsCutToItsLimitWithABeep) {
  EditResult r = apply_typing_rules(kText, "abcdefg", 7, nullptr);
  EXPECT_EQ(r.text, "abcde");
  EXPECT_EQ(r.caret, 5);
  EXPECT_TRUE(r.beep);
  EXPECT_TRUE(r.cut_to_limit);
  r = apply_typing_rules(kDigits, "1234", 4, nullptr);
  EXPECT_EQ(r.text, "123");
  EXPECT_TRUE(r.cut_to_limit);
  EXPECT_FALSE(apply_typing_rules(kText, "abcde", 5, nullptr).beep);
}

TEST(TypingRules, ScanTimeIsClampedAndRewrittenOnEveryChange) {
  EditResult r = apply_typing_rules(kScan, "0", 1, nullptr);
  EXPECT_EQ(r.text, "1");
  EXPECT_TRUE(r.beep);
  r = apply_typing_rules(kScan, "", 0, nullptr);
  EXPECT_EQ(r.text, "1");
  r = apply_typing_rules(kScan, "07", 1, nullptr);
  EXPECT_EQ(r.text, "7");
  EXPECT_EQ(r.caret, 1);
  EXPECT_FALSE(r.beep);
  r = apply_typing_rules(kScan, "9999", 4, nullptr);
  EXPECT_EQ(r.text, "999");
  EXPECT_TRUE(r.beep);
}

TEST(TypingRules, PasswordTakesTypedCharactersAndKeepsHiddenOnesUnderStars) {
  std::string secret = "north1";
  // Nothing typed: the stars stand for the stored password.
  EditResult r = apply_typing_rules(kPassword, "******", 6, &secret);
  EXPECT_EQ(r.text, "******");
  EXPECT_EQ(secret, "north1");
  // Backspace at the end cuts the password; a typed letter replaces its place.
  r = apply_typing_rules(kPassword, "****", 4, &secret);
  EXPECT_EQ(secret, "nort");
  r = apply_typing_rules(kPassword, "**x**", 3, &secret);
  EXPECT_EQ(r.text, "*****");
  EXPECT_EQ(r.caret, 3);
  EXPECT_EQ(secret, "noxt*");  // a star past the old end is taken as typed
}

TEST(Choices, WordsMapToTheValuesTheFieldSaves) {
  EXPECT_EQ(choice_value(FieldKind::kCheck, "yes"), "Yes");
  EXPECT_EQ(choice_value(FieldKind::kCheck, "N"), "No");
  EXPECT_EQ(choice_value(FieldKind::kCheck, "maybe"), "");
  EXPECT_EQ(choice_value(FieldKind::kUnit, "MINUTES"), "minutes");
  EXPECT_EQ(choice_value(FieldKind::kLocation, "right"), "Right");
  EXPECT_EQ(choice_value(FieldKind::kLocation, "centre"), "");
}

}  // namespace
}  // namespace px::forms
