#include "history/difference.h"

#include <limits>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <gtest/gtest.h>

namespace vrx::testing {
namespace {

std::string Difference(double target, double actual) {
  return DifferenceText({.target = target, .actual = actual});
}
std::string Percent(double target, double actual) {
  return DifferencePercentText({.target = target, .actual = actual});
}
bool Beyond(double target, double actual, double tolerance) {
  return IsBeyond({.target = target, .actual = actual}, tolerance);
}

TEST(DifferenceText, IsTheActualWeightLessTheTargetWithItsSign) {
  EXPECT_EQ(Difference(600, 602.5), "+2.5");
  EXPECT_EQ(Difference(1000, 980), "-20");
  EXPECT_EQ(Difference(0, 810.5), "+810.5");
  EXPECT_EQ(Difference(300, 0), "-300");
  EXPECT_EQ(Difference(1000, 1010), "+10");
}

TEST(DifferenceText, OfEqualWeightsHasNoSign) {
  EXPECT_EQ(Difference(500, 500), "0");
  EXPECT_EQ(Difference(0, -0.0), "0");
  EXPECT_EQ(Difference(500, 499.9998), "0");
}

TEST(DifferenceText, OfDecimalsIsDecimal) {
  EXPECT_EQ(Difference(600.3, 602.1), "+1.8");
  EXPECT_EQ(Difference(100000.1, 100000), "-0.1");
  EXPECT_EQ(Difference(0.3, 0.1), "-0.2");
}

TEST(DifferenceText, IsRoundedOnceHalvesAwayFromZero) {
  EXPECT_EQ(Difference(100, 100.0005), "+0.001");
  EXPECT_EQ(Difference(100, 99.9995), "-0.001");
  EXPECT_EQ(Difference(100, 100.00049), "0");
}

TEST(DifferenceText, OfAMissingWeightIsEmpty) {
  EXPECT_EQ(DifferenceText({.target = 500, .actual = {}}), "");
  EXPECT_EQ(DifferenceText({.target = {}, .actual = 500}), "");
  EXPECT_EQ(DifferenceText({}), "");
}

TEST(DifferenceText, OfWeightsOutOfAllReasonIsNoError) {
  EXPECT_EQ(Difference(0, 1e15), "+1E+15");
  EXPECT_EQ(Difference(0, -1e300), "-1E+300");
  const double infinite = std::numeric_limits<double>::infinity();
  EXPECT_EQ(Difference(infinite, infinite), "");
  EXPECT_EQ(Difference(0, infinite), "");
  EXPECT_EQ(Percent(1e-300, 1e300), "");
}

TEST(DifferencePercentText, IsOfTheTargetWithOneDecimal) {
  EXPECT_EQ(Percent(1000, 998), "-0.2");
  EXPECT_EQ(Percent(800, 810.5), "+1.3");
  EXPECT_EQ(Percent(400, 401), "+0.3") << "0.25";
  EXPECT_EQ(Percent(400, 399), "-0.3");
  EXPECT_EQ(Percent(300, 0), "-100.0");
  EXPECT_EQ(Percent(1600, 1600.5), "0.0");
  EXPECT_EQ(Percent(1600, 1599.5), "0.0");
}

TEST(DifferencePercentText, OfATargetThatIsNotAboveZeroIsEmpty) {
  EXPECT_EQ(Percent(0, 810), "");
  EXPECT_EQ(Percent(-500, 500), "");
  EXPECT_EQ(DifferencePercentText({.target = {}, .actual = 500}), "");
}

TEST(IsBeyond, IsMoreThanTheToleranceInEitherDirection) {
  EXPECT_FALSE(Beyond(500, 510, 2));
  EXPECT_FALSE(Beyond(500, 490, 2));
  EXPECT_TRUE(Beyond(500, 510.5, 2));
  EXPECT_TRUE(Beyond(500, 489.5, 2));
  EXPECT_FALSE(Beyond(100.5, 102.51, 2)) << "exactly 2 %";
  EXPECT_TRUE(Beyond(100.5, 102.52, 2));
  EXPECT_FALSE(Beyond(500, 500, 0));
  EXPECT_TRUE(Beyond(500, 500.001, 0));
  EXPECT_FALSE(Beyond(0, 500, 2)) << "no percentage";
}

TEST(OfKind, EveryTypeButBatchIsFedWhateverItsOrder) {
  SQLite::Database database(":memory:", SQLite::OPEN_READWRITE);
  const auto kind_of = [&](const std::string& type) {
    return database
        .execAndGet("SELECT CASE WHEN " + OfKind(ComparedKind::kBatch, "1") +
                    " THEN 'batched ' ELSE '' END || CASE WHEN " +
                    OfKind(ComparedKind::kFeed, "1") + " THEN 'fed' ELSE '' END FROM (SELECT " +
                    type + " AS [Type])")
        .getString();
  };
  EXPECT_EQ(kind_of("'BATCH'"), "batched ");
  EXPECT_EQ(kind_of("'FEED'"), "fed");
  EXPECT_EQ(kind_of("'ADDED'"), "fed") << "before BATCH in the alphabet";
  EXPECT_EQ(kind_of("''"), "fed");
  EXPECT_EQ(kind_of("'batch'"), "fed");
  EXPECT_EQ(kind_of("NULL"), "");
}

TEST(RegisterDifferences, DefinesBothTextsForSql) {
  SQLite::Database database(":memory:", SQLite::OPEN_READWRITE);
  RegisterDifferences(database);
  RegisterDifferences(database);
  const auto value = [&](const std::string& expression) {
    return database.execAndGet("SELECT ifnull(" + expression + ", 'NULL')").getString();
  };
  EXPECT_EQ(value("difference_text(600, 602.5)"), "+2.5");
  EXPECT_EQ(value("difference_percent_text(800, 780.0)"), "-2.5");
  EXPECT_EQ(value("difference_percent_text(0, 780)"), "NULL");
  EXPECT_EQ(value("difference_text(NULL, 780)"), "NULL");
  EXPECT_EQ(value("difference_text('heavy', 780)"), "NULL");
}

}  // namespace
}  // namespace vrx::testing
