#include "simulator/transmitter.h"

#include <chrono>
#include <optional>
#include <random>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace vrx::simulator {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using std::chrono::seconds;

const Time kStart{std::chrono::hours(5)};

Transmission Reply(std::string bytes) { return {{{std::move(bytes)}}, false}; }
Transmission Dump(std::string bytes) { return {{{std::move(bytes)}}, true}; }

// Takes everything that is due.
std::string Take(Transmitter& transmitter, Time now) {
  std::string bytes;
  for (auto due = transmitter.Due(now); !due.empty(); due = transmitter.Due(now)) {
    bytes += due;
    transmitter.Sent(due.size(), now);
  }
  return bytes;
}

struct Course {
  std::string bytes;
  Duration time{0};
  int wakes = 0;
  std::size_t largest = 0;
};

// Wakes at every portion, delayed by `late`, until nothing is queued or nothing is due.
template <typename Late>
Course Play(Transmitter& transmitter, Late late) {
  Course course;
  Time now = kStart;
  while (const auto next = transmitter.NextPortion()) {
    now = std::max(now, *next) + late();
    const std::string bytes = Take(transmitter, now);
    if (bytes.empty()) {
      break;
    }
    course.bytes += bytes;
    course.largest = std::max(course.largest, bytes.size());
    ++course.wakes;
  }
  course.time = now - kStart;
  return course;
}

Course PlayOnTime(Transmitter& transmitter) {
  return Play(transmitter, [] { return Duration{0}; });
}

std::string Bytes(std::size_t count) {
  std::mt19937 random(1);
  std::string bytes(count, '\0');
  for (char& byte : bytes) {
    byte = static_cast<char>(random());
  }
  return bytes;
}

TEST(Transmitter, SendsTenBitsAByte) {
  Transmitter transmitter(19200);
  const std::string bytes = Bytes(65000);
  transmitter.Start(Dump(bytes), kStart);
  const Course course = PlayOnTime(transmitter);
  EXPECT_EQ(course.bytes, bytes);
  EXPECT_EQ(std::chrono::duration_cast<microseconds>(course.time), microseconds(33'854'166));
}

TEST(Transmitter, HoldsTheWholePaceWhenItWakesLate) {
  Transmitter transmitter(19200);
  const std::string bytes = Bytes(65000);
  transmitter.Start(Dump(bytes), kStart);
  std::mt19937 random(2);
  const Course course = Play(transmitter, [&] { return microseconds(random() % 5000); });
  EXPECT_EQ(course.bytes, bytes);
  EXPECT_GE(course.time, microseconds(33'854'166));
  EXPECT_LT(course.time, microseconds(33'854'167 + 5000)) << "lateness must not add up";
}

TEST(Transmitter, WakesForSmallPortionsAndNeverInVain) {
  Transmitter transmitter(19200);
  transmitter.Start(Dump(Bytes(65000)), kStart);
  const Course course = PlayOnTime(transmitter);
  EXPECT_EQ(course.largest, 15U) << "about 8 ms";
  EXPECT_EQ(course.wakes, (65000 + 14) / 15);
}

TEST(Transmitter, IsOnTimeAtEveryPace) {
  for (const std::uint32_t baud : {1U, 110U, 1200U, 9600U, 57600U, 115200U, 4'000'000U}) {
    Transmitter transmitter(baud);
    const std::string bytes = Bytes(1000);
    transmitter.Start(Dump(bytes), kStart);
    const Course course = PlayOnTime(transmitter);
    EXPECT_EQ(course.bytes, bytes);
    const double exact = 10'000.0 / baud;
    EXPECT_NEAR(std::chrono::duration<double>(course.time).count(), exact, 1e-8) << baud;
    EXPECT_LE(course.wakes, 1000) << baud;
  }
}

TEST(Transmitter, LetsNoByteOutBeforeItsTime) {
  Transmitter transmitter(10'000);  // a byte in each millisecond
  transmitter.Start(Reply("abc"), kStart);
  EXPECT_EQ(Take(transmitter, kStart), "");
  EXPECT_EQ(Take(transmitter, kStart + milliseconds(1) - nanoseconds(1)), "");
  EXPECT_EQ(Take(transmitter, kStart + milliseconds(1)), "a");
  EXPECT_EQ(Take(transmitter, kStart + milliseconds(3)), "bc");
  EXPECT_FALSE(transmitter.NextPortion());
}

TEST(Transmitter, GivesEverythingAtOnceWithoutPace) {
  Transmitter transmitter(0);
  const std::string bytes = Bytes(65000);
  transmitter.Start(Dump(bytes), kStart);
  EXPECT_EQ(transmitter.NextPortion(), kStart);
  EXPECT_EQ(Take(transmitter, kStart), bytes);
  EXPECT_FALSE(transmitter.NextPortion());
}

TEST(Transmitter, BeginsAnewAfterIdleTime) {
  Transmitter transmitter(10'000);
  transmitter.Start(Reply("a"), kStart);
  Take(transmitter, kStart + milliseconds(1));
  transmitter.Start(Reply("b"), kStart + seconds(9));
  EXPECT_EQ(transmitter.NextPortion(), kStart + seconds(9) + milliseconds(1));
}

TEST(Transmitter, QueuesAfterAnAcknowledgement) {
  Transmitter transmitter(10'000);
  EXPECT_FALSE(transmitter.Start(Reply("ab"), kStart));
  EXPECT_FALSE(transmitter.Start(Reply("cd"), kStart));
  EXPECT_EQ(Take(transmitter, kStart + milliseconds(3)), "abc");
  EXPECT_EQ(Take(transmitter, kStart + milliseconds(4)), "d");
}

TEST(Transmitter, KeepsItsScheduleWhenMoreIsQueued) {
  Transmitter transmitter(10'000);
  transmitter.Start(Reply("ab"), kStart);
  EXPECT_EQ(Take(transmitter, kStart + milliseconds(1)), "a");
  transmitter.Start(Reply("cd"), kStart + microseconds(1500));
  EXPECT_EQ(Take(transmitter, kStart + milliseconds(2)), "b");
  EXPECT_EQ(Take(transmitter, kStart + milliseconds(3)), "c");
}

TEST(Transmitter, TakesThePlaceOfADump) {
  Transmitter transmitter(10'000);
  transmitter.Start(Dump("0123456789"), kStart);
  EXPECT_EQ(Take(transmitter, kStart + milliseconds(4)), "0123");
  EXPECT_TRUE(transmitter.Start(Reply("ab"), kStart + milliseconds(4)));
  EXPECT_EQ(Take(transmitter, kStart + milliseconds(5)), "a");
  EXPECT_EQ(Take(transmitter, kStart + milliseconds(100)), "b");
}

TEST(Transmitter, KeepsAnAcknowledgementBeforeADumpThatIsCut) {
  Transmitter transmitter(0);
  transmitter.Start(Reply("ab"), kStart);
  transmitter.Start(Dump("0123"), kStart);
  EXPECT_TRUE(transmitter.Start(Reply("cd"), kStart));
  EXPECT_EQ(Take(transmitter, kStart), "abcd");
}

TEST(Transmitter, AnEmptyTransmissionStillEndsADump) {
  Transmitter transmitter(19200);
  transmitter.Start(Dump("0123"), kStart);
  EXPECT_TRUE(transmitter.Start({}, kStart));
  EXPECT_FALSE(transmitter.NextPortion());
}

TEST(Transmitter, GivesWayWithoutASuccessor) {
  Transmitter transmitter(10'000);
  transmitter.Start(Reply("ab"), kStart);
  transmitter.Start(Dump("0123"), kStart);
  EXPECT_TRUE(transmitter.GiveWay(kStart));
  EXPECT_FALSE(transmitter.GiveWay(kStart));
  EXPECT_EQ(Take(transmitter, kStart + seconds(1)), "ab");
}

TEST(Transmitter, CutsNothingWhenTheDumpIsOut) {
  Transmitter transmitter(0);
  transmitter.Start(Dump("0123"), kStart);
  Take(transmitter, kStart);
  EXPECT_FALSE(transmitter.Start(Reply("ab"), kStart));
}

TEST(Transmitter, PausesBeforeASegment) {
  for (const std::uint32_t baud : {0U, 10'000U}) {
    const Duration byte = baud == 0 ? Duration{0} : Duration{milliseconds(1)};
    Transmitter transmitter(baud);
    transmitter.Start({{{"ab"}, {"cd", seconds(2)}}, true}, kStart);
    EXPECT_EQ(Take(transmitter, kStart + 2 * byte), "ab");
    EXPECT_EQ(Take(transmitter, kStart + seconds(2) - nanoseconds(1)), "");
    EXPECT_EQ(transmitter.NextPortion(), kStart + seconds(2) + 4 * byte);
    EXPECT_EQ(Take(transmitter, kStart + seconds(2) + 4 * byte), "cd");
  }
}

TEST(Transmitter, PausesAlsoWhenTheFirstHalfIsEmpty) {
  Transmitter transmitter(0);
  transmitter.Start({{{""}, {"a", seconds(2)}}, true}, kStart);
  EXPECT_EQ(Take(transmitter, kStart + seconds(1)), "");
  EXPECT_EQ(transmitter.NextPortion(), kStart + seconds(2));
  EXPECT_EQ(Take(transmitter, kStart + seconds(2)), "a");
}

TEST(Transmitter, SendsNothingBetweenXoffAndXonAndCatchesNothingUp) {
  Transmitter transmitter(10'000);
  transmitter.Start(Dump("0123456789"), kStart);
  EXPECT_EQ(Take(transmitter, kStart + milliseconds(2)), "01");
  transmitter.HoldForFlowControl(true, kStart + milliseconds(2));
  EXPECT_EQ(Take(transmitter, kStart + seconds(5)), "");
  EXPECT_FALSE(transmitter.NextPortion()) << "nothing to wake for";
  transmitter.HoldForFlowControl(false, kStart + seconds(5));
  EXPECT_EQ(Take(transmitter, kStart + seconds(5)), "");
  EXPECT_EQ(Take(transmitter, kStart + seconds(5) + milliseconds(3)), "234");
}

TEST(Transmitter, GoesOnOnlyWhenNoHoldIsLeft) {
  Transmitter transmitter(0);
  transmitter.Start(Dump("0123"), kStart);
  transmitter.HoldForLine(true, kStart);
  transmitter.HoldForFlowControl(true, kStart);
  transmitter.HoldForLine(false, kStart);
  EXPECT_EQ(Take(transmitter, kStart), "");
  transmitter.HoldForFlowControl(false, kStart);
  EXPECT_EQ(Take(transmitter, kStart), "0123");
}

TEST(Transmitter, XonWithoutXoffChangesNothing) {
  Transmitter transmitter(10'000);
  transmitter.Start(Dump("0123"), kStart);
  transmitter.HoldForFlowControl(false, kStart + milliseconds(2));
  EXPECT_EQ(Take(transmitter, kStart + milliseconds(2)), "01");
}

TEST(Transmitter, AHoldDoesNotShortenAPause) {
  Transmitter transmitter(0);
  transmitter.Start({{{"a"}, {"b", seconds(2)}}, true}, kStart);
  EXPECT_EQ(Take(transmitter, kStart), "a");
  transmitter.HoldForFlowControl(true, kStart);
  transmitter.HoldForFlowControl(false, kStart + seconds(1));
  EXPECT_EQ(transmitter.NextPortion(), kStart + seconds(2));
}

}  // namespace
}  // namespace vrx::simulator
