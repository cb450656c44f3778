#include "adapters/stop_signals.h"

#include <csignal>

#include <gtest/gtest.h>

#include "adapters/qt_event_pump.h"

namespace vrx::testing {
namespace {

constexpr Milliseconds kPatience{10'000};

bool LetThrough(int signal) {
  sigset_t mask{};
  pthread_sigmask(SIG_SETMASK, nullptr, &mask);
  return sigismember(&mask, signal) == 0;
}

TEST(StopSignals, EachOfThemEndsAWait) {
  for (const int signal : {SIGINT, SIGTERM}) {
    QtEventPump pump;
    const StopSignals stop([&pump] { pump.Close(); });
    const auto ticker = pump.StartTicker(Milliseconds{10}, [signal] { std::raise(signal); });
    const Milliseconds end = pump.Now() + kPatience;
    while (!pump.Closing() && pump.Now() < end) {
      pump.Pump(kPatience);
    }
    EXPECT_TRUE(pump.Closing());
  }
}

TEST(StopSignals, ArriveInsideAWaitOnly) {
  int stops = 0;
  QtEventPump pump;
  const StopSignals stop([&stops] { ++stops; });
  std::raise(SIGTERM);
  std::raise(SIGINT);
  EXPECT_EQ(stops, 0);
  pump.Pump(kPatience);
  EXPECT_EQ(stops, 1);
}

TEST(StopSignals, OneThatNobodyTookDoesNoHarmLater) {
  {
    const StopSignals stop([] {});
    std::raise(SIGTERM);
  }
  EXPECT_TRUE(LetThrough(SIGTERM));
  EXPECT_TRUE(LetThrough(SIGINT));
}

}  // namespace
}  // namespace vrx::testing
