#include "adapters/signals.h"

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

TEST(InterruptFlag, IsRaisedByASignalInsteadOfTheEnd) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const InterruptFlag flag;
    EXPECT_FALSE(flag.Raised());
    std::raise(signal);
    EXPECT_TRUE(flag.Raised());
  }
}

TEST(InterruptFlag, LeavesTheSignalsAsTheyWereBefore) {
  { const InterruptFlag flag; }
  EXPECT_EXIT(std::raise(SIGTERM), ::testing::KilledBySignal(SIGTERM), "");
}

TEST(InterruptFlag, AHangUpThatTheStarterIgnoresStaysIgnored) {
  const auto before = std::signal(SIGHUP, SIG_IGN);
  {
    const InterruptFlag flag;
    std::raise(SIGHUP);
    EXPECT_FALSE(flag.Raised());
  }
  EXPECT_EQ(std::signal(SIGHUP, before), SIG_IGN);
}

TEST(SignalHandler, EachOfThemEndsAWait) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    QtEventPump pump;
    const SignalHandler stop([&pump] { pump.Close(); });
    const auto ticker = pump.StartTicker(Milliseconds{10}, [signal] { std::raise(signal); });
    const Milliseconds end = pump.Now() + kPatience;
    while (!pump.Closing() && pump.Now() < end) {
      pump.Pump(kPatience);
    }
    EXPECT_TRUE(pump.Closing());
  }
}

TEST(SignalHandler, ArriveInsideAWaitOnly) {
  int stops = 0;
  QtEventPump pump;
  const SignalHandler stop([&stops] { ++stops; });
  std::raise(SIGTERM);
  std::raise(SIGINT);
  std::raise(SIGHUP);
  EXPECT_EQ(stops, 0);
  pump.Pump(kPatience);
  EXPECT_EQ(stops, 1);
}

TEST(SignalHandler, AnUnhandledOneIsDropped) {
  {
    const SignalHandler stop([] {});
    std::raise(SIGTERM);
  }
  EXPECT_TRUE(LetThrough(SIGTERM));
  EXPECT_TRUE(LetThrough(SIGINT));
  EXPECT_TRUE(LetThrough(SIGHUP));
}

TEST(SignalHandler, AHangUpThatTheStarterIgnoresStaysIgnored) {
  const auto before = std::signal(SIGHUP, SIG_IGN);
  int stops = 0;
  {
    QtEventPump pump;
    const SignalHandler stop([&stops] { ++stops; });
    std::raise(SIGHUP);
    std::raise(SIGTERM);
    pump.Pump(kPatience);
    EXPECT_EQ(stops, 1);
    std::raise(SIGHUP);
    EXPECT_TRUE(LetThrough(SIGHUP));
  }
  std::signal(SIGHUP, before);
}

TEST(SignalBlock, KeepsTheSignalsFromThreadsThatAreStartedLater) {
  const SignalBlock block;
  bool let_through = true;
  std::thread([&] {
    let_through = LetThrough(SIGINT) || LetThrough(SIGTERM) || LetThrough(SIGHUP);
  }).join();
  EXPECT_FALSE(let_through);
}

}  // namespace
}  // namespace vrx::testing
