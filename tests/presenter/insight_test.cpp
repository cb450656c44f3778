#include "presenter/insight.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/bound_database.h"
#include "insight/tables.h"
#include "support/boxes.h"
#include "support/small_history.h"
#include "support/test_services.h"

namespace vrx::testing {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

class InsightTab : public ::testing::Test, protected TestServices, protected InsightView {
 protected:
  InsightTab() { calendar.today = ParseStoredDate("2011-03-20").value(); }

  void InsightChanged(InsightPart part) override { changed.push_back(part); }

  // The small history.
  void Open() {
    SmallHistory(folder);
    bound = BindUserDatabase(folder / "SMALL.TDB", kBusyTimeout);
    view.SetDatabase(bound);
    view.Show();
  }
  // With so many rows that a question takes a while. Its connection waits for no lock.
  void OpenLong() {
    SmallHistory(folder).exec(
        "PRAGMA synchronous=OFF; WITH RECURSIVE Copy(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM "
        "Copy WHERE n < 50000) INSERT INTO Transactions ([Transaction], Recipe, Type, Date, "
        "Ingredient, Target, ActualBatch) SELECT n + 1000, 'STEERS', 'BATCH', '2011-03-14', "
        "'CORN', 100, 99 FROM Copy");
    bound = BindUserDatabase(folder / "SMALL.TDB", std::chrono::milliseconds{0});
    view.SetDatabase(bound);
    view.Show();
  }
  // Runs the events until the answer or its refusal is there, and the names.
  void Wait() {
    changed.clear();
    while (!Has(InsightPart::kAnswer) ||
           (view.Answer() == nullptr && view.State().standby.empty())) {
      Turn();
    }
  }
  void WaitForNames() {
    while (!Has(InsightPart::kNames)) {
      Turn();
    }
  }
  // The clock of the pump stands while the thread reads.
  void Turn() {
    pump.Pump(Milliseconds{20});
    std::this_thread::yield();
  }
  bool Has(InsightPart part) const {
    return std::find(changed.begin(), changed.end(), part) != changed.end();
  }
  void Choose(InsightTopic topic) { view.ChooseTopic(static_cast<int>(topic)); }
  void ChooseByName(NameKind kind, const std::string& name) {
    const auto& items = view.State().names.at(static_cast<std::size_t>(kind)).items;
    const auto found = std::find(items.begin(), items.end(), name);
    ASSERT_NE(found, items.end()) << name;
    view.ChooseName(kind, static_cast<int>(found - items.begin()) + 1);
  }
  std::vector<std::string> FirstColumn() const {
    std::vector<std::string> texts;
    for (const auto& row : view.Answer()->table.rows) {
      texts.push_back(ShownText(view.Answer()->table.columns.front(), row.front()));
    }
    return texts;
  }
  std::vector<std::string> Captions() const {
    std::vector<std::string> captions;
    for (const AnswerColumn& column : view.Answer()->table.columns) {
      captions.emplace_back(column.caption);
    }
    return captions;
  }

  TempFolder folder;
  BoundDatabase bound;
  std::vector<InsightPart> changed;
  InsightPresenter view{services, *this};
};

TEST_F(InsightTab, AnswersTheFirstQuestionWhenItIsShown) {
  Open();
  Wait();
  EXPECT_THAT(FirstColumn(), ElementsAre("(none)", "CORN", "HAY"));
  EXPECT_EQ(view.State().standby, "");
  EXPECT_EQ(view.Answer()->units, "LB");
}

TEST_F(InsightTab, ReadsNothingBeforeItIsShown) {
  SmallHistory(folder);
  bound = BindUserDatabase(folder / "SMALL.TDB", kBusyTimeout);
  view.SetDatabase(bound);
  for (int i = 0; i < 10; ++i) {
    Turn();
  }
  EXPECT_EQ(view.Answer(), nullptr);
}

TEST_F(InsightTab, KeepsTheAnswerUntilTheQuestionIsAnother) {
  Open();
  Wait();
  view.Hide();
  changed.clear();
  view.Show();
  pump.Pump(Milliseconds{100});
  EXPECT_FALSE(Has(InsightPart::kAnswer));
  EXPECT_NE(view.Answer(), nullptr);
}

TEST_F(InsightTab, HasATableForEachQuestion) {
  Open();
  Wait();
  WaitForNames();
  for (int topic = 0; topic < kInsightTopics; ++topic) {
    const InsightTopicRow& row = RowOf(static_cast<InsightTopic>(topic));
    for (std::size_t table = 0; table < row.tables.size(); ++table) {
      for (std::size_t picture = 0; picture < std::max<std::size_t>(row.pictures.size(), 1);
           ++picture) {
        view.ChooseTopic(topic);
        view.ChooseTable(static_cast<int>(table));
        view.ChoosePicture(static_cast<int>(picture));
        ChooseByName(NameKind::kIngredient, "CORN");
        ChooseByName(NameKind::kPen, "A01");
        Wait();
        ASSERT_NE(view.Answer(), nullptr) << row.title << view.State().standby;
        EXPECT_FALSE(view.Answer()->table.columns.empty()) << row.title;
        EXPECT_EQ(view.Answer()->table.rows.empty(), !view.State().standby.empty()) << row.title;
        EXPECT_FALSE(view.Answer()->table.how.empty() && row.title != "Accuracy of loading" &&
                     row.title != "Accuracy of delivery" && row.title != "Completeness")
            << row.title;
        view.ChooseName(NameKind::kIngredient, 0);
        view.ChooseName(NameKind::kPen, 0);
      }
    }
  }
  EXPECT_THAT(op.boxes, IsEmpty());
}

TEST_F(InsightTab, ListsTheNamesThatTheRecordsHave) {
  Open();
  Wait();
  WaitForNames();
  const auto& names = view.State().names;
  EXPECT_THAT(names[0].items, ElementsAre("HEIFER", "STEERS"));
  EXPECT_THAT(names[1].items, ElementsAre("CORN", "HAY"));
  EXPECT_THAT(names[2].items, ElementsAre("2", "10"));
  EXPECT_THAT(names[3].items, ElementsAre("A01", "A02"));
}

TEST_F(InsightTab, AFilterAndAPeriodChooseTheRecords) {
  Open();
  Wait();
  WaitForNames();
  ChooseByName(NameKind::kRecipe, "HEIFER");
  Wait();
  EXPECT_THAT(FirstColumn(), ElementsAre("CORN"));
  view.ChooseName(NameKind::kRecipe, 0);
  Wait();
  view.TypeDays("3/14/2011", "3/14/2011");
  Wait();
  EXPECT_THAT(FirstColumn(), ElementsAre("CORN", "HAY"));
  EXPECT_EQ(view.State().period.choice, PeriodChoice::kFromTo);
}

TEST_F(InsightTab, SaysWhatTheAnswerIsOf) {
  Open();
  Wait();
  WaitForNames();
  EXPECT_EQ(view.AnsweredText(), "SMALL.TDB, all records");
  view.TypeDays("3/14/2011", "3/15/2011");
  Wait();
  ChooseByName(NameKind::kRecipe, "STEERS");
  Wait();
  EXPECT_EQ(view.AnsweredText(), "SMALL.TDB, 14-Mar-11 to 15-Mar-11, Recipe STEERS");
  view.TypeDays("", "3/15/2011");
  Wait();
  EXPECT_EQ(view.AnsweredText(), "SMALL.TDB, up to 15-Mar-11, Recipe STEERS");
}

TEST_F(InsightTab, ARefusedDayKeepsTheAnswer) {
  Open();
  Wait();
  view.TypeDays("soon", "");
  EXPECT_THAT(view.State().period.refusal, HasSubstr("\"soon\" is not a day"));
  view.TypeDays("3/15/2011", "3/14/2011");
  EXPECT_EQ(view.State().period.refusal, "The first day is after the last day.");
  EXPECT_THAT(FirstColumn(), SizeIs(3));
}

TEST_F(InsightTab, TraceAndHoldingNeedAName) {
  Open();
  Wait();
  Choose(InsightTopic::kTrace);
  EXPECT_EQ(view.State().standby, "Choose an ingredient above.");
  view.ChooseTable(1);
  EXPECT_EQ(view.State().standby, "Choose a pen above.");
  Choose(InsightTopic::kHolding);
  EXPECT_EQ(view.State().standby, "Choose an ingredient above.");
  EXPECT_EQ(view.Answer(), nullptr);
}

TEST_F(InsightTab, ATraceCallsWhatStayedByItsName) {
  Open();
  Wait();
  WaitForNames();
  Choose(InsightTopic::kTrace);
  ChooseByName(NameKind::kIngredient, "CORN");
  Wait();
  const AnswerTable& table = view.Answer()->table;
  ASSERT_EQ(table.columns[4].key, "pen");
  std::vector<std::string> pens;
  for (const AnswerRow& row : table.rows) {
    pens.push_back(std::get<std::string>(row[4]));
  }
  EXPECT_THAT(pens, Contains("A01"));
  EXPECT_THAT(pens, Contains("(stayed)"));
}

TEST_F(InsightTab, SaysWhichNameAQuestionNeeds) {
  Open();
  Wait();
  const auto needed = [this] {
    std::vector<NameKind> kinds;
    for (int kind = 0; kind < kNameKinds; ++kind) {
      if (view.State().names.at(static_cast<std::size_t>(kind)).needed) {
        kinds.push_back(static_cast<NameKind>(kind));
      }
    }
    return kinds;
  };
  EXPECT_THAT(needed(), IsEmpty());
  Choose(InsightTopic::kTrace);
  EXPECT_THAT(needed(), ElementsAre(NameKind::kIngredient));
  view.ChooseTable(1);
  EXPECT_THAT(needed(), ElementsAre(NameKind::kPen));
  Choose(InsightTopic::kHolding);
  EXPECT_THAT(needed(), ElementsAre(NameKind::kIngredient));
  Choose(InsightTopic::kUse);
  EXPECT_THAT(needed(), IsEmpty());
}

TEST_F(InsightTab, UseShowsNoCostWhichNeedsFilesOfTheCommandLine) {
  Open();
  Wait();
  Choose(InsightTopic::kUse);
  Wait();
  EXPECT_THAT(Captions(), ElementsAre("Ingredient", "Used"));
  EXPECT_THAT(view.Answer()->table.rows.front(), SizeIs(2));
}

TEST_F(InsightTab, ReadsTheNamesForAQuestionThatNeedsOne) {
  SmallHistory(folder);
  bound = BindUserDatabase(folder / "SMALL.TDB", kBusyTimeout);
  view.SetDatabase(bound);
  Choose(InsightTopic::kHolding);
  view.Show();
  WaitForNames();
  EXPECT_EQ(view.State().standby, "Choose an ingredient above.");
  ChooseByName(NameKind::kIngredient, "HAY");
  Wait();
  EXPECT_THAT(FirstColumn(), ElementsAre("A01", "A02"));
}

TEST_F(InsightTab, HoldingTakesWholeDaysAndADay) {
  Open();
  Wait();
  WaitForNames();
  Choose(InsightTopic::kHolding);
  ChooseByName(NameKind::kIngredient, "HAY");
  Wait();
  EXPECT_THAT(FirstColumn(), ElementsAre("A01", "A02"));
  EXPECT_EQ(view.State().asked.on, calendar.today);
  for (const char* const days : {"0", "1.5", "", "10000", "x"}) {
    view.TypeHolding(days, "");
    EXPECT_EQ(view.State().standby, "The days must be a whole number from 1 to 9999.") << days;
  }
  view.TypeHolding("3", "someday");
  EXPECT_THAT(view.State().standby, HasSubstr("\"someday\" is not a day"));
  view.TypeHolding("3", "3/16/2011");
  Wait();
  EXPECT_EQ(view.State().asked.days, 3);
  EXPECT_THAT(FirstColumn(), SizeIs(2));
}

TEST_F(InsightTab, ANameThatNoRecordHasAnyMoreIsRefusedInWords) {
  Open();
  Wait();
  WaitForNames();
  bound.connection->exec("UPDATE Transactions SET Recipe = 'BULLS' WHERE Recipe = 'HEIFER'");
  ChooseByName(NameKind::kRecipe, "HEIFER");
  Wait();
  EXPECT_THAT(view.State().standby, HasSubstr("No record has the recipe 'HEIFER'"));
  EXPECT_THAT(op.boxes, IsEmpty());
}

TEST_F(InsightTab, OfAClosedOrEmptyDatabaseSaysWhatToDo) {
  view.Show();
  EXPECT_EQ(view.State().standby, "Open a transaction database to see what its records say.");
  Open();
  bound.connection->exec("DELETE FROM Transactions");
  view.SetDatabase(bound);
  Wait();
  EXPECT_EQ(view.State().standby,
            "No transactions are stored yet. Import a transaction file and store it.");
  view.ChoosePeriod(PeriodChoice::kToday);
  Wait();
  EXPECT_EQ(view.State().standby, "No records of this period. Choose another period above.");
}

TEST_F(InsightTab, AFailureOfTheDatabaseIsReportedOnce) {
  Open();
  Wait();
  std::filesystem::remove(bound.path);
  view.ChooseTable(1);
  Wait();
  EXPECT_THAT(OnlyBox(op.boxes), IsBox(Icon::kCritical, "Transaction Data Error", ::testing::_));
  EXPECT_THAT(view.State().standby, HasSubstr("Press F5"));
  EXPECT_EQ(view.Answer(), nullptr);
}

// A writer's lock keeps the question waiting, whatever the machine does meanwhile.
TEST_F(InsightTab, EndsWithTheTabAndLeavesNoLock) {
  Open();
  pump.Pump(Milliseconds{20});
  view.Hide();
  bound.connection->exec("BEGIN EXCLUSIVE; UPDATE Transactions SET Target = 1; COMMIT");
  changed.clear();
  pump.Pump(Milliseconds{1000});
  EXPECT_FALSE(Has(InsightPart::kAnswer));
  view.Show();
  Wait();
  EXPECT_THAT(FirstColumn(), SizeIs(3));
}

TEST_F(InsightTab, MakesRoomForAWriteAndReadsAgain) {
  OpenLong();
  while (view.State().percent < 1) {
    Turn();
  }
  view.EndReads();
  EXPECT_EQ(view.State().percent, -1);
  bound.connection->exec("BEGIN IMMEDIATE; UPDATE UnitsOfMeasure SET UoM = 'KG'; COMMIT");
  Wait();
  EXPECT_EQ(view.Answer()->units, "KG");
  EXPECT_THAT(op.boxes, IsEmpty());
}

TEST_F(InsightTab, AnAnswerFromBeforeAWriteIsReadAgainOnceTheTabIsShown) {
  Open();
  Wait();
  view.Hide();
  view.EndReads();
  bound.connection->exec("UPDATE UnitsOfMeasure SET UoM = 'KG'");
  view.Show();
  Wait();
  EXPECT_EQ(view.Answer()->units, "KG");
}

TEST_F(InsightTab, CanBeStoppedAndAskedAgain) {
  Open();
  pump.Pump(Milliseconds{20});
  view.Stop();
  EXPECT_THAT(view.State().standby, HasSubstr("The question was stopped"));
  EXPECT_EQ(view.State().percent, -1);
  pump.Pump(Milliseconds{1000});
  EXPECT_EQ(view.Answer(), nullptr);
  view.SetDatabase(bound);
  Wait();
  EXPECT_THAT(FirstColumn(), SizeIs(3));
}

TEST_F(InsightTab, ANewQuestionReplacesTheOneThatRuns) {
  Open();
  pump.Pump(Milliseconds{20});
  Choose(InsightTopic::kUse);
  Wait();
  EXPECT_EQ(view.Answer()->asked.topic, InsightTopic::kUse);
  EXPECT_THAT(Captions(), Contains("Used"));
}

TEST_F(InsightTab, ARowLeadsToItsRecords) {
  Open();
  Wait();
  EXPECT_EQ(view.PlaceOfRow(1)->group, 6);
  EXPECT_EQ(view.PlaceOfRow(1)->value, "CORN");
  EXPECT_EQ(view.PlaceOfRow(3), std::nullopt);
  view.ChooseTable(4);  // by day
  Wait();
  EXPECT_EQ(view.PlaceOfRow(1)->group, 2);
  EXPECT_EQ(PeriodText(view.PlaceOfRow(1)->period), "14-Mar-11");
  view.ChooseTable(5);  // by week
  Wait();
  EXPECT_EQ(PeriodText(view.PlaceOfRow(1)->period), "14-Mar-11 to 20-Mar-11");
  view.ChooseTable(6);  // by month
  Wait();
  EXPECT_EQ(PeriodText(view.PlaceOfRow(1)->period), "01-Mar-11 to 31-Mar-11");
  Choose(InsightTopic::kBalance);
  view.ChooseTable(1);
  Wait();
  EXPECT_EQ(view.PlaceOfRow(1)->group, 1);
  EXPECT_EQ(view.PlaceOfRow(1)->value, "1");
  Choose(InsightTopic::kDelivered);
  Wait();
  EXPECT_EQ(view.PlaceOfRow(0)->group, 8);
  EXPECT_EQ(view.PlaceOfRow(0)->value, "A01");
  EXPECT_EQ(PeriodText(view.PlaceOfRow(0)->period), "15-Mar-11");
  Choose(InsightTopic::kTimes);
  view.ChooseTable(1);
  Wait();
  EXPECT_THAT(FirstColumn(), Contains("2"));
  EXPECT_EQ(view.PlaceOfRow(1)->group, 12);
  Choose(InsightTopic::kCompleteness);
  Wait();
  EXPECT_EQ(view.PlaceOfRow(0), std::nullopt);
}

TEST_F(InsightTab, AMarkHasWordsAndLeadsToItsRecords) {
  Open();
  Wait();
  ASSERT_THAT(view.Answer()->loads->dots, SizeIs(3));
  EXPECT_THAT(view.TextOfMark(0, 1), HasSubstr("14-Mar-11: -0.2 %"));
  EXPECT_EQ(view.PlaceOfMark(0)->value, "1");
  EXPECT_EQ(view.PlaceOfMark(0)->group, 1);
  view.ChoosePicture(3);
  Wait();
  // The first group has no load with a target and so no bar.
  EXPECT_EQ(view.PlaceOfMark(0)->value, "CORN");
  EXPECT_EQ(view.TextOfMark(1, 1), "HAY: 2.5 LB");
  Choose(InsightTopic::kDelivered);
  Wait();
  view.SelectRow(1);
  EXPECT_EQ(view.ShownPen(), "A02");
  EXPECT_THAT(view.TextOfMark(0, 1), HasSubstr("called 1100.0, delivered 780.0 LB"));
  EXPECT_EQ(view.PlaceOfMark(0)->value, "A02");
}

TEST_F(InsightTab, TheYardstickIsThereWithTheUsualLimitsOnly) {
  Open();
  Wait();
  EXPECT_THAT(view.Answer()->notes, Contains(HasSubstr("M. C. Barry")));
  settings.SetLimit(PrivateINI::InsightLimit::kPercent, "3");
  view.FollowSettings();
  Wait();
  EXPECT_THAT(view.Answer()->notes, Each(Not(HasSubstr("M. C. Barry"))));
  EXPECT_EQ(view.Answer()->accuracy->limits.percent, 3);
}

TEST_F(InsightTab, ALongTableHasItsFirstRowsAndSaysHowManyThereAre) {
  OpenLong();
  Choose(InsightTopic::kBalance);
  Wait();
  EXPECT_EQ(view.Answer()->table.rows.size(), 20000U);
  EXPECT_THAT(view.Answer()->notes, Contains(HasSubstr("the first 20000 of 5000")));
  EXPECT_GT(view.Answer()->balance->lines.size(), 50000U);  // none is in balance: all are marks
  Choose(InsightTopic::kTimes);
  Wait();
  EXPECT_THAT(view.Answer()->notes, Each(Not(HasSubstr("the first 20000"))));
}

TEST_F(InsightTab, TheFiguresAreThoseOfTheTablesOfTheAnswers) {
  Open();
  Wait();
  const AccuracyQuestion question{};
  const AnswerTable expected = TableOf(ReadAccuracy(*bound.connection, question), question);
  EXPECT_EQ(view.Answer()->table.rows, expected.rows);
  EXPECT_EQ(view.Answer()->table.total, expected.total);
}

}  // namespace
}  // namespace vrx::testing
