#include <array>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <variant>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/date.h"
#include "history/columns.h"
#include "history/grouped_rows.h"
#include "history/history_grid.h"
#include "history/history_table.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr std::int64_t kAllRecords = 1'000'000;

CellValue AnyText(std::mt19937& random, const std::vector<const char*>& texts) {
  const auto any = std::uniform_int_distribution<std::size_t>(0, texts.size() - 1)(random);
  return texts[any] == nullptr ? CellValue() : CellValue(std::string(texts[any]));
}

std::vector<Cells> AnyRecords(std::int64_t count) {
  std::mt19937 random(7);
  const auto weight = [&] {
    return static_cast<double>(std::uniform_int_distribution<int>(0, 99'999)(random)) / 100;
  };
  std::vector<Cells> rows;
  for (std::int64_t row = 0; row < count; ++row) {
    rows.push_back({{1, 1 + row / 7 * 300},
                    {2, AnyText(random, {"STEERS", "HEIFER", nullptr})},
                    {kTypeColumn, AnyText(random, {"BATCH", "FEED", "FEED", "ADDED", nullptr})},
                    {4, AnyText(random, {"9", "10"})},
                    {5, AnyText(random, {"CORN", "HAY"})},
                    {6, AnyText(random, {"P1", "P2"})},
                    {kTargetColumn, weight()},
                    {kActualBatchColumn, weight()},
                    {10, AnyText(random, {"2011-03-14", "2011-03-15", "2011-03-16"})},
                    {kActualFeedColumn, weight()},
                    {13, weight()},
                    {14, weight()}});
  }
  return rows;
}

class TotalsOnScreen : public ::testing::Test {
 protected:
  TotalsOnScreen() { table.Store(AnyRecords(400)); }

  void Show(int group) {
    rows.Show(*FindDataGroup(group), "STEERS");
    rows.OpenAll();
  }
  HistoryRow OnScreen(std::int64_t row) { return rows.Row(row, SumsWanted::kKnown); }
  // The total row of the outermost group.
  std::int64_t LastRow() { return rows.RowCount(); }

  HistoryTable table;
  GroupedRows rows{table.Database()};
};

TEST_F(TotalsOnScreen, AreBlankUntilTheyAreRead) {
  Show(8);
  ASSERT_EQ(rows.KindOf(LastRow()), HistoryRowKind::kTotal);
  EXPECT_THAT(OnScreen(LastRow()).cells, IsEmpty());
  EXPECT_EQ(OnScreen(LastRow()).group, CellValue(std::string("P2")));
  const SumsRead read = rows.ReadSums(LastRow(), LastRow(), 10);
  EXPECT_FALSE(read.any);
  EXPECT_TRUE(read.more);
  EXPECT_THAT(OnScreen(LastRow()).cells, IsEmpty()) << "partly read";
  while (rows.ReadSums(LastRow(), LastRow(), 10).more) {
  }
  EXPECT_THAT(OnScreen(LastRow()).cells, Not(IsEmpty()));
  EXPECT_EQ(OnScreen(LastRow()).cells, rows.Row(LastRow()).cells);
}

TEST_F(TotalsOnScreen, AreCompleteElsewhere) {
  Show(8);
  const CellValue feed = rows.Row(LastRow()).cells.at(kActualFeedColumn - 1);
  EXPECT_GT(std::get<double>(feed), 0);
  EXPECT_EQ(OnScreen(LastRow()).cells.at(kActualFeedColumn - 1), feed) << "known now";
  EXPECT_FALSE(rows.ReadSums(LastRow(), LastRow(), 10).any);
}

TEST_F(TotalsOnScreen, OfALevelWithoutSumsNeedNoReading) {
  Show(1);
  ASSERT_EQ(rows.KindOf(LastRow()), HistoryRowKind::kTotal);
  ASSERT_EQ(OnScreen(LastRow()).depth, 1);
  EXPECT_THAT(OnScreen(LastRow()).cells, Each(CellValue()));
  EXPECT_FALSE(rows.ReadSums(LastRow(), LastRow(), 1).more);
  rows.SumColumns({kTargetColumn, kActualBatchColumn}, true);
  EXPECT_TRUE(rows.ReadSums(LastRow(), LastRow(), 1).more) << "compared weights";
}

TEST_F(TotalsOnScreen, OfAGroupAreReadOnceWhetherItIsClosedOrOpen) {
  Show(12);
  rows.CloseAll();
  while (rows.ReadSums(1, 1, 50).more) {
  }
  const std::vector<CellValue> closed = OnScreen(1).cells;
  rows.Open(1);
  std::int64_t total = 1;
  while (rows.KindOf(total) != HistoryRowKind::kTotal) {
    ++total;
  }
  EXPECT_FALSE(rows.ReadSums(total, total, 50).any);
  const std::vector<CellValue> open = OnScreen(total).cells;
  EXPECT_EQ(open.at(kTargetColumn - 1), CellValue()) << "blank of both kinds";
  EXPECT_EQ(open.at(kActualBatchColumn - 1), CellValue());
  EXPECT_NE(closed.at(kActualBatchColumn - 1), CellValue());
  EXPECT_EQ(open, rows.Row(total).cells);
}

TEST_F(TotalsOnScreen, OfSmallGroupsAreNotKeptWaitingByOneThatIsPartlyRead) {
  Show(2);
  const SumsRead first = rows.ReadSums(1, LastRow(), 60);
  EXPECT_TRUE(first.more);
  int slices = 0;
  while (rows.ReadSums(1, LastRow(), 60).more) {
    ++slices;
  }
  EXPECT_GT(slices, 10);
  EXPECT_FALSE(rows.ReadSums(1, LastRow(), 60).any) << "each is read once";
}

TEST_F(TotalsOnScreen, KeepTheTextOfTheirRowWhileTheyAreBlank) {
  HistoryGrid grid(table.Database());
  grid.SetUp(*FindDataGroup(8), "");
  grid.ShowDifferences(true);
  grid.ExpandAll();
  const std::int64_t total = grid.RowCount();
  const ShownRow before = grid.RowOnScreen(total);
  EXPECT_THAT(before.cells, Contains("Total:"));
  EXPECT_EQ(before.cells.at(kTargetColumn - 1), "") << "not 0";
  EXPECT_EQ(before.cells.at(kActualFeedColumn - 1), "");
  EXPECT_FALSE(before.IsMarked(116));
  grid.ReadSums(total, total, kAllRecords);
  EXPECT_EQ(grid.RowOnScreen(total).cells, grid.Row(total).cells);
  EXPECT_NE(grid.RowOnScreen(total).cells.at(kTargetColumn - 1), "");
}

struct GridTexts {
  std::vector<std::vector<std::string>> cells;
  std::vector<std::array<bool, 2>> marked;
};

// All rows as the command `show` writes them, or as they are on the screen in the end.
GridTexts TextsOf(HistoryGrid& grid, bool on_screen) {
  GridTexts shown;
  for (std::int64_t row = 1; row <= grid.RowCount(); ++row) {
    if (on_screen) {
      while (grid.ReadSums(row, row, 13).more) {
      }
    }
    const ShownRow text = on_screen ? grid.RowOnScreen(row) : grid.Row(row);
    shown.cells.push_back(text.cells);
    shown.marked.push_back(text.marked);
  }
  return shown;
}

std::string NameIn(int group) { return group == 7 ? "CORN" : group == 9 ? "P2" : "HEIFER"; }

class SettledTotals : public ::testing::TestWithParam<int> {};

TEST_P(SettledTotals, AreThoseOfShow) {
  HistoryTable table;
  table.Store(AnyRecords(250));
  for (const bool differences : {false, true}) {
    for (const bool all_days : {false, true}) {
      SCOPED_TRACE(std::string(differences ? "differences" : "") + (all_days ? ", all days" : ""));
      const auto prepare = [&](HistoryGrid& grid) {
        grid.ShowDifferences(differences);
        grid.ShowPeriod({.from = all_days ? std::nullopt : ParseStoredDate("2011-03-15")});
        grid.SetUp(*FindDataGroup(GetParam()), NameIn(GetParam()));
        grid.ExpandAll();
      };
      HistoryGrid screen(table.Database());
      HistoryGrid show(table.Database());
      prepare(screen);
      prepare(show);
      const GridTexts on_screen = TextsOf(screen, true);
      const GridTexts expected = TextsOf(show, false);
      EXPECT_EQ(on_screen.cells, expected.cells);
      EXPECT_EQ(on_screen.marked, expected.marked);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Group, SettledTotals, ::testing::Range(0, kDataGroupCount));

}  // namespace
}  // namespace vrx::testing
