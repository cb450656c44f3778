#include "database/exact_sum.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>
#include <gtest/gtest.h>

namespace vrx::testing {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

double SumOf(const std::vector<double>& values) {
  ExactSum sum;
  for (const double value : values) {
    sum.Add(value);
  }
  return sum.Value();
}

TEST(ExactSum, NothingIsZero) { EXPECT_EQ(SumOf({}), 0); }

TEST(ExactSum, TenthsAddUpToWholeNumbers) {
  EXPECT_EQ(SumOf(std::vector<double>(10, 0.1)), 1);
  EXPECT_EQ(SumOf(std::vector<double>(1'000'000, 0.1)), 100'000);
}

TEST(ExactSum, SmallValuesBesideLargeOnesAreKept) {
  EXPECT_EQ(SumOf({1e16, 1, -1e16}), 1);
  EXPECT_EQ(SumOf({1, 1e100, 1, -1e100}), 2);
  EXPECT_EQ(SumOf({1e16, 1, 1e-16}), std::nextafter(1e16, kInfinity));
  EXPECT_EQ(SumOf({1e16, 1, -1e-16}), 1e16);
  EXPECT_EQ(SumOf({-1e16, -1, -1e-16}), -std::nextafter(1e16, kInfinity));
}

TEST(ExactSum, CancelingValuesAddUpToZero) { EXPECT_EQ(SumOf({0.1, 0.2, -0.1, -0.2}), 0); }

TEST(ExactSum, ValuesBeyondTheRangeStayBeyond) {
  EXPECT_EQ(SumOf({1, kInfinity, 2}), kInfinity);
  EXPECT_EQ(SumOf({-kInfinity, 5}), -kInfinity);
  EXPECT_TRUE(std::isnan(SumOf({kInfinity, -kInfinity})));
  EXPECT_EQ(SumOf({1e308, 1e308}), kInfinity);
}

// Every value is a whole multiple of 2^-20, so a whole number of 128 bits holds the true sum.
TEST(ExactSum, IsTheTrueSumRoundedOnceInEveryOrder) {
  std::mt19937 random(20110314);
  std::uniform_int_distribution<std::int64_t> any(-(1LL << 52), 1LL << 52);
  std::uniform_int_distribution<int> scale(-20, 30);
  for (int round = 0; round < 500; ++round) {
    std::vector<double> values;
    __extension__ using Wide = __int128;
    Wide truth = 0;
    for (int i = 0; i < 50; ++i) {
      const std::int64_t digits = any(random);
      const int shift = scale(random);
      values.push_back(std::ldexp(static_cast<double>(digits), shift));
      truth += static_cast<Wide>(digits) << (shift + 20);
    }
    const double expected = std::ldexp(static_cast<double>(truth), -20);
    EXPECT_EQ(SumOf(values), expected);
    std::shuffle(values.begin(), values.end(), random);
    EXPECT_EQ(SumOf(values), expected);
  }
}

class ExactSumAggregate : public ::testing::Test {
 protected:
  void SetUp() override {
    RegisterExactSum(database_);
    database_.exec("CREATE TABLE Weights (Kind TEXT, Weight REAL)");
  }

  SQLite::Column Ask(const std::string& query) {
    statement_.emplace(database_, query);
    EXPECT_TRUE(statement_->executeStep());
    return statement_->getColumn(0);
  }

  SQLite::Database database_{":memory:", SQLite::OPEN_READWRITE};
  std::optional<SQLite::Statement> statement_;
};

TEST_F(ExactSumAggregate, OverNothingIsNull) {
  EXPECT_TRUE(Ask("SELECT exact_sum(Weight) FROM Weights").isNull());
  database_.exec("INSERT INTO Weights VALUES ('A', NULL), ('A', NULL)");
  EXPECT_TRUE(Ask("SELECT exact_sum(Weight) FROM Weights").isNull());
}

TEST_F(ExactSumAggregate, NullsAreIgnoredAndASumIsAlwaysReal) {
  database_.exec("INSERT INTO Weights VALUES ('A', 1), ('A', NULL), ('A', 2)");
  const SQLite::Column sum = Ask("SELECT exact_sum(Weight) FROM Weights");
  EXPECT_TRUE(sum.isFloat());
  EXPECT_EQ(sum.getDouble(), 3);
}

TEST_F(ExactSumAggregate, AddsUpEachGroupByItself) {
  database_.exec(
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000) "
      "INSERT INTO Weights SELECT iif(i % 2, 'A', 'B'), iif(i % 2, 0.1, 0.7) FROM n");
  EXPECT_EQ(Ask("SELECT group_concat(s, ' ') FROM "
                "(SELECT exact_sum(Weight) AS s FROM Weights GROUP BY Kind ORDER BY Kind)")
                .getString(),
            "50.0 350.0");
}

TEST_F(ExactSumAggregate, TextsAreAddedAsNumbers) {
  EXPECT_EQ(Ask("SELECT exact_sum(v) FROM (SELECT '0.5' AS v UNION ALL SELECT '2')").getDouble(),
            2.5);
}

TEST_F(ExactSumAggregate, AnAbandonedQueryLeaksNothing) {
  database_.exec("INSERT INTO Weights VALUES ('A', 1), ('A', 2)");
  EXPECT_THROW(
      Ask("SELECT exact_sum(iif(Weight = 2, abs(-9223372036854775808), Weight)) FROM Weights"),
      SQLite::Exception);
  EXPECT_EQ(Ask("SELECT exact_sum(Weight) FROM Weights").getDouble(), 3);
}

TEST_F(ExactSumAggregate, MayBeRegisteredAgain) {
  RegisterExactSum(database_);
  EXPECT_EQ(Ask("SELECT exact_sum(1.5)").getDouble(), 1.5);
}

}  // namespace
}  // namespace vrx::testing
