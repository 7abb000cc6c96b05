#include "common/text.h"

#include <gtest/gtest.h>

namespace px {
namespace {

TEST(FillPercentSTest, FillsTheFirstPercentSAndKeepsEveryOtherPercent) {
  EXPECT_EQ(fill_percent_s("Reload Printer for %s", "North"), "Reload Printer for North");
  EXPECT_EQ(fill_percent_s("100%% of %s, not %s or %d", "North"), "100% of North, not %s or %d");
  EXPECT_EQ(fill_percent_s("editor --file %s --literal 100%%", "a%s.ini"),
            "editor --file a%s.ini --literal 100%");  // the value is not read as a format
  EXPECT_EQ(fill_percent_s("No place", "North"), "No place");
  EXPECT_EQ(fill_percent_s("ends in %", "x"), "ends in %");
  EXPECT_EQ(fill_percent_s("%%s", "x"), "%s");
}

}  // namespace
}  // namespace px
