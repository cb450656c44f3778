#include "insight/tables.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "insight/insight_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using AnswersAsTables = InsightTest;

constexpr AnswerColumn kShare{"share", "Share %", CellKind::kPercent};
constexpr AnswerColumn kWeighed{"weight", "Weight", CellKind::kWeight};
constexpr AnswerColumn kNamed{"pen", "Pen", CellKind::kName};

TEST(CellsOfAnswers, HaveAllDigitsAsTextAndAreRoundedForTheEye) {
  EXPECT_EQ(TextOf(kShare, 12.3456), "12.3");
  EXPECT_EQ(TextOf(kWeighed, 1234.5678), "1234.5678");
  EXPECT_EQ(ShownText(kWeighed, 1234.5678), "1234.6");
  EXPECT_EQ(ShownText(kWeighed, -0.25), "-0.3");
  EXPECT_EQ(ShownText(kWeighed, 1200.0), "1200");
  EXPECT_EQ(ShownText({"cost", "Cost", CellKind::kMoney}, 12.5), "12.50");
  EXPECT_EQ(ShownText({"n", "Loads", CellKind::kCount}, std::int64_t{7}), "7");
  EXPECT_EQ(ShownText({"missed", "Missed", CellKind::kYesNo}, true), "Yes");
}

TEST(CellsOfAnswers, AMissingNameIsSaidAndAMissingFigureIsEmpty) {
  EXPECT_EQ(TextOf(kNamed, {}), "(none)");
  EXPECT_EQ(TextOf(kShare, {}), "");
  EXPECT_EQ(ShownText(kWeighed, {}), "");
}

TEST_F(AnswersAsTables, EveryRowHasACellForEachColumn) {
  Load(1, "CORN", 1000, 1015);
  Store("(1, 'STEERS', 'FEED', '2', NULL, 'A01', 1000, 0, 990, '2026-01-05', '09:00:00')");
  const AccuracyQuestion accuracy{.by = {AccuracyKey::kIngredient, AccuracyKey::kDay}};
  const Loads loads = ReadLoads(database, {});
  const Balance balance = ReadBalance(database, {.all = true});
  const Times times = ReadTimes(database, {});
  for (const AnswerTable& table :
       {TableOf(ReadAccuracy(database, accuracy), accuracy), TableOf(loads.largest, false),
        TableOf(ReadComposition(database, {})), TableOf(balance), TableOfDays(balance),
        TableOf(times, TimesKey::kOperator), TableOfBatches(times),
        TableOf(ReadDelivered(database, {})),
        ForwardTable(TraceIngredient(database, {.ingredient = "CORN"})),
        BackwardTable(TracePen(database, {.pen = "A01"})),
        TableOf(
            ReadHolding(database, {.ingredients = {"CORN"}, .days = 3, .on = *Day("2026-01-09")})),
        TableOf(ReadUse(database, {})), TableOf(ReadStatement(database, {}, {}))}) {
    ASSERT_FALSE(table.rows.empty()) << table.columns.at(0).key;
    for (const auto& row : table.rows) {
      EXPECT_THAT(row, SizeIs(table.columns.size())) << table.columns.at(1).key;
    }
    if (!table.total.empty()) {
      EXPECT_THAT(table.total, SizeIs(table.columns.size()));
    }
  }
}

TEST_F(AnswersAsTables, TheYardstickHasItsSourceAndThePlaceOfTheYard) {
  Load(1, "CORN", 1000, 1015);
  const Accuracy answer = ReadAccuracy(database, {});
  ASSERT_TRUE(answer.yardstick);
  const auto sentences = SentencesOf(*answer.yardstick);
  EXPECT_THAT(sentences,
              ElementsAre(HasSubstr("M. C. Barry, abstract W324, 2015"),
                          HasSubstr("this yard 100.0 %, above the range"), HasSubstr("within 5 kg"),
                          HasSubstr("this yard 0.0 %, below the range")));
}

TEST_F(AnswersAsTables, NothingToSayIsNoSentence) {
  Load(1, "CORN", 1000, 1015);
  EXPECT_THAT(SentencesOf(ReadAccuracy(database, {}).notes), IsEmpty());
  Load(1, "Corn", 1000, 1015);
  EXPECT_THAT(SentencesOf(ReadAccuracy(database, {}).notes),
              ElementsAre("These names differ by case only and are different: CORN, Corn."));
}

}  // namespace
}  // namespace vrx::testing
