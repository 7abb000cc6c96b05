// The shipped message catalogue: every entry expands completely.
#include <gtest/gtest.h>

#include <string>

#include "common/expand.h"
#include "common/ini_profile.h"
#include "common/text.h"

namespace px {
namespace {

TEST(ShippedCatalogue, EveryArgumentWordIsReplaced) {
  const std::string catalogue = PX_SOURCE_DIR "/demo/pxcntrl.ini";
  std::vector<std::string> keys = ini::get_key_array("Messages", catalogue);
  ASSERT_GT(keys.size(), 50u);
  std::vector<std::string> args;
  for (int i = 1; i <= 9; ++i) args.push_back("<argument " + std::to_string(i) + ">");
  set_message_arguments(args);
  for (const std::string& key : keys) {
    std::string text = expand(ini::get_string("Messages", key, "", 1024, catalogue));
    EXPECT_EQ(ifind(text, "@P"), std::string::npos) << key << ": " << text;
  }
  clear_named_values();
  ini::flush_cache();
}

}  // namespace
}  // namespace px
