#include "export/export_columns.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "history/columns.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Pairs = std::vector<ExportedColumn>;

class ExportColumns : public ::testing::Test {
 protected:
  ExportColumns() {
    names_.SetIngredientColumnName("Ing01Wt", "CORN");
    names_.SetIngredientColumnName("Ing02Wt", "HAY");
    names_.SetIngredientColumnName("Ing50Wt", "SALT");
    for (const char* key : {"Ing33Wt", "Ing51Wt", "Ing100Wt"}) {
      names_.SetIngredientColumnName(key, "LOST");
    }
  }

  static std::vector<std::string> Visible(const std::vector<std::string>& fields) {
    std::vector<std::string> slots(501);
    // With gaps, as hidden columns leave them.
    for (std::size_t at = 0; at < fields.size(); ++at) {
      slots[at * 3 + 1] = fields[at];
    }
    return slots;
  }

  Pairs Of(int group, const std::vector<std::string>& fields) const {
    return columns_.IntializeExportColumn(group, Visible(fields)).value_or(Pairs{{"none", "none"}});
  }

  IngredientColumnNames names_;
  ExportColumn columns_{names_};
};

TEST_F(ExportColumns, AFieldHasTheCaptionOfTheTable) {
  EXPECT_EQ(columns_.GetColumnName("Transaction", false), "Transaction");
  EXPECT_EQ(columns_.GetColumnName("Recipe", false), "Recipe");
  EXPECT_EQ(columns_.GetColumnName("IngPercent", false), "Ing% Of Batch");
  EXPECT_EQ(columns_.GetColumnName("Date", false), "Date");
  EXPECT_EQ(columns_.GetColumnName("Time", false), "Time");
  EXPECT_EQ(columns_.GetColumnName("UserID", false), "User ID");
  EXPECT_EQ(columns_.GetColumnName("Target", false), "Target Wt");
  EXPECT_EQ(columns_.GetColumnName("Pen", false), "Pen");
  EXPECT_EQ(columns_.GetColumnName("Ingredient", false), "Ingredient");
  EXPECT_EQ(columns_.GetColumnName("ActualFeed", false), "Feed Wt");
  EXPECT_EQ(columns_.GetColumnName("ActualBatch", false), "Batch Wt");
  EXPECT_EQ(columns_.GetColumnName("Type", false), "Type");
  EXPECT_EQ(columns_.GetColumnName("Ing02Wt", false), "HAY");
  EXPECT_EQ(columns_.GetColumnName("Weight", false), "");
}

TEST_F(ExportColumns, AskedForTheFieldItComesBackUnchanged) {
  EXPECT_EQ(columns_.GetColumnName("UserID", true), "UserID");
  EXPECT_EQ(columns_.GetColumnName("Weight", true), "Weight");
}

TEST_F(ExportColumns, FixedColumnsComeFirstThenTheVisibleOnesByPosition) {
  EXPECT_THAT(
      Of(1, {"Recipe", "ActualBatch", "Date"}),
      ElementsAre(ExportedColumn{"Transaction", "Transaction"}, ExportedColumn{"Type", "Type"},
                  ExportedColumn{"Recipe", "Recipe"}, ExportedColumn{"ActualBatch", "Batch Wt"},
                  ExportedColumn{"Date", "Date"}));
}

TEST_F(ExportColumns, TheFixedColumnsOfEachGroup) {
  EXPECT_THAT(Of(0, {}), IsEmpty());
  EXPECT_THAT(Of(1, {}), ElementsAre(ExportedColumn{"Transaction", "Transaction"},
                                     ExportedColumn{"Type", "Type"}));
  EXPECT_THAT(Of(2, {}), ElementsAre(ExportedColumn{"Date", "Date"},
                                     ExportedColumn{"Transaction", "Transaction"},
                                     ExportedColumn{"Type", "Type"}));
  EXPECT_THAT(Of(3, {}),
              ElementsAre(ExportedColumn{"Recipe", "Recipe"}, ExportedColumn{"Type", "Type"}));
  EXPECT_THAT(Of(5, {}), ElementsAre(ExportedColumn{"Recipe", "Recipe"}));
  EXPECT_THAT(Of(6, {}), ElementsAre(ExportedColumn{"Ingredient", "Ingredient"}));
  EXPECT_THAT(Of(7, {}), ElementsAre(ExportedColumn{"Ingredient", "Ingredient"}));
  EXPECT_THAT(Of(8, {}), ElementsAre(ExportedColumn{"Pen", "Pen"}));
  EXPECT_THAT(Of(9, {}), ElementsAre(ExportedColumn{"Pen", "Pen"}));
  EXPECT_THAT(Of(10, {}), IsEmpty());
  EXPECT_THAT(Of(11, {}), ElementsAre(ExportedColumn{"UserID", "User ID"},
                                      ExportedColumn{"Transaction", "Transaction"}));
  EXPECT_THAT(Of(12, {}),
              ElementsAre(ExportedColumn{"UserID", "User ID"}, ExportedColumn{"Type", "Type"}));
}

TEST_F(ExportColumns, Group4AndAnIndexThatIsNoGroupHaveNoDictionary) {
  EXPECT_EQ(columns_.IntializeExportColumn(4, Visible({"Recipe"})), std::nullopt);
  EXPECT_EQ(columns_.IntializeExportColumn(-1, Visible({"Recipe"})), std::nullopt);
  EXPECT_EQ(columns_.IntializeExportColumn(13, Visible({"Recipe"})), std::nullopt);
}

TEST_F(ExportColumns, AnIngredientColumnWithoutAPlaceInTheTableIsDropped) {
  EXPECT_THAT(Of(0, {"IngPercent", "Ing01Wt", "Ing33Wt", "Ing50Wt", "Ing51Wt", "Ing100Wt"}),
              ElementsAre(ExportedColumn{"IngPercent", "Ing% Of Batch"},
                          ExportedColumn{"Ing01Wt", "CORN"}, ExportedColumn{"Ing50Wt", "SALT"}));
}

TEST_F(ExportColumns, ABlankCaptionOrEntryIsTreatedAsMissing) {
  names_.SetIngredientColumnName("Ing03Wt", "  ");
  EXPECT_THAT(Of(10, {"Ing03Wt", "   ", "Pen"}), ElementsAre(ExportedColumn{"Pen", "Pen"}));
}

TEST_F(ExportColumns, AVisibleColumnThatIsAlsoFixedOccursOnce) {
  EXPECT_THAT(Of(8, {"Recipe", "Pen"}),
              ElementsAre(ExportedColumn{"Pen", "Pen"}, ExportedColumn{"Recipe", "Recipe"}));
}

TEST_F(ExportColumns, AMovedColumnMovesInTheExport) {
  EXPECT_THAT(Of(10, {"Target", "Pen"}),
              ElementsAre(ExportedColumn{"Target", "Target Wt"}, ExportedColumn{"Pen", "Pen"}));
}

TEST_F(ExportColumns, TheFieldListLeavesOutWhatIsFoundInTheExcludeText) {
  const Pairs dictionary = Of(1, {"Recipe", "ActualBatch", "Time"});
  EXPECT_THAT(BuildFieldList(dictionary, "Transaction,Type"),
              ElementsAre("Recipe", "ActualBatch", "Time"));
  EXPECT_THAT(BuildFieldList(dictionary, ""),
              ElementsAre("Transaction", "Type", "Recipe", "ActualBatch", "Time"));
}

TEST_F(ExportColumns, AFieldThatIsAPartOfAnExcludedNameIsLeftOutWithIt) {
  const Pairs dictionary{{"Transaction", "T"}, {"Trans", "S"}, {"Date", "D"}};
  EXPECT_THAT(BuildFieldList(dictionary, "Transaction"), ElementsAre("Date"));
}

}  // namespace
}  // namespace vrx::testing
