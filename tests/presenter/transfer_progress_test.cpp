#include "presenter/transfer_progress.h"

#include <string>

#include <gtest/gtest.h>

namespace vrx::testing {
namespace {

constexpr TransferTexts kUp{
    .begins = "Up....  ", .percent = "%1% of the memory", .time_left = "at most %1 left"};
constexpr TransferTexts kDown{.begins = "Down....  ", .percent = "%1%", .time_left = "%1 left"};

TEST(TransferProgress, HasBytesShareAndTimeLeftAtTheMeasuredPace) {
  TransferProgress progress(kUp, 65536);
  EXPECT_EQ(progress.Text(0, Milliseconds{0}), "Up....  0 bytes");
  EXPECT_EQ(progress.Text(960, Milliseconds{500}), "Up....  960 bytes, 1% of the memory");
  EXPECT_EQ(progress.Text(1920, Milliseconds{1000}),
            "Up....  1920 bytes, 2% of the memory, at most 34 s left");
  EXPECT_EQ(progress.Text(38400, Milliseconds{20000}),
            "Up....  38400 bytes, 58% of the memory, at most 15 s left");
}

// 1 s of wake time and an earlier reply of 2 bytes come before the first byte.
TEST(TransferProgress, MeasuresThePaceFromTheFirstByteOn) {
  TransferProgress progress(kUp, 65536);
  EXPECT_EQ(progress.Text(2, Milliseconds{500}), "Up....  2 bytes");
  EXPECT_EQ(progress.Text(2, Milliseconds{1000}), "Up....  2 bytes");
  EXPECT_EQ(progress.Text(962, Milliseconds{1500}), "Up....  962 bytes, 1% of the memory");
  EXPECT_EQ(progress.Text(1922, Milliseconds{2000}),
            "Up....  1922 bytes, 2% of the memory, at most 34 s left");
}

TEST(TransferProgress, StartsAnewWhenTheCountDoes) {
  TransferProgress progress(kUp, 1000);
  EXPECT_EQ(progress.Text(500, Milliseconds{0}), "Up....  500 bytes");
  EXPECT_EQ(progress.Text(10, Milliseconds{9000}), "Up....  10 bytes");
  EXPECT_EQ(progress.Text(110, Milliseconds{10000}),
            "Up....  110 bytes, 11% of the memory, at most 9 s left");
}

TEST(TransferProgress, ShowsMinutes) {
  TransferProgress progress(kDown, 200'000);
  EXPECT_EQ(progress.Text(0, Milliseconds{0}), "Down....  0 bytes");
  EXPECT_EQ(progress.Text(2000, Milliseconds{1000}), "Down....  2000 bytes, 1%, 1 min 39 s left");
  EXPECT_EQ(progress.Text(80'000, Milliseconds{40'000}),
            "Down....  80000 bytes, 40%, 1 min 0 s left");
  EXPECT_EQ(progress.Text(82'000, Milliseconds{41'000}), "Down....  82000 bytes, 41%, 59 s left");
}

TEST(TransferProgress, NeverExceedsTheWholeAndNeverDividesByNothing) {
  TransferProgress progress(kDown, 1000);
  EXPECT_EQ(progress.Text(0, Milliseconds{0}), "Down....  0 bytes");
  EXPECT_EQ(progress.Text(1000, Milliseconds{2000}), "Down....  1000 bytes, 100%");
  EXPECT_EQ(progress.Text(1500, Milliseconds{3000}), "Down....  1500 bytes, 100%");
  TransferProgress empty(kDown, 0);
  EXPECT_EQ(empty.Text(0, Milliseconds{0}), "Down....  0 bytes");
  EXPECT_EQ(empty.Text(5, Milliseconds{2000}), "Down....  5 bytes");
}

}  // namespace
}  // namespace vrx::testing
