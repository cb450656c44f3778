#include "make_manual/pages.h"

#include <algorithm>
#include <random>
#include <utility>

#include <gmock/gmock.h>

#include "base/error.h"

namespace vrx::testing {
namespace {

using manual::Box;
using manual::BreakPages;
using manual::Page;
using manual::RunningHead;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr double kHeight = 100;

std::vector<double> TopsOf(const Page& page) {
  std::vector<double> tops;
  for (const manual::PlacedDrawing& placed : page.drawings) {
    tops.push_back(placed.top);
  }
  return tops;
}

TEST(BreakPages, FillsAPageAheadOfTheNext) {
  const auto pages = BreakPages({{.height = 40}, {.height = 60}, {.height = 1}}, kHeight);
  ASSERT_EQ(pages.size(), 2U);
  EXPECT_THAT(TopsOf(pages[0]), ElementsAre(0, 40));
  EXPECT_THAT(TopsOf(pages[1]), ElementsAre(0));
}

TEST(BreakPages, LeavesTheBlankAboveABoxOutAtTheTopOfAPage) {
  const auto pages = BreakPages(
      {{.before = 20, .height = 50}, {.before = 20, .height = 30}, {.before = 20, .height = 30}},
      kHeight);
  ASSERT_EQ(pages.size(), 2U);
  EXPECT_THAT(TopsOf(pages[0]), ElementsAre(0, 70));
  EXPECT_THAT(TopsOf(pages[1]), ElementsAre(0));
}

TEST(BreakPages, TakesAHeadingToThePageOfWhatFollowsIt) {
  const auto pages = BreakPages(
      {{.height = 80}, {.height = 10, .keeps_next = true, .heading = 4}, {.height = 20}}, kHeight);
  ASSERT_EQ(pages.size(), 2U);
  EXPECT_THAT(pages[0].headings, IsEmpty());
  EXPECT_THAT(pages[1].headings, ElementsAre(4));
  EXPECT_THAT(TopsOf(pages[1]), ElementsAre(0, 10));
}

TEST(BreakPages, RepeatsTheHeadOfATableWhereItGoesOn) {
  const auto head = std::make_shared<const RunningHead>(RunningHead{.height = 15, .draw = {}});
  const auto pages =
      BreakPages({{.height = 90}, {.height = 30, .running_head = head}, {.height = 5}}, kHeight);
  ASSERT_EQ(pages.size(), 2U);
  EXPECT_THAT(TopsOf(pages[1]), ElementsAre(0, 15, 45));
}

TEST(BreakPages, RefusesWhatBelongsTogetherAndIsHigherThanAPage) {
  EXPECT_THROW(BreakPages({{.height = 101}}, kHeight), Error);
  EXPECT_THROW(BreakPages({{.height = 60, .keeps_next = true}, {.height = 60}}, kHeight), Error);
  EXPECT_NO_THROW(BreakPages({{.before = 50, .height = 100}}, kHeight));
}

std::vector<Box> RandomBoxes(std::mt19937& random) {
  std::uniform_int_distribution<int> length(1, 30);
  std::vector<Box> boxes(200);
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    boxes[i].before = length(random);
    boxes[i].height = length(random);
    boxes[i].heading = static_cast<int>(i);  // tells the boxes apart
    boxes[i].keeps_next = i % 3 == 0 && length(random) < 15;
  }
  return boxes;
}

TEST(BreakPages, KeepsOrderRulesAndTheHeightOfThePageForAnyBoxes) {
  std::mt19937 random(2260);
  for (int round = 0; round < 50; ++round) {
    const std::vector<Box> boxes = RandomBoxes(random);
    std::size_t next = 0;
    for (const Page& page : BreakPages(boxes, kHeight)) {
      ASSERT_FALSE(page.headings.empty());
      for (std::size_t i = 0; i < page.headings.size(); ++i, ++next) {
        ASSERT_EQ(page.headings[i], static_cast<int>(next));
        ASSERT_LE(page.drawings[i].top + boxes[next].height, kHeight);
      }
      ASSERT_FALSE(boxes[next - 1].keeps_next);
    }
    ASSERT_EQ(next, boxes.size());
  }
}

}  // namespace
}  // namespace vrx::testing
