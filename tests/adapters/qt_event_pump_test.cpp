#include "adapters/qt_event_pump.h"

#include <thread>

#include <gtest/gtest.h>

#include "adapters/cpu_meter.h"
#include "adapters/one_event.h"

namespace vrx::testing {
namespace {

using Ms = Milliseconds;

constexpr Ms kForever = std::chrono::minutes{5};

class QtEventPumpTest : public ::testing::Test {
 protected:
  // Pumps until the condition holds; the test's own time limit ends it otherwise.
  template <typename Condition>
  void PumpUntil(Condition condition) {
    while (!condition()) {
      pump.Pump(kForever);
    }
  }

  QtEventPump pump;
};

TEST_F(QtEventPumpTest, LimitOfZeroHandlesWhatIsPending) {
  bool handled = false;
  const OneEvent event(Ms{0}, [&] { handled = true; });
  pump.Pump(Ms{0});
  EXPECT_TRUE(handled);
  pump.Pump(Ms{0});
}

TEST_F(QtEventPumpTest, WaitsForTheLimitWhenNothingHappens) {
  const Ms end = pump.Now() + Ms{100};
  int pumps = 0;
  while (pump.Now() < end) {
    pump.Pump(end - pump.Now());
    ++pumps;
  }
  // A few early returns are allowed; a spin would make thousands.
  EXPECT_LE(pumps, 10);
}

TEST_F(QtEventPumpTest, HandledEventEndsTheWait) {
  bool handled = false;
  const OneEvent event(Ms{20}, [&] { handled = true; });
  PumpUntil([&] { return handled; });
}

TEST_F(QtEventPumpTest, RunsNested) {
  bool outer = false;
  bool inner = false;
  const OneEvent outer_event(Ms{0}, [&] {
    const OneEvent inner_event(Ms{20}, [&] { inner = true; });
    PumpUntil([&] { return inner; });
    outer = true;
  });
  PumpUntil([&] { return outer; });
  EXPECT_TRUE(inner);
}

TEST_F(QtEventPumpTest, TicksWhileItPumpsAndWhileItPumpsNested) {
  int ticks = 0;
  const auto ticker = pump.StartTicker(Ms{5}, [&] { ++ticks; });
  PumpUntil([&] { return ticks >= 3; });
  bool done = false;
  const OneEvent event(Ms{0}, [&] {
    PumpUntil([&] { return ticks >= 6; });
    done = true;
  });
  PumpUntil([&] { return done; });
}

TEST_F(QtEventPumpTest, TicksNoMoreOnceTheHandleIsGone) {
  int ticks = 0;
  auto ticker = pump.StartTicker(Ms{1}, [&] { ++ticks; });
  PumpUntil([&] { return ticks >= 1; });
  ticker.reset();
  const int before = ticks;
  const Ms end = pump.Now() + Ms{50};
  while (pump.Now() < end) {
    pump.Pump(end - pump.Now());
  }
  EXPECT_EQ(ticks, before);
}

TEST_F(QtEventPumpTest, TickMayEndItsOwnTicker) {
  std::unique_ptr<EventPump::Ticker> ticker;
  bool ticked = false;
  ticker = pump.StartTicker(Ms{1}, [&] {
    ticker.reset();
    ticked = true;
  });
  PumpUntil([&] { return ticked; });
}

TEST_F(QtEventPumpTest, CloseEndsAWait) {
  EXPECT_FALSE(pump.Closing());
  std::jthread closer([&] {
    std::this_thread::sleep_for(Ms{30});
    pump.Close();
  });
  PumpUntil([&] { return pump.Closing(); });
}

TEST_F(QtEventPumpTest, WaitingTakesNoCore) {
  const CpuMeter meter;
  const Ms end = pump.Now() + Ms{1000};
  const auto ticker = pump.StartTicker(Ms{200}, [] {});
  while (pump.Now() < end) {
    pump.Pump(end - pump.Now());
  }
  EXPECT_LT(meter.Share(), kWaitingShare);
}

TEST_F(QtEventPumpTest, LookingEveryFiveMillisecondsTakesNoCore) {
  const CpuMeter meter;
  const Ms end = pump.Now() + Ms{1000};
  while (pump.Now() < end) {
    pump.Pump(Ms{5});
  }
  EXPECT_LT(meter.Share(), kWaitingShare);
}

TEST_F(QtEventPumpTest, WaitsAgainOnceItIsReopened) {
  pump.Close();
  EXPECT_TRUE(pump.Closing());
  pump.Reopen();
  EXPECT_FALSE(pump.Closing());
  bool handled = false;
  const OneEvent event(Ms{20}, [&] { handled = true; });
  PumpUntil([&] { return handled; });
}

TEST_F(QtEventPumpTest, ReportsAnEventWhetherAWaitIsUnderWay) {
  EXPECT_FALSE(pump.Pumping());
  bool pumping = false;
  bool handled = false;
  const OneEvent event(Ms{0}, [&] {
    pumping = pump.Pumping();
    handled = true;
  });
  PumpUntil([&] { return handled; });
  EXPECT_TRUE(pumping);
  EXPECT_FALSE(pump.Pumping());
}

}  // namespace
}  // namespace vrx::testing
