#include "adapters/stop_flag.h"

#include <csignal>

#include <gtest/gtest.h>

namespace vrx::testing {
namespace {

TEST(StopFlag, IsRaisedByASignalInPlaceOfTheEnd) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
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

TEST(StopFlag, AHangUpThatTheStarterIgnoresStaysIgnored) {
  const auto before = std::signal(SIGHUP, SIG_IGN);
  {
    const StopFlag flag;
    std::raise(SIGHUP);
    EXPECT_FALSE(flag.Raised());
  }
  EXPECT_EQ(std::signal(SIGHUP, before), SIG_IGN);
}

}  // namespace
}  // namespace vrx::testing
