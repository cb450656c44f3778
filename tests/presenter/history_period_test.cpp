#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/date.h"
#include "database/connection.h"
#include "presenter/history.h"
#include "support/small_history.h"
#include "support/test_services.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class HistoryPeriod : public ::testing::Test, protected TestServices, protected HistoryView {
 protected:
  HistoryPeriod() {
    calendar.today = ParseStoredDate("2011-03-15").value();
    view.TabEntered();
    view.SelectGroup(3);
  }

  void HistoryChanged(HistoryPart part) override { changed.push_back(part); }

  std::vector<std::string> Lines() { return ShownLines(view.Grid()); }
  std::vector<std::string> Typed() {
    const PeriodState& state = view.ChosenPeriod();
    return {state.from, state.to, state.refusal};
  }
  std::string Days() { return PeriodText(view.Grid().ShownPeriod()); }

  TempFolder folder;
  SQLite::Database transactions = SmallHistory(folder);
  std::optional<SQLite::Database> other;
  std::vector<HistoryPart> changed;
  HistoryPresenter view{transactions, services, *this};
};

TEST_F(HistoryPeriod, IsAllDaysAtFirst) {
  EXPECT_EQ(view.ChosenPeriod().choice, PeriodChoice::kAll);
  EXPECT_THAT(Typed(), ElementsAre("", "", ""));
  EXPECT_THAT(Lines(), ElementsAre("[1] Recipe:", "[1] Recipe:HEIFER", "[1] Recipe:STEERS"));
}

TEST_F(HistoryPeriod, OfAChoiceShowsItsDaysInTheFields) {
  view.ChoosePeriod(PeriodChoice::kToday);
  EXPECT_THAT(Typed(), ElementsAre("3/15/2011", "3/15/2011", ""));
  EXPECT_THAT(Lines(), ElementsAre("[1] Recipe:HEIFER", "[1] Recipe:STEERS"));
  view.ChoosePeriod(PeriodChoice::kLastMonth);
  EXPECT_THAT(Typed(), ElementsAre("2/1/2011", "2/28/2011", ""));
  EXPECT_THAT(Lines(), IsEmpty());
  view.ChoosePeriod(PeriodChoice::kAll);
  EXPECT_THAT(Typed(), ElementsAre("", "", ""));
  EXPECT_EQ(Lines().size(), 3U);
}

TEST_F(HistoryPeriod, FromToBeginsWithTheDaysThatAreShownOrThisMonth) {
  view.ChoosePeriod(PeriodChoice::kFromTo);
  EXPECT_THAT(Typed(), ElementsAre("3/1/2011", "3/15/2011", ""));
  view.ChoosePeriod(PeriodChoice::kToday);
  view.ChoosePeriod(PeriodChoice::kFromTo);
  EXPECT_THAT(Typed(), ElementsAre("3/15/2011", "3/15/2011", ""));
}

TEST_F(HistoryPeriod, TypedDaysMakeItFromTo) {
  view.TypeDays("2011-03-14", "14-Mar-11");
  EXPECT_EQ(view.ChosenPeriod().choice, PeriodChoice::kFromTo);
  EXPECT_THAT(Typed(), ElementsAre("3/14/2011", "3/14/2011", ""));
  EXPECT_THAT(Lines(), ElementsAre("[1] Recipe:STEERS"));
  view.TypeDays("", "3/14/2011");
  EXPECT_EQ(Days(), "to 14-Mar-11");
  view.TypeDays("", "");
  EXPECT_EQ(view.ChosenPeriod().choice, PeriodChoice::kAll);
  EXPECT_EQ(Lines().size(), 3U);
}

TEST_F(HistoryPeriod, RefusesWhatIsNoDayAndKeepsItForCorrection) {
  view.TypeDays("3/14/2011", "3/14/2011");
  view.TypeDays("3/14/2011", "2/30/2011");
  EXPECT_THAT(Typed(), ElementsAre("3/14/2011", "2/30/2011",
                                   "\"2/30/2011\" is not a day. Type it as 1/31/2026."));
  EXPECT_EQ(Days(), "14-Mar-11");
  view.TypeDays("3/14/2011", "3/15/2011");
  EXPECT_THAT(Typed(), ElementsAre("3/14/2011", "3/15/2011", ""));
  EXPECT_EQ(Days(), "14-Mar-11 to 15-Mar-11");
}

TEST_F(HistoryPeriod, RefusesAnEndBeforeTheBeginning) {
  view.TypeDays("3/15/2011", "3/14/2011");
  EXPECT_EQ(view.ChosenPeriod().refusal, "The first day is after the last day.");
  EXPECT_EQ(Days(), "");
  view.ChoosePeriod(PeriodChoice::kToday);
  EXPECT_EQ(view.ChosenPeriod().refusal, "");
}

TEST_F(HistoryPeriod, OfTodayFollowsTheCalendarWhenTheTabIsEntered) {
  view.ChoosePeriod(PeriodChoice::kToday);
  calendar.today = ParseStoredDate("2011-03-14").value();
  EXPECT_EQ(Days(), "15-Mar-11");
  view.TabEntered();
  EXPECT_EQ(Days(), "14-Mar-11");
  EXPECT_THAT(Typed(), ElementsAre("3/14/2011", "3/14/2011", ""));
  calendar.today = ParseStoredDate("2011-03-15").value();
  view.SelectGroup(3);
  EXPECT_EQ(Days(), "15-Mar-11");
}

TEST_F(HistoryPeriod, RemainsForAnotherDatabaseAndKeepsGroupsOpen) {
  view.SetExpandAll(true);
  view.TypeDays("3/14/2011", "3/14/2011");
  EXPECT_EQ(Lines().size(), 6U);
  other.emplace(SmallHistory(folder, "OTHER.TDB"));
  view.SetTransactionDatabase(*other);
  EXPECT_EQ(Lines().size(), 6U);
}

TEST_F(HistoryPeriod, ThatCannotBeReadIsReportedAndNotChosen) {
  view.TypeDays("3/14/2011", "3/14/2011");
  OpenDatabase(folder / "SMALL.TDB", Access::kWrite).exec("DROP TABLE Transactions");
  view.ChoosePeriod(PeriodChoice::kAll);
  EXPECT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(view.ChosenPeriod().choice, PeriodChoice::kFromTo);
  EXPECT_EQ(Days(), "14-Mar-11");
  EXPECT_EQ(changed.back(), HistoryPart::kPeriod);
}

TEST(LeftOut, IsNamedInWords) {
  EXPECT_EQ(LeftOutText(0), "");
  EXPECT_EQ(LeftOutText(1), "1 record without a readable date is left out.");
  EXPECT_EQ(LeftOutText(20), "20 records without a readable date are left out.");
}

}  // namespace
}  // namespace vrx::testing
