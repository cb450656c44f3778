#include <gtest/gtest.h>

#include "presenter/command_states.h"
#include "support/manual_pump.h"

namespace vrx::testing {
namespace {

using std::chrono::milliseconds;

class GeneralDelayTest : public ::testing::Test {
 protected:
  ManualPump pump_;
  GeneralDelay delay_{pump_};
};

TEST_F(GeneralDelayTest, WaitsForItsInterval) {
  EXPECT_TRUE(delay_.Wait(milliseconds(500)));
  EXPECT_EQ(pump_.Now(), milliseconds(500));
}

TEST_F(GeneralDelayTest, LetsEventsRunMeanwhile) {
  int events = 0;
  pump_.After(milliseconds(10), [&] { ++events; });
  pump_.After(milliseconds(20), [&] { ++events; });
  EXPECT_TRUE(delay_.Wait(milliseconds(50)));
  EXPECT_EQ(events, 2);
  EXPECT_EQ(pump_.Now(), milliseconds(50));
}

TEST_F(GeneralDelayTest, AShorterDelayFromAnEventEndsTheFirstOneToo) {
  pump_.After(milliseconds(100), [&] { EXPECT_TRUE(delay_.Wait(milliseconds(50))); });
  EXPECT_TRUE(delay_.Wait(milliseconds(1000)));
  EXPECT_EQ(pump_.Now(), milliseconds(150));
}

TEST_F(GeneralDelayTest, ALongerDelayFromAnEventHoldsTheFirstOneToo) {
  pump_.After(milliseconds(40), [&] { EXPECT_TRUE(delay_.Wait(milliseconds(1000))); });
  EXPECT_TRUE(delay_.Wait(milliseconds(50)));
  EXPECT_EQ(pump_.Now(), milliseconds(1040));
}

TEST_F(GeneralDelayTest, TheProgramsClosingEndsItAtOnce) {
  pump_.After(milliseconds(100), [&] { pump_.closing = true; });
  EXPECT_FALSE(delay_.Wait(milliseconds(1000)));
  EXPECT_EQ(pump_.Now(), milliseconds(100));
  EXPECT_FALSE(delay_.Wait(milliseconds(1000)));
  EXPECT_EQ(pump_.Now(), milliseconds(100));
}

TEST_F(GeneralDelayTest, ADelayOfNothingEndsWithoutWaiting) {
  EXPECT_TRUE(delay_.Wait(milliseconds(0)));
  EXPECT_EQ(pump_.pumps, 0);
}

}  // namespace
}  // namespace vrx::testing
