#include "presenter/find.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/connection.h"
#include "presenter/history.h"
#include "support/boxes.h"
#include "support/small_history.h"
#include "support/test_services.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class HistoryFindTest : public ::testing::Test, protected TestServices, protected HistoryView {
 protected:
  HistoryFindTest() {
    view.TabEntered();
    view.SelectGroup(3);
    view.Find().Open();
  }

  void HistoryChanged(HistoryPart part) override {
    if (part == HistoryPart::kFoundCell) {
      row = view.LastFound().row;
      column = view.LastFound().column;
      ++went;
    }
  }

  // Stores so many records of the recipe PADDING before the others are searched.
  void Pad(int records) {
    transactions.exec(
        "WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
        std::to_string(records) +
        ") INSERT INTO Transactions ([Transaction], Recipe, Type, Ingredient, Date, Target, "
        "ActualBatch, ActualFeed) SELECT 100 + i / 8, 'PADDING', 'BATCH', 'OATS', '2010-01-01', 1, "
        "1, 0 FROM n");
  }
  // With the pause after it.
  void Type(const std::string& text) {
    view.Find().Type(text, row);
    for (int i = 0; i < 20 && State().count.empty() && State().note.empty(); ++i) {
      pump.Pump(Milliseconds{250});
    }
  }
  void Next() { view.Find().Move(true, row); }
  void Previous() { view.Find().Move(false, row); }
  void RunToTheEnd() {
    for (int i = 0; i < 1000 && State().count.ends_with("..."); ++i) {
      pump.Pump(Milliseconds{1});
    }
    ASSERT_FALSE(State().count.ends_with("..."));
  }
  const FindState& State() { return view.Find().State(); }
  std::string Line() { return ShownLines(view.Grid()).at(static_cast<std::size_t>(row) - 1); }

  TempFolder folder;
  SQLite::Database transactions = SmallHistory(folder);
  HistoryPresenter view{transactions, services, *this};
  std::int64_t row = 0;  // the current one
  int column = -1;
  int went = 0;
};

TEST_F(HistoryFindTest, GoesToTheFirstRowThatHasTheText) {
  Type("hay");
  EXPECT_EQ(State().count, "1 of 1");
  EXPECT_EQ(State().percent, -1);
  EXPECT_THAT(Line(), HasSubstr("HAY"));
  EXPECT_EQ(column, HistoryColumnOfKey("Ingredient"));
  EXPECT_EQ(State().note, "");
}

TEST_F(HistoryFindTest, WaitsUntilTheOperatorStopsTyping) {
  view.Find().Type("h", 0);
  EXPECT_EQ(State().count, "");
  view.Find().Type("hay", 0);
  EXPECT_EQ(went, 0);
  pump.Pump(Milliseconds{249});
  EXPECT_EQ(went, 0);
  pump.Pump(Milliseconds{1});
  pump.Pump(Milliseconds{1});
  EXPECT_EQ(went, 1);
  EXPECT_THAT(Line(), HasSubstr("HAY"));
  pump.Pump(Milliseconds{1000});
  EXPECT_EQ(went, 1);
}

TEST_F(HistoryFindTest, DoesNotWaitForEnter) {
  view.Find().Type("a0", 0);
  Next();
  EXPECT_EQ(State().count, "1 of 4");
  Next();
  EXPECT_EQ(State().count, "2 of 4");
}

TEST_F(HistoryFindTest, GoesOnInTheOrderOfTheRowsAndAroundTheEnds) {
  Type("a0");  // four feeds
  std::vector<std::string> lines{Line()};
  std::vector<std::string> counts{State().count};
  for (int i = 0; i < 3; ++i) {
    Next();
    lines.push_back(Line());
    counts.push_back(State().count);
    EXPECT_EQ(State().note, "");
  }
  EXPECT_THAT(counts, ElementsAre("1 of 4", "2 of 4", "3 of 4", "4 of 4"));
  EXPECT_THAT(lines, ElementsAre(HasSubstr("495.25"), HasSubstr("810.5"), HasSubstr("780"),
                                 HasSubstr("10:00 AM")));
  Next();
  EXPECT_EQ(State().count, "1 of 4");
  EXPECT_EQ(State().note, "The search went on at the top.");
  Next();
  EXPECT_EQ(State().note, "");
  Previous();
  EXPECT_EQ(State().count, "1 of 4");
  Previous();
  EXPECT_EQ(State().count, "4 of 4");
  EXPECT_EQ(State().note, "The search went on at the bottom.");
  EXPECT_EQ(Line(), lines.back());
}

TEST_F(HistoryFindTest, StaysOnARowThatALongerTextHasToo) {
  Type("st");
  EXPECT_EQ(Line(), "[1] Recipe:STEERS");
  const std::int64_t before = row;
  Type("stee");
  EXPECT_EQ(row, before);
  Next();
  EXPECT_EQ(row, before);  // the only one
  EXPECT_EQ(State().note, "The search went on at the top.");
}

TEST_F(HistoryFindTest, SaysThatNothingWasFound) {
  Type("oats");
  EXPECT_EQ(State().note, "Nothing was found.");
  EXPECT_EQ(State().count, "");
  EXPECT_EQ(went, 0);
  Next();
  Previous();
  EXPECT_EQ(went, 0);
  Type("");
  EXPECT_EQ(State().note, "");
}

TEST_F(HistoryFindTest, SearchesOnlyThePeriod) {
  view.TypeDays("2011-03-14", "2011-03-14");
  Type("a01");
  EXPECT_EQ(State().note, "Nothing was found in this period.");
  Type("corn");
  EXPECT_EQ(State().count, "1 of 1");
}

TEST_F(HistoryFindTest, ADayGoesToItsGroupAndOpensIt) {
  view.SelectGroup(2);
  Type("3/15/2011");
  EXPECT_EQ(Line(), "[1] Date:15-Mar-11");
  EXPECT_EQ(column, 0);
  EXPECT_TRUE(view.Grid().Row(row).open);
  EXPECT_EQ(State().count, "1 of 1");
}

// A long search.

TEST_F(HistoryFindTest, RunsInSlicesAndCountsMeanwhile) {
  Pad(140'000);
  view.SelectGroup(3);
  Type("oats");
  EXPECT_EQ(State().count, "65528...");  // a slice less the eight other records
  EXPECT_EQ(went, 0);
  RunToTheEnd();
  EXPECT_EQ(State().count, "1 of 140000");
  EXPECT_EQ(went, 1);
}

// Its time also passes while no event is due.
class SlowPump : public ManualPump {
 public:
  Milliseconds Now() const override { return ManualPump::Now() + passed; }
  Milliseconds passed{0};
};

TEST_F(HistoryFindTest, ShowsItsProgressOnceItTakesAWhile) {
  Pad(140'000);
  SlowPump slow;
  Services slow_services{.op = op,
                         .files = files,
                         .pump = slow,
                         .programs = programs,
                         .calendar = calendar,
                         .system = system,
                         .settings = settings,
                         .folder = TestServices::folder,
                         .identity = identity};
  HistoryPresenter page(transactions, slow_services, *this);
  const FindState& state = page.Find().State();
  page.Find().Open();
  page.Find().Type("nothing", 0);
  slow.Pump(Milliseconds{250});
  EXPECT_EQ(state.percent, -1);
  slow.passed = Milliseconds{150};
  slow.Pump(Milliseconds{1});
  EXPECT_EQ(state.percent, 93);
  slow.Pump(Milliseconds{1});
  slow.Pump(Milliseconds{1});
  EXPECT_EQ(state.percent, -1);
  EXPECT_EQ(state.note, "Nothing was found.");
}

TEST_F(HistoryFindTest, GoesToTheFirstRowBeforeAllAreCountedIfRowsAreInStoredOrder) {
  Pad(140'000);
  view.SelectGroup(0);
  Type("hay");
  EXPECT_EQ(went, 1);
  EXPECT_EQ(State().count, "1 of 1...");
  RunToTheEnd();
  EXPECT_EQ(State().count, "1 of 1");
  EXPECT_EQ(went, 1);
}

TEST_F(HistoryFindTest, ADayIsReachedAtOnceAndCountedLater) {
  Pad(140'000);
  view.SelectGroup(2);
  Type("1/1/2010");
  EXPECT_EQ(went, 1);
  EXPECT_EQ(Line(), "[1] Date:01-Jan-10");
  RunToTheEnd();
  EXPECT_EQ(State().count, "1 of 1");
  EXPECT_EQ(went, 1);
}

TEST_F(HistoryFindTest, ANextDuringTheSearchIsDoneAtItsEnd) {
  Pad(140'000);
  view.SelectGroup(3);
  Type("corn");
  ASSERT_TRUE(State().count.ends_with("..."));
  Previous();
  EXPECT_EQ(went, 0);
  RunToTheEnd();
  EXPECT_EQ(went, 1);
  EXPECT_EQ(State().count, "2 of 2");
}

TEST_F(HistoryFindTest, IsEndedByANewTextAndByStopAndByClose) {
  Pad(70'000);
  view.SelectGroup(3);
  Type("oats");
  Type("corn");
  RunToTheEnd();
  EXPECT_EQ(State().count, "1 of 2");
  Type("oats");
  view.Find().Stop();
  EXPECT_EQ(State().note, "The search was stopped.");
  EXPECT_EQ(State().count, "");
  EXPECT_EQ(view.Grid().Found(), nullptr);
  view.OpenGroup(1);
  EXPECT_EQ(view.Grid().Found(), nullptr);  // and it stays so
  Next();
  RunToTheEnd();
  EXPECT_TRUE(State().count.ends_with("of 70000"));
  Type("hay");
  view.Find().Close();
  EXPECT_FALSE(State().open);
  EXPECT_EQ(view.Grid().Found(), nullptr);
  EXPECT_EQ(State().text, "hay");
}

TEST_F(HistoryFindTest, BeginsAgainWithAnotherGroupSortOrPeriodWithoutGoingAnywhere) {
  Type("corn");
  EXPECT_EQ(State().count, "1 of 2");
  const auto expect_counted = [&](const std::string& count) {
    went = 0;
    for (int i = 0; i < 20 && State().count != count; ++i) {
      pump.Pump(Milliseconds{1});
    }
    EXPECT_EQ(State().count, count);
    EXPECT_EQ(went, 0);
  };
  view.SelectGroup(6);
  expect_counted("1 found");  // the group
  view.SelectGroup(0);
  expect_counted("2 found");
  view.SortByColumn(7);
  expect_counted("2 found");
  view.TypeDays("2011-03-14", "2011-03-14");
  expect_counted("1 found");
}

TEST_F(HistoryFindTest, GoesOnInAnotherDatabaseWithoutGoingAnywhere) {
  Pad(70'000);
  view.SelectGroup(3);
  Type("corn");
  SQLite::Database other = SmallHistory(folder, "OTHER.TDB");
  other.exec("UPDATE Transactions SET Ingredient = 'CORN' WHERE Ingredient = 'HAY'");
  view.SetTransactionDatabase(other);
  for (int i = 0; i < 20 && State().count != "3 found"; ++i) {
    pump.Pump(Milliseconds{1});
  }
  EXPECT_EQ(State().count, "3 found");
  EXPECT_EQ(went, 0);
  view.SetTransactionDatabase(transactions);
}

TEST_F(HistoryFindTest, ReportsAFailureOnceAndStops) {
  Pad(70'000);
  view.SelectGroup(3);
  Type("corn");
  transactions.exec("DROP TABLE Transactions");
  for (int i = 0; i < 10; ++i) {
    pump.Pump(Milliseconds{1});
  }
  EXPECT_THAT(OnlyBox(op.boxes), IsBox(Icon::kCritical, "Transaction Data Error", ::testing::_));
  EXPECT_EQ(State().percent, -1);
  EXPECT_EQ(State().count, "");
}

TEST_F(HistoryFindTest, SaysThatARecordIsGone) {
  Type("hay");
  transactions.exec("DELETE FROM Transactions WHERE Ingredient = 'HAY'");
  view.Find().Move(true, 0);
  EXPECT_EQ(State().note, "This record is no longer in the database. Press F5 to read it again.");
}

// The clipboard.

TEST_F(HistoryFindTest, CopiesRowsUpToALimit) {
  const std::optional<CopiedRows> rows = view.Copy(std::vector<CopiedRange>{{2, 3}});
  ASSERT_TRUE(rows);
  EXPECT_THAT(rows->text, HasSubstr("\nRecipe:HEIFER\nRecipe:STEERS\n"));
  EXPECT_THAT(op.boxes, IsEmpty());
  EXPECT_FALSE(view.Copy(std::vector<CopiedRange>{{1, 20'001}}));
  EXPECT_THAT(OnlyBox(op.boxes),
              IsBox(Icon::kWarning, "Copy",
                    "20001 rows are selected, but only 20000 can be copied at once. Select fewer "
                    "rows, or write all of them to a file on the Export tab."));
}

TEST_F(HistoryFindTest, ReportsRowsThatCannotBeReadForTheClipboard) {
  view.SelectGroup(0);
  transactions.exec("DROP TABLE Transactions");
  EXPECT_FALSE(view.Copy(std::vector<CopiedRange>{{1, 2}}));
  EXPECT_THAT(OnlyBox(op.boxes), IsBox(Icon::kCritical, "Transaction Data Error", ::testing::_));
}

}  // namespace
}  // namespace vrx::testing
