#include "history/columns.h"

#include <algorithm>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// CORN in slot 1, hay in slot 3; slots 2 and 100 have their default names, slot 12 a similar name.
std::vector<IngredientRecord> Ingredients() {
  return {{.id = 1, .name = "CORN", .description = "Corn"},
          {.id = 2, .name = "ING002"},
          {.id = 3, .name = "hAY", .description = "Hay"},
          {.id = 12, .name = "ING012"},
          {.id = 13, .name = "ING13"},
          {.id = 99, .name = "SALT", .description = "Salt"},
          {.id = 100, .name = "ING100"}};
}

const DataGroup& GroupAt(int index) { return *FindDataGroup(index); }

std::vector<std::string> VisibleCaptions(const HistoryColumns& columns) {
  std::vector<std::string> captions;
  for (const int column : columns.VisibleColumns()) {
    captions.push_back(columns.Caption(column));
  }
  return captions;
}

std::vector<std::string> CaptionsOf(int group) {
  HistoryColumns columns;
  columns.RefreshIngredientColumns(Ingredients());
  columns.SetUp(GroupAt(group));
  return VisibleCaptions(columns);
}

TEST(HistoryColumns, StartInTheirDesignOrder) {
  const HistoryColumns columns;
  for (int column = 1; column <= kHistoryColumnCount; ++column) {
    EXPECT_EQ(columns.Position(column), column);
    EXPECT_TRUE(columns.IsVisible(column));
    EXPECT_EQ(columns.TotalText(column), "");
    EXPECT_EQ(columns.Caption(column), HistoryColumnAt(column).caption);
  }
}

TEST(HistoryColumns, GroupZeroShowsThePercentageAndTheNamedIngredients) {
  EXPECT_THAT(CaptionsOf(0), ElementsAre("Transaction", "Recipe", "Type", "Batch Wt", "Ingredient",
                                         "Feed Wt", "Pen", "Target Wt", "User ID", "Time", "Date",
                                         "Ing% Of Batch", "CORN", "HAY", "ING13", "SALT"));
}

TEST(HistoryColumns, GroupTenKeepsTheOrderThatTheGroupBeforeItLeft) {
  const auto after = [](int before) {
    HistoryColumns columns;
    columns.SetUp(GroupAt(before));
    columns.SetUp(GroupAt(10));
    std::vector<std::string> captions = VisibleCaptions(columns);
    captions.resize(4);
    return captions;
  };
  EXPECT_THAT(after(9), ElementsAre("Pen", "Recipe", "Target Wt", "Feed Wt"));
  EXPECT_THAT(after(3), ElementsAre("Pen", "Recipe", "Feed Wt", "Target Wt"));
}

TEST(HistoryColumns, SetUpGivesTheTotalTextToOneColumnOnly) {
  HistoryColumns columns;
  for (int group = 0; group < kDataGroupCount; ++group) {
    columns.SetUp(GroupAt(group));
    int with_text = 0;
    for (int column = 1; column <= kHistoryColumnCount; ++column) {
      with_text += columns.TotalText(column) == "Total:" ? 1 : 0;
      EXPECT_THAT(columns.TotalText(column), ::testing::AnyOf("", "Total:"));
    }
    EXPECT_EQ(with_text, group == 0 ? 0 : 1) << GroupAt(group).item;
  }
}

TEST(HistoryColumns, SetUpOfZeroHidesNothing) {
  HistoryColumns columns;
  columns.SetUp(GroupAt(12));
  columns.SetUp(GroupAt(0));
  EXPECT_EQ(columns.VisibleColumns().size(), std::size_t{kHistoryColumnCount});
}

TEST(HistoryColumns, ASlotWithoutNameHasNoColumn) {
  HistoryColumns columns;
  columns.RefreshIngredientColumns({});
  for (int column = kFirstIngredientColumn; column <= kHistoryColumnCount; ++column) {
    EXPECT_FALSE(columns.IsVisible(column));
    EXPECT_EQ(columns.Caption(column), "");
  }
  EXPECT_TRUE(columns.IsVisible(kIngPercentColumn));
}

TEST(HistoryColumns, ASlotsNameIsItsColumnsCaptionInUpperCase) {
  HistoryColumns columns;
  columns.RefreshIngredientColumns(Ingredients());
  EXPECT_EQ(columns.Caption(kIngPercentColumn + 3), "HAY");
  EXPECT_TRUE(columns.IsVisible(kIngPercentColumn + 2));  // until a row is drawn
}

TEST(HistoryColumns, TheUpperCaseOfACaptionCoversEveryLetter) {
  HistoryColumns columns;
  columns.RefreshIngredientColumns(std::vector<IngredientRecord>{{.id = 1, .name = "rüben ß"}});
  EXPECT_EQ(columns.Caption(kIngPercentColumn + 1), "RÜBEN ß");
}

TEST(HistoryColumns, ARenamedSlotRenamesItsColumnForAllOldTransactions) {
  HistoryColumns columns;
  columns.RefreshIngredientColumns(Ingredients());
  columns.RefreshIngredientColumns(std::vector<IngredientRecord>{{.id = 1, .name = "MILO"}});
  EXPECT_EQ(columns.Caption(kIngPercentColumn + 1), "MILO");
  EXPECT_EQ(columns.Caption(kIngPercentColumn + 3), "");
}

TEST(HistoryColumns, AnIngredientBeyondTheSlotsHasNoColumn) {
  HistoryColumns columns;
  columns.RefreshIngredientColumns(
      std::vector<IngredientRecord>{{.id = 101, .name = "X"}, {.id = 0, .name = "Y"}});
  EXPECT_EQ(columns.Caption(kIngPercentColumn), "Ing% Of Batch");
  EXPECT_EQ(columns.Caption(kHistoryColumnCount), "");
}

TEST(HistoryColumns, ADefaultNameHasThreeDigitsForEverySlot) {
  std::vector<IngredientRecord> ingredients;
  for (int id = 1; id <= kIngredientCount; ++id) {
    const std::string digits = std::to_string(1000 + id).substr(1);
    ingredients.push_back({.id = id, .name = "ING" + digits});
  }
  HistoryColumns columns;
  columns.RefreshIngredientColumns(ingredients);
  columns.ApplyIngredientColumnVisibility(GroupAt(0));
  EXPECT_EQ(columns.VisibleColumns().back(), kIngPercentColumn);
  ingredients.back().name = "ING0100";
  columns.RefreshIngredientColumns(ingredients);
  columns.ApplyIngredientColumnVisibility(GroupAt(0));
  EXPECT_EQ(columns.VisibleColumns().back(), kHistoryColumnCount);
}

TEST(HistoryColumns, EnteringTheTabLeavesThePercentageAlone) {
  for (const int group : {0, 10}) {
    HistoryColumns columns;
    columns.RefreshIngredientColumns(Ingredients());
    columns.EnterTab(GroupAt(group));
    EXPECT_TRUE(columns.IsVisible(kIngPercentColumn));
    EXPECT_TRUE(columns.IsVisible(kIngPercentColumn + 1));
    EXPECT_FALSE(columns.IsVisible(kIngPercentColumn + 2));
  }
  HistoryColumns columns;
  columns.RefreshIngredientColumns(Ingredients());
  columns.EnterTab(GroupAt(5));
  EXPECT_TRUE(columns.IsVisible(kIngPercentColumn));
  EXPECT_FALSE(columns.IsVisible(kIngPercentColumn + 1));
}

TEST(HistoryColumns, MovingAColumnShiftsTheOthers) {
  HistoryColumns columns;
  columns.Move(4, 2);
  EXPECT_EQ(columns.Position(1), 1);
  EXPECT_EQ(columns.Position(4), 2);
  EXPECT_EQ(columns.Position(2), 3);
  EXPECT_EQ(columns.Position(3), 4);
  EXPECT_EQ(columns.Position(5), 5);
  columns.Move(4, 4);
  for (int column = 1; column <= kHistoryColumnCount; ++column) {
    EXPECT_EQ(columns.Position(column), column);
  }
}

TEST(HistoryColumns, PositionsStayAPermutationWhateverIsMoved) {
  std::mt19937 random(20260105);
  std::uniform_int_distribution<int> any(1, kHistoryColumnCount);
  HistoryColumns columns;
  for (int round = 0; round < 500; ++round) {
    const int column = any(random);
    const int position = any(random);
    columns.Move(column, position);
    ASSERT_EQ(columns.Position(column), position);
    std::vector<int> positions;
    for (int index = 1; index <= kHistoryColumnCount; ++index) {
      positions.push_back(columns.Position(index));
    }
    std::sort(positions.begin(), positions.end());
    std::vector<int> all(kHistoryColumnCount);
    std::iota(all.begin(), all.end(), 1);
    ASSERT_EQ(positions, all);
  }
}

TEST(HistoryColumns, AnInvalidColumnOrPositionIsAnError) {
  HistoryColumns columns;
  EXPECT_THROW(columns.Move(1, 0), std::out_of_range);
  EXPECT_THROW(columns.Move(1, 117), std::out_of_range);
  EXPECT_THROW(columns.Move(117, 1), std::out_of_range);
  EXPECT_THROW(static_cast<void>(columns.Position(0)), std::out_of_range);
  EXPECT_THROW(static_cast<void>(columns.Caption(-1)), std::out_of_range);
}

std::vector<std::string> CaptionsWithDifferences(int group) {
  HistoryColumns columns;
  columns.ShowDifferences(true);
  columns.SetUp(GroupAt(group));
  return VisibleCaptions(columns);
}

TEST(HistoryColumns, DifferencesFollowTheActualWeightsThatTheGroupShows) {
  EXPECT_THAT(
      CaptionsWithDifferences(1),
      ElementsAre("Recipe", "Batch Wt", "Batch Diff", "Batch Diff %", "Ingredient", "Feed Wt",
                  "Feed Diff", "Feed Diff %", "Pen", "Target Wt", "User ID", "Time", "Date"));
  EXPECT_THAT(CaptionsWithDifferences(5),
              ElementsAre("Ingredient", "Batch Wt", "Batch Diff", "Batch Diff %"));
  EXPECT_THAT(CaptionsWithDifferences(9), ElementsAre("Recipe", "Target Wt", "Feed Wt", "Feed Diff",
                                                      "Feed Diff %", "User ID", "Time", "Date"));
}

TEST(HistoryColumns, EveryGroupShowsThePairsOfItsActualWeights) {
  for (const DataGroup& group : DataGroups()) {
    HistoryColumns columns;
    columns.SetUp(group);
    const std::vector<int> without = columns.VisibleColumns();
    columns.ShowDifferences(true);
    for (const DifferenceColumn& difference : kDifferenceColumns) {
      EXPECT_EQ(columns.IsVisible(difference.column), columns.IsVisible(difference.actual_column))
          << group.item;
      EXPECT_EQ(columns.Position(difference.column),
                columns.Position(difference.actual_column) + (difference.percent ? 2 : 1));
    }
    columns.ShowDifferences(false);
    EXPECT_EQ(columns.VisibleColumns(), without) << group.item;
  }
}

TEST(HistoryColumns, DifferencesLeaveTheOrderOfTheOthersAlone) {
  HistoryColumns plain;
  HistoryColumns shown;
  shown.ShowDifferences(true);
  for (const int group : {3, 10, 9, 10, 0}) {
    plain.SetUp(GroupAt(group));
    shown.SetUp(GroupAt(group));
    shown.Move(113, 1);
    std::vector<int> visible = shown.VisibleColumns();
    std::erase_if(visible, [](int column) { return FindDifferenceColumn(column) != nullptr; });
    EXPECT_EQ(visible, plain.VisibleColumns()) << group;
  }
  shown.ShowDifferences(false);
  for (int column = 1; column <= kGridColumnCount; ++column) {
    EXPECT_EQ(shown.Position(column), plain.Position(column));
  }
}

TEST(HistoryColumns, NoFieldIsAPartOfADifferencesField) {
  for (const DifferenceColumn& difference : kDifferenceColumns) {
    const std::string& field = HistoryColumnAt(difference.column).field;
    for (const HistoryColumn& other : HistoryColumnTable()) {
      if (other.index != difference.column) {
        EXPECT_EQ(field.find(other.field), std::string::npos) << other.field;
        EXPECT_EQ(other.field.find(field), std::string::npos) << other.field;
      }
    }
  }
}

TEST(GetVisibleColumnList, PutsAFieldIntoTheSlotOfItsPosition) {
  HistoryColumns columns;
  columns.SetUp(GroupAt(5));
  std::vector<std::string> slots(501);
  slots[2] = "Ingredient";
  slots[4] = "ActualBatch";
  EXPECT_EQ(columns.GetVisibleColumnList(), slots);
}

TEST(GetVisibleColumnList, HoldsEveryVisibleColumnOfTheFullGrid) {
  const HistoryColumns columns;
  const std::vector<std::string> slots = columns.GetVisibleColumnList();
  ASSERT_EQ(slots.size(), 501U);
  EXPECT_EQ(slots[0], "");
  EXPECT_EQ(slots[1], "Transaction");
  EXPECT_EQ(slots[112], "Ing100Wt");
  EXPECT_THAT(std::vector<std::string>(slots.begin() + 113, slots.end()),
              ::testing::Each(IsEmpty()));
}

}  // namespace
}  // namespace vrx::testing
