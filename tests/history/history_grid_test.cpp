#include "history/history_grid.h"

#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/date.h"
#include "base/number.h"
#include "database/connection.h"
#include "support/small_history.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class HistoryGridTest : public ::testing::Test {
 protected:
  void SetUpGroup(int group, const std::string& name = "") {
    grid.RefreshIngredientColumns(ReadIngredients(recipes));
    grid.SetUp(*FindDataGroup(group), name);
  }

  TempFolder folder;
  SQLite::Database transactions = SmallHistory(folder);
  SQLite::Database recipes = SmallRecipes(folder);
  std::optional<SQLite::Database> other;
  HistoryGrid grid{transactions};
};

TEST_F(HistoryGridTest, TransactionsAllAlwaysHasItsHeaderStrip) {
  SetUpGroup(0);
  EXPECT_TRUE(grid.ColumnHeaders());
  grid.ApplyExpandState(false);
  EXPECT_TRUE(grid.ColumnHeaders());
}

TEST_F(HistoryGridTest, GroupRowsAloneHaveNoHeaderStrip) {
  for (int group = 1; group < kDataGroupCount; ++group) {
    SetUpGroup(group, "STEERS");
    EXPECT_FALSE(grid.ColumnHeaders());
    grid.ApplyExpandState(false);
    EXPECT_FALSE(grid.ColumnHeaders());
  }
}

TEST_F(HistoryGridTest, OpeningAGroupDownToItsRecordsBringsTheStripBack) {
  SetUpGroup(3);
  grid.ApplyExpandState(false);
  grid.OpenGroup(3);  // STEERS
  EXPECT_FALSE(grid.ColumnHeaders());
  grid.OpenGroup(5);  // its FEED
  EXPECT_TRUE(grid.ColumnHeaders());
  EXPECT_THAT(ShownLines(grid),
              ElementsAre("[1] Recipe:", "[1] Recipe:HEIFER", "[1] Recipe:STEERS", "[2] BATCH",
                          "[2] FEED", "3: 1|0||810.5|A01|800|2|02:05 PM|15-Mar-11",
                          "3: 1|0||780|A02|800|2|02:20 PM|15-Mar-11",
                          "3: 3|0||0|A02|300|10|10:00 AM|15-Mar-11", "=2: Total:|||1590.5||1900|||",
                          "=1: ||||||||"));
}

TEST_F(HistoryGridTest, ClosingTheLastGroupOfRecordsHidesTheStripAgain) {
  SetUpGroup(8);
  grid.OpenGroup(2);
  grid.OpenGroup(1);
  grid.CloseGroup(1);
  EXPECT_TRUE(grid.ColumnHeaders());
  grid.CloseGroup(2);
  EXPECT_FALSE(grid.ColumnHeaders());
}

TEST_F(HistoryGridTest, ClosingTheOnlyGroupHidesTheStripToo) {
  transactions.exec("DELETE FROM Transactions WHERE Pen IS NOT 'A01'");
  SetUpGroup(8);
  grid.OpenGroup(1);
  EXPECT_TRUE(grid.ColumnHeaders());
  grid.CloseGroup(1);
  EXPECT_FALSE(grid.ColumnHeaders());
}

TEST_F(HistoryGridTest, WithNoRowsTheStripStaysAsItWas) {
  SetUpGroup(4);
  grid.ApplyExpandState(true);
  EXPECT_FALSE(grid.ColumnHeaders());
  grid.SetColumnHeaders(true);
  grid.ApplyExpandState(true);
  EXPECT_TRUE(grid.ColumnHeaders());
}

TEST_F(HistoryGridTest, RowsCountOnlyWhatCanBeSeen) {
  SetUpGroup(1);
  EXPECT_EQ(grid.RowCount(), 4);
  EXPECT_EQ(grid.KindOf(4), HistoryRowKind::kGroup);
  grid.ExpandAll();
  EXPECT_EQ(grid.RowCount(), 28);
  EXPECT_EQ(grid.KindOf(3), HistoryRowKind::kRecord);
  EXPECT_EQ(grid.KindOf(28), HistoryRowKind::kTotal);
  grid.CollapseAll();
  EXPECT_EQ(grid.RowCount(), 4);
  EXPECT_THROW(grid.Row(5), std::out_of_range);
}

TEST_F(HistoryGridTest, DatesSortAsDatesAndNumbersAsNumbers) {
  SetUpGroup(8);
  transactions.exec("UPDATE Transactions SET UserID = '9' WHERE Recipe = 'HEIFER'");
  SetUpGroup(9, "A02");
  grid.ExpandAll();
  grid.SortByColumn(4);
  grid.SortByColumn(4);
  EXPECT_FALSE(grid.SortAscending());
  EXPECT_THAT(ShownLines(grid),
              ElementsAre("[1] Pen:A02", "2: STEERS|300|0|10|10:00 AM|15-Mar-11",
                          "2: STEERS|800|780|2|02:20 PM|15-Mar-11", "=1: Total:|1100|780|||"));
}

TEST_F(HistoryGridTest, AClickOnTheColumnOfALevelKeepsTheOrder) {
  SetUpGroup(10);
  grid.ExpandAll();
  const int target = HistoryColumnOfKey("Target");
  grid.SortByColumn(target);
  const std::vector<std::string> sorted = ShownLines(grid);
  EXPECT_EQ(grid.SortByColumn(HistoryColumnOfKey("Pen"), 2), 2);
  EXPECT_EQ(grid.SortColumn(), target);
  EXPECT_TRUE(grid.SortAscending());
  EXPECT_EQ(ShownLines(grid), sorted);
  SetUpGroup(5);
  grid.SortByColumn(HistoryColumnOfKey("Ingredient"));
  EXPECT_EQ(grid.SortColumn(), 0);
}

TEST_F(HistoryGridTest, DifferencesHaveTotalsOnEveryLevel) {
  SetUpGroup(3);
  grid.ShowDifferences(true);
  grid.ExpandAll();
  EXPECT_THAT(
      ShownLines(grid),
      ::testing::IsSupersetOf(
          {"[1] Recipe:STEERS", "3: 1|998|-2|-0.2|CORN|0||||1000|2|08:30 AM|14-Mar-11",
           "=2: Total:|1600.5|+0.5|0.0||||||1600|||",
           "3: 1|0||||780|-20|-2.5|A02|800|2|02:20 PM|15-Mar-11",
           "=2: Total:|||||1590.5|-309.5|-16.3||1900|||", "=1: ||+0.5|0.0|||-309.5|-16.3|||||"}));
}

TEST_F(HistoryGridTest, DifferencesSortAsNumbersOfTheirKind) {
  SetUpGroup(0);
  grid.ShowDifferences(true);
  const auto differences = [&](int column) {
    std::vector<std::string> texts;
    for (std::int64_t row = 1; row <= grid.RowCount(); ++row) {
      texts.push_back(grid.Row(row).cells.at(static_cast<std::size_t>(column) - 1));
    }
    return texts;
  };
  grid.SortByColumn(115);
  EXPECT_THAT(differences(115), ElementsAre("", "", "", "", "-300", "-20", "-4.75", "+10.5"));
  grid.SortByColumn(115);
  EXPECT_THAT(differences(115), ElementsAre("+10.5", "-4.75", "-20", "-300", "", "", "", ""));
  grid.SortByColumn(114);
  EXPECT_THAT(differences(114), ElementsAre("", "", "", "", "", "-0.2", "0.0", "+0.4"));
}

TEST_F(HistoryGridTest, HiddenDifferencesSortNothing) {
  SetUpGroup(0);
  const std::vector<std::string> stored = ShownLines(grid);
  grid.ShowDifferences(true);
  grid.SortByColumn(113);
  grid.ShowDifferences(false);
  EXPECT_EQ(grid.SortColumn(), 0);
  EXPECT_EQ(ShownLines(grid), stored);
}

TEST_F(HistoryGridTest, TheToleranceDecidesWhatIsMarked) {
  SetUpGroup(9, "A02");
  grid.ShowDifferences(true);
  grid.ExpandAll();
  EXPECT_TRUE(grid.Row(2).IsMarked(115));
  EXPECT_TRUE(grid.Row(2).IsMarked(116));
  EXPECT_FALSE(grid.Row(2).IsMarked(113));
  EXPECT_FALSE(grid.Row(2).IsMarked(kTargetColumn));
  grid.SetTolerance(2.5);
  EXPECT_FALSE(grid.Row(2).IsMarked(116));
}

TEST_F(HistoryGridTest, DifferencesStayInAnotherDatabaseGroupAndPeriod) {
  grid.ShowDifferences(true);
  SetUpGroup(9, "A01");
  other.emplace(SmallHistory(folder, "OTHER.TDB"));
  other->exec("DELETE FROM Transactions WHERE Recipe = 'STEERS'");
  grid.Bind(*other);
  grid.ShowPeriod({.from = ParseStoredDate("2011-03-15"), .to = {}});
  grid.ExpandAll();
  EXPECT_THAT(ShownLines(grid),
              ElementsAre("[1] Pen:A01", "2: HEIFER|500|495.25|-4.75|-1.0||09:30 AM|15-Mar-11",
                          "=1: Total:|500|495.25|-4.75|-1.0|||"));
}

// What the screen shows of a closed group, after all of it is read in slices.
std::string OnScreen(HistoryGrid& grid, std::int64_t row) {
  while (grid.ReadSums(row, row, 1).more) {
  }
  return grid.RowOnScreen(row).totals;
}

TEST_F(HistoryGridTest, AClosedGroupHasItsTotalsOnTheScreenOnly) {
  SetUpGroup(8);
  EXPECT_EQ(grid.RowOnScreen(1).totals, "") << "before they are read";
  EXPECT_EQ(OnScreen(grid, 1), "Feed Wt 1305.75, Target Wt 1300");
  EXPECT_THAT(grid.Row(1).cells, IsEmpty());
  EXPECT_EQ(grid.Row(1).totals, "");
  grid.OpenGroup(1);
  EXPECT_EQ(grid.RowOnScreen(1).totals, "") << "of an open group";
  EXPECT_EQ(grid.RowOnScreen(4).cells.at(kActualFeedColumn - 1), "1305.75");
}

TEST_F(HistoryGridTest, AClosedGroupOfBothKindsHasNoTargetButBothDifferences) {
  SetUpGroup(3);
  EXPECT_EQ(OnScreen(grid, 3), "Batch Wt 1600.5, Feed Wt 1590.5");
  grid.ShowDifferences(true);
  EXPECT_EQ(OnScreen(grid, 3),
            "Batch Wt 1600.5, Batch Diff +0.5, Batch Diff % 0.0, Feed Wt 1590.5, Feed Diff -309.5, "
            "Feed Diff % -16.3");
  EXPECT_TRUE(grid.RowOnScreen(3).IsMarked(116));
  EXPECT_FALSE(grid.RowOnScreen(3).IsMarked(114));
}

TEST_F(HistoryGridTest, SumsAreReadOnceAndAgainAfterAChangeOfTheView) {
  SetUpGroup(2);
  EXPECT_TRUE(grid.ReadSums(1, grid.RowCount(), 1).more);
  SumsRead read;
  do {
    read = grid.ReadSums(1, grid.RowCount(), 1000);
  } while (read.more);
  EXPECT_TRUE(read.any);
  EXPECT_FALSE(grid.ReadSums(1, grid.RowCount(), 1000).any);
  const std::string both = OnScreen(grid, 3);
  grid.ShowPeriod({.from = ParseStoredDate("2011-03-15"), .to = {}});
  EXPECT_EQ(OnScreen(grid, 1), both);
  EXPECT_EQ(both, "Batch Wt 500, Feed Wt 2085.75");
  EXPECT_FALSE(grid.ReadSums(-5, 100, 1000).more) << "rows that do not exist";
}

TEST_F(HistoryGridTest, AnotherNameKeepsTheOrderASetUpDoesNot) {
  SetUpGroup(9, "A01");
  grid.SortByColumn(11);
  EXPECT_EQ(grid.SortColumn(), 11);
  EXPECT_TRUE(grid.SortAscending());
  grid.ShowName("A02");
  grid.ExpandAll();
  EXPECT_EQ(grid.Row(2).cells[10], "0");
  grid.SetUp(*FindDataGroup(9), "A02");
  grid.ExpandAll();
  EXPECT_EQ(grid.SortColumn(), 0);
  EXPECT_EQ(grid.Row(2).cells[10], "780");
}

TEST_F(HistoryGridTest, AnotherDatabaseIsShownInTheSameGroup) {
  SetUpGroup(9, "A01");
  other.emplace(SmallHistory(folder, "OTHER.TDB"));
  other->exec("DELETE FROM Transactions WHERE Recipe = 'STEERS'");
  grid.Bind(*other);
  grid.ExpandAll();
  EXPECT_THAT(ShownLines(grid),
              ElementsAre("[1] Pen:A01", "2: HEIFER|500|495.25||09:30 AM|15-Mar-11",
                          "=1: Total:|500|495.25|||"));
}

TEST_F(HistoryGridTest, AnotherDatabaseIsShownInTheSameOrder) {
  SetUpGroup(9, "A01");
  const int target = HistoryColumnOfKey("Target");
  grid.SortByColumn(target);
  grid.SortByColumn(target);
  other.emplace(SmallHistory(folder, "OTHER.TDB"));
  other->exec("UPDATE Transactions SET Target = 900 WHERE Recipe = 'HEIFER'");
  grid.Bind(*other);
  grid.ExpandAll();
  EXPECT_EQ(grid.SortColumn(), target);
  EXPECT_FALSE(grid.SortAscending());
  EXPECT_EQ(grid.Row(2).cells[6], "900");
  EXPECT_EQ(grid.Row(3).cells[6], "800");
}

TEST_F(HistoryGridTest, ARenamedIngredientRenamesItsColumnAtOnce) {
  SetUpGroup(10);
  EXPECT_THAT(VisibleCaptions(grid),
              ElementsAre("Pen", "Recipe", "Target Wt", "Feed Wt", "CORN", "HAY"));
  grid.RefreshIngredientColumns(
      std::vector<IngredientRecord>{{.id = 2, .name = "SILAGE", .description = "Silage"}});
  EXPECT_THAT(VisibleCaptions(grid),
              ElementsAre("Pen", "Recipe", "Target Wt", "Feed Wt", "SILAGE"));
  grid.ExpandAll();
  EXPECT_THAT(ShownLines(grid), ::testing::Contains("=1: Total:||1300|1305.75|324.2"));
}

TEST_F(HistoryGridTest, EnteringTheTabSettlesTheColumns) {
  SetUpGroup(0);
  const auto captions = VisibleCaptions(grid);
  grid.RefreshIngredientColumns(ReadIngredients(recipes));
  grid.EnterTab();
  EXPECT_EQ(VisibleCaptions(grid), captions);
}

TEST_F(HistoryGridTest, OffersEveryFieldWithItsCaption) {
  SetUpGroup(0);
  const auto pairs = grid.FieldCaptions();
  ASSERT_EQ(pairs.size(), std::size_t{kHistoryColumnCount});
  EXPECT_EQ(pairs[6], std::pair(std::string("Target"), std::string("Target Wt")));
  EXPECT_EQ(pairs[12], std::pair(std::string("Ing01Wt"), std::string("CORN")));
  EXPECT_EQ(pairs[13], std::pair(std::string("Ing02Wt"), std::string("HAY")));
  EXPECT_EQ(pairs[14], std::pair(std::string("Ing03Wt"), std::string("ING003")));
}

TEST_F(HistoryGridTest, AFailureOfTheStorageLeavesTheGridAsItWas) {
  SetUpGroup(8);
  grid.MoveColumn(11, 1);
  const auto captions = VisibleCaptions(grid);
  transactions.exec("ALTER TABLE Transactions RENAME TO Elsewhere");
  EXPECT_THROW(grid.SetUp(*FindDataGroup(3), ""), DatabaseError);
  transactions.exec("ALTER TABLE Elsewhere RENAME TO Transactions");
  EXPECT_EQ(grid.Group().index, 8);
  EXPECT_EQ(VisibleCaptions(grid), captions);
  EXPECT_EQ(grid.RowCount(), 2);
}

TEST_F(HistoryGridTest, AnEmptyTableHasNoRowInAnyGroup) {
  transactions.exec("DELETE FROM Transactions");
  for (int group = 0; group < kDataGroupCount; ++group) {
    SetUpGroup(group);
    grid.ApplyExpandState(true);
    EXPECT_THAT(ShownLines(grid), IsEmpty());
  }
}

// Random rows whose weights are quarters, so that their sums are exact in any order.
void FillAtRandom(SQLite::Database& database, unsigned seed, int rows) {
  std::mt19937 random(seed);
  const auto below = [&random](int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
  };
  const auto text = [&](const char* prefix, int kinds) -> std::optional<std::string> {
    const int kind = below(kinds + 1);
    return kind == 0 ? std::nullopt : std::optional(prefix + std::to_string(kind));
  };
  SQLite::Transaction transaction(database);
  SQLite::Statement insert(database,
                           "INSERT INTO Transactions ([Transaction], Recipe, Type, UserID, "
                           "Ingredient, Pen, Target, ActualBatch, Date, ActualFeed, Ing01Wt, "
                           "Ing02Wt) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
  for (int row = 0; row < rows; ++row) {
    const bool batch = below(2) == 0;
    int place = 0;
    const auto bind_text = [&](const std::optional<std::string>& value) {
      ++place;
      if (value) {
        insert.bind(place, *value);
      }
    };
    const auto bind_weight = [&] { insert.bind(++place, below(4000) / 4.0); };
    insert.bind(++place, below(9));
    bind_text(text("R", 3));
    bind_text(batch ? "BATCH" : "FEED");
    bind_text(text("", 12));
    bind_text(batch ? text("I", 4) : std::nullopt);
    bind_text(batch ? std::nullopt : text("P", 4));
    bind_weight();
    batch ? bind_weight() : insert.bind(++place, 0);
    bind_text(below(5) == 0 ? std::nullopt : text("2026-01-0", 9));
    batch ? insert.bind(++place, 0) : bind_weight();
    bind_weight();
    below(2) == 0 ? bind_weight() : static_cast<void>(++place);
    insert.exec();
    insert.reset();
    insert.clearBindings();
  }
  transaction.commit();
}

// Expected total row of each open group: the sums of the records above it.
class SumsAbove {
 public:
  void Take(const ShownRow& row) {
    if (row.kind == HistoryRowKind::kGroup) {
      sums_[row.depth].clear();
      return;
    }
    for (auto& [depth, sums] : sums_) {
      for (const HistoryColumn& column : HistoryColumnTable()) {
        if (column.summed) {
          const std::string& cell = row.cells.at(static_cast<std::size_t>(column.index) - 1);
          sums[column.index] += ParseNumber(cell).value_or(0);
        }
      }
    }
  }

  std::string Shown(const ShownRow& total, const DataGroup& group, int column) {
    if (IsBlanked(group, total.depth, column)) {
      return "";
    }
    const double sum = sums_[total.depth][column];
    if (IngredientSlot(column) != 0) {
      return Format(sum, "0.0");
    }
    return sum == 0 && column != kTargetColumn ? "" : DefaultText(sum);
  }

  void Close(int depth) { sums_.erase(depth); }

 private:
  std::map<int, std::map<int, double>> sums_;  // by depth and column
};

TEST_F(HistoryGridTest, TheTotalsShownAreTheSumsOfTheRecordsShown) {
  int totals = 0;
  for (unsigned seed = 1; seed <= 4; ++seed) {
    transactions.exec("DELETE FROM Transactions");
    FillAtRandom(transactions, seed, 400);
    for (const DataGroup& group : DataGroups()) {
      const std::map<int, std::string> names{{4, "R2"}, {7, "I1"}, {9, "P3"}};
      SetUpGroup(group.index, names.contains(group.index) ? names.at(group.index) : "");
      grid.ExpandAll();
      ASSERT_GT(grid.RowCount(), 0) << group.item;
      SumsAbove sums;
      for (std::int64_t number = 1; number <= grid.RowCount(); ++number) {
        const ShownRow row = grid.Row(number);
        if (row.kind != HistoryRowKind::kTotal) {
          sums.Take(row);
          continue;
        }
        ++totals;
        for (const int column : grid.Columns().VisibleColumns()) {
          if (HistoryColumnAt(column).summed) {
            ASSERT_EQ(row.cells.at(static_cast<std::size_t>(column) - 1),
                      sums.Shown(row, group, column))
                << group.item << ", row " << number << ", column " << column;
          }
        }
        sums.Close(row.depth);
      }
    }
  }
  EXPECT_GT(totals, 1000);
}

TEST_F(HistoryGridTest, EveryRecordOfTheQueryIsShownOnce) {
  transactions.exec("DELETE FROM Transactions");
  FillAtRandom(transactions, 7, 300);
  for (const DataGroup& group : DataGroups()) {
    if (!group.named_column.empty()) {
      continue;
    }
    SetUpGroup(group.index);
    grid.ExpandAll();
    std::int64_t records = 0;
    for (std::int64_t number = 1; number <= grid.RowCount(); ++number) {
      records += grid.KindOf(number) == HistoryRowKind::kRecord ? 1 : 0;
    }
    const std::string where =
        group.type.empty() ? "" : " WHERE Type = '" + std::string(group.type) + "'";
    EXPECT_EQ(records,
              transactions.execAndGet("SELECT count(*) FROM Transactions" + where).getInt64())
        << group.item;
  }
}

}  // namespace
}  // namespace vrx::testing
