#include "adapters/stop_signals.h"

#include <csignal>
#include <thread>

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
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
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
  std::raise(SIGHUP);
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
  EXPECT_TRUE(LetThrough(SIGHUP));
}

TEST(StopSignals, AHangUpThatTheStarterIgnoresStaysIgnored) {
  const auto before = std::signal(SIGHUP, SIG_IGN);
  int stops = 0;
  {
    QtEventPump pump;
    const StopSignals stop([&stops] { ++stops; });
    std::raise(SIGHUP);
    std::raise(SIGTERM);
    pump.Pump(kPatience);
    EXPECT_EQ(stops, 1);
    std::raise(SIGHUP);
    EXPECT_TRUE(LetThrough(SIGHUP));
  }
  std::signal(SIGHUP, before);
}

TEST(StopSignalBlock, KeepsTheSignalsFromThreadsThatAreStartedLater) {
  const StopSignalBlock block;
  bool let_through = true;
  std::thread([&] {
    let_through = LetThrough(SIGINT) || LetThrough(SIGTERM) || LetThrough(SIGHUP);
  }).join();
  EXPECT_FALSE(let_through);
}

}  // namespace
}  // namespace vrx::testing
