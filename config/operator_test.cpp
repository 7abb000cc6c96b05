#include "config/operator.h"

#include <gtest/gtest.h>

namespace px {
namespace {

TEST(DisplayPathTest, ShortPathsStayLongOnesKeepTheirTail) {
  EXPECT_EQ(display_path("/srv/plexar/north.ini"), "/srv/plexar/north.ini");
  std::string thirty = "/srv/plexar/instances/nort.ini";
  ASSERT_EQ(thirty.size(), 30u);
  EXPECT_EQ(display_path(thirty), thirty);

  // The last 30 characters are "r/instances/north/config/a.ini": the
  // separator among their first two characters does not count.
  EXPECT_EQ(display_path("/srv/plexar/instances/north/config/a.ini"), "../north/config/a.ini");
  EXPECT_EQ(display_path("C:\\data\\plexar\\instances\\north\\nexa.ini"),
            "..\\instances\\north\\nexa.ini");
  // No separator in the tail: ".." and the last 28 characters.
  std::string flat(40, 'b');
  EXPECT_EQ(display_path(flat), ".." + std::string(28, 'b'));
}

}  // namespace
}  // namespace px
