#include <algorithm>
#include <array>
#include <limits>
#include <numeric>
#include <optional>
#include <random>
#include <tuple>
#include <utility>

#include <gtest/gtest.h>

#include "history/columns.h"
#include "history/grouped_rows.h"
#include "history/grouped_rows_model.h"
#include "history/history_table.h"
#include "history/period.h"

namespace vrx::testing {
namespace {

using Random = std::mt19937;

std::int64_t Below(Random& random, std::int64_t limit) {
  return std::uniform_int_distribution<std::int64_t>(0, limit - 1)(random);
}

CellValue AnyOf(Random& random, const std::vector<CellValue>& values) {
  return values[static_cast<std::size_t>(Below(random, static_cast<std::int64_t>(values.size())))];
}

CellValue Text(const char* text) { return std::string(text); }

CellValue AnyWeight(Random& random) {
  return Below(random, 4) == 0 ? CellValue()
                               : CellValue(static_cast<double>(Below(random, 99)) / 10);
}

// How the transactions of a table are numbered.
enum class Numbers {
  kFew,       // many rows per transaction, some without transaction
  kUpward,    // ascending in stored order, across many ranges
  kAnyOrder,  // with missing, negative and very high numbers
};

CellValue AnyTransaction(Random& random, Numbers numbers, std::int64_t row, std::int64_t few) {
  constexpr std::int64_t kRange = 20'000;
  switch (numbers) {
    case Numbers::kFew:
      return Below(random, 20) == 0 ? CellValue() : CellValue(1 + Below(random, few));
    case Numbers::kUpward:
      return row * 211;
    case Numbers::kAnyOrder:
      break;
  }
  return AnyOf(random, {CellValue(), std::numeric_limits<std::int64_t>::min(),
                        std::numeric_limits<std::int64_t>::max(), std::int64_t{-1},
                        (Below(random, 9) - 4) * kRange, Below(random, few)});
}

Cells AnyRow(Random& random, CellValue transaction) {
  const CellValue null;
  Cells row{{1, std::move(transaction)},
            {2, AnyOf(random, {null, Text(""), Text("STEERS"), Text("steers"), Text("O'NEIL")})},
            {3, AnyOf(random, {Text("BATCH"), Text("FEED"), Text("BATCH"), Text("FEED"),
                               Text("ADDED"), Text("OTHER"), null})},
            {4, AnyOf(random, {null, Text("10"), Text("9"), Text("09"), Text("-1"), Text("x")})},
            {5, AnyOf(random, {null, Text("CORN"), Text("HAY"), Text("KÄLBER")})},
            {6, AnyOf(random, {null, Text("P10"), Text("P2")})},
            {7, AnyWeight(random)},
            {8, AnyWeight(random)},
            {9, AnyOf(random, {null, Text("08:05:00"), Text("13:00:00")})},
            {10, AnyOf(random, {null, Text("2011-03-14"), Text("2009-12-31"), Text("2010-02-28"),
                                Text("2010-02-30"), Text("2011-03-14 "), Text("14-Mar-11")})},
            {11, AnyWeight(random)},
            {12, AnyWeight(random)}};
  for (int column = kFirstIngredientColumn; column <= kHistoryColumnCount; column += 33) {
    row[column] = AnyWeight(random);
  }
  return row;
}

std::string NameOf(Random& random, const DataGroup& group) {
  const std::vector<CellValue> names =
      group.named_column == "Recipe"
          ? std::vector{Text("STEERS"), Text("O'NEIL"), Text(""), Text("Select...")}
      : group.named_column == "Ingredient" ? std::vector{Text("CORN"), Text("KÄLBER"), Text("")}
                                           : std::vector{Text("P10"), Text("P2"), Text("P1")};
  return std::get<std::string>(AnyOf(random, names));
}

Period AnyPeriod(Random& random) {
  const std::optional<Date> open;
  const auto any_day = [&] {
    constexpr std::array kDays{"2009-12-30", "2009-12-31", "2010-02-28", "2011-03-14"};
    return ParseStoredDate(kDays.at(static_cast<std::size_t>(Below(random, kDays.size()))));
  };
  return Below(random, 3) == 0 ? Period()
                               : Period{.from = Below(random, 4) == 0 ? open : any_day(),
                                        .to = Below(random, 4) == 0 ? open : any_day()};
}

void ExpectSameRow(const HistoryRow& row, const HistoryRow& expected) {
  EXPECT_EQ(row.kind, expected.kind);
  EXPECT_EQ(row.depth, expected.depth);
  EXPECT_EQ(row.open, expected.open);
  EXPECT_EQ(row.group, expected.group);
  EXPECT_EQ(row.cells, expected.cells);
  for (std::size_t kind = 0; kind < row.comparisons.size(); ++kind) {
    EXPECT_EQ(row.comparisons.at(kind).target, expected.comparisons.at(kind).target);
    EXPECT_EQ(row.comparisons.at(kind).actual, expected.comparisons.at(kind).actual);
  }
}

// Both sides of the comparison, driven by the same random steps.
class Pair {
 public:
  Pair(HistoryTable& table, std::vector<std::vector<CellValue>> records, Random& random)
      : rows_(table.Database()), model_(std::move(records)), random_(random) {}

  void Show(const DataGroup& group) {
    const std::string name = NameOf(random_, group);
    const Period period = AnyPeriod(random_);
    rows_.Show(group, name, period);
    model_.Show(group, name, period);
    EXPECT_EQ(rows_.UndatedCount(), model_.UndatedCount());
  }

  void Step() {
    const auto count = static_cast<std::int64_t>(model_.Rows().size());
    const std::int64_t row = count == 0 ? 0 : 1 + Below(random_, count);
    const bool open = Below(random_, 3) != 0;
    switch (Below(random_, 12)) {
      case 0:
        open ? rows_.OpenAll() : rows_.CloseAll();
        model_.SetAllOpen(open);
        break;
      case 1:
      case 2:
        Sort(static_cast<int>(Below(random_, 14)), open, row);
        break;
      case 3:
        Sum(AnyColumns(), Below(random_, 2) == 0);
        break;
      default:
        if (row != 0) {
          open ? rows_.Open(row) : rows_.Close(row);
          model_.SetOpen(row, open);
        }
    }
  }

  // `sample` rows at random, in random order.
  void Compare(std::size_t sample) {
    const std::vector<HistoryRow>& expected = model_.Rows();
    ASSERT_EQ(rows_.RowCount(), static_cast<std::int64_t>(expected.size()));
    EXPECT_EQ(rows_.ShowsRecords(), model_.ShowsRecords());
    std::vector<std::size_t> order(expected.size());
    std::iota(order.begin(), order.end(), 0);
    std::shuffle(order.begin(), order.end(), random_);
    order.resize(std::min(sample, order.size()));
    for (const std::size_t index : order) {
      const auto row = static_cast<std::int64_t>(index) + 1;
      SCOPED_TRACE("row " + std::to_string(row) + " of " + std::to_string(expected.size()));
      EXPECT_EQ(rows_.KindOf(row), expected[index].kind);
      // Before the row is read as a whole.
      if (index % 4 == 0) {
        ReadSlices(row);
        ASSERT_NO_FATAL_FAILURE(
            ExpectSameRow(rows_.Row(row, SumsWanted::kKnown), model_.OnScreen(index)));
      }
      ASSERT_NO_FATAL_FAILURE(ExpectSameRow(rows_.Row(row), expected[index]));
      if (::testing::Test::HasFailure()) {
        return;
      }
    }
  }

 private:
  // The content of `row`, if any, is at the returned row.
  void Sort(int column, bool ascending, std::int64_t row) {
    const HistoryRow before = row == 0 ? HistoryRow() : rows_.Row(row);
    const std::int64_t now = rows_.SortBy(column, ascending, row);
    model_.SortBy(column, ascending);
    if (row == 0) {
      EXPECT_EQ(now, 0);
    } else {
      ExpectSameRow(rows_.Row(now), before);
    }
  }

  std::vector<int> AnyColumns() {
    std::vector<int> columns;
    for (const HistoryColumn& column : HistoryColumnTable()) {
      if (column.summed && Below(random_, 3) == 0) {
        columns.push_back(column.index);
      }
    }
    return columns;
  }

  void Sum(const std::vector<int>& columns, bool compared) {
    rows_.SumColumns(columns, compared);
    model_.SumColumns(columns, compared);
  }

  // Slices of any size give the sums of the whole.
  void ReadSlices(std::int64_t row) {
    const std::int64_t records = 1 + Below(random_, 100);
    while (rows_.ReadSums(row, row, records).more) {
    }
  }

  GroupedRows rows_;
  GroupedRowsModel model_;
  Random& random_;
};

std::vector<std::vector<CellValue>> RecordsOf(const std::vector<Cells>& rows) {
  std::vector<std::vector<CellValue>> records;
  for (const Cells& row : rows) {
    std::vector<CellValue>& record = records.emplace_back(kHistoryColumnCount);
    for (const auto& [column, value] : row) {
      record[static_cast<std::size_t>(column) - 1] = value;
    }
  }
  return records;
}

std::vector<Cells> AnyRows(Random& random, std::int64_t count, Numbers numbers, std::int64_t few) {
  std::vector<Cells> rows;
  for (std::int64_t i = 0; i < count; ++i) {
    rows.push_back(AnyRow(random, AnyTransaction(random, numbers, i, few)));
  }
  return rows;
}

// Parameters: the group and how its transactions are numbered.
class GroupedRowsOfAnyTable : public ::testing::TestWithParam<std::tuple<int, Numbers>> {
 protected:
  static const DataGroup& Group() { return *FindDataGroup(std::get<0>(GetParam())); }
  static std::vector<Cells> Rows(Random& random, std::int64_t count, std::int64_t few) {
    return AnyRows(random, count, std::get<1>(GetParam()), few);
  }

  static void ExpectTheSame(HistoryTable& table, std::vector<std::vector<CellValue>> records,
                            Random& random, int shows, int steps) {
    Pair pair(table, std::move(records), random);
    for (int show = 0; show < shows; ++show) {
      pair.Show(Group());
      for (int step = 0; step < steps; ++step) {
        SCOPED_TRACE("step " + std::to_string(step));
        ASSERT_NO_FATAL_FAILURE(pair.Compare(120));
        if (HasFailure()) {
          return;
        }
        pair.Step();
      }
    }
  }
};

TEST_P(GroupedRowsOfAnyTable, EqualAListOfAllRows) {
  Random random(static_cast<unsigned>(Group().index) + 100);
  for (const std::int64_t count : {0, 1, 7, 60, 300}) {
    SCOPED_TRACE("rows " + std::to_string(count));
    HistoryTable table;
    const std::vector<Cells> rows = Rows(random, count, 1 + count / 4);
    table.Store(rows);
    ExpectTheSame(table, RecordsOf(rows), random, 4, 16);
  }
}

// These take long: each group once, the ways of numbering in turn.
class GroupedRowsOfALargeTable : public GroupedRowsOfAnyTable {
 public:
  static std::vector<std::tuple<int, Numbers>> EachGroupOnce() {
    constexpr std::array kInTurn = {Numbers::kFew, Numbers::kUpward, Numbers::kAnyOrder};
    std::vector<std::tuple<int, Numbers>> groups;
    for (int group = 0; group < kDataGroupCount; ++group) {
      groups.emplace_back(group, kInTurn.at(static_cast<std::size_t>(group) % kInTurn.size()));
    }
    return groups;
  }
};

TEST_P(GroupedRowsOfALargeTable, AreTheSameInATableWithoutIndexesByNameOrDate) {
  Random random(static_cast<unsigned>(Group().index) + 300);
  HistoryTable table;
  table.Exec(
      "DROP INDEX TransactionsByRecipe; DROP INDEX TransactionsByRecipeIngredient; "
      "DROP INDEX TransactionsByIngredient; DROP INDEX TransactionsByPen; "
      "DROP INDEX TransactionsByDate");
  const std::vector<Cells> rows = Rows(random, 1500, 40);
  table.Store(rows);
  ExpectTheSame(table, RecordsOf(rows), random, 1, 16);
}

TEST_P(GroupedRowsOfALargeTable, HoldGroupsOfManyPagesWithGapsBetween) {
  Random random(static_cast<unsigned>(Group().index) + 200);
  HistoryTable table;
  std::vector<Cells> rows = Rows(random, 6000, 2);
  table.Store(rows);
  // Deletes about a tenth, more in the middle.
  std::vector<Cells> left;
  std::string gone = "0";
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (Below(random, 12) == 0 || (i >= 2500 && i < 2800)) {
      gone += "," + std::to_string(i + 1);
    } else {
      left.push_back(rows[i]);
    }
  }
  table.Exec("DELETE FROM Transactions WHERE rowid IN (" + gone + ")");
  ExpectTheSame(table, RecordsOf(left), random, 3, 8);
}

INSTANTIATE_TEST_SUITE_P(Group, GroupedRowsOfAnyTable,
                         ::testing::Combine(::testing::Range(0, kDataGroupCount),
                                            ::testing::Values(Numbers::kFew, Numbers::kUpward,
                                                              Numbers::kAnyOrder)));
INSTANTIATE_TEST_SUITE_P(Group, GroupedRowsOfALargeTable,
                         ::testing::ValuesIn(GroupedRowsOfALargeTable::EachGroupOnce()));

}  // namespace
}  // namespace vrx::testing
