#include "make_manual/pages.h"

#include <random>
#include <vector>

#include <gmock/gmock.h>

#include "base/error.h"

namespace vrx::testing {
namespace {

using manual::Box;
using manual::BreakPages;
using manual::Page;
using manual::PlaceOnPage;
using ::testing::ElementsAre;
using ::testing::FieldsAre;

constexpr double kHeight = 100;

std::vector<Page> PagesOf(const std::vector<Box>& boxes) { return BreakPages(boxes, kHeight); }

TEST(BreakPages, FillsAPageBeforeTheNext) {
  EXPECT_THAT(
      PagesOf({{.top = 0, .bottom = 40}, {.top = 40, .bottom = 100}, {.top = 100, .bottom = 101}}),
      ElementsAre(FieldsAre(0, 2), FieldsAre(2, 3)));
}

TEST(BreakPages, LeavesTheBlankAboveABoxOutAtTheTopOfAPage) {
  EXPECT_THAT(
      PagesOf({{.top = 0, .bottom = 50}, {.top = 90, .bottom = 110}, {.top = 150, .bottom = 190}}),
      ElementsAre(FieldsAre(0, 1), FieldsAre(1, 3)));
}

TEST(BreakPages, TakesAHeadingToThePageOfWhatFollowsIt) {
  EXPECT_THAT(PagesOf({{.top = 0, .bottom = 80},
                       {.top = 80, .bottom = 90, .keeps_next = true},
                       {.top = 90, .bottom = 110}}),
              ElementsAre(FieldsAre(0, 1), FieldsAre(1, 3)));
}

TEST(BreakPages, BeginsAPageWithATitle) {
  EXPECT_THAT(PagesOf({{.top = 0, .bottom = 10}, {.top = 10, .bottom = 20, .starts_page = true}}),
              ElementsAre(FieldsAre(0, 1), FieldsAre(1, 2)));
}

TEST(BreakPages, LeavesRoomForTheHeadOfATableThatGoesOn) {
  const std::vector<Box> boxes = {{.top = 0, .bottom = 75},
                                  {.top = 75, .bottom = 90, .keeps_next = true},
                                  {.top = 90, .bottom = 100},
                                  {.top = 100, .bottom = 130, .head = 1},
                                  {.top = 130, .bottom = 185, .head = 1},
                                  {.top = 185, .bottom = 186, .head = 1}};
  EXPECT_THAT(PagesOf(boxes), ElementsAre(FieldsAre(0, 3), FieldsAre(3, 5), FieldsAre(5, 6)));
  EXPECT_EQ(PlaceOnPage(boxes, 0, 2), 90);
  EXPECT_EQ(PlaceOnPage(boxes, 3, 3), 15);
  EXPECT_EQ(PlaceOnPage(boxes, 3, 4), 45);
}

TEST(BreakPages, RefusesWhatBelongsTogetherAndIsHigherThanAPage) {
  EXPECT_THROW(PagesOf({{.top = 0, .bottom = 101}}), Error);
  EXPECT_THROW(PagesOf({{.top = 0, .bottom = 60, .keeps_next = true}, {.top = 60, .bottom = 120}}),
               Error);
  EXPECT_THROW(PagesOf({{.top = 0, .bottom = 15}, {.top = 15, .bottom = 110, .head = 0}}), Error);
  EXPECT_NO_THROW(PagesOf({{.top = 50, .bottom = 150}}));
}

std::vector<Box> RandomBoxes(std::mt19937& random) {
  std::uniform_int_distribution<int> length(1, 30);
  std::vector<Box> boxes(200);
  double top = 0;
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    boxes[i].top = top + length(random);
    boxes[i].bottom = boxes[i].top + length(random);
    top = boxes[i].bottom;
    boxes[i].keeps_next = i % 3 == 0 && i % 40 != 39 && length(random) < 15;
    boxes[i].starts_page = i % 40 == 0;
  }
  return boxes;
}

TEST(BreakPages, KeepsOrderRulesAndTheHeightOfThePageForAnyBoxes) {
  std::mt19937 random(2260);
  for (int round = 0; round < 50; ++round) {
    const std::vector<Box> boxes = RandomBoxes(random);
    std::size_t next = 0;
    for (const Page& page : PagesOf(boxes)) {
      ASSERT_EQ(page.first, next);
      ASSERT_GT(page.end, page.first);
      next = page.end;
      ASSERT_LE(boxes[next - 1].bottom - boxes[page.first].top, kHeight);
      ASSERT_FALSE(boxes[next - 1].keeps_next);
      for (std::size_t i = page.first + 1; i < next; ++i) {
        ASSERT_FALSE(boxes[i].starts_page);
      }
    }
    ASSERT_EQ(next, boxes.size());
  }
}

}  // namespace
}  // namespace vrx::testing
