#include "simulator/feed_plan.h"

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace vrx::simulator {
namespace {

constexpr std::string_view kDownload =
    "{DATA_IN},K\r\n\r\n[ING]\r\n\r\n1,CORN,0\r\n2,HAY,0\r\n5,MINRAL,1\r\n\r\n"
    "[REC]\r\n\r\n1,STEERS,0,2500,0,CORN,HAY;2000,500\r\n"
    "7,HEIFER,1,1800,120,CORN,MINRAL;1750,50.5\r\n\r\n"
    "[PEN]\r\n\r\n1,PEN001,150\r\n3,NORTH,0\r\n\r\n";

TEST(FeedPlan, IsReadFromADownload) {
  const FeedPlan plan = ReadFeedPlan(kDownload);
  EXPECT_EQ(plan.unit, 'K');
  ASSERT_EQ(plan.recipes.size(), 2U);
  EXPECT_EQ(plan.recipes[1].id, 7);
  EXPECT_EQ(plan.recipes[1].name, "HEIFER");
  ASSERT_EQ(plan.recipes[1].parts.size(), 2U);
  EXPECT_EQ(plan.recipes[1].parts[1].ingredient, 5);
  EXPECT_EQ(plan.recipes[1].parts[1].name, "MINRAL");
  EXPECT_DOUBLE_EQ(plan.recipes[1].parts[1].amount, 50.5);
  EXPECT_TRUE(plan.recipes[1].parts[1].hand_add);
  EXPECT_FALSE(plan.recipes[1].parts[0].hand_add);
}

TEST(FeedPlan, OnlyAOneMeansHandAdd) {
  EXPECT_FALSE(
      ReadFeedPlan("{DATA_IN},L\r\n[ING]\r\n1,CORN,2\r\n[REC]\r\n1,STEERS,0,9,0,CORN;9\r\n")
          .recipes.at(0)
          .parts.at(0)
          .hand_add);
}

TEST(FeedPlan, LeavesOutPensWithoutAFeedAmount) {
  const FeedPlan plan = ReadFeedPlan(kDownload);
  ASSERT_EQ(plan.pens.size(), 1U);
  EXPECT_EQ(plan.pens[0].id, 1);
  EXPECT_EQ(plan.pens[0].feed_amount, 150);
}

TEST(FeedPlan, LeavesOutRecipesWithNothingToWeigh) {
  EXPECT_TRUE(ReadFeedPlan("{DATA_IN},L\r\n\r\n[ING]\r\n\r\n1,CORN,0\r\n\r\n[REC]\r\n\r\n"
                           "1,STEERS,0,0,0,CORN;0\r\n\r\n[PEN]\r\n\r\n\r\n")
                  .recipes.empty());
}

TEST(FeedPlan, RefusesATextOfAnotherKind) {
  EXPECT_THROW(ReadFeedPlan(""), std::invalid_argument);
  EXPECT_THROW(ReadFeedPlan("{BAT/FED},L\r\n"), std::invalid_argument);
  EXPECT_THROW(ReadFeedPlan("{DATA_IN},"), std::invalid_argument);
}

TEST(FeedPlan, RefusesLinesThatAreNotOfTheForm) {
  for (const std::string line :
       {"[ING]\r\n1,CORN", "[ING]\r\n1,CORN,0,0", "[ING]\r\nx,CORN,0", "[REC]\r\n1,STEERS,0,0,0,",
        "[REC]\r\n1,STEERS,0,9,0,CORN;9;9", "[REC]\r\n1,STEERS,0,9,0;9", "[PEN]\r\n1,A,5,5",
        "[REC]\r\n1,STEERS,0,9,0,NONE;9", "[REC]\r\n1,STEERS,0,9,0,CORN;9,9",
        "[REC]\r\n1,STEERS,0,9,0,CORN,CORN;9", "[PEN]\r\n1,A,"}) {
    EXPECT_THROW(ReadFeedPlan("{DATA_IN},L\r\n[ING]\r\n1,CORN,0\r\n" + line + "\r\n"),
                 std::invalid_argument)
        << line;
  }
}

}  // namespace
}  // namespace vrx::simulator
