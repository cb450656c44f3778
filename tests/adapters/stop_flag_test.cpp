#include "adapters/stop_flag.h"

#include <csignal>

#include <gtest/gtest.h>

namespace vrx::testing {
namespace {

TEST(StopFlag, IsRaisedByASignalInPlaceOfTheEnd) {
  for (const int signal : {SIGINT, SIGTERM}) {
    const StopFlag flag;
    EXPECT_FALSE(flag.Raised());
    std::raise(signal);
    EXPECT_TRUE(flag.Raised());
  }
}

TEST(StopFlag, LeavesTheSignalsAsTheyWereBefore) {
  { const StopFlag flag; }
  EXPECT_EXIT(std::raise(SIGTERM), ::testing::KilledBySignal(SIGTERM), "");
}

}  // namespace
}  // namespace vrx::testing
