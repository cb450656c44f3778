#include <chrono>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "legacy/convert.h"

namespace vrx::testing {
namespace {

using std::chrono::seconds;

// Ten seconds of processor time, one more for each whole megabyte, an hour at most.
TEST(LimitsForFile, GrowWithItUpToAnHour) {
  constexpr std::uintmax_t kMegabyte = 1024 * 1024;
  EXPECT_EQ(LimitsForFile(0).processor, seconds(10));
  EXPECT_EQ(LimitsForFile(kMegabyte - 1).processor, seconds(10));
  EXPECT_EQ(LimitsForFile(kMegabyte).processor, seconds(11));
  EXPECT_EQ(LimitsForFile(3590 * kMegabyte - 1).processor, seconds(3599));
  EXPECT_EQ(LimitsForFile(3590 * kMegabyte).processor, seconds(3600));
  EXPECT_EQ(LimitsForFile(3591 * kMegabyte).processor, seconds(3600));
  EXPECT_EQ(LimitsForFile(std::numeric_limits<std::uintmax_t>::max()).processor, seconds(3600));
}

}  // namespace
}  // namespace vrx::testing
