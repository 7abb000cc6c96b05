#include "sim/feeder.h"

#include <gtest/gtest.h>

#include "common/file_pattern.h"
#include "sim/transactions.h"
#include "tests/support/test_dir.h"

namespace px::sim {
namespace {

TEST(FeederTest, FedFilesMatchThePatternAndEverySeventhHasNoJob) {
  EXPECT_EQ(fed_file_name("*.DAT", 12), "FEED000012.DAT");
  EXPECT_EQ(fed_file_name("STM?*.dat", 3), "STM0FEED000003.dat");
  TestDir dir;
  for (int i = 1; i <= 7; ++i) ASSERT_TRUE(feed_transaction(dir.path(), "*.DAT", i));
  std::vector<std::string> waiting = waiting_transactions(dir.path(), "*.DAT");
  ASSERT_EQ(waiting.size(), 7u);  // the hidden temporary name is not left or listed
  EXPECT_TRUE(matches_file_pattern(waiting[0], "*.DAT"));
  EXPECT_TRUE(transaction_job(dir.file("FEED000001.DAT")));
  EXPECT_FALSE(transaction_job(dir.file("FEED000007.DAT")));
  EXPECT_FALSE(feed_transaction(dir.file("missing"), "*.DAT", 8));
}

}  // namespace
}  // namespace px::sim
