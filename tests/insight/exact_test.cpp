#include "insight/exact.h"

#include <cmath>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

namespace vrx::testing {
namespace {

TEST(ExactNumbers, AreTheShortestDecimalTextOfADouble) {
  EXPECT_EQ(Exact::Of(0.1) + Exact::Of(0.2), Exact::Of(0.3));
  EXPECT_EQ(Exact::Of(0.30000000000000004) - Exact::Of(0.3), Exact::Of(4e-17));
  EXPECT_EQ(Exact::Of(1e22) + Exact::Of(-1e22), Exact());
  EXPECT_EQ(Exact::Of(-0.0), Exact());
}

TEST(ExactNumbers, AreReadFromDecimalTexts) {
  EXPECT_EQ(Exact::OfText("0.1"), Exact::Of(0.1));
  EXPECT_EQ(Exact::OfText("-10000000000000000000.5"), Exact::Of(-1e19) - Exact::Of(0.5));
  EXPECT_EQ(Exact::OfText("1e-7"), Exact::Of(1e-7));
  EXPECT_EQ(Exact::OfText("1.50e+22"), Exact::Of(1.5e22));
  EXPECT_EQ(Exact::OfText("0.000"), Exact());
  EXPECT_EQ(Exact::OfText("5."), Exact::Whole(5));
  EXPECT_EQ(Exact::OfText(".5"), Exact::Of(0.5));
  for (const char* const text :
       {"", "-", ".", "1,5", "NaN", "Infinity", "1e", "0x1", "1e99999", " 1", "+1"}) {
    EXPECT_FALSE(Exact::OfText(text)) << text;
  }
}

TEST(ExactNumbers, AddWithoutAnEndOfTheirRange) {
  const double most = std::numeric_limits<double>::max();
  const Exact sum = Exact::Of(most) + Exact::Of(5e-324) - Exact::Of(most);
  EXPECT_EQ(sum, Exact::Of(5e-324));
  // The largest count of millionths, and one more.
  const Exact large = Exact::Of(9223372036854.775) + Exact::Of(0.000807);
  ASSERT_NE(large.Millionths(), nullptr);
  EXPECT_EQ(*large.Millionths(), std::numeric_limits<std::int64_t>::max());
  const Exact larger = large + Exact::Of(0.000001);
  EXPECT_EQ(larger.Millionths(), nullptr);
  EXPECT_GT(larger, large);
  EXPECT_EQ(larger - Exact::Of(0.000001), large);
  EXPECT_EQ(-larger + large, Exact::Of(-0.000001));
}

TEST(ExactNumbers, MultiplyExactly) {
  EXPECT_EQ(Exact::Of(1.5) * Exact::Of(-0.2), Exact::Of(-0.3));
  EXPECT_EQ(Exact::Of(0.000001) * Exact::Of(0.000001), Exact::Of(1e-12));
  const Exact third = Exact::Of(0.3333333333333333);
  EXPECT_EQ((third * third).ToDouble(), 0.11111111111111108888888888888889);
  EXPECT_EQ(Exact::Whole(std::numeric_limits<std::int64_t>::min()).ToDouble(), -0x1p63);
}

TEST(ExactNumbers, CompareByValue) {
  EXPECT_LT(Exact::Of(-1e300), Exact::Of(-1));
  EXPECT_LT(Exact::Of(-1e300), Exact::Of(1e-300));
  EXPECT_LT(Exact::Of(1e-300), Exact::Of(1e-299));
  EXPECT_GT(Exact::Of(-1e-300), Exact::Of(-1e-299));
  EXPECT_EQ(Exact::Of(-2.5).Abs(), Exact::Of(2.5));
  EXPECT_EQ(Exact::Of(-1e300).Sign(), -1);
}

TEST(ExactNumbers, DivideToTheNearestDouble) {
  EXPECT_EQ(Quotient(Exact::Whole(1), Exact::Whole(3)), 1.0 / 3);
  EXPECT_EQ(Quotient(Exact::Whole(-2), Exact::Whole(3)), -2.0 / 3);
  EXPECT_EQ(Quotient(Exact(), Exact::Whole(-3)), 0);
  EXPECT_FALSE(std::signbit(Quotient(Exact(), Exact::Whole(-3))));
  // 2^53 + 1 lies between two doubles and goes to the even one; a little more goes up.
  const Exact between = Exact::Whole(9007199254740993);
  EXPECT_EQ(between.ToDouble(), 9007199254740992.0);
  EXPECT_EQ((between + Exact::Of(1e-30)).ToDouble(), 9007199254740994.0);
  EXPECT_EQ(Quotient(Exact::Of(1e300) * Exact::Of(1e300), Exact::Of(-1e300)), -1e300);
}

}  // namespace
}  // namespace vrx::testing
