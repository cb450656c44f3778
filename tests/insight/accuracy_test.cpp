#include "insight/accuracy.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "insight/insight_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Optional;

using Key = std::vector<std::optional<std::string>>;

class AccuracyOfLoads : public InsightTest {
 protected:
  AccuracyFigures Total(AccuracyQuestion question = {}) {
    return ReadAccuracy(database, question).total;
  }
  std::vector<Key> Keys(const AccuracyQuestion& question) {
    std::vector<Key> keys;
    for (const AccuracyGroup& group : ReadAccuracy(database, question).groups) {
      keys.push_back(group.key);
    }
    return keys;
  }
  // Loads of an operator, all with the same weights.
  void Loads(int count, const std::string& operator_id, const std::string& ingredient,
             double target, double actual) {
    for (int i = 0; i < count; ++i) {
      Load(++number_, ingredient, target, actual,
           "'" + operator_id + "', '2026-01-05', '08:00:00'");
    }
  }

 private:
  int number_ = 100;
};

TEST_F(AccuracyOfLoads, AnEmptyDatabaseHasNoFigure) {
  const Accuracy answer = ReadAccuracy(database, {});
  EXPECT_TRUE(answer.groups.empty());
  EXPECT_EQ(
      Shown(answer.total),
      "0 notLoaded 0:- without 0:- target - actual - net - net% - gross - gross% - within - "
      "weightWithin - withinWeight - beyond - below - q1 - median - q3 - standardized - marked "
      "-");
  EXPECT_FALSE(answer.yardstick);
}

// CORN: 100, 101 of 100 and 380 of 400. HAY: not loaded, without a target, a negative weight.
TEST_F(AccuracyOfLoads, AWorkedExample) {
  SetUnit("KG");
  Load(1, "CORN", 100, 100);
  Load(1, "CORN", 100, 101);
  Load(1, "CORN", 400, 380);
  Load(1, "HAY", 50, 0);
  Load(1, "HAY", 70, -2);
  Load(1, "HAY", 0, 12);
  Store("(1, 'STEERS', 'BATCH', '1', 'HAY', NULL, NULL, 3.5, 0, '2026-01-05', '08:00:00')");
  const Accuracy answer = ReadAccuracy(database, {});
  ASSERT_EQ(answer.groups.size(), 2U);
  const AccuracyFigures& corn = answer.groups[0].figures;
  EXPECT_EQ(corn.n, 3);
  EXPECT_EQ(corn.target, 600);
  EXPECT_EQ(corn.actual, 581);
  EXPECT_EQ(corn.net, -19);
  EXPECT_EQ(corn.net_percent, -19.0 / 6);
  EXPECT_EQ(corn.gross, 21);
  EXPECT_EQ(corn.gross_percent, 3.5);
  EXPECT_EQ(corn.within, 200.0 / 3);
  EXPECT_EQ(corn.weight_within, 100.0 / 3);
  EXPECT_EQ(corn.within_weight, 200.0 / 3);
  EXPECT_EQ(corn.beyond, 0);
  EXPECT_EQ(corn.below, 100.0 / 3);
  // -5, 0 and 1 percent: h is 0.5, 1 and 1.5.
  EXPECT_EQ(corn.q1, -2.5);
  EXPECT_EQ(corn.median, 0);
  EXPECT_EQ(corn.q3, 0.5);
  EXPECT_EQ(corn.marked, std::nullopt);
  const AccuracyFigures& hay = answer.groups[1].figures;
  EXPECT_EQ(hay.n, 0);
  EXPECT_EQ(hay.not_loaded.n, 2);
  EXPECT_EQ(hay.not_loaded.weight, 120);
  EXPECT_EQ(hay.without_target.n, 2);
  EXPECT_EQ(hay.without_target.weight, 15.5);
  EXPECT_EQ(hay.within, std::nullopt);
  EXPECT_EQ(hay.target, std::nullopt);
  EXPECT_EQ(answer.total.n, 3);
  EXPECT_EQ(answer.notes.units, "KG");
}

TEST_F(AccuracyOfLoads, LimitsAreNotWithinAndTheDivisionIs) {
  SetUnit("KG");
  Load(1, "CORN", 100, 102);     // 2 %
  Load(1, "CORN", 100, 101.99);  // below 2 %
  Load(1, "HAY", 1000, 1005);    // 5 kg
  Load(1, "HAY", 1000, 1062.5);  // 62.5 kg
  Load(1, "HAY", 1000, 1062.501);
  AccuracyFigures total = Total();
  EXPECT_EQ(total.within, 40);
  EXPECT_EQ(total.within_weight, 40);
  EXPECT_EQ(total.beyond, 20);
  total = Total({.limits = {.division = 5}});
  EXPECT_EQ(total.within, 60);
  EXPECT_EQ(total.within_weight, 60);
  total = Total({.limits = {.percent = 2.0001}});
  EXPECT_EQ(total.within, 60);
}

// 5 kg are 11.0231131... lb.
TEST_F(AccuracyOfLoads, LimitsInKilogramsAreConvertedExactly) {
  Load(1, "CORN", 1000, 1011.023);
  Load(1, "CORN", 1000, 1011.024);
  EXPECT_EQ(Total().within_weight, 50);
  EXPECT_EQ(ReadAccuracy(database, {}).limits.weight.weight, 11.023113109243878);
  const AccuracyQuestion pounds{.limits = {.weight = {11.024, WeightUnit::kPounds}}};
  EXPECT_EQ(Total(pounds).within_weight, 50);
}

TEST_F(AccuracyOfLoads, SumsAreOfDecimalNumbers) {
  for (int i = 0; i < 10; ++i) {
    Load(1, "CORN", 0.1, 0.3);
  }
  EXPECT_EQ(Total().target, 1);
  EXPECT_EQ(Total().actual, 3);
  EXPECT_EQ(Total().net_percent, 200);
}

TEST_F(AccuracyOfLoads, GroupsAreInTheOrderOfTheirKeys) {
  Loads(1, "10", "HAY", 1, 1);
  Loads(1, "2", "Corn", 1, 1);
  Loads(1, "2", "CORN", 1, 1);
  Store("(1, NULL, 'BATCH', NULL, NULL, NULL, 1, 1, 0, '2026-01-05', '08:00:00')");
  Store("(2, '', 'BATCH', '-1', '', NULL, 1, 1, 0, NULL, '08:00:00')");
  EXPECT_THAT(Keys({.by = {AccuracyKey::kIngredient}}),
              ElementsAre(Key{std::nullopt}, Key{"CORN"}, Key{"Corn"}, Key{"HAY"}));
  EXPECT_THAT(Keys({.by = {AccuracyKey::kOperator}}),
              ElementsAre(Key{std::nullopt}, Key{"2"}, Key{"10"}));
  EXPECT_THAT(Keys({.by = {AccuracyKey::kOperator, AccuracyKey::kIngredient}}),
              ElementsAre(Key{std::nullopt, std::nullopt}, Key{"2", "CORN"}, Key{"2", "Corn"},
                          Key{"10", "HAY"}));
  EXPECT_THAT(Keys({.by = {AccuracyKey::kDay}}), ElementsAre(Key{std::nullopt}, Key{"2026-01-05"}));
  const InsightNotes notes = ReadAccuracy(database, {}).notes;
  EXPECT_THAT(notes.alike, ElementsAre(ElementsAre("CORN", "Corn")));
}

TEST_F(AccuracyOfLoads, WeeksHaveTheIsoYear) {
  int number = 0;
  for (const char* const day : {"2025-12-28", "2025-12-29", "2026-01-04", "2026-01-05",
                                "2027-01-03", "2024-12-30", "2021-01-01"}) {
    Load(++number, "CORN", 1, 1, "'1', '" + std::string(day) + "', '08:00:00'");
  }
  EXPECT_THAT(Keys({.by = {AccuracyKey::kWeek}}),
              ElementsAre(Key{"2020-W53"}, Key{"2025-W01"}, Key{"2025-W52"}, Key{"2026-W01"},
                          Key{"2026-W02"}, Key{"2026-W53"}));
  EXPECT_THAT(
      Keys({.by = {AccuracyKey::kMonth}}),
      ElementsAre(Key{"2021-01"}, Key{"2024-12"}, Key{"2025-12"}, Key{"2026-01"}, Key{"2027-01"}));
}

// Deliveries after midnight are of the batch's day, also one that is stored before the load.
TEST_F(AccuracyOfLoads, DaysAreTheBatchesForDeliveriesToo) {
  Store("(1, 'STEERS', 'FEED', '1', NULL, 'A01', 5, 0, 5, '2026-01-06', '00:10:00')");
  Load(1, "CORN", 10, 10);
  Store("(1, 'STEERS', 'FEED', '1', NULL, 'A02', 5, 0, 5, '2026-01-06', '00:20:00')");
  Store("(2, 'STEERS', 'FEED', '1', NULL, 'A02', 5, 0, 5, '2026-01-07', '00:20:00')");
  EXPECT_THAT(Keys({.deliveries = true, .by = {AccuracyKey::kDay}}),
              ElementsAre(Key{"2026-01-05"}, Key{"2026-01-07"}));
  AccuracyQuestion question{.deliveries = true, .by = {AccuracyKey::kPen}};
  question.about.from = question.about.to = Day("2026-01-05");
  EXPECT_THAT(Keys(question), ElementsAre(Key{"A01"}, Key{"A02"}));
  question.about.from = question.about.to = Day("2026-01-06");
  EXPECT_THAT(Keys(question), ElementsAre());
}

TEST_F(AccuracyOfLoads, OperatorsAreStandardizedByIngredient) {
  // Operator 1: 10 of 20 CORN and all of 10 HAY within 2 %; operator 2 loads CORN only.
  Loads(10, "1", "CORN", 100, 100);
  Loads(10, "1", "CORN", 100, 110);
  Loads(10, "1", "HAY", 50, 50);
  Loads(20, "2", "CORN", 100, 100);
  const Accuracy answer = ReadAccuracy(database, {.by = {AccuracyKey::kOperator}});
  // Weights: CORN 4000, HAY 500.
  EXPECT_EQ(answer.groups[0].figures.standardized, (4000 * 50.0 + 500 * 100) / 4500);
  EXPECT_EQ(answer.groups[1].figures.standardized, 100);
  EXPECT_EQ(answer.total.standardized, std::nullopt);
  AccuracyQuestion two{.by = {AccuracyKey::kOperator, AccuracyKey::kIngredient}};
  EXPECT_EQ(ReadAccuracy(database, two).groups[0].figures.standardized, std::nullopt);
}

TEST_F(AccuracyOfLoads, FewerThanTwentyOfAnOperatorHaveNoShare) {
  Loads(19, "1", "CORN", 100, 99);
  Loads(20, "2", "CORN", 100, 99);
  const Accuracy answer = ReadAccuracy(database, {.by = {AccuracyKey::kOperator}});
  const AccuracyFigures& few = answer.groups[0].figures;
  EXPECT_EQ(few.n, 19);
  EXPECT_EQ(few.net_percent, -1);
  for (const auto& share : {few.within, few.weight_within, few.within_weight, few.beyond, few.below,
                            few.standardized}) {
    EXPECT_EQ(share, std::nullopt);
  }
  EXPECT_EQ(answer.groups[1].figures.within, 100);
  EXPECT_EQ(answer.total.within, 100);
  EXPECT_EQ(ReadAccuracy(database, {}).groups[0].figures.within, 100);
}

TEST_F(AccuracyOfLoads, ToleranceTakenForTheTargetIsMarked) {
  Loads(39, "1", "CORN", 1000, 995);
  EXPECT_EQ(Total().marked, std::nullopt);
  Loads(1, "1", "CORN", 1000, 995);
  EXPECT_EQ(Total().marked, true);  // the median is -0.5 % exactly
  EXPECT_EQ(Total({.limits = {.division = 5}}).marked, false);
  Loads(13, "1", "CORN", 1000, 1001);
  EXPECT_EQ(Total().marked, true);  // 40 of 53
  Loads(1, "1", "CORN", 1000, 1000);
  EXPECT_EQ(Total().marked, false);  // 40 of 54
  Loads(60, "2", "HAY", 1000, 995.001);
  EXPECT_EQ(ReadAccuracy(database, {}).groups[1].figures.marked, false);
}

TEST_F(AccuracyOfLoads, TheYardstickIsOfAllLoadsWithUnchangedLimits) {
  Load(1, "CORN", 100, 100);
  const Accuracy answer = ReadAccuracy(database, {});
  ASSERT_TRUE(answer.yardstick);
  EXPECT_EQ(answer.yardstick->within.yard, 100);
  EXPECT_EQ(answer.yardstick->within.median, 42.7);
  EXPECT_EQ(answer.yardstick->beyond.median, std::nullopt);
  EXPECT_EQ(answer.yardstick->beyond.yard, 0);
  EXPECT_TRUE(ReadAccuracy(database, {.about = {.from = Day("2026-01-05")}}).yardstick);
  EXPECT_TRUE(ReadAccuracy(database, {.limits = {.division = 1}}).yardstick);
  EXPECT_FALSE(ReadAccuracy(database, {.about = {.recipe = "STEERS"}}).yardstick);
  EXPECT_FALSE(ReadAccuracy(database, {.limits = {.percent = 3}}).yardstick);
  EXPECT_FALSE(ReadAccuracy(database, {.limits = {.weight = {5, WeightUnit::kPounds}}}).yardstick);
  EXPECT_FALSE(ReadAccuracy(database, {.limits = {.beyond = {60}}}).yardstick);
  EXPECT_FALSE(ReadAccuracy(database, {.deliveries = true, .by = {AccuracyKey::kPen}}).yardstick);
}

TEST_F(AccuracyOfLoads, WrongKeysAndLimitsAreErrors) {
  const auto error = [&](const AccuracyQuestion& question) -> std::string {
    try {
      (void)ReadAccuracy(database, question);
    } catch (const QuestionError& failure) {
      return failure.what();
    }
    return "";
  };
  using enum AccuracyKey;
  EXPECT_EQ(error({.by = {kPen}}), "loads have no pen");
  EXPECT_EQ(error({.deliveries = true}), "deliveries have no ingredient");
  EXPECT_THAT(error({.by = {kDay, kDay}}), HasSubstr("two different ones"));
  EXPECT_THAT(error({.by = {}}), HasSubstr("one key"));
  EXPECT_THAT(error({.by = {kDay, kWeek, kRecipe}}), HasSubstr("one key"));
  EXPECT_THAT(error({.limits = {.percent = -1}}), HasSubstr("percent"));
  EXPECT_THAT(error({.limits = {.division = 0.0 / 0.0}}), HasSubstr("division"));
  EXPECT_THAT(error({.about = {.from = Day("2026-01-06"), .to = Day("2026-01-05")}}),
              HasSubstr("ends on 2026-01-05, before it begins on 2026-01-06"));
}

TEST_F(AccuracyOfLoads, AWeightWithoutAnEndIsAnError) {
  Store("(1, 'STEERS', 'BATCH', '1', 'CORN', NULL, 9e999, 1, 0, '2026-01-05', '08:00:00')");
  EXPECT_THROW((void)ReadAccuracy(database, {}), DatabaseError);
  EXPECT_NO_THROW((void)ReadAccuracy(database, {.deliveries = true, .by = {AccuracyKey::kPen}}));
}

// 60/150 - 50/100 and 90/150 - 50/100.
TEST_F(AccuracyOfLoads, CompositionIsTheShareOfTheBatch) {
  Load(7, "HAY", 50, 90);
  Load(7, "CORN", 30, 30);
  Load(7, "CORN", 20, 30);
  Load(8, "CORN", 100, 103);
  Load(9, "CORN", 100, 0);
  Load(10, "CORN", 0, 5);
  EXPECT_THAT(Shown(ReadComposition(database, {}).lines),
              ElementsAre("7 STEERS CORN -10", "7 STEERS HAY 10", "8 STEERS CORN 0",
                          "9 STEERS CORN -", "10 STEERS CORN -"));
  EXPECT_THAT(Shown(ReadComposition(database, {.ingredient = "HAY"}).lines),
              ElementsAre("7 STEERS CORN -10", "7 STEERS HAY 10"));
}

}  // namespace
}  // namespace vrx::testing
